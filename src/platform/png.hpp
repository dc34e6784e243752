#pragma once
// PNG files and buffers for snapshots and for the host's picture objects. Pixels are written as
// opaque 8-bit RGB and read back as 0x00RRGGBB words, top-down, whatever the file's own format
// (palette, grey, 16-bit and alpha are converted; alpha is dropped, keeping the stored colours,
// as a 32-bit device bitmap ignores it). Every failure throws std::runtime_error with the
// libpng message.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/gdi.hpp"

namespace korvex::platform {

struct Image {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint32_t> pixels;  // 0x00RRGGBB, top-down, width * height words
};

void WritePng(const std::string& path, const PixelView& pixels);
Image ReadPng(const std::string& path);

std::vector<std::uint8_t> EncodePng(const PixelView& pixels);
Image DecodePng(std::span<const std::uint8_t> bytes);

}  // namespace korvex::platform
