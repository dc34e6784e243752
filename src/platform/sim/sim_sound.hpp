#pragma once
// SimSound and SimShell: the sound device and the shell of the virtual machine. Nothing is heard
// or opened; every request is recorded with its virtual time, and the sound device keeps track
// of what each of its two channels is playing (PlaySoundA's and sndPlaySoundA's are separate,
// as on the platform), honouring stop, purge, replacement, looping and each sound's length.
// What was heard can be rendered into a WAVE file, so a person can listen to a session.

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/sound.hpp"
#include "platform/window.hpp"

namespace korvex::platform::sim {

struct SoundRequest {
    enum class Channel { PlaySound, SndPlaySound };
    Channel channel = Channel::PlaySound;
    std::optional<std::string> name;  // a named sound (none: a stop request or a memory image)
    std::vector<std::uint8_t> image;  // a copy of a memory image
    std::uint32_t flags = 0;
    std::int64_t time = 0;  // virtual milliseconds
    bool audible = false;   // found and started (an unknown name plays nothing)
};

// Length of a RIFF "WAVE" image in milliseconds (data bytes over byte rate); nullopt when the
// image is not a PCM wave the device understands.
std::optional<std::int64_t> WaveDurationMs(std::span<const std::uint8_t> image);

// The format and sample bytes of a PCM "WAVE" image (8 or 16 bits, any rate and channel count);
// nullopt for anything else.
struct WaveFormat {
    std::uint16_t channels = 0;
    std::uint32_t sampleRate = 0;
    std::uint16_t bitsPerSample = 0;
    std::span<const std::uint8_t> data;
};
std::optional<WaveFormat> ParseWave(std::span<const std::uint8_t> image);

class SimSound final : public Sound {
  public:
    explicit SimSound(Clock& clock) : clock_(clock) {}

    bool PlaySoundA(std::optional<std::string_view> name, std::uint32_t flags) override;
    bool sndPlaySoundA(std::span<const std::uint8_t> image, std::uint32_t flags) override;
    bool sndPlaySoundA(std::optional<std::string_view> name, std::uint32_t flags) override;
    bool MessageBeep(std::uint32_t type) override {
        (void)type;
        beeps_.push_back(clock_.Now());
        return true;
    }
    // The virtual times of every MessageBeep, in order.
    [[nodiscard]] const std::vector<std::int64_t>& Beeps() const { return beeps_; }

    // Sounds the virtual machine knows by alias or file name (the user's system sounds).
    void RegisterNamedSound(std::string name, std::vector<std::uint8_t> image);

    [[nodiscard]] const std::vector<SoundRequest>& Requests() const { return requests_; }
    // The request a channel is playing at the current virtual time, if any.
    [[nodiscard]] const SoundRequest* Playing(SoundRequest::Channel channel) const;

    // What both channels played from virtual time 0 to endTime, mixed: mono, 16-bit,
    // kRenderRate samples a second. A sound is cut where a later request on its channel
    // replaced or stopped it; a looping one repeats until then. Without endTime the timeline
    // runs to the current virtual time or to the end of the last sound, whichever is later.
    static constexpr std::uint32_t kRenderRate = 22050;
    [[nodiscard]] std::vector<std::int16_t> RenderTimeline(
        std::optional<std::int64_t> endTime = {}) const;
    // The same timeline as a WAVE file; false when the file cannot be written.
    bool WriteWav(const std::filesystem::path& path,
                  std::optional<std::int64_t> endTime = {}) const;

  private:
    bool Start(SoundRequest request, std::span<const std::uint8_t> image);
    // The image a request played: its own copy, or the named sound's.
    [[nodiscard]] std::span<const std::uint8_t> ImageOf(const SoundRequest& request) const;

    Clock& clock_;
    std::map<std::string, std::vector<std::uint8_t>, std::less<>> named_;
    std::vector<SoundRequest> requests_;
    std::vector<std::int64_t> beeps_;
    // Per channel: index of the request playing, or -1.
    std::ptrdiff_t playing_[2] = {-1, -1};
};

struct ShellRequest {
    HWND owner;
    std::optional<std::string> verb;
    std::string file;
    std::string parameters;
    std::string directory;
    int showCommand = 0;
    std::int64_t time = 0;
};

class SimShell final : public Shell {
  public:
    explicit SimShell(Clock& clock) : clock_(clock) {}

    std::intptr_t ShellExecuteA(HWND owner, std::optional<std::string_view> verb,
                                std::string_view file, std::string_view parameters,
                                std::string_view directory, int showCommand) override;
    std::string GetSystemDirectoryA() override { return "C:\\WINDOWS\\system32"; }
    std::string GetTempPathA() override { return "C:\\WINDOWS\\TEMP\\"; }

    [[nodiscard]] const std::vector<ShellRequest>& Requests() const { return requests_; }

  private:
    Clock& clock_;
    std::vector<ShellRequest> requests_;
};

}  // namespace korvex::platform::sim
