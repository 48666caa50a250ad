#pragma once

#include "core/ports.h"
#include "core/session.h"

#include <string_view>

namespace tremor {

// The loudspeaker by SDL: PulseAudio, PipeWire, ALSA and others, which the environment's
// SDL_AUDIODRIVER chooses. Plays what SDL reads of WAV files: PCM of 8 to 32 bits, float, A-law,
// mu-law and the two kinds of ADPCM.
class SdlSound : public Sound {
  public:
    SdlSound(Clock& clock, const Session& session) : clock_(clock), session_(session) {}

    // Ends early when the program closes or the device goes away, and some seconds behind the
    // file's own length when the device has stopped taking samples.
    void play(std::string_view path) override;

  private:
    Clock& clock_;
    const Session& session_;
};

} // namespace tremor
