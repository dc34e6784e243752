#pragma once
// The sound and shell seams: the multimedia sound calls the controls make, and the shell's
// document opening and directory queries. The sim implementations record every request with
// its virtual time so tests and scripts can see what a user would have heard and seen opened.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/window.hpp"

namespace korvex::platform {

// PlaySound / sndPlaySound flags.
inline constexpr std::uint32_t SND_SYNC = 0x0000;
inline constexpr std::uint32_t SND_ASYNC = 0x0001;
inline constexpr std::uint32_t SND_NODEFAULT = 0x0002;
inline constexpr std::uint32_t SND_MEMORY = 0x0004;
inline constexpr std::uint32_t SND_LOOP = 0x0008;
inline constexpr std::uint32_t SND_NOSTOP = 0x0010;
inline constexpr std::uint32_t SND_PURGE = 0x0040;
inline constexpr std::uint32_t SND_APPLICATION = 0x0080;

class Sound {
  public:
    virtual ~Sound() = default;
    // A named sound: a registered alias first, then a file. No name, or "" with SND_PURGE,
    // stops what PlaySoundA is playing. The module argument of Win32 is not used here.
    virtual bool PlaySoundA(std::optional<std::string_view> name, std::uint32_t flags) = 0;
    // A complete RIFF "WAVE" image played from memory (SND_MEMORY): the caller keeps the bytes
    // alive until the sound ends, is replaced or is stopped.
    virtual bool sndPlaySoundA(std::span<const std::uint8_t> image, std::uint32_t flags) = 0;
    // A named sound; no name stops what sndPlaySoundA is playing.
    virtual bool sndPlaySoundA(std::optional<std::string_view> name, std::uint32_t flags) = 0;
    // The system's default beep (MessageBeep with type 0), as a field sounds on a refused key.
    virtual bool MessageBeep(std::uint32_t type) = 0;
};

// ShowWindow commands passed to ShellExecuteA.
inline constexpr int SW_SHOWNORMAL = 1;
inline constexpr int SW_SHOWMAXIMIZED = 3;

class Shell {
  public:
    virtual ~Shell() = default;
    // Opens a document or address. Returns a value above 32 on success, as Win32 does.
    virtual std::intptr_t ShellExecuteA(HWND owner, std::optional<std::string_view> verb,
                                        std::string_view file, std::string_view parameters,
                                        std::string_view directory, int showCommand) = 0;
    virtual std::string GetSystemDirectoryA() = 0;
    virtual std::string GetTempPathA() = 0;  // ends with a path separator
};

}  // namespace korvex::platform
