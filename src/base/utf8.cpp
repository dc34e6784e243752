#include "base/utf8.hpp"

namespace korvex {

char32_t NextCodePoint(std::string_view s, std::size_t& pos) {
    constexpr char32_t kReplacement = 0xFFFD;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
    const unsigned char b0 = byte(pos);
    if (b0 < 0x80) {
        ++pos;
        return b0;
    }
    int extra = 0;
    char32_t cp = 0;
    char32_t minimum = 0;
    if ((b0 & 0xE0) == 0xC0) {
        extra = 1, cp = b0 & 0x1F, minimum = 0x80;
    } else if ((b0 & 0xF0) == 0xE0) {
        extra = 2, cp = b0 & 0x0F, minimum = 0x800;
    } else if ((b0 & 0xF8) == 0xF0) {
        extra = 3, cp = b0 & 0x07, minimum = 0x10000;
    } else {
        ++pos;
        return kReplacement;
    }
    if (pos + static_cast<std::size_t>(extra) >= s.size()) {
        ++pos;
        return kReplacement;
    }
    for (int k = 1; k <= extra; ++k) {
        const unsigned char b = byte(pos + static_cast<std::size_t>(k));
        if ((b & 0xC0) != 0x80) {
            ++pos;
            return kReplacement;
        }
        cp = (cp << 6) | (b & 0x3F);
    }
    if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        ++pos;
        return kReplacement;
    }
    pos += static_cast<std::size_t>(extra) + 1;
    return cp;
}

}  // namespace korvex
