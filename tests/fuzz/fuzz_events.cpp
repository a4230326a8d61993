// Sends a run events, settings, messages and voice, lets operations fail and ends it, in any order and at any time.
// When the run is over, checks the rules that every run has to keep.
//
// An input is a byte for the state of the television, then a list of commands: a letter and its arguments, one byte
// each.
//   w N    N * 4 ms pass
//   e N    event 10000 + N % 9
//   v K N  N % 40 + 1 blocks of the remote, 16.5 ms each, of kind K: click, 17 kHz, 19 kHz, noisy 19 kHz, loud 17 kHz
//   n z    a lost block, a block of an odd byte
//   f N R C  operation N answers its failure R at its call C % 6 + 1 from now, or from now on for C of 192 and more
//   c N    consent N % 2; d N delay N ms; o optical flag; l time limit; x termination; r restart message; k another key
#include <iterator>
#include <memory>

#include "Application/OrvexEventId.h"
#include "fuzz/byte_reader.h"
#include "fuzz/require.h"
#include "orvex/platform/remote_voice.h"
#include "support/voice_blocks.h"
#include "support/wave_file.h"
#include "world/runs/faults.h"
#include "world/runs/run_rules.h"

namespace {

using namespace orvex::fuzz;
using namespace orvex::runs;

constexpr int kMostBlocks = 120;
constexpr int kMostFaults = 2;
constexpr int kMostCommands = 60;

const std::vector<std::int16_t>& Block(int kind) {
  static const std::vector<std::int16_t> kBlocks[] = {orvex::test::Ambient(), orvex::test::Tone(17000, 5000),
                                                      orvex::test::Tone(19000, 5000), orvex::test::NoisyTone19(5000),
                                                      orvex::test::Tone(17000, 30000)};
  return kBlocks[static_cast<std::size_t>(kind) % std::size(kBlocks)];
}

// A run to which happens what the input says.
class FuzzedRun {
public:
  FuzzedRun(ByteReader& input, const std::string& soundFile) : m_Input(input), m_Run(soundFile) {}

  void Perform() {
    PrepareTelevision();
    Require(m_Run.Start(), "there is an application");
    for (int count = 0; count < kMostCommands && !m_Input.IsAtEnd() && !m_Run.world.HasEnded(); ++count) {
      ApplyCommand(m_Input.Letter());
      m_Run.world.AdvanceMs(0);
    }
    static_cast<void>(m_Run.ToEnd());
  }
  const ServiceRun& Get() const { return m_Run; }

private:
  void PrepareTelevision() {
    const int bits = m_Input.Byte();
    m_Run.world.muted = (bits & 1) != 0;
    m_Run.world.speaker = bits >> 1 & 1;
    m_Run.world.delayMs = (bits & 4) != 0 ? 100 : 10;
    m_Run.world.settings[kConsentKey] = bits >> 3 & 1;
    m_Run.world.volume = bits >> 4;
  }
  void ApplyCommand(char command) {
    switch (command) {
      case 'w':
        m_Run.world.AdvanceMs(4.0 * m_Input.Byte());
        break;
      case 'e':
        m_Run.SendServiceEvent(ORVEX_START_SYNC + m_Input.Below(9));
        break;
      case 'v': {
        const int kind = m_Input.Byte();
        for (int left = m_Input.Below(40) + 1; left > 0 && m_Blocks < kMostBlocks; --left, ++m_Blocks) {
          m_Run.world.AdvanceMs(kVoiceBlockMs);
          static_cast<void>(m_Run.world.Deliver(Block(kind)));
        }
        break;
      }
      case 'n':
        static_cast<void>(m_Run.world.Deliver(nullptr));
        break;
      case 'z': {
        const std::uint8_t byte = 'z';
        const VoiceData record{1, &byte};
        static_cast<void>(m_Run.world.Deliver(&record));
        break;
      }
      case 'f':
        DrawFault();
        break;
      case 'c':
        m_Run.Consent(m_Input.Below(2));
        break;
      case 'd':
        m_Run.ChangeDelay(static_cast<std::uint32_t>(m_Input.Byte()));
        break;
      case 'o':
        m_Run.SwitchOpticalFlag();
        break;
      case 'l':
        m_Run.ReachTimeLimit();
        break;
      case 'x':
        m_Run.Terminate();
        break;
      case 'r':
        SendMessage("restart");
        break;
      case 'k':
        m_Run.world.ChangeSetting("db/another/key", m_Input.Byte());
        break;
      default:
        break;
    }
  }
  void SendMessage(const char* method) {
    FwMessage message;
    message.type = "ask";
    message.body["method"] = method;
    Require(m_Run.world.SendMessage(message, {}).body.isNull(), "no method answers");
  }
  void DrawFault() {
    const FailingOperation& operation = m_Input.Pick(FailingOperations());
    const long result = m_Input.Pick(operation.results);
    const int call = m_Input.Byte();
    const std::string name = operation.name;
    // A run whose events or whose time limit are missing need not end; those never fail here.
    if (name == "SendEvent" || name == "ecore_timer_add" || m_Faults++ >= kMostFaults) {
      return;
    }
    orvex::world::Answers& answers = m_Run.world.answers;
    if (call >= 192) {
      answers.Always(name, result);
    } else {
      answers.OnCall(name, answers.Calls(name) + call % 6 + 1, result);
    }
  }

  ByteReader& m_Input;
  ServiceRun m_Run;
  int m_Blocks = 0;
  int m_Faults = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const orvex::test::SilentWave sound(0.5);
  ByteReader input(data, size);
  FuzzedRun run(input, sound.Path());
  run.Perform();
  const Violations violations = CheckRun(run.Get());
  if (!violations.empty()) {
    run.Get().world.journal.Print(std::cerr);
    Fail(violations.front());
  }
  return 0;
}
