// How a tool says what is wrong with its command line.
#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace orvex::tools {

// Messages of `app` about wrong usage begin with the program's name, as all messages do.
inline void NameInMessages(CLI::App& app, const std::string& program) {
  app.failure_message([=](const CLI::App* failed, const CLI::Error& error) {
    return program + ": " + CLI::FailureMessage::simple(failed, error);
  });
}

}  // namespace orvex::tools
