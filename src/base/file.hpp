#pragma once
// Reading a file whole, and writing a file without ever losing the one it replaces: the bytes go to
// a temporary file beside it, which is flushed, closed and only then renamed over the old one. On
// any failure the temporary is removed and the old file stays as it was.

#include <string>
#include <string_view>

namespace korvex {

// Error 75 (path/file access) naming the file and the reason when the bytes cannot be written.
void WriteFileReplacing(const std::string& path, std::string_view bytes);

// A whole file's bytes. Error 53 (file not found) when there is none, 75 (path/file access) for
// a folder or a file that cannot be read, each naming the file and, for 75, the reason.
[[nodiscard]] std::string ReadFileText(const std::string& path);

}  // namespace korvex
