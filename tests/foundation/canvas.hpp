#pragma once
// A small bitmap selected into a SimGdi DC, prefilled with a sentinel so that every pixel a
// painter touches, or wrongly leaves alone, shows; Picture() renders it as rows of characters.

#include <cstdint>
#include <map>
#include <string>

#include "platform/gdi.hpp"
#include "platform/sim/sim_gdi.hpp"

namespace korvex::testing {

inline constexpr platform::COLORREF kSentinel = platform::RGB(0xCC, 0xCC, 0xCC);

class Canvas {
public:
    Canvas(std::int32_t width, std::int32_t height) {
        dc = gdi.CreateCompatibleDC(platform::HDC{});
        bitmap_ = gdi.CreateDIBSection32(width, height);
        gdi.SelectObject(dc, bitmap_);
        view_ = gdi.BitmapPixels(bitmap_);
        for (std::int32_t i = 0; i < width * height; ++i) view_.bits[i] = ToPixel(kSentinel);
    }

    [[nodiscard]] platform::COLORREF At(std::int32_t x, std::int32_t y) const {
        const std::uint32_t p = view_.bits[y * view_.width + x];
        return platform::RGB(static_cast<std::uint8_t>(p >> 16), static_cast<std::uint8_t>(p >> 8),
                             static_cast<std::uint8_t>(p));
    }

    // One line per row, '.' for the sentinel, the legend's character for a known colour and '?'
    // for anything else.
    [[nodiscard]] std::string Picture(const std::map<platform::COLORREF, char>& legend) const {
        std::string out = "\n";
        for (std::int32_t y = 0; y < view_.height; ++y) {
            for (std::int32_t x = 0; x < view_.width; ++x) {
                const platform::COLORREF c = At(x, y);
                const auto it = legend.find(c);
                out += c == kSentinel ? '.' : it != legend.end() ? it->second : '?';
            }
            out += '\n';
        }
        return out;
    }

    static std::uint32_t ToPixel(platform::COLORREF c) {
        return (static_cast<std::uint32_t>(platform::GetRValue(c)) << 16) |
               (static_cast<std::uint32_t>(platform::GetGValue(c)) << 8) | platform::GetBValue(c);
    }

    platform::sim::SimGdi gdi;
    platform::HDC dc;

private:
    platform::HBITMAP bitmap_;
    platform::PixelView view_;
};

// Rows joined the way Picture() prints them.
inline std::string Rows(std::initializer_list<const char*> rows) {
    std::string out = "\n";
    for (const char* row : rows) (out += row) += '\n';
    return out;
}

}  // namespace korvex::testing
