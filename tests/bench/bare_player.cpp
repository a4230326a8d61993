// bare_player FILE.wav: the program that the service's costs are compared with. It initialises Ecore, plays FILE on
// "hw:0,8" from its first job, and ends.
//
// Prints the time at which that job began, in microseconds since the epoch, and the peak memory in KiB.
#include <Ecore.h>
#include <alsa/asoundlib.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kHeaderBytes = 44;
constexpr unsigned int kRateHz = 48000;
constexpr unsigned int kChannels = 2;
constexpr unsigned int kBufferTimeUs = 102400;
constexpr std::size_t kFrameBytes = 4;

struct Player {
  std::string file;
  bool hasPlayed = false;
};

long PeakMemoryKib() {
  std::ifstream status("/proc/self/status");
  std::string line;
  long peakKib = -1;
  while (std::getline(status, line)) {
    static_cast<void>(std::sscanf(line.c_str(), "VmHWM: %ld kB", &peakKib));
  }
  return peakKib;
}

bool WriteAll(snd_pcm_t* device, const std::vector<char>& bytes) {
  snd_pcm_uframes_t left = (bytes.size() - kHeaderBytes) / kFrameBytes;
  const char* position = bytes.data() + kHeaderBytes;
  while (left > 0) {
    const snd_pcm_sframes_t written = snd_pcm_writei(device, position, left);
    if (written >= 0) {
      left -= static_cast<snd_pcm_uframes_t>(written);
      position += static_cast<std::size_t>(written) * kFrameBytes;
    } else if (snd_pcm_recover(device, static_cast<int>(written), 1) < 0) {
      return false;
    }
  }
  return true;
}

bool Play(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  snd_pcm_t* device = nullptr;
  if (bytes.size() <= kHeaderBytes || snd_pcm_open(&device, "hw:0,8", SND_PCM_STREAM_PLAYBACK, 0) < 0) {
    return false;
  }
  const bool played = snd_pcm_set_params(device, SND_PCM_FORMAT_S16_LE, SND_PCM_ACCESS_RW_INTERLEAVED, kChannels,
                                         kRateHz, 0, kBufferTimeUs) == 0 &&
                      WriteAll(device, bytes) && snd_pcm_drop(device) == 0;
  snd_pcm_close(device);
  return played;
}

void OnFirstJob(void* data) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  auto& player = *static_cast<Player*>(data);
  player.hasPlayed = Play(player.file);
  std::printf("%lld %ld\n",
              static_cast<long long>(std::chrono::microseconds(now / std::chrono::microseconds(1)).count()),
              PeakMemoryKib());
  ecore_main_loop_quit();
}

}  // namespace

int main(int argc, char** argv) {
  ecore_app_no_system_modules();
  if (argc != 2 || ecore_init() == 0) {
    return EXIT_FAILURE;
  }
  Player player{argv[1]};
  ecore_job_add(OnFirstJob, &player);
  ecore_main_loop_begin();
  ecore_shutdown();
  if (!player.hasPlayed) {
    std::fprintf(stderr, "bare_player: %s was not played\n", argv[1]);
  }
  return player.hasPlayed ? EXIT_SUCCESS : EXIT_FAILURE;
}
