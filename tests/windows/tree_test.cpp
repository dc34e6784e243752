// The window tree: z-order rules of SetWindowPos with the topmost band and owned windows,
// geometry through parents, visibility and destruction; two platforms that never meet.

#include <gtest/gtest.h>

#include <vector>

#include "recorder.hpp"

namespace korvex::test {
namespace {

using Order = std::vector<HWND>;

class WindowTree : public ::testing::Test {
  protected:
    sim::SimPlatform platform{{640, 480}, 120};
    sim::SimWindows& win = platform.windows();
};

TEST_F(WindowTree, ZOrderBandsAndSetWindowPos) {
    const unsigned keep = SWP_NOMOVE | SWP_NOSIZE;
    const HWND a = win.CreateWindow({}, {}, {}, nullptr);
    const HWND t = win.CreateWindow({}, {}, {.topmost = true}, nullptr);
    const HWND b = win.CreateWindow({}, {}, {}, nullptr);  // new: top of the normal band
    EXPECT_EQ(win.ZOrder(win.GetDesktopWindow()), (Order{t, b, a}));
    const struct {
        HWND window, after;
        Order expected;
    } steps[] = {
        {a, HWND_TOP, {t, a, b}},  // HWND_TOP stays below the topmost band
        {b, HWND_TOPMOST, {b, t, a}},
        {b, HWND_NOTOPMOST, {t, b, a}},
        {a, t, {t, a, b}},  // below a topmost window, still in its own band
        {t, HWND_BOTTOM, {a, b, t}},
        {t, HWND_TOP, {t, a, b}},  // t left the topmost band at the bottom
    };
    for (const auto& step : steps) {
        win.SetWindowPos(step.window, step.after, 0, 0, 0, 0, keep);
        EXPECT_EQ(win.ZOrder({}), step.expected) << &step - steps;
    }
    // A normal window put below a topmost one never rises into the topmost band.
    const HWND t2 = win.CreateWindow({}, {}, {.topmost = true}, nullptr);
    win.SetWindowPos(a, HWND_TOPMOST, 0, 0, 0, 0, keep);
    win.SetWindowPos(b, a, 0, 0, 0, 0, keep);
    EXPECT_EQ(win.ZOrder({}), (Order{a, t2, b, t}));

    // Children have their own list; topmost means nothing to them.
    const HWND c1 = win.CreateWindow(a, {}, {.child = true}, nullptr);
    const HWND c2 = win.CreateWindow(a, {}, {.child = true, .topmost = true}, nullptr);
    win.SetWindowPos(c2, c1, 0, 0, 0, 0, keep);
    EXPECT_EQ(win.ZOrder(a), (Order{c1, c2}));
}

// An owned window (a modal form) stays above its owner when the owner comes to the top, lives
// in screen coordinates, keeps working while the owner is disabled, and dies with it.
TEST_F(WindowTree, OwnedWindowsFollowTheirOwner) {
    std::vector<std::string> log;
    Recorder dialogHandler("dialog", log);
    const HWND owner = win.CreateWindow({}, {0, 0, 300, 200}, {}, nullptr);
    const HWND button = win.CreateWindow(owner, {10, 10, 50, 30}, {.child = true}, nullptr);
    const HWND dialog = win.CreateWindow(button, {100, 50, 200, 150}, {}, &dialogHandler);
    const HWND other = win.CreateWindow({}, {}, {}, nullptr);
    EXPECT_EQ(win.GetParent(dialog), owner);  // the top-level window stands for the child

    win.BringWindowToTop(owner);
    EXPECT_EQ(win.ZOrder({}), (Order{dialog, owner, other}));
    win.ShowWindow(owner, true);
    win.ShowWindow(dialog, true);
    win.EnableWindow(owner, false);
    EXPECT_EQ(win.SetFocus(dialog), HWND{});
    platform.driver().MouseMove({150, 100});
    platform.driver().MouseMove({20, 20});  // the disabled owner: dropped
    EXPECT_EQ(log, (std::vector<std::string>{"dialog focus+", "dialog move 0 (50,50)"}));

    EXPECT_TRUE(win.DestroyWindow(owner));
    EXPECT_FALSE(win.IsWindow(button));
    EXPECT_FALSE(win.IsWindow(dialog));
    EXPECT_EQ(win.GetFocus(), HWND{});
    EXPECT_EQ(win.ZOrder({}), (Order{other}));
    // Handles are not reused, so a stale one never names a new window.
    EXPECT_NE(win.CreateWindow({}, {}, {}, nullptr), dialog);
    EXPECT_FALSE(win.DestroyWindow(win.GetDesktopWindow()));
}

TEST_F(WindowTree, GeometryVisibilityAndRegionOwnership) {
    EXPECT_EQ(TwipsPerPixelX(platform), 12);
    RECT r;
    const HWND top = win.CreateWindow({}, {100, 50, 300, 250}, {}, nullptr);
    const HWND child = win.CreateWindow(top, {10, 20, 60, 40}, {.child = true}, nullptr);
    const HWND grandchild = win.CreateWindow(child, {-5, 5, 5, 10}, {.child = true}, nullptr);
    EXPECT_EQ(win.CreateWindow({}, {}, {.child = true}, nullptr), HWND{})
        << "a child needs a parent";
    ASSERT_TRUE(win.GetWindowRect(grandchild, &r));
    EXPECT_EQ(r, (RECT{105, 75, 115, 80}));
    EXPECT_EQ(win.ScreenToClient(child, {100, 60}), (POINT{-10, -10}));

    // SetWindowPos moves, sizes and shows as its flags say; children move with their parent;
    // visible means shown along the whole chain of parents.
    win.ShowWindow(child, true);
    win.ShowWindow(grandchild, true);
    win.SetWindowPos(top, HWND_TOP, 0, 5, 80, 90, SWP_SHOWWINDOW);
    ASSERT_TRUE(win.GetWindowRect(child, &r));
    EXPECT_EQ(r, (RECT{10, 25, 60, 45}));
    EXPECT_TRUE(win.IsWindowVisible(grandchild));
    win.SetWindowPos(top, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_HIDEWINDOW);
    ASSERT_TRUE(win.GetWindowRect(top, &r));
    EXPECT_EQ(r, (RECT{0, 5, 80, 95}));
    EXPECT_FALSE(win.IsWindowVisible(grandchild));
    EXPECT_FALSE(win.ShowWindow(top, true));  // returns the previous state: hidden

    // The window owns its region: a replaced region is deleted, the last one goes with it.
    sim::SimGdi& gdi = platform.gdi();
    const HRGN first = gdi.CreateRectRgn(0, 0, 10, 10);
    const HRGN second = gdi.CreateRectRgn(0, 0, 20, 20);
    ASSERT_TRUE(win.SetWindowRgn(child, first));
    ASSERT_TRUE(win.SetWindowRgn(child, second));
    EXPECT_EQ(gdi.GetRgnBox(first, &r), RGN_ERROR);
    EXPECT_NE(gdi.GetRgnBox(second, &r), RGN_ERROR);
    win.DestroyWindow(top);
    EXPECT_EQ(gdi.GetRgnBox(second, &r), RGN_ERROR);
}

}  // namespace
}  // namespace korvex::test
