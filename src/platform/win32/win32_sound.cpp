// Win32Sound and Win32Shell: winmm's PlaySound and sndPlaySound (images from memory with
// SND_MEMORY), and the shell's ShellExecuteW and directories, UTF-8 on our side.

#include <cstring>
#include <cwchar>

#include "platform/win32/win32_backend.hpp"
// After our headers: see win32_api.hpp.
#include "platform/win32/win32_api.hpp"

namespace korvex::platform::win32 {

namespace {

// A RIFF "WAVE" image, as far as a dry run can tell without playing it.
bool LooksLikeWave(std::span<const std::uint8_t> image) {
    return image.size() >= 12 && std::memcmp(image.data(), "RIFF", 4) == 0 &&
           std::memcmp(image.data() + 8, "WAVE", 4) == 0;
}

}  // namespace

// The seam's flags are the system's; the module argument is not used.
bool Win32Sound::PlaySoundA(std::optional<std::string_view> name, std::uint32_t flags) {
    const bool stop = !name || name->empty() || (flags & SND_PURGE);
    if (dryRun_) return stop;
    if (stop) return ::PlaySoundW(nullptr, nullptr, flags & SND_PURGE) != FALSE;
    return ::PlaySoundW(Widen(*name).c_str(), nullptr, flags & ~static_cast<DWORD>(SND_MEMORY)) !=
           FALSE;
}

// The caller keeps the image alive while it plays, as the system requires.
bool Win32Sound::sndPlaySoundA(std::span<const std::uint8_t> image, std::uint32_t flags) {
    if (dryRun_) return LooksLikeWave(image);
    if (image.empty()) return false;
    return ::sndPlaySoundW(reinterpret_cast<LPCWSTR>(image.data()), flags | SND_MEMORY) != FALSE;
}

bool Win32Sound::sndPlaySoundA(std::optional<std::string_view> name, std::uint32_t flags) {
    if (dryRun_) return !name;
    if (!name) return ::sndPlaySoundW(nullptr, flags) != FALSE;
    return ::sndPlaySoundW(Widen(*name).c_str(), flags & ~static_cast<UINT>(SND_MEMORY)) != FALSE;
}

std::intptr_t Win32Shell::ShellExecuteA(HWND owner, std::optional<std::string_view> verb,
                                        std::string_view file, std::string_view parameters,
                                        std::string_view directory, int showCommand) {
    if (dryRun_) return 42;  // above 32: the shell took it
    const std::wstring wideVerb = verb ? Widen(*verb) : std::wstring();
    const std::wstring wideFile = Widen(file);
    const std::wstring wideParameters = Widen(parameters);
    const std::wstring wideDirectory = Widen(directory);
    const HINSTANCE result = ::ShellExecuteW(
        static_cast<::HWND>(windows_.Native(owner)), verb ? wideVerb.c_str() : nullptr,
        wideFile.c_str(), parameters.empty() ? nullptr : wideParameters.c_str(),
        directory.empty() ? nullptr : wideDirectory.c_str(), showCommand);
    return reinterpret_cast<std::intptr_t>(result);
}

std::string Win32Shell::GetSystemDirectoryA() {
    wchar_t path[MAX_PATH];
    const UINT length = ::GetSystemDirectoryW(path, MAX_PATH);
    return length > 0 && length < MAX_PATH ? Narrow(path, static_cast<int>(length)) : std::string();
}

std::string Win32Shell::GetTempPathA() {
    wchar_t path[MAX_PATH + 1];
    const DWORD length = ::GetTempPathW(MAX_PATH + 1, path);
    return length > 0 && length <= MAX_PATH ? Narrow(path, static_cast<int>(length))
                                            : std::string();
}

}  // namespace korvex::platform::win32

namespace korvex::platform::win32 {

bool Win32Sound::MessageBeep(std::uint32_t type) {
    if (dryRun_) return true;
    return ::MessageBeep(type) != FALSE;
}

std::optional<std::string> Win32Clipboard::GetText() {
    if (!::OpenClipboard(nullptr)) return std::nullopt;
    std::optional<std::string> text;
    if (HANDLE data = ::GetClipboardData(CF_UNICODETEXT)) {
        if (const auto* chars = static_cast<const wchar_t*>(::GlobalLock(data))) {
            text = Narrow(chars, static_cast<int>(std::wcslen(chars)));
            ::GlobalUnlock(data);
        }
    }
    ::CloseClipboard();
    return text;
}

bool Win32Clipboard::SetText(std::string_view text) {
    const std::wstring wide = Widen(text);
    HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, (wide.size() + 1) * sizeof(wchar_t));
    if (!memory) return false;
    auto* chars = static_cast<wchar_t*>(::GlobalLock(memory));
    std::memcpy(chars, wide.c_str(), (wide.size() + 1) * sizeof(wchar_t));
    ::GlobalUnlock(memory);
    if (!::OpenClipboard(nullptr)) {
        ::GlobalFree(memory);
        return false;
    }
    ::EmptyClipboard();
    const bool placed = ::SetClipboardData(CF_UNICODETEXT, memory) != nullptr;
    ::CloseClipboard();
    if (!placed) ::GlobalFree(memory);
    return placed;
}

}  // namespace korvex::platform::win32
