#pragma once
// The two file-system steps whose portable forms do not do what the library needs on every
// system: naming a file by a UTF-8 path (Windows reads a narrow path in the ANSI code page, so it
// is widened from UTF-8 there), and moving a finished file over the one it replaces in one step
// (Windows' rename refuses an existing target; MoveFileExW replaces it and returns only once the
// move is on disk).

#include <filesystem>
#include <string_view>
#include <system_error>

namespace korvex::os {

// The file-system path of a UTF-8 path text.
[[nodiscard]] std::filesystem::path Utf8Path(std::string_view utf8);

// Moves `from` to `to`, replacing a file already there. Empty on success.
[[nodiscard]] std::error_code MoveReplacing(const std::filesystem::path& from,
                                            const std::filesystem::path& to);

}  // namespace korvex::os
