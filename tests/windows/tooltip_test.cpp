// Tooltips: when the platform shows a window's tooltip text, where, for how long, what hides it,
// and how it looks on the composed screen (and that one window's own picture leaves it out).

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "recorder.hpp"

namespace korvex::test {
namespace {

class ToolTips : public ::testing::Test {
  protected:
    ToolTips() {
        wa = Shown(win, {}, {0, 0, 100, 100}, &a);
        wb = Shown(win, {}, {100, 0, 200, 100}, &b);
        win.SetToolTip(wa, "Alpha");
        win.SetToolTip(wb, "Beta");
    }
    // The tip on the screen now ("" for none) after `ms` more of virtual time.
    std::string After(std::int64_t ms) {
        input.Advance(ms);
        return input.ToolTip().text;
    }

    sim::SimPlatform platform{{300, 200}};
    sim::SimWindows& win = platform.windows();
    Driver& input = platform.driver();
    std::vector<std::string> log;
    Recorder a{"A", log}, b{"B", log}, c{"C", log};
    HWND wa, wb;
};

// The step table of the tooltip, walked on the virtual clock.
TEST_F(ToolTips, ShowAfterRestingHideAfterTheTimeoutOrAPress) {
    input.MouseMove({10, 10});
    EXPECT_EQ(After(499), "");
    EXPECT_EQ(After(1), "Alpha");
    // Moving while it shows keeps it and restarts the time it stays.
    EXPECT_EQ(After(4000), "Alpha");
    input.MouseMove({12, 10});
    EXPECT_EQ(After(4999), "Alpha");
    EXPECT_EQ(After(1), "");
    // Gone for good over this window: resting again shows nothing until another window's.
    input.MouseMove({14, 10});
    EXPECT_EQ(After(1000), "");

    // Onto B from no tip: the full delay; a move before it ends starts it again.
    input.MouseMove({110, 10});
    EXPECT_EQ(After(300), "");
    input.MouseMove({111, 10});
    EXPECT_EQ(After(300), "");
    EXPECT_EQ(After(200), "Beta");
    // From B's shown tip onto A: A's follows after the short delay.
    input.MouseMove({50, 10});
    EXPECT_EQ(input.ToolTip().text, "");
    EXPECT_EQ(After(99), "");
    EXPECT_EQ(After(1), "Alpha");

    // A press hides it; it stays away while the pointer stays.
    input.MouseDown(kButtonLeft, 0);
    EXPECT_EQ(input.ToolTip().text, "");
    input.MouseUp(kButtonLeft, 0);
    input.MouseMove({51, 10});
    EXPECT_EQ(After(1000), "");

    // Off every window: nothing shows, and nothing is left running.
    input.MouseMove({250, 150});
    EXPECT_EQ(After(1000), "");
    EXPECT_EQ(input.NextDue(), -1);
}

TEST_F(ToolTips, TheTextAndTheWindowDecide) {
    input.MouseMove({10, 10});
    EXPECT_EQ(After(600), "Alpha");
    win.SetToolTip(wa, "Anders");  // changed in place
    EXPECT_EQ(input.ToolTip().text, "Anders");
    EXPECT_EQ(win.GetToolTip(wa), "Anders");
    win.SetToolTip(wa, "");  // no tooltip any more
    EXPECT_EQ(input.ToolTip().text, "");
    win.SetToolTip(wa, "Alpha");
    input.MouseMove({11, 10});
    EXPECT_EQ(After(500), "Alpha");

    // Hiding, disabling or destroying the window takes its tip with it.
    for (int how = 0; how < 3; ++how) {
        SCOPED_TRACE(how);
        const HWND wc = Shown(win, {}, {0, 120, 100, 200}, &c);
        win.SetToolTip(wc, "Gamma");
        input.MouseMove({10, 130 + how});
        EXPECT_EQ(After(500), "Gamma");
        if (how == 0)
            win.ShowWindow(wc, false);
        else if (how == 1)
            win.EnableWindow(wc, false);
        else
            win.DestroyWindow(wc);
        EXPECT_EQ(input.ToolTip().text, "");
        EXPECT_EQ(input.NextDue(), -1);
        win.DestroyWindow(wc);
    }
    // A disabled window gets no input, so it shows no tip.
    win.EnableWindow(wb, false);
    input.MouseMove({150, 50});
    EXPECT_EQ(After(1000), "");
}

// 20 pixels below the pointer, its left edge at the pointer; moved left at the screen's right
// edge and above the pointer where there is no room below.
TEST_F(ToolTips, PlacedBelowThePointerAndKeptOnTheScreen) {
    const struct {
        POINT pointer;
        bool right, above;
    } rows[] = {{{10, 10}, false, false}, {{190, 20}, true, false}, {{20, 185}, false, true}};
    const HWND wide = Shown(win, {}, {0, 0, 300, 200}, &c);
    for (const auto& row : rows) {
        // A new tool each time, so the tip is laid out afresh where the pointer rests.
        win.SetToolTip(wide, "");
        win.SetToolTip(wide, "Eine etwas längere Quick-Info");
        input.MouseMove(row.pointer);
        ASSERT_EQ(After(500), "Eine etwas längere Quick-Info");
        const RECT r = input.ToolTip().screen;
        SCOPED_TRACE(std::to_string(r.left) + "," + std::to_string(r.top));
        EXPECT_GT(r.Width(), 100);
        EXPECT_EQ(r.Height(), 19) << "Tahoma 8 pt in a frame with 2 pixels of room";
        EXPECT_EQ(r.left, row.right ? 300 - r.Width() : row.pointer.x);
        EXPECT_EQ(r.top, row.above ? row.pointer.y - r.Height() : row.pointer.y + 20);
    }
}

// The classic look on the screen: frame, info background, info text; not in a window's own
// picture, which is the window alone.
TEST_F(ToolTips, DrawnOnTheScreenOnly) {
    input.MouseMove({10, 10});
    ASSERT_EQ(After(500), "Alpha");
    const RECT r = input.ToolTip().screen;
    const std::vector<std::uint32_t> screen = input.ComposeScreen();
    const auto at = [&](std::int32_t x, std::int32_t y) {
        return screen[static_cast<std::size_t>(y) * 300 + static_cast<std::size_t>(x)];
    };
    const auto sys = [&](int index) { return ToPixel(platform.gdi().GetSysColor(index)); };
    EXPECT_EQ(at(r.left, r.top), sys(COLOR_WINDOWFRAME));
    EXPECT_EQ(at(r.right - 1, r.bottom - 1), sys(COLOR_WINDOWFRAME));
    EXPECT_EQ(at(r.left + 1, r.top + 1), sys(COLOR_INFOBK));
    int ink = 0, back = 0;
    for (std::int32_t y = r.top + 1; y < r.bottom - 1; ++y)
        for (std::int32_t x = r.left + 1; x < r.right - 1; ++x) {
            ink += at(x, y) == sys(COLOR_INFOTEXT);
            back += at(x, y) == sys(COLOR_INFOBK);
        }
    EXPECT_GT(ink, 20) << "the text";
    EXPECT_EQ(ink + back, (r.Width() - 2) * (r.Height() - 2)) << "nothing else inside";

    const std::vector<std::uint32_t> alone = input.ComposeWindow(wa);
    EXPECT_EQ(std::count(alone.begin(), alone.end(), sys(COLOR_INFOBK)), 0);
}

}  // namespace
}  // namespace korvex::test
