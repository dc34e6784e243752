#pragma once
// The library's own resources (sounds, cursors, icons, pictures), embedded at build time from
// the resources/ folder and named by their path there ("sounds/101.wav").

#include <cstdint>
#include <span>
#include <string_view>

namespace korvex::resources {

struct Entry {
    std::string_view path;
    std::span<const std::uint8_t> bytes;
};

// Every embedded resource, sorted by path.
std::span<const Entry> All();

// The bytes of one resource; empty when there is none of that path.
std::span<const std::uint8_t> Find(std::string_view path);

}  // namespace korvex::resources
