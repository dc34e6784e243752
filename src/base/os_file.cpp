#include "base/os_file.hpp"

#include <string>

#ifdef _WIN32
#include <windows.h>
#endif

namespace korvex::os {

#ifdef _WIN32

std::filesystem::path Utf8Path(std::string_view utf8) {
    if (utf8.empty()) return {};
    const int size = static_cast<int>(utf8.size());
    const int wide = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(wide), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, text.data(), wide);
    return std::filesystem::path(std::move(text));
}

std::error_code MoveReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return {};
    return {static_cast<int>(GetLastError()), std::system_category()};
}

#else

std::filesystem::path Utf8Path(std::string_view utf8) {
    return std::filesystem::path(utf8);
}

std::error_code MoveReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::error_code ec;
    std::filesystem::rename(from, to, ec);
    return ec;
}

#endif

}  // namespace korvex::os
