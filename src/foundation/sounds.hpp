#pragma once
// Sound playback: named system event sounds, sound files or aliases (cSounds), and the six
// short WAVE sounds carried in the library's own resources (ResourceSoundPlayer). Everything
// goes through the platform's PlaySoundA / sndPlaySoundA and is asynchronous.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/variant.hpp"
#include "platform/sound.hpp"
#include "platform/window.hpp"

namespace korvex::foundation {

// The flags of the named-sound calls: application alias, no default sound, asynchronous.
inline constexpr std::uint32_t kSystemSoundFlags = 0x83;
// Purge whatever PlaySoundA plays, without the default sound.
inline constexpr std::uint32_t kSoundStopFlags = 0x42;
// Asynchronous, no default sound, from memory.
inline constexpr std::uint32_t kResourceSoundFlags = 7;

// The first and last identifiers of the library's WAVE resources.
inline constexpr std::int32_t kFirstWaveResource = 101;
inline constexpr std::int32_t kLastWaveResource = 106;

class cSounds {  // keeps no state
  public:
    explicit cSounds(platform::Platform& platform);
    // Plays row SoundIndex (0 to 17) of the system event table; any other index is silence.
    void SystemSound(std::int32_t SoundIndex);
    // Stops whatever PlaySoundA plays.
    void SoundStop();
    // A sound file or registered alias; the platform tries the alias first.
    void SoundPlay(const std::string& SoundName, bool PlayAsync, bool PlayLoop);
    // The system directory as a String; "" when the query fails.
    host::Variant strWindowDirectory();
    // The temporary directory as a String ending with a separator; "" when the query fails.
    host::Variant strTempPath();

    // The name of system event SoundIndex; empty for an index outside the table.
    static std::string_view SystemSoundName(std::int32_t SoundIndex);

  private:
    platform::Platform& platform_;
};

// The bytes of one of the library's resources of a type, as the host's LoadResData gives them;
// error 326 when there is none.
std::vector<std::uint8_t> LoadResData(std::int32_t id, std::string_view type);

// Plays the library's own WAVE resources (101 to 106) from memory and keeps the image alive
// while it plays.
class ResourceSoundPlayer {
  public:
    explicit ResourceSoundPlayer(platform::Platform& platform);
    // Error 326 for an id that is not one of the library's WAVE resources.
    void PlaySound(std::int16_t ResourceId);
    void EndPlaySound();

  private:
    platform::Platform& platform_;
    // The image the platform is reading from; replaced only after the platform let go of the
    // previous one (the new call replaces the old sound first).
    std::vector<std::uint8_t> image_;
};

}  // namespace korvex::foundation
