// The old delay comes back on every way that does not end aligned.
#include "pc/calibration.h"

#include <fmt/core.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <stdexcept>

#include "options/errors.h"
#include "pc/microphone_check.h"

namespace orvex::tools {
namespace {

using Clock = std::chrono::steady_clock;

// What may remain: of the fine reading, the wandering of outputs with clocks of their own; of the service, the block of
// its grid besides.
constexpr double kAgreesMs = 2.0;
constexpr double kCoarselyAgreesMs = kAgreesMs + kVoiceBlockMs;
// Outputs with clocks of their own wander for some seconds after one of them began or lost sound. What remains is taken
// into the delay then, and listened to again, so many times altogether.
constexpr double kStaysMs = 0.5;
constexpr int kListenings = 3;
// A listening that would end later is not begun: a person waits.
constexpr std::chrono::seconds kLimit(12);
// The delay is set to tenths of a millisecond.
constexpr double kStepsPerMs = 10.0;

double InSteps(double ms) {
  return std::round(ms * kStepsPerMs) / kStepsPerMs;
}

double ToMs(double s) {
  return s * 1e3;
}

class Procedure {
public:
  Procedure(LivingRoom& room, const CalibrationOptions& options) : m_Room(room), m_Options(options) {}

  Calibration Run() {
    try {
      m_OldMs = m_Room.GetDelayMs();
      m_Result.appliedMs = m_OldMs;
      Measure();
    } catch (const MicrophoneProblem& problem) {
      End(PcVerdict::kNoMicrophone, problem.what());
    } catch (const std::runtime_error& problem) {
      End(PcVerdict::kFailed, problem.what());
    }
    if (m_OldMs && m_Result.verdict != PcVerdict::kAligned) {
      PutBack();
    }
    m_Result.durationS = std::chrono::duration<double>(m_Options.now() - m_Start).count();
    return m_Result;
  }

private:
  void End(PcVerdict verdict, const std::string& words) {
    m_Result.verdict = verdict;
    m_Result.words = words;
  }

  void Measure() {
    if (IsDigitalSilence(m_Room.Prepare())) {
      throw MicrophoneProblem(WhyUnread({}, {}, 0));
    }
    const ServiceRun run = m_Room.RunService();
    m_Result.terminate = run.report.terminate;
    if (const std::string problem = run.ending.Problem(); !problem.empty()) {
      throw CommandError(problem);
    }
    if (run.report.differenceS) {
      m_Result.coarseMs = ToMs(*run.report.differenceS);
    }
    const double servicesMs = m_Room.GetDelayMs();
    const fine::Reading reading = Read(run, servicesMs - *m_OldMs);
    Take(reading);
    m_Options.onRun(run, reading);
    if (!reading.differenceS) {
      EndUnread(run, reading);
      return;
    }
    m_Result.beforeMs = ToMs(*reading.differenceS);
    if (m_Options.coarse) {
      ListenAgain(servicesMs, kCoarselyAgreesMs, kCoarselyAgreesMs);
    } else {
      SetByReading(InSteps(*m_OldMs - *m_Result.beforeMs));
    }
  }

  // The service's delay comes into force in the middle of the sound. Of the delayed output, what is heard from then on
  // is moved back by the change, as if it had not been made; what a longer delay repeats goes by that. The rounding to
  // samples costs 0.01 ms.
  fine::Reading Read(const ServiceRun& run, double changeMs) const {
    VoiceSamples delayed = run.heard;
    const auto change = static_cast<std::ptrdiff_t>(std::llround(changeMs * 1e-3 * kVoiceRateHz));
    const auto changedAt = delayed.begin() + static_cast<std::ptrdiff_t>(std::min(run.changedAt, delayed.size()));
    if (change > 0) {
      delayed.erase(changedAt, changedAt + std::min(change, delayed.end() - changedAt));
    } else {
      delayed.insert(changedAt, static_cast<std::size_t>(-change), 0);
    }
    return m_Reader.ReadTones({{{run.heard.data(), run.heard.size()}, {delayed.data(), delayed.size()}}});
  }

  // A service that could not do its work says more than what was heard.
  void EndUnread(const ServiceRun& run, const fine::Reading& reading) {
    const std::string& terminate = run.report.terminate;
    const std::uint64_t losses = m_Room.CountLosses();
    if (terminate == kFoundDifference || terminate == kFoundNothing) {
      End(PcVerdict::kNoDifference, WhyUnread(run.heard, reading, losses));
    } else {
      End(PcVerdict::kFailed, "the service ended with \"" + terminate + "\", " + EndInWords(terminate) + ": " +
                                  (losses > 0 ? LossesInWords(losses) : "--verbose shows its log"));
    }
  }

  void Take(const fine::Reading& reading) {
    const auto levelOf = [&](std::size_t tone) {
      return reading.arrivals[tone] ? std::optional<double>(reading.arrivals[tone]->levelDb) : std::nullopt;
    };
    m_Result.level17Db = levelOf(0);
    m_Result.level19Db = levelOf(1);
    m_Result.intervalMs = std::nullopt;
    if (reading.differenceS) {
      m_Result.intervalMs = {ToMs(reading.intervalS.low), ToMs(reading.intervalS.high)};
    }
  }

  void SetByReading(double wantedMs) {
    if (wantedMs < -kAgreesMs) {
      End(PcVerdict::kOutOfRange,
          fmt::format(
              "the delayed output is the later one by {:.1f} ms even without a delay: swap reference and delayed "
              "(orvex-pc setup)",
              -wantedMs));
    } else if (wantedMs > m_Options.maximumDelayMs) {
      End(PcVerdict::kOutOfRange, fmt::format("the delayed output would need a delay of {:.1f} ms, at most {:.0f} ms "
                                              "can be set: make the reference output faster",
                                              wantedMs, m_Options.maximumDelayMs));
    } else {
      Approach(std::max(0.0, wantedMs));
    }
  }

  void Approach(double delayMs) {
    std::optional<double> nextMs = delayMs;
    bool isInTime = true;
    for (int n = 0; n < kListenings && nextMs && isInTime; ++n) {
      const Clock::time_point before = m_Options.now();
      ListenAgain(*nextMs, kAgreesMs, kStaysMs);
      nextMs = BetterDelayMs();
      const Clock::time_point now = m_Options.now();
      isInTime = now + (now - before) <= m_Start + kLimit;
    }
  }

  // Empty: there is none.
  std::optional<double> BetterDelayMs() const {
    if (m_Result.verdict != PcVerdict::kAligned || std::abs(*m_Result.afterMs) <= kStaysMs) {
      return std::nullopt;
    }
    const double delayMs = std::clamp(InSteps(*m_Result.appliedMs - *m_Result.afterMs), 0.0, m_Options.maximumDelayMs);
    return delayMs == *m_Result.appliedMs ? std::nullopt : std::optional(delayMs);
  }

  // What remains of up to `staysMs` agrees in any case; more, up to `agreesMs`, when no sound has been lost: of cards
  // that lost sound, a difference is soon another one.
  void ListenAgain(double delayMs, double agreesMs, double staysMs) {
    m_Room.SetDelayMs(delayMs);
    m_Options.onNews(fmt::format("delay {:.1f} ms, listening once more", delayMs));
    const VoiceSamples heard = m_Room.PlayAndListen();
    const fine::Reading reading = m_Reader.Read({heard.data(), heard.size()});
    if (!reading.differenceS) {
      End(PcVerdict::kFailed,
          "the second listening gave no difference: " + WhyUnread(heard, reading, m_Room.CountLosses()));
      return;
    }
    Take(reading);
    m_Result.afterMs = ToMs(*reading.differenceS);
    m_Result.appliedMs = delayMs;
    const double remainsMs = std::abs(*m_Result.afterMs);
    const std::uint64_t losses = remainsMs <= staysMs ? 0 : m_Room.CountLosses();
    if (remainsMs <= agreesMs && losses == 0) {
      End(PcVerdict::kAligned, "");
    } else {
      End(PcVerdict::kWorse,
          fmt::format("the second listening does not agree, {:+.1f} ms remain with a delay of {:.1f} ms: {}",
                      *m_Result.afterMs, delayMs,
                      losses > 0 ? LossesInWords(losses) : "try again, in a quieter room or with the outputs louder"));
    }
  }

  void PutBack() {
    try {
      m_Room.SetDelayMs(*m_OldMs);
      m_Result.appliedMs = m_OldMs;
    } catch (const std::runtime_error& problem) {
      m_Result.appliedMs = std::nullopt;
      m_Result.words += fmt::format("; the old delay of {:.1f} ms cannot be put back: {}", *m_OldMs, problem.what());
    }
  }

  LivingRoom& m_Room;
  const CalibrationOptions& m_Options;
  const fine::FineReader m_Reader;
  const Clock::time_point m_Start = m_Options.now();
  std::optional<double> m_OldMs;
  Calibration m_Result;
};

}  // namespace

const char* NameOf(PcVerdict verdict) {
  switch (verdict) {
    case PcVerdict::kAligned:
      return "aligned";
    case PcVerdict::kWorse:
      return "worse";
    case PcVerdict::kNoDifference:
      return "no_difference";
    case PcVerdict::kOutOfRange:
      return "out_of_range";
    case PcVerdict::kNoMicrophone:
      return "no_microphone";
    case PcVerdict::kFailed:
      break;
  }
  return "failed";
}

Calibration Calibrate(LivingRoom& room, const CalibrationOptions& options) {
  return Procedure(room, options).Run();
}

}  // namespace orvex::tools
