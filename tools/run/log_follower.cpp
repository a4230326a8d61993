// Strips colours and the prefix of a line; what is left is compared with the texts that the service logs.
#include "run/log_follower.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <fmt/core.h>

#include "orvex/platform/remote_voice.h"
#include "run/log_colours.h"

namespace orvex::tools {
namespace {

constexpr double kLoggedResolutionS = 0.0001;  // four digits

// What follows "file: function(line) > ".
std::optional<std::string> MessageOf(const std::string& text) {
  constexpr char kEndOfPrefix[] = ") > ";
  const std::size_t end = text.find(kEndOfPrefix);
  if (end == std::string::npos) {
    return std::nullopt;
  }
  return text.substr(end + sizeof kEndOfPrefix - 1);
}

std::optional<std::uint32_t> NumberOf(const std::string& text) {
  std::uint32_t number = 0;
  return std::sscanf(text.c_str(), "%u", &number) == 1 ? std::optional<std::uint32_t>(number) : std::nullopt;
}

// The value of `key` in "{key=value;key=value}".
std::string FieldOf(const std::string& record, const std::string& key) {
  const std::string wanted = key + "=";
  std::size_t begin = record.find_first_of("{;");
  while (begin != std::string::npos) {
    const std::size_t end = record.find_first_of(";}", begin + 1);
    const std::string field = record.substr(begin + 1, end == std::string::npos ? end : end - begin - 1);
    if (field.rfind(wanted, 0) == 0) {
      return field.substr(wanted.size());
    }
    begin = record.find(';', begin + 1);
  }
  return "";
}

struct End {
  const char* terminate;
  const char* words;
};

// Every other end is one from outside, or by the time limit.
constexpr End kEnds[] = {
    {kFoundNothing, "no pair of tones with a difference was heard"},
    {"play_fail", "the test sound cannot be played"},
    {"bt_fail", "the remote's microphone cannot be started"},
    {"abnormal_input_fail", "too much noise in the tones"},
};

}  // namespace

std::string EndInWords(const std::string& terminate) {
  for (const End& end : kEnds) {
    if (terminate == end.terminate) {
      return end.words;
    }
  }
  return "the run was ended before it had searched to the end";
}

bool IsInForce(std::optional<std::uint32_t> wantedMs, std::optional<std::int64_t> inForceMs) {
  return wantedMs && inForceMs && *inForceMs == std::int64_t{*wantedMs};
}

std::string DelayInWords(std::optional<std::uint32_t> wantedMs, std::optional<std::int64_t> inForceMs) {
  if (IsInForce(wantedMs, inForceMs)) {
    return std::to_string(*inForceMs) + " ms";
  }
  return (wantedMs ? std::to_string(*wantedMs) + " ms" : "none") + " wanted, " +
         (inForceMs ? std::to_string(*inForceMs) + " ms in force" : "the one in force cannot be read");
}

struct LogFollower::Rule {
  const char* prefix;
  News (LogFollower::*meaning)(const std::string& rest);
};

std::optional<std::string> LogFollower::Follow(const std::string& line) {
  static constexpr Rule kRules[] = {
      {"ORVEX_START_SYNC", &LogFollower::OnStartSync},
      {"avoc delay = ", &LogFollower::OnDelayRead},
      {"completed ambient noise", &LogFollower::OnAmbientNoise},
      {"pcm start writing, ", &LogFollower::OnWriting},
      {"  ====> @ g_first index ", &LogFollower::OnTvFirst},
      {"@ g_first index (reverse)", &LogFollower::OnOpticalFirst},
      {"@ [RESULT] ", &LogFollower::OnPair},
      {"(ruvo)   ====> @ [RESULT] ", &LogFollower::OnPair},
      {"diff time = ", &LogFollower::OnDifference},
      {"after delay = ", &LogFollower::OnDelayWritten},
      {"Temp file name=", &LogFollower::OnDumpFiles},
      {"text = {result=", &LogFollower::OnEndRecord},
      {"no_diff_detected!!", &LogFollower::OnNoDifference},
      {"fail to play wave", &LogFollower::OnPlayFailure},
      {"fail bt recoding", &LogFollower::OnRecorderFailure},
      {"by abnormal input", &LogFollower::OnAbnormalInput},
  };
  const std::string text = WithoutColours(line);
  const std::optional<std::string> message = MessageOf(text);
  if (!message) {
    return OnHostProblem(text);
  }
  for (const Rule& rule : kRules) {
    if (message->rfind(rule.prefix, 0) == 0) {
      return (this->*rule.meaning)(message->substr(std::char_traits<char>::length(rule.prefix)));
    }
  }
  return std::nullopt;
}

LogFollower::News LogFollower::OnStartSync(const std::string&) {
  m_BaseFollows = true;
  return "run started";
}

LogFollower::News LogFollower::OnDelayRead(const std::string& rest) {
  if (m_BaseFollows) {
    m_Report.baseMs = NumberOf(rest);
    m_BaseFollows = false;
  }
  return std::nullopt;
}

LogFollower::News LogFollower::OnAmbientNoise(const std::string&) {
  return "ambient noise measured";
}

// Logged for every chunk.
LogFollower::News LogFollower::OnWriting(const std::string&) {
  const bool first = !m_Writing;
  m_Writing = true;
  return first ? News("playing the test sound") : std::nullopt;
}

LogFollower::News LogFollower::OnTvFirst(const std::string&) {
  return "first tone: 17 kHz, television's speaker";
}

LogFollower::News LogFollower::OnOpticalFirst(const std::string&) {
  return "first tone: 19 kHz, optical output";
}

LogFollower::News LogFollower::OnPair(const std::string& rest) {
  int at17 = 0;
  int at19 = 0;
  if (std::sscanf(rest.c_str(), "[%d] - [%d]", &at17, &at19) != 2) {
    return std::nullopt;
  }
  // As the receiver computes it, rounded at the same steps.
  m_PairS = (at19 - at17) * kVoiceBlockSamples / kVoiceRateHz;
  return fmt::format("second tone: optical output {:+.1f} ms against the speaker", *m_PairS * 1000.0);
}

// The line has four digits; the buffer numbers of the pair that it speaks of have them all.
LogFollower::News LogFollower::OnDifference(const std::string& rest) {
  const double logged = std::strtod(rest.c_str(), nullptr);
  const double difference = m_PairS && std::abs(*m_PairS - logged) < kLoggedResolutionS ? *m_PairS : logged;
  m_Report.differenceS = difference == 0.0 ? std::nullopt : std::optional<double>(difference);
  return std::nullopt;
}

LogFollower::News LogFollower::OnDelayWritten(const std::string& rest) {
  m_Report.wantedMs = NumberOf(rest);
  EndBy(kFoundDifference);
  m_Report.result = m_HasEndRecord ? m_Report.result : "pass";
  const std::optional<std::int64_t> inForceMs = m_ReadDelay();
  return (IsInForce(m_Report.wantedMs, inForceMs) ? "delay in force: " : "delay not applied: ") +
         DelayInWords(m_Report.wantedMs, inForceMs);
}

LogFollower::News LogFollower::OnDumpFiles(const std::string& rest) {
  const std::size_t between = rest.find("][");
  const std::size_t end = rest.rfind(']');
  if (rest.empty() || rest[0] != '[' || between == std::string::npos || end <= between + 1) {
    return std::nullopt;
  }
  m_Report.dumpFile = rest.substr(1, between - 1);
  m_Report.resultFile = rest.substr(between + 2, end - between - 2);
  m_Report.debugFiles.push_back(m_Report.dumpFile);
  m_Report.debugFiles.push_back(m_Report.resultFile);
  return "recording";
}

// A run may send several; the last one tells how it ended.
LogFollower::News LogFollower::OnEndRecord(const std::string& rest) {
  const std::string record = "{result=" + rest;
  m_HasEndRecord = true;
  m_Report.result = FieldOf(record, "result");
  m_Report.terminate = FieldOf(record, "terminate");
  return std::nullopt;
}

LogFollower::News LogFollower::OnNoDifference(const std::string&) {
  return EndBy(kFoundNothing);
}

LogFollower::News LogFollower::OnPlayFailure(const std::string&) {
  return EndBy("play_fail");
}

LogFollower::News LogFollower::OnRecorderFailure(const std::string&) {
  return EndBy("bt_fail");
}

LogFollower::News LogFollower::OnAbnormalInput(const std::string&) {
  return EndBy("abnormal_input_fail");
}

// Everything that is no record of the log: the port's problems, a sanitizer's report, a crash.
LogFollower::News LogFollower::OnHostProblem(const std::string& rest) {
  return rest.find_first_not_of(" \t\r") == std::string::npos ? std::nullopt : News(rest);
}

// What the lines suggest stands until the service itself says how the run ended.
std::string LogFollower::EndBy(const char* terminate) {
  if (!m_HasEndRecord) {
    m_Report.terminate = terminate;
  }
  return EndInWords(terminate);
}

}  // namespace orvex::tools
