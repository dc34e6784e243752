#pragma once
// Drawing scripts: one device-context call per line, run against any platform::Gdi. The same
// runner is compiled for Linux (software device) and for Windows (real GDI), so two runs of one
// script can be compared pixel by pixel. It depends on gdi.hpp and the standard library only.
//
// Format: `#` starts a comment; numbers are decimal or 0x hex, or a constant name from gdi.hpp
// (PS_DOT, R2_XORPEN, BF_RECT|BF_MIDDLE, ...), `|` joins several; colours are COLORREF 0x00BBGGRR.
// The first call is `canvas W H [COLOR]`. Objects get names from the script (`CreatePen p 0 1
// 0xFF`) and are referred to by name; an object argument may also be a number, passed as a raw
// handle value (0, or COLOR_x + 1 for a system colour brush), or `none` for the zero handle.
// `CreateBitmap32 NAME W H` makes a 32-bit bitmap in a DC of its own, `FillPixels` writes raw
// 0xAARRGGBB words into it, and `AlphaBlend` takes it as its source.

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdi.hpp"

namespace korvex::platform {

// A malformed or unrunnable script; the message starts with "line N: ".
class GdiScriptError : public std::runtime_error {
  public:
    GdiScriptError(int line, const std::string& message);
    [[nodiscard]] int line() const { return line_; }

  private:
    int line_;
};

struct GdiScriptCall {
    int line = 0;
    int op = 0;                         // index into the runner's call table
    std::vector<std::int64_t> numbers;  // numeric arguments in order
    std::vector<std::string> words;     // object names and text in order
};

struct GdiScript {
    std::int32_t width = 0;
    std::int32_t height = 0;
    COLORREF background = RGB(255, 255, 255);
    std::vector<GdiScriptCall> calls;
};

// Checks every line (known call, argument count and kinds) before anything is drawn.
GdiScript ParseGdiScript(std::string_view text);

// Sets the classic colour scheme, draws the script into a fresh 32-bit DIB section selected into a
// memory DC and returns that bitmap's pixels; they stay valid while `gdi` lives.
PixelView RunGdiScript(Gdi& gdi, const GdiScript& script);

// "W H", then one line per row: W colours as BBGGRR hex (COLORREF order), single spaces between.
void WritePixelsHex(std::ostream& out, const PixelView& pixels);

// Reads and parses a script file. A file that cannot be read is the host's error 53 or 75; a
// malformed line a std::runtime_error starting "PATH: line N: ".
GdiScript LoadGdiScript(const std::string& path);

// Writes the hex form to a file, or to standard output when the path is "-".
void WritePixelsHexFile(const std::string& path, const PixelView& pixels);

// The command line both script runners share: SCRIPT [--png FILE] [--hex FILE].
struct GdiScriptArgs {
    std::string script;
    std::string png;
    std::string hex;
};
inline constexpr std::string_view kGdiScriptArgsUsage = "SCRIPT [--png FILE] [--hex FILE]";
// Returns nothing and sets `error` on a usage error.
std::optional<GdiScriptArgs> ParseGdiScriptArgs(std::span<const std::string_view> args,
                                                std::string& error);

}  // namespace korvex::platform
