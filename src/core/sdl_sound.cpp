#include "core/sdl_sound.h"

#include <SDL.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tremor {
namespace {

// How far playing may lag behind the file's own length: a slow device, not one that stands still.
constexpr std::chrono::milliseconds margin{5000};

constexpr Uint32 repaintEveryMs = 10;

// Samples a second. A head that tells of others is damaged: at one a second, a small file would
// hold up the polls for hours.
constexpr int lowestRate = 1000;
constexpr int highestRate = 768000;

// Short buffers, so that the end of the last one is not long behind the end of the sound.
constexpr Uint16 framesPerBuffer = 1024;

// The samples of a file.
class Wave {
  public:
    explicit Wave(const std::string& path) {
        if (SDL_LoadWAV(path.c_str(), &spec_, &samples_, &length_) == nullptr)
            samples_ = nullptr; // SDL 2.26 leaves the address of what it has freed
    }
    ~Wave() { SDL_FreeWAV(samples_); }
    Wave(const Wave&) = delete;
    Wave& operator=(const Wave&) = delete;

    bool isPlayable() const {
        return samples_ != nullptr && length_ > 0 && spec_.freq >= lowestRate &&
               spec_.freq <= highestRate;
    }
    const Uint8* samples() const { return samples_; }
    Uint32 length() const { return length_; } // bytes
    const SDL_AudioSpec& spec() const { return spec_; }

    std::chrono::milliseconds duration() const {
        const std::int64_t bytesPerSecond =
            std::int64_t{spec_.freq} * spec_.channels * (SDL_AUDIO_BITSIZE(spec_.format) / 8);
        return std::chrono::milliseconds(std::int64_t{length_} * 1000 / bytesPerSecond);
    }

  private:
    SDL_AudioSpec spec_{};
    Uint8* samples_ = nullptr;
    Uint32 length_ = 0;
};

// The default device, open for a file's format. SDL's audio part runs only while one lives, so that
// a device that was plugged in meanwhile is found.
class Device {
  public:
    explicit Device(SDL_AudioSpec format) {
        // SIGINT and SIGTERM go on ending the program.
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        running_ = SDL_InitSubSystem(SDL_INIT_AUDIO) == 0;
        format.samples = framesPerBuffer;
        if (running_)
            id_ = SDL_OpenAudioDevice(nullptr, 0, &format, &opened_, 0);
    }
    ~Device() {
        if (id_ != 0)
            SDL_CloseAudioDevice(id_);
        if (running_)
            SDL_QuitSubSystem(SDL_INIT_AUDIO);
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    // False when there is no device.
    bool start(const Wave& wave) {
        if (id_ == 0 || SDL_QueueAudio(id_, wave.samples(), wave.length()) != 0)
            return false;
        // Silence behind the sound pushes its end through the conversion to the device's format.
        const std::vector<Uint8> silence(2 * std::size_t{opened_.size}, opened_.silence);
        SDL_QueueAudio(id_, silence.data(), static_cast<Uint32>(silence.size()));
        SDL_PauseAudioDevice(id_, 0);
        return true;
    }
    bool isPlaying() const {
        return SDL_GetQueuedAudioSize(id_) > 0 &&
               SDL_GetAudioDeviceStatus(id_) == SDL_AUDIO_PLAYING;
    }

  private:
    SDL_AudioSpec opened_{};
    SDL_AudioDeviceID id_ = 0;
    bool running_ = false;
};

} // namespace

void SdlSound::play(std::string_view path) {
    const std::string file(path);
    // Opening a pipe would wait for its writer.
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(file, ignored))
        return;
    const Wave wave(file);
    if (!wave.isPlayable())
        return;
    Device device(wave.spec());
    if (!device.start(wave))
        return;
    const std::chrono::milliseconds latest = clock_.steady() + wave.duration() + margin;
    while (device.isPlaying() && clock_.steady() < latest && !session_.waitsMustEnd()) {
        clock_.repaint();
        SDL_Delay(repaintEveryMs);
    }
}

} // namespace tremor
