#include "com/module.hpp"

#include <atomic>

namespace korvex::com {

namespace {
HINSTANCE gModule = nullptr;
std::atomic<long> gRefs{0};
}  // namespace

void SetModule(HINSTANCE module) {
    gModule = module;
}

HINSTANCE Module() {
    return gModule;
}

std::wstring ModulePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD n = GetModuleFileNameW(gModule, path.data(), static_cast<DWORD>(path.size()));
        if (n < path.size()) {
            path.resize(n);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

void AddModuleRef() {
    ++gRefs;
}

void ReleaseModuleRef() {
    --gRefs;
}

bool ModuleInUse() {
    return gRefs.load() != 0;
}

std::wstring Widen(std::string_view utf8) {
    if (utf8.empty()) return {};
    const int n =
        MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), out.data(), n);
    return out;
}

std::string Narrow(const wchar_t* utf16, std::size_t length) {
    if (!utf16 || length == 0) return {};
    const int n = WideCharToMultiByte(CP_UTF8, 0, utf16, static_cast<int>(length), nullptr, 0,
                                      nullptr, nullptr);
    std::string out(static_cast<std::size_t>(n), '\0');
    WideCharToMultiByte(CP_UTF8, 0, utf16, static_cast<int>(length), out.data(), n, nullptr,
                        nullptr);
    return out;
}

std::string Narrow(BSTR text) {
    return Narrow(text, text ? SysStringLen(text) : 0);
}

}  // namespace korvex::com
