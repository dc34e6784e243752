// Screen composition: the desktop colour, windows bottom to top, children clipped by their
// parent, window regions cutting holes that show what lies below. Every pixel is checked
// against a predicate of the scene's geometry.

#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "recorder.hpp"

namespace korvex::test {
namespace {

using namespace platform;

constexpr std::uint32_t ToPixel(COLORREF c) {
    return (std::uint32_t{GetRValue(c)} << 16) | (std::uint32_t{GetGValue(c)} << 8) | GetBValue(c);
}
constexpr COLORREF kRed = RGB(255, 0, 0), kBlue = RGB(0, 0, 255), kGreen = RGB(0, 255, 0);

bool Inside(const RECT& r, int x, int y) { return x >= r.left && x < r.right && y >= r.top && y < r.bottom; }

// Compares a composed image with expected(x, y), reporting the first difference.
void ExpectPixels(const std::vector<std::uint32_t>& image, SIZE size,
                  const std::function<std::uint32_t(int, int)>& expected) {
    ASSERT_EQ(image.size(), static_cast<std::size_t>(size.cx) * static_cast<std::size_t>(size.cy));
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x) {
            const std::uint32_t got = image[static_cast<std::size_t>(y * size.cx + x)];
            if (got != expected(x, y)) {
                ADD_FAILURE() << "first difference at (" << x << "," << y << "): got " << std::hex << got
                              << ", expected " << expected(x, y);
                return;
            }
        }
}

class Compose : public ::testing::Test {
protected:
    HWND Show(HWND parent, const RECT& r, WindowHandler* h, bool child = false) {
        const HWND w = win.CreateWindow(parent, r, {.child = child}, h);
        win.ShowWindow(w, true);
        return w;
    }
    std::uint32_t Desktop() { return ToPixel(gdi.GetSysColor(COLOR_BACKGROUND)); }

    static constexpr SIZE kScreen{160, 120};
    sim::SimPlatform platform{kScreen};
    sim::SimGdi& gdi = platform.gdi();
    sim::SimWindows& win = platform.windows();
    Solid red{gdi, kRed}, blue{gdi, kBlue}, green{gdi, kGreen};
};

TEST_F(Compose, DesktopWindowsInZOrderAndChildClipping) {
    ExpectPixels(win.ComposeScreen(), kScreen, [&](int, int) { return Desktop(); });
    const std::array<int, 1> index{COLOR_BACKGROUND};
    const std::array<COLORREF, 1> color{RGB(1, 2, 3)};
    gdi.SetSysColors(index, color);
    ExpectPixels(win.ComposeScreen(), kScreen, [](int, int) { return 0x010203u; });

    const RECT ra{10, 10, 60, 60}, rb{40, 40, 90, 90};
    const HWND wa = Show({}, ra, &red);
    Show({}, rb, &blue);
    Solid hiddenGreen{gdi, kGreen};
    win.CreateWindow({}, {0, 0, 160, 120}, {}, &hiddenGreen);  // never shown: never painted
    auto scene = [&](bool aOnTop) {
        return [&, aOnTop](int x, int y) {
            if (aOnTop && Inside(ra, x, y)) return ToPixel(kRed);
            if (Inside(rb, x, y)) return ToPixel(kBlue);
            if (Inside(ra, x, y)) return ToPixel(kRed);
            return Desktop();
        };
    };
    ExpectPixels(win.ComposeScreen(), kScreen, scene(false));
    EXPECT_EQ(hiddenGreen.paints, 0);

    win.BringWindowToTop(wa);
    ExpectPixels(win.ComposeScreen(), kScreen, scene(true));

    // A child reaching out of its parent shows only inside the parent.
    Show(wa, {40, -5, 80, 30}, &green, true);  // screen (50,5)-(90,40)
    ExpectPixels(win.ComposeScreen(), kScreen, [&](int x, int y) {
        if (Inside({50, 10, 60, 40}, x, y)) return ToPixel(kGreen);
        return scene(true)(x, y);
    });
    EXPECT_EQ(green.lastClient, (RECT{0, 0, 40, 35}));  // the child paints its own client area
}

// A round window over another: its corners show the window below (and the desktop beyond it),
// and painting and hit-testing agree on every pixel of the round shape.
TEST_F(Compose, RoundRegionShowsWhatLiesBelow) {
    const RECT rb{20, 20, 100, 80};
    Show({}, {0, 0, 40, 120}, &red);  // under the left half of the round window
    const HWND wb = Show({}, rb, &blue);
    win.SetWindowRgn(wb, gdi.CreateEllipticRgn(0, 0, 80, 60));
    const std::vector<std::uint32_t> image = win.ComposeScreen();

    auto at = [&](int x, int y) { return image[static_cast<std::size_t>(y * kScreen.cx + x)]; };
    EXPECT_EQ(at(20, 20), ToPixel(kRed));    // top-left corner: the red window below
    EXPECT_EQ(at(99, 79), Desktop());        // bottom-right corner: the desktop
    EXPECT_EQ(at(99, 20), Desktop());
    EXPECT_EQ(at(60, 50), ToPixel(kBlue));   // centre
    int blueInside = 0;
    for (int y = rb.top; y < rb.bottom; ++y)
        for (int x = rb.left; x < rb.right; ++x) {
            const bool painted = at(x, y) == ToPixel(kBlue);
            blueInside += painted;
            ASSERT_EQ(painted, win.WindowFromPoint({x, y}) == wb) << "at (" << x << "," << y << ")";
        }
    // The shape is round, not the box and not empty.
    EXPECT_GT(blueInside, 80 * 60 * 3 / 4);
    EXPECT_LT(blueInside, 80 * 60);
}

// One window alone, window-sized: its children on top, its region's outside in the desktop
// colour, drawn in window coordinates whether or not the window is shown.
TEST_F(Compose, ComposeWindowAloneWithChildren) {
    struct Marker : WindowHandler {
        explicit Marker(Gdi& g) : gdi(g) {}
        void OnPaint(HDC dc, const RECT& client) override {
            gdi.FillRect(dc, client, gdi.GetStockObject(WHITE_BRUSH));
            gdi.SetPixel(dc, 0, 0, RGB(0, 0, 0));
            gdi.SetPixel(dc, client.right - 1, client.bottom - 1, RGB(0, 0, 0));
        }
        Gdi& gdi;
    } marker{gdi};
    const HWND w = win.CreateWindow({}, {30, 20, 70, 50}, {}, &marker);  // 40 x 30, hidden
    Show(w, {10, 10, 20, 20}, &green, true);
    Solid covering{gdi, kBlue};
    Show({}, {0, 0, 160, 120}, &covering);  // other windows play no part

    const SIZE size{40, 30};
    ExpectPixels(win.ComposeWindow(w), size, [](int x, int y) {
        if ((x == 0 && y == 0) || (x == 39 && y == 29)) return 0u;
        if (Inside({10, 10, 20, 20}, x, y)) return ToPixel(kGreen);
        return 0xFFFFFFu;
    });

    win.SetWindowRgn(w, gdi.CreateRectRgn(5, 5, 40, 30));
    const std::vector<std::uint32_t> cut = win.ComposeWindow(w);
    ASSERT_EQ(cut.size(), 40u * 30u);
    EXPECT_EQ(cut[0], Desktop());
    EXPECT_EQ(cut[5 * 40 + 5], 0xFFFFFFu);
    EXPECT_TRUE(win.ComposeWindow(HWND{12345}).empty());
}

}  // namespace
}  // namespace korvex::test
