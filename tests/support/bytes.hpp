#pragma once
// Little-endian fields for building and reading file images (icons, waves) in tests.

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

namespace korvex::test {

// Appends each field as `bytes` little-endian bytes.
inline void Put(std::vector<std::uint8_t>& b, std::initializer_list<std::uint32_t> fields,
                int bytes) {
    for (std::uint32_t v : fields)
        for (int i = 0; i < bytes; ++i) b.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
}
inline void PutTag(std::vector<std::uint8_t>& b, std::string_view tag) {
    b.insert(b.end(), tag.begin(), tag.end());
}
// The `bytes`-byte little-endian field at `at`.
inline std::uint32_t Le(std::span<const std::uint8_t> b, std::size_t at, int bytes = 4) {
    std::uint32_t v = 0;
    for (int i = bytes - 1; i >= 0; --i) v = (v << 8) | b[at + static_cast<std::size_t>(i)];
    return v;
}

}  // namespace korvex::test
