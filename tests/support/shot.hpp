#pragma once
// Pixels under test: a Shot is a grid of 0x00RRGGBB words (a composed window, the screen, a
// bitmap) read through a legend into rows of characters; SameRows compares such rows and names
// the first differing pixel. A Canvas is a small sentinel-filled bitmap on its own drawing
// device, so every pixel a call touches, or wrongly leaves alone, shows as other than '.'.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "platform/sim/sim_gdi.hpp"

namespace korvex::test {

using Rows = std::vector<std::string>;
using Legend = std::map<platform::COLORREF, char>;

// 0x00RRGGBB of a COLORREF, as composed pixels are.
constexpr std::uint32_t ToPixel(platform::COLORREF c) {
    return (std::uint32_t{platform::GetRValue(c)} << 16) |
           (std::uint32_t{platform::GetGValue(c)} << 8) | platform::GetBValue(c);
}

struct Shot {
    std::vector<std::uint32_t> bits;
    int width = 0, height = 0;

    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return bits[static_cast<std::size_t>(y * width + x)];
    }
    [[nodiscard]] bool is(int x, int y, platform::COLORREF c) const {
        return (at(x, y) & 0xFFFFFFu) == ToPixel(c);
    }
    // The points of colour c inside r, row by row.
    [[nodiscard]] std::vector<platform::POINT> Find(platform::COLORREF c,
                                                    std::optional<platform::RECT> r = {}) const {
        const platform::RECT box = r.value_or(platform::RECT{0, 0, width, height});
        std::vector<platform::POINT> found;
        for (int y = box.top; y < box.bottom; ++y)
            for (int x = box.left; x < box.right; ++x)
                if (is(x, y, c)) found.push_back({x, y});
        return found;
    }
    [[nodiscard]] std::size_t Count(platform::COLORREF c,
                                    std::optional<platform::RECT> r = {}) const {
        return Find(c, r).size();
    }
    // One string per row of r: '.' for the raw word `blank` (a canvas sentinel), the legend's
    // character, '?' for anything else.
    [[nodiscard]] Rows Map(const Legend& legend, std::optional<platform::RECT> r = {},
                           std::optional<std::uint32_t> blank = {}) const {
        const platform::RECT box = r.value_or(platform::RECT{0, 0, width, height});
        Rows rows;
        for (int y = box.top; y < box.bottom; ++y) {
            std::string row;
            for (int x = box.left; x < box.right; ++x) {
                char ch = '?';
                if (blank && at(x, y) == *blank) {
                    ch = '.';
                } else {
                    for (const auto& [colour, c] : legend)
                        if (is(x, y, colour)) ch = c;
                }
                row += ch;
            }
            rows.push_back(row);
        }
        return rows;
    }
};

// Compares maps and reports the first differing pixel plus both pictures.
inline ::testing::AssertionResult SameRows(const Rows& got, const Rows& want) {
    auto picture = [](const Rows& rows) {
        std::string s;
        for (const auto& r : rows) s += "  " + r + "\n";
        return s;
    };
    for (std::size_t y = 0; y < std::max(got.size(), want.size()); ++y) {
        const std::string g = y < got.size() ? got[y] : "", w = y < want.size() ? want[y] : "";
        for (std::size_t x = 0; x < std::max(g.size(), w.size()); ++x) {
            const char gc = x < g.size() ? g[x] : ' ', wc = x < w.size() ? w[x] : ' ';
            if (gc == wc) continue;
            std::ostringstream out;
            out << "first difference at (" << x << "," << y << "): got '" << gc << "', want '" << wc
                << "'\ngot:\n"
                << picture(got) << "want:\n"
                << picture(want);
            return ::testing::AssertionFailure() << out.str();
        }
    }
    return ::testing::AssertionSuccess();
}

inline constexpr std::uint32_t kSentinelPixel = 0xCCCCCCCCu;  // Wine's test fill

class Canvas {
  public:
    Canvas(std::int32_t width, std::int32_t height) {
        dc = gdi.CreateCompatibleDC(platform::HDC{});
        bitmap = gdi.CreateDIBSection32(width, height);
        gdi.SelectObject(dc, bitmap);
        view = gdi.BitmapPixels(bitmap);
        Fill(kSentinelPixel);
    }
    void Fill(std::uint32_t pixel) { std::fill_n(view.bits, view.width * view.height, pixel); }
    [[nodiscard]] std::uint32_t Raw(std::int32_t x, std::int32_t y) const {
        return view.bits[y * view.width + x];
    }
    [[nodiscard]] platform::COLORREF At(std::int32_t x, std::int32_t y) const {
        const std::uint32_t p = Raw(x, y);
        return platform::RGB(static_cast<std::uint8_t>(p >> 16), static_cast<std::uint8_t>(p >> 8),
                             static_cast<std::uint8_t>(p));
    }
    [[nodiscard]] Shot Snap() const {
        return {{view.bits, view.bits + view.width * view.height}, view.width, view.height};
    }
    [[nodiscard]] Rows Map(const Legend& legend) const {
        return Snap().Map(legend, {}, kSentinelPixel);
    }

    platform::sim::SimGdi gdi;
    platform::HDC dc;
    platform::HBITMAP bitmap;
    platform::PixelView view;
};

}  // namespace korvex::test
