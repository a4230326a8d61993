// The world's own life: journal and answers, the run of an application, the remote's blocks.
#include "world/world.h"

#include <stdexcept>
#include <utility>

namespace orvex::world {

namespace {

World* g_World = nullptr;

constexpr Time kLongestRun = std::chrono::seconds(60);
constexpr Time kLongestDrain = std::chrono::seconds(6);

// Calls take no time. A thread that makes very many at one moment, because its device is never ready, is made to wait,
// so that time goes on.
constexpr int kCallsAtOnce = 200;
constexpr Time kTimeOfThem = std::chrono::milliseconds(100);

Time Milliseconds(double milliseconds) {
  return Time(static_cast<std::int64_t>(milliseconds * 1e6));
}

}  // namespace

void Answers::Next(const std::string& function, const std::vector<long>& results) {
  m_Next[function].insert(m_Next[function].end(), results.begin(), results.end());
}

std::optional<long> Answers::Take(const std::string& function) {
  const int number = ++m_Calls[function];
  const auto numbered = m_OnCall.find(function);
  if (numbered != m_OnCall.end() && numbered->second.count(number) > 0) {
    return numbered->second.at(number);
  }
  const auto next = m_Next.find(function);
  if (next != m_Next.end() && !next->second.empty()) {
    const long result = next->second.front();
    next->second.pop_front();
    return result;
  }
  const auto always = m_Always.find(function);
  return always == m_Always.end() ? std::nullopt : std::optional<long>(always->second);
}

int Answers::Calls(const std::string& function) const {
  const auto calls = m_Calls.find(function);
  return calls == m_Calls.end() ? 0 : calls->second;
}

World::World() {
  if (g_World != nullptr) {
    throw std::logic_error("there is a world already");
  }
  g_World = this;
}

World::~World() {
  scheduler.UnwindAll();
  g_World = nullptr;
}

World& World::Current() {
  if (g_World == nullptr) {
    throw std::logic_error("there is no world");
  }
  return *g_World;
}

World* World::CurrentOrNull() {
  return g_World;
}

void World::Call(const std::string& text) {
  journal.Add({scheduler.Now(), scheduler.CurrentThread(), "> " + text, "", ""});
  if (onCall) {
    onCall(text);
  }
  if (std::exchange(m_CallsSince, scheduler.Now()) != scheduler.Now()) {
    m_CallsAtOnce = 0;
  }
  if (++m_CallsAtOnce >= kCallsAtOnce) {
    scheduler.Sleep(kTimeOfThem);
  }
}

int World::Answer(const char* function, const std::string& arguments, int usual, const std::function<void()>& work) {
  const int result = static_cast<int>(answers.Take(function).value_or(usual));
  if (result == 0) {
    work();
  }
  Call(std::string(function) + "(" + arguments + ") = " + std::to_string(result));
  return result;
}

void World::Create(FwEflApplication& application) {
  m_Application = &application;
  m_CreatedAt = scheduler.Now();
  if (!application.t_OnCreate()) {
    RequestEnd();
  }
  AfterItem();
}

void World::AdvanceMs(double milliseconds) {
  const Time until = scheduler.Now() + Milliseconds(milliseconds);
  scheduler.RunUntil(until, [this] {
    AfterItem();
    return m_Ended;
  });
}

bool World::RunToEnd() {
  const Time until = scheduler.Now() + kLongestRun;
  while (!m_Ended && scheduler.Now() < until) {
    AdvanceMs(100);
  }
  return m_Ended;
}

double World::EndedAtMs() const {
  return std::chrono::duration<double, std::milli>(m_EndedAt - m_CreatedAt).count();
}

// The end that a port gives an application: the destroy step, then the pool's workers.
void World::AfterItem() {
  if (!m_EndRequested || m_Application == nullptr || m_Destroyed) {
    return;
  }
  m_Destroyed = true;
  m_Application->t_OnDestroy();
  scheduler.RunUntil(scheduler.Now() + (runningWorkers > 0 ? kLongestDrain : Time(0)),
                     [this] { return runningWorkers == 0; });
  m_Ended = true;
  m_EndedAt = scheduler.Now();
}

bool World::SendEventFromService(const FwEvent& event) {
  if (m_EndRequested) {
    return false;
  }
  if (event.GetReceiver() != nullptr) {
    scheduler.At(scheduler.Now(), Lane::kMainLoop, [this, event] {
      if (!m_EndRequested) {
        FwEvent delivered = event;
        static_cast<void>(event.GetReceiver()->GetApplication().t_OnEvent(&delivered));
      }
    });
  }
  return true;
}

void World::Inject(std::int32_t eventType) {
  static_cast<void>(SendEventFromService(FwEvent(eventType, m_Application->GetEventReceiver())));
}

void World::ChangeSetting(const std::string& key, int value) {
  settings[key] = value;
  NotifySetting(key, key.c_str());
}

FwMessage World::SendMessage(const FwMessage& message, FwMessage reply) {
  static_cast<void>(m_Application->IfMessageReceived("tester", message, reply));
  return reply;
}

bool World::DeliverBy(const std::function<void(VoiceDataCallback callback, void* userData)>& delivery) {
  if (voiceCallback == nullptr) {
    return false;
  }
  const auto deliver = [this, delivery] {
    // A receiver that is gone by the time of its turn gets nothing.
    if (voiceCallback != nullptr) {
      voiceCallbackRuns = true;
      delivery(voiceCallback, voiceUserData);
      voiceCallbackRuns = false;
    }
  };
  if (hasDeliveryThread) {
    scheduler.RunOn("delivery", deliver);
  } else {
    scheduler.RunAs("delivery", deliver);
  }
  return true;
}

bool World::Deliver(const VoiceData* record) {
  return DeliverBy([record](VoiceDataCallback callback, void* userData) { callback(record, userData); });
}

bool World::Deliver(const std::vector<std::int16_t>& samples) {
  std::vector<std::uint8_t> bytes;
  for (const std::int16_t sample : samples) {
    bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint16_t>(sample) & 0xFFU));
    bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint16_t>(sample) >> 8U));
  }
  // A thread that is held back still has them when this call has returned.
  return DeliverBy([bytes = std::move(bytes)](VoiceDataCallback callback, void* userData) {
    const VoiceData record{static_cast<std::uint16_t>(bytes.size()), bytes.data()};
    callback(&record, userData);
  });
}

void World::UseRoom(const sim::RoomConfig& config) {
  room = std::make_unique<sim::Room>(config);
  room->SetTvMuted(muted);
  room->SetSpdifDelayMs(delayMs);
  m_Voice = std::make_unique<sim::VoiceChannel>(*room);
}

void World::StartVoice() {
  voiceSending = true;
  if (m_Voice != nullptr) {
    m_Voice->Start(scheduler.Now());
    ScheduleDelivery();
  }
}

void World::ExtendVoice() {
  if (m_Voice != nullptr) {
    m_Voice->Extend(scheduler.Now());
    ScheduleDelivery();
  }
}

void World::StopVoice() {
  voiceSending = false;
  if (m_Voice != nullptr) {
    m_Voice->Stop();
    ScheduleDelivery();
  }
}

void World::ScheduleDelivery() {
  if (m_NextDelivery.has_value()) {
    scheduler.Cancel(*m_NextDelivery);
    m_NextDelivery.reset();
  }
  const std::optional<Time> due = m_Voice->NextDelivery();
  if (!due.has_value()) {
    return;
  }
  m_NextDelivery = scheduler.At(
      *due, Lane::kElsewhere,
      [this] {
        m_NextDelivery.reset();
        sim::VoiceChannel::Block block{};
        if (m_Voice->TakeBlock(block)) {
          static_cast<void>(Deliver(std::vector<std::int16_t>(block.begin(), block.end())));
        }
        ScheduleDelivery();
      },
      "delivery");
}

std::string Quoted(const char* text) {
  return text == nullptr ? "null" : '"' + std::string(text) + '"';
}

}  // namespace orvex::world
