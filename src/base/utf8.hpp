#pragma once
// UTF-8, the one decoder every layer uses: strings are UTF-8 throughout.

#include <cstddef>
#include <string_view>

namespace korvex {

// Decodes one code point and advances `pos`; malformed input yields U+FFFD and skips one byte,
// so every byte is consumed and decoding never stalls.
char32_t NextCodePoint(std::string_view s, std::size_t& pos);

// Upper case as the host's UCase makes it for the first 256 code points (a-z and the Latin-1
// letters à to þ except ÷); other code points are returned as they are.
constexpr char32_t UpperCaseLatin1(char32_t c) {
    if ((c >= 'a' && c <= 'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7)) return c - 32;
    return c;
}

}  // namespace korvex
