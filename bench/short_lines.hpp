#pragma once
// The short-line workload, shared by the software rasteriser's benchmark and the Windows runner
// that times the same lines with a real GDI: 100 000 lines up to 32 pixels long at random
// places of a 1920 x 1080 canvas, from a fixed seed, so both engines draw exactly the same.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

namespace korvex::bench {

inline constexpr std::int32_t kCanvasWidth = 1920, kCanvasHeight = 1080;

struct ShortLine {
    std::int32_t x0, y0, x1, y1;
};

struct ShortLines {
    std::vector<ShortLine> lines;
    std::int64_t pixels = 0;  // painted per pass: the end point of a line is not painted
};

inline ShortLines MakeShortLines(std::size_t count = 100000) {
    ShortLines set;
    set.lines.reserve(count);
    std::mt19937 rng(1234);
    std::uniform_int_distribution<int> x(0, kCanvasWidth - 1), y(0, kCanvasHeight - 1), d(-32, 32);
    for (std::size_t i = 0; i < count; ++i) {
        ShortLine l{x(rng), y(rng), 0, 0};
        l.x1 = std::clamp(l.x0 + d(rng), 0, kCanvasWidth - 1);
        l.y1 = std::clamp(l.y0 + d(rng), 0, kCanvasHeight - 1);
        set.pixels += std::max(std::abs(l.x1 - l.x0), std::abs(l.y1 - l.y0));
        set.lines.push_back(l);
    }
    return set;
}

}  // namespace korvex::bench
