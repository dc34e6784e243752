// Screen composition: the desktop colour, windows bottom to top, children clipped by their
// parent, window regions cutting holes that show what lies below. Every pixel is checked
// against a predicate of the scene's geometry; hit-testing agrees with the painting.

#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "recorder.hpp"

namespace korvex::test {
namespace {

constexpr std::uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF, kWhite = 0xFFFFFF;

bool Inside(const RECT& r, int x, int y) {
    return x >= r.left && x < r.right && y >= r.top && y < r.bottom;
}

// Compares a composed image with expected(x, y), reporting the first difference.
void ExpectPixels(const std::vector<std::uint32_t>& image, SIZE size,
                  const std::function<std::uint32_t(int, int)>& expected) {
    ASSERT_EQ(image.size(), static_cast<std::size_t>(size.cx) * static_cast<std::size_t>(size.cy));
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x) {
            const std::uint32_t got = image[static_cast<std::size_t>(y * size.cx + x)];
            if (got != expected(x, y)) {
                ADD_FAILURE() << "first difference at (" << x << "," << y << "): got " << std::hex
                              << got << ", expected " << expected(x, y);
                return;
            }
        }
}

class Compose : public ::testing::Test {
  protected:
    std::uint32_t Desktop() { return ToPixel(gdi.GetSysColor(COLOR_BACKGROUND)); }

    static constexpr SIZE kScreen{160, 120};
    sim::SimPlatform platform{kScreen};
    sim::SimGdi& gdi = platform.gdi();
    sim::SimWindows& win = platform.windows();
    Solid red{gdi, RGB(255, 0, 0)}, blue{gdi, RGB(0, 0, 255)}, green{gdi, RGB(0, 255, 0)},
        white{gdi, RGB(255, 255, 255)};
};

TEST_F(Compose, DesktopWindowsInZOrderAndChildClipping) {
    const std::array<int, 1> index{COLOR_BACKGROUND};
    const std::array<COLORREF, 1> color{RGB(1, 2, 3)};
    gdi.SetSysColors(index, color);
    ExpectPixels(win.ComposeScreen(), kScreen, [](int, int) { return 0x010203u; });

    const RECT ra{10, 10, 60, 60}, rb{40, 40, 90, 90};
    const HWND wa = Shown(win, {}, ra, &red);
    Shown(win, {}, rb, &blue);
    win.CreateWindow({}, {0, 0, 160, 120}, {}, &green);  // never shown: not on the screen
    auto scene = [&](bool aOnTop) {
        return [&, aOnTop](int x, int y) {
            if (aOnTop && Inside(ra, x, y)) return kRed;
            if (Inside(rb, x, y)) return kBlue;
            return Inside(ra, x, y) ? kRed : Desktop();
        };
    };
    ExpectPixels(win.ComposeScreen(), kScreen, scene(false));

    win.BringWindowToTop(wa);
    ExpectPixels(win.ComposeScreen(), kScreen, scene(true));
    EXPECT_EQ(win.WindowFromPoint({45, 45}), wa);

    // A child reaching out of its parent shows only inside the parent.
    const HWND child = Shown(win, wa, {40, -5, 80, 30}, &white, {.child = true});  // (50,5)-(90,40)
    ExpectPixels(win.ComposeScreen(), kScreen, [&](int x, int y) {
        return Inside({50, 10, 60, 40}, x, y) ? kWhite : scene(true)(x, y);
    });
    EXPECT_EQ(win.WindowFromPoint({55, 20}), child);
    EXPECT_EQ(win.WindowFromPoint({65, 20}), win.GetDesktopWindow());
    win.ShowWindow(wa, false);  // and a hidden parent hides its child from hit-testing too
    EXPECT_EQ(win.WindowFromPoint({55, 20}), win.GetDesktopWindow());
}

// A round window over another: its corners show the window below (and the desktop beyond it),
// its region clips its child too, and painting and hit-testing agree on every pixel.
TEST_F(Compose, RoundRegionShowsWhatLiesBelow) {
    const RECT rb{20, 20, 100, 80};
    Shown(win, {}, {0, 0, 40, 120}, &red);  // under the left half of the round window
    const HWND wb = Shown(win, {}, rb, &blue);
    const HWND wc = Shown(win, wb, {0, 0, 30, 30}, &green, {.child = true});
    win.SetWindowRgn(wb, gdi.CreateEllipticRgn(0, 0, 80, 60));
    const std::vector<std::uint32_t> image = win.ComposeScreen();

    auto at = [&](int x, int y) { return image[static_cast<std::size_t>(y * kScreen.cx + x)]; };
    EXPECT_EQ(at(20, 20), kRed);  // top-left corner: the red window below
    EXPECT_EQ(at(99, 79), Desktop());
    int inside = 0;
    for (int y = rb.top; y < rb.bottom; ++y)
        for (int x = rb.left; x < rb.right; ++x) {
            const HWND hit = win.WindowFromPoint({x, y});
            inside += hit == wb || hit == wc;
            ASSERT_EQ(at(x, y) == kBlue, hit == wb) << "at (" << x << "," << y << ")";
            ASSERT_EQ(at(x, y) == kGreen, hit == wc) << "at (" << x << "," << y << ")";
        }
    // The shape is round, not the box and not empty.
    EXPECT_GT(inside, 80 * 60 * 3 / 4);
    EXPECT_LT(inside, 80 * 60);
    // Alone, the window shows the desktop colour outside its region, not the window below.
    const std::vector<std::uint32_t> alone = win.ComposeWindow(wb);
    EXPECT_EQ(alone.front(), Desktop());
    EXPECT_EQ(alone[30 * 80 + 40], kBlue);
    win.SetWindowRgn(wb, {});  // back to the plain rectangle
    EXPECT_EQ(win.WindowFromPoint({rb.right - 1, rb.bottom - 1}), wb);
}

}  // namespace
}  // namespace korvex::test
