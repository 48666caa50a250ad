#include "core/sdl_sound.h"
#include "support/fakes.h"
#include "support/texts.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdint>
#include <fstream>
#include <functional>
#include <string>

// What is played is read from the file that SDL's "disk" device writes: silence, then the samples
// of the sound, then silence, in the file's own format.
namespace tremor {
namespace {

using namespace std::chrono_literals;

std::string littleEndian(std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
    return text;
}

struct WaveFormat {
    std::uint32_t tag = 1; // PCM
    std::uint32_t channels = 1;
    std::uint32_t rate = 22050;
    std::uint32_t bits = 16;
};

std::string waveFile(const std::string& samples, const WaveFormat& format = {}) {
    const std::uint32_t frame = format.channels * format.bits / 8;
    const std::string body = "WAVEfmt " + littleEndian(16, 4) + littleEndian(format.tag, 2) +
                             littleEndian(format.channels, 2) + littleEndian(format.rate, 4) +
                             littleEndian(format.rate * frame, 4) + littleEndian(frame, 2) +
                             littleEndian(format.bits, 2) + "data" +
                             littleEndian(static_cast<std::uint32_t>(samples.size()), 4) + samples;
    return "RIFF" + littleEndian(static_cast<std::uint32_t>(body.size()), 4) + body;
}

// Bytes that repeat themselves nowhere near and hold no run of silence.
std::string noise(std::size_t bytes) {
    std::string text;
    std::uint32_t state = 12345;
    while (text.size() < bytes) {
        state = state * 1664525 + 1013904223;
        text += static_cast<char>(1 + (state >> 24) % 127);
    }
    return text;
}

// A clock whose repaint can do something.
class RepaintClock : public testing::FakeClock {
  public:
    void repaint() override {
        FakeClock::repaint();
        if (onRepaint)
            onRepaint();
    }
    std::function<void()> onRepaint;
};

class SdlSoundTest : public ::testing::Test {
  protected:
    SdlSoundTest() {
        ::setenv("SDL_AUDIODRIVER", "disk", 1);
        ::setenv("SDL_DISKAUDIOFILE", played_.c_str(), 1);
        ::setenv("SDL_DISKAUDIODELAY", "1", 1); // ms a buffer: faster than it would sound
    }
    ~SdlSoundTest() override {
        for (const char* name : {"SDL_AUDIODRIVER", "SDL_DISKAUDIOFILE", "SDL_DISKAUDIODELAY"})
            ::unsetenv(name);
    }

    std::string written(const std::string& bytes) {
        const std::string path = folder_.file("alert.wav");
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    // All that has reached the device; the empty text when none was opened.
    std::string played() const { return testing::contentOf(played_); }
    void expectSilence(const std::string& bytes) {
        sound_.play(written(bytes));
        EXPECT_EQ(played(), "");
        EXPECT_EQ(clock_.repaints, 0);
    }

    testing::TemporaryFolder folder_;
    std::string played_ = folder_.file("played.raw");
    RepaintClock clock_;
    Session session_;
    SdlSound sound_{clock_, session_};
};

TEST_F(SdlSoundTest, PlaysEverySampleOfTheFileBeforeItReturns) {
    const std::string samples = noise(44100);
    sound_.play(written(waveFile(samples)));
    EXPECT_NE(played().find(samples), std::string::npos);
}

TEST_F(SdlSoundTest, TakesAsLongAsTheSoundAndPaintsMeanwhile) {
    ::unsetenv("SDL_DISKAUDIODELAY"); // as fast as it sounds
    const auto start = std::chrono::steady_clock::now();
    sound_.play(written(waveFile(noise(22050)))); // half a second
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken, 450ms);
    EXPECT_LT(taken, 30s);
    EXPECT_GT(clock_.repaints, 5);              // about 50 on an idle machine
    EXPECT_EQ(clock_.pumps + clock_.sleeps, 0); // nothing but paint gets through
}

TEST_F(SdlSoundTest, PlaysOneSoundAfterTheOther) {
    for (const std::size_t bytes : {4000U, 8000U}) {
        const std::string samples = noise(bytes);
        sound_.play(written(waveFile(samples)));
        EXPECT_NE(played().find(samples), std::string::npos) << bytes;
    }
}

TEST_F(SdlSoundTest, PlaysOtherFormats) {
    const std::string samples = noise(17640);
    for (const WaveFormat& format :
         {WaveFormat{.bits = 8}, WaveFormat{.channels = 2, .rate = 44100}, WaveFormat{.rate = 8000},
          WaveFormat{.rate = 96000, .bits = 32}}) {
        sound_.play(written(waveFile(samples, format)));
        EXPECT_NE(played().find(samples), std::string::npos)
            << format.rate << " Hz, " << format.bits << " bits";
    }
}

TEST_F(SdlSoundTest, PlaysTheSoundsThatComeWithTheProgram) {
    for (const std::string name : {"level1", "level2", "level3", "level4"}) {
        const std::string path = TREMOR_SHARE "/Sounds/" + name + ".wav";
        const std::string bytes = testing::contentOf(path);
        ASSERT_GT(bytes.size(), 44100U) << name; // over a second
        EXPECT_LT(bytes.size(), 200000U) << name;
        sound_.play(path);
        EXPECT_NE(played().find(bytes.substr(44)), std::string::npos) << name;
    }
}

TEST_F(SdlSoundTest, SaysNothingOfAFileThatIsNotThere) {
    sound_.play(folder_.file("missing.wav"));
    sound_.play("");
    sound_.play(std::string_view("alert\0.wav", 10));
    EXPECT_EQ(played(), "");
}

TEST_F(SdlSoundTest, SaysNothingOfAFolder) {
    sound_.play(folder_.path());
    EXPECT_EQ(played(), "");
}

TEST_F(SdlSoundTest, DoesNotWaitForTheWriterOfAPipe) {
    const std::string pipe = folder_.file("pipe.wav");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    sound_.play(pipe);
    EXPECT_EQ(played(), "");
}

TEST_F(SdlSoundTest, SaysNothingOfWhatIsNoWaveFile) {
    expectSilence("");
    expectSilence("RIFF");
    expectSilence("ID3\x03 not a wave file at all");
    expectSilence(noise(5000));
}

TEST_F(SdlSoundTest, SaysNothingOfAFormatThatItCannotPlay) {
    const std::string samples = noise(4000);
    expectSilence(waveFile(samples, {.tag = 0x55})); // MP3
    expectSilence(waveFile(samples, {.channels = 0}));
    expectSilence(waveFile(samples, {.rate = 0}));
    expectSilence(waveFile(samples, {.rate = 1})); // over half an hour
    expectSilence(waveFile(samples, {.rate = 2000000000}));
    expectSilence(waveFile(samples, {.bits = 0}));
    expectSilence(waveFile(samples, {.bits = 7}));
    expectSilence(waveFile(""));
}

TEST_F(SdlSoundTest, PlaysWhatIsThereOfAFileCutShort) {
    const std::string samples = noise(4000);
    const std::string whole = waveFile(samples);
    sound_.play(written(whole.substr(0, whole.size() - 1000)));
    EXPECT_NE(played().find(samples.substr(0, 3000)), std::string::npos);
}

TEST_F(SdlSoundTest, SaysNothingOfAHeadCutShort) {
    const std::string whole = waveFile(noise(100));
    for (std::size_t length = 0; length <= 44; ++length)
        expectSilence(whole.substr(0, length));
}

TEST_F(SdlSoundTest, ReturnsAtOnceWithoutADevice) {
    ::setenv("SDL_AUDIODRIVER", "nowhere", 1);
    sound_.play(written(waveFile(noise(4000))));
    EXPECT_EQ(clock_.repaints, 0);
    ::setenv("SDL_AUDIODRIVER", "disk", 1);
    ::setenv("SDL_DISKAUDIOFILE", folder_.file("no/such/folder.raw").c_str(), 1);
    sound_.play(written(waveFile(noise(4000))));
    EXPECT_EQ(clock_.repaints, 0);
}

TEST_F(SdlSoundTest, EndsSomeSecondsBehindTheSoundWhenTheDeviceStandsStill) {
    ::setenv("SDL_DISKAUDIODELAY", "1000", 1); // ms a buffer of 46 ms
    clock_.onRepaint = [this] { clock_.advance(500ms); };
    sound_.play(written(waveFile(noise(44100)))); // a second
    EXPECT_GE(clock_.steady(), 6000ms);
    EXPECT_LE(clock_.steady(), 6500ms);
}

TEST_F(SdlSoundTest, EndsWhenTheProgramCloses) {
    ::unsetenv("SDL_DISKAUDIODELAY");
    clock_.onRepaint = [this] { session_.Closing = true; };
    sound_.play(written(waveFile(noise(441000)))); // ten seconds
    EXPECT_EQ(clock_.repaints, 1);
}

TEST_F(SdlSoundTest, LeavesTheSignalsThatEndTheProgramAlone) {
    sound_.play(written(waveFile(noise(4000))));
    for (const int number : {SIGINT, SIGTERM}) {
        struct sigaction action {};
        ASSERT_EQ(::sigaction(number, nullptr, &action), 0);
        EXPECT_EQ(action.sa_handler, SIG_DFL) << number;
    }
}

} // namespace
} // namespace tremor
