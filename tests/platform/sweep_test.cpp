// Seeded random sweeps: the line rasteriser against the closed form of GDI's one-pixel rule under
// random clip regions, and region algebra against per-pixel boolean logic. A failure prints the
// seed; set KORVEX_SEED to replay it.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>

#include "platform/sim/region.hpp"
#include "support/shot.hpp"

namespace korvex::platform {
namespace {

std::uint32_t Seed() {
    if (const char* env = std::getenv("KORVEX_SEED"))
        return static_cast<std::uint32_t>(std::strtoul(env, nullptr, 10));
    return 20240611u;
}

// Pixel i of the line: the major coordinate steps by one, the minor one is the smallest integer
// m with m >= m1 + i*dm/n - 1/2, found here by search in exact integers.
POINT ClosedForm(POINT a, POINT b, std::int64_t i) {
    const std::int64_t dx = b.x - a.x, dy = b.y - a.y;
    const std::int64_t n = std::max(std::llabs(dx), std::llabs(dy));
    const bool xMajor = std::llabs(dx) > std::llabs(dy);
    const std::int64_t m1 = xMajor ? a.y : a.x, dm = xMajor ? dy : dx;
    const std::int64_t target = 2 * i * dm - n;  // want 2n(m - m1) >= target
    std::int64_t m = m1 + static_cast<std::int64_t>(std::floor(static_cast<double>(target) /
                                                               (2.0 * static_cast<double>(n))));
    while (2 * n * (m - m1) < target) ++m;
    while (2 * n * (m - 1 - m1) >= target) --m;
    const std::int64_t major = (xMajor ? a.x : a.y) + ((xMajor ? dx : dy) > 0 ? i : -i);
    return xMajor ? POINT{static_cast<std::int32_t>(major), static_cast<std::int32_t>(m)}
                  : POINT{static_cast<std::int32_t>(m), static_cast<std::int32_t>(major)};
}

TEST(LineSweep, RandomLinesMatchTheClosedFormUnderRandomClips) {
    const std::uint32_t seed = Seed();
    std::mt19937 rng(seed);
    auto coord = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    constexpr std::int32_t kSize = 40;
    test::Canvas c(kSize, kSize);
    // R2_NOT turns a pixel hit once to ~sentinel and one hit twice back: double hits show too.
    c.gdi.SetROP2(c.dc, R2_NOT);
    int failures = 0;
    for (int iteration = 0; iteration < 3000 && failures < 5; ++iteration) {
        const POINT a{coord(-12, kSize + 12), coord(-12, kSize + 12)};
        const POINT b = iteration % 3 == 0 ? POINT{a.x + coord(-3, 3), a.y + coord(-40, 40)}
                                           : POINT{coord(-12, kSize + 12), coord(-12, kSize + 12)};
        HRGN clip{};
        if (iteration % 2 == 1) {
            clip =
                c.gdi.CreateEllipticRgn(coord(-5, 20), coord(-5, 20), coord(15, 45), coord(15, 45));
            const HRGN extra =
                c.gdi.CreateRectRgn(coord(0, 30), coord(0, 30), coord(0, 40), coord(0, 40));
            c.gdi.CombineRgn(clip, clip, extra, iteration % 4 == 1 ? RGN_OR : RGN_XOR);
            c.gdi.DeleteObject(extra);
        }
        c.gdi.SelectClipRgn(c.dc, clip);
        c.Fill(test::kSentinelPixel);
        c.gdi.MoveToEx(c.dc, a.x, a.y, nullptr);
        c.gdi.LineTo(c.dc, b.x, b.y);

        std::vector<bool> want(kSize * kSize, false);
        const std::int64_t n = std::max(std::abs(b.x - a.x), std::abs(b.y - a.y));
        for (std::int64_t i = 0; i < n; ++i) {
            const POINT p = ClosedForm(a, b, i);
            if (p.x < 0 || p.y < 0 || p.x >= kSize || p.y >= kSize) continue;
            if (clip && !c.gdi.PtInRegion(clip, p.x, p.y)) continue;
            want[static_cast<std::size_t>(p.y * kSize + p.x)] = true;
        }
        for (std::int32_t y = 0; y < kSize; ++y)
            for (std::int32_t x = 0; x < kSize; ++x) {
                const bool got = c.Raw(x, y) != test::kSentinelPixel;
                if (got == want[static_cast<std::size_t>(y * kSize + x)]) continue;
                ADD_FAILURE() << "seed " << seed << " iteration " << iteration << ": line (" << a.x
                              << "," << a.y << ")->(" << b.x << "," << b.y << ")"
                              << (clip ? " clipped" : "") << ", pixel (" << x << "," << y << ") "
                              << (got ? "drawn" : "missing");
                ++failures;
                x = kSize;
                y = kSize;
            }
        if (clip) c.gdi.DeleteObject(clip);
    }
}

TEST(RegionSweep, CombineAgreesWithPerPixelLogicAndKeepsTheBanding) {
    using sim::Region;
    const std::uint32_t seed = Seed();
    std::mt19937 rng(seed);
    auto coord = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    auto randomRegion = [&] {
        Region r;
        const int parts = coord(0, 4);
        for (int k = 0; k < parts; ++k) {
            Region part;
            switch (coord(0, 2)) {
                case 0:
                    part = Region::FromRect(
                        {coord(0, 20), coord(0, 20), coord(10, 32), coord(10, 32)});
                    break;
                case 1:
                    part = Region::FromRoundRect(coord(0, 15), coord(0, 15), coord(8, 32),
                                                 coord(8, 32), coord(0, 12), coord(0, 12));
                    break;
                default: {
                    std::vector<POINT> pts(static_cast<std::size_t>(coord(3, 6)));
                    for (POINT& p : pts) p = {coord(0, 32), coord(0, 32)};
                    part = Region::FromPolygon(pts, coord(0, 1) ? ALTERNATE : WINDING);
                }
            }
            r = Region::Combine(r, part, coord(0, 1) ? RGN_OR : RGN_XOR);
        }
        return r;
    };
    for (int iteration = 0; iteration < 300; ++iteration) {
        const Region a = randomRegion(), b = randomRegion();
        for (int mode : {RGN_AND, RGN_OR, RGN_XOR, RGN_DIFF}) {
            const Region c = Region::Combine(a, b, mode);
            ASSERT_TRUE(c.IsValid())
                << "seed " << seed << " iteration " << iteration << " mode " << mode;
            for (std::int32_t y = -1; y < 34; ++y)
                for (std::int32_t x = -1; x < 34; ++x) {
                    const bool ia = a.Contains(x, y), ib = b.Contains(x, y);
                    const bool want = mode == RGN_AND   ? (ia && ib)
                                      : mode == RGN_OR  ? (ia || ib)
                                      : mode == RGN_XOR ? (ia != ib)
                                                        : (ia && !ib);
                    ASSERT_EQ(c.Contains(x, y), want)
                        << "seed " << seed << " iteration " << iteration << " mode " << mode
                        << " at " << x << "," << y;
                }
        }
    }
}

}  // namespace
}  // namespace korvex::platform
