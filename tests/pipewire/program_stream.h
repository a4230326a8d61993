// A program that plays to an output as most do: by the session manager's policy.
#pragma once

#include <spa/utils/hook.h>

#include <string>

#include "pipewire/test_client.h"

struct pw_stream;

namespace orvex::integration {

class ProgramStream {
public:
  // `target`: where it plays while that is there.
  ProgramStream(TestClient& client, const std::string& target);
  ~ProgramStream();
  ProgramStream(const ProgramStream&) = delete;
  ProgramStream& operator=(const ProgramStream&) = delete;

  bool WaitForLinkTo(const std::string& sink);

private:
  TestClient& m_Client;
  pw_stream* m_Stream = nullptr;
  spa_hook m_Hook{};
};

}  // namespace orvex::integration
