#pragma once
// A small bitmap selected into a SimGdi DC and prefilled with a sentinel, so every pixel a call
// touches, or wrongly leaves alone, shows. Map() prints it as rows of characters through a legend
// and names the first differing pixel when compared with the expected rows.

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform::testing {

inline constexpr std::uint32_t kSentinelPixel = 0xCCCCCCCCu;  // Wine's test fill

class SimCanvas {
public:
    SimCanvas(std::int32_t width, std::int32_t height) {
        dc = gdi.CreateCompatibleDC(HDC{});
        bitmap = gdi.CreateDIBSection32(width, height);
        gdi.SelectObject(dc, bitmap);
        view = gdi.BitmapPixels(bitmap);
        Fill(kSentinelPixel);
    }

    void Fill(std::uint32_t pixel) {
        for (std::int32_t i = 0; i < view.width * view.height; ++i) view.bits[i] = pixel;
    }
    [[nodiscard]] std::uint32_t Raw(std::int32_t x, std::int32_t y) const { return view.bits[y * view.width + x]; }
    [[nodiscard]] COLORREF At(std::int32_t x, std::int32_t y) const {
        const std::uint32_t p = Raw(x, y);
        return RGB(static_cast<std::uint8_t>(p >> 16), static_cast<std::uint8_t>(p >> 8), static_cast<std::uint8_t>(p));
    }

    // One string per row: '.' for the sentinel, the legend's character for a known colour, '?'.
    [[nodiscard]] std::vector<std::string> Map(const std::map<COLORREF, char>& legend) const {
        std::vector<std::string> rows;
        for (std::int32_t y = 0; y < view.height; ++y) {
            std::string row;
            for (std::int32_t x = 0; x < view.width; ++x) {
                if (Raw(x, y) == kSentinelPixel) {
                    row += '.';
                    continue;
                }
                const auto it = legend.find(At(x, y));
                row += it != legend.end() ? it->second : '?';
            }
            rows.push_back(row);
        }
        return rows;
    }

    sim::SimGdi gdi;
    HDC dc;
    HBITMAP bitmap;
    PixelView view;
};

// Compares a map with expected rows and reports the first differing pixel plus both pictures.
inline ::testing::AssertionResult SameRows(const std::vector<std::string>& got,
                                           const std::vector<std::string>& want) {
    auto picture = [](const std::vector<std::string>& rows) {
        std::string s;
        for (const auto& r : rows) s += "  " + r + "\n";
        return s;
    };
    for (std::size_t y = 0; y < std::max(got.size(), want.size()); ++y) {
        const std::string g = y < got.size() ? got[y] : "", w = y < want.size() ? want[y] : "";
        for (std::size_t x = 0; x < std::max(g.size(), w.size()); ++x) {
            const char gc = x < g.size() ? g[x] : ' ', wc = x < w.size() ? w[x] : ' ';
            if (gc != wc) {
                std::ostringstream out;
                out << "first difference at (" << x << "," << y << "): got '" << gc << "', want '" << wc
                    << "'\ngot:\n" << picture(got) << "want:\n" << picture(want);
                return ::testing::AssertionFailure() << out.str();
            }
        }
    }
    return ::testing::AssertionSuccess();
}

}  // namespace korvex::platform::testing
