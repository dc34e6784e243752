#pragma once
// Text helpers shared by the host: names and keys match without regard to ASCII case, as the
// host matches them.

#include <string_view>

namespace korvex::host {

constexpr char AsciiLower(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c;
}

constexpr bool EqualsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (AsciiLower(a[i]) != AsciiLower(b[i])) return false;
    }
    return true;
}

}  // namespace korvex::host
