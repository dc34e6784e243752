// Input routing through the event loop's funnel: which window a move, press or key reaches,
// with what client coordinates and in what order; implicit capture, double clicks, focus.

#include <gtest/gtest.h>

#include <utility>

#include "recorder.hpp"

namespace korvex::test {
namespace {

using Log = std::vector<std::string>;

class Routing : public ::testing::Test {
  protected:
    HWND Top(const RECT& r, WindowHandler* h) { return Shown(win, {}, r, h); }
    HWND Child(HWND parent, const RECT& r, WindowHandler* h) {
        return Shown(win, parent, r, h, {.child = true});
    }
    Log TakeLog() { return std::exchange(log, {}); }

    sim::SimPlatform platform{{200, 150}};
    sim::SimWindows& win = platform.windows();
    Driver& input = platform.driver();
    Log log;
    Recorder a{"A", log}, b{"B", log}, c{"C", log};
};

// A press captures the pointer for its window: the drag that leaves it still arrives there,
// with client coordinates outside the window, and so does the release; then routing is normal.
TEST_F(Routing, ImplicitCaptureDuringDrag) {
    const HWND wa = Top({0, 0, 40, 40}, &a);
    const HWND wb = Top({50, 50, 100, 100}, &b);
    input.MouseMove({60, 60});
    input.MouseDown(kButtonLeft, kShiftMask);
    EXPECT_EQ(win.GetCapture(), wb);
    EXPECT_LT(win.GetAsyncKeyState(VK_LBUTTON), 0);
    input.MouseMove({10, 20});  // over A, but B holds the capture
    input.MouseUp(kButtonLeft, kShiftMask);
    EXPECT_EQ(win.GetCapture(), HWND{});
    EXPECT_EQ(win.GetAsyncKeyState(VK_LBUTTON), 0);
    input.MouseMove({10, 21});
    EXPECT_EQ(TakeLog(), (Log{"B move 0 (10,10)", "B down 1 (10,10)", "B move 1 (-40,-30)",
                              "B up 1 (-40,-30)", "A move 0 (10,21)"}));
    EXPECT_EQ(b.last.shift, kShiftMask);

    // With two buttons held the capture lasts until the last one is up.
    input.MouseMove({60, 60});
    input.MouseDown(kButtonLeft, 0);
    input.MouseDown(kButtonRight, 0);
    input.MouseUp(kButtonLeft, 0);
    EXPECT_EQ(win.GetCapture(), wb);
    input.MouseUp(kButtonRight, 0);
    EXPECT_EQ(win.GetCapture(), HWND{});
    TakeLog();

    // An explicit capture survives the release; taking it away tells the loser.
    win.SetCapture(wa);
    Click(input, {70, 70});
    EXPECT_EQ(win.GetCapture(), wa);
    win.SetCapture(wb);
    EXPECT_EQ(TakeLog(),
              (Log{"A move 0 (70,70)", "A down 1 (70,70)", "A up 1 (70,70)", "A capture-lost"}));
    EXPECT_TRUE(win.ReleaseCapture());
    EXPECT_EQ(TakeLog(), Log{});  // releasing one's own capture is no loss
}

// Input that ends on a disabled window is dropped: the window does not get it, and neither do
// its parent nor the window below it. Its children are unreachable while it is disabled.
TEST_F(Routing, DisabledWindowsDropInput) {
    Top({0, 0, 200, 150}, &a);
    const HWND wb = Top({20, 20, 120, 120}, &b);
    const HWND wc = Child(wb, {10, 10, 50, 50}, &c);
    win.EnableWindow(wc, false);
    Click(input, {40, 40});                        // on C
    EXPECT_EQ(win.WindowFromPoint({40, 40}), wb);  // a disabled child stands for nothing
    EXPECT_EQ(win.GetCapture(), HWND{});
    win.EnableWindow(wc, true);
    win.EnableWindow(wb, false);
    Click(input, {40, 40});  // C itself is enabled, its parent is not
    Click(input, {100, 100});
    Click(input, {150, 10});  // A is unaffected

    // Disabling the window that holds the capture ends it, with notice.
    win.EnableWindow(wb, true);
    input.MouseMove({40, 40});
    input.MouseDown(kButtonLeft, 0);
    win.EnableWindow(wb, false);
    EXPECT_EQ(win.GetCapture(), HWND{});
    input.MouseUp(kButtonLeft, 0);
    EXPECT_EQ(TakeLog(), (Log{"A move 0 (150,10)", "A down 1 (150,10)", "A up 1 (150,10)",
                              "C move 0 (10,10)", "C down 1 (10,10)", "C capture-lost"}));
}

// Double clicks: same button, same window, less than 500 ms of virtual time and at most
// 2 pixels off the first press (the 4 x 4 double-click rectangle around it).
TEST_F(Routing, DoubleClickTimeAndDistance) {
    Top({0, 0, 100, 100}, &a);
    Top({100, 0, 200, 100}, &b);
    auto press = [&](POINT p, std::int64_t waitMs, int button = kButtonLeft) {
        input.Advance(waitMs);
        Click(input, p, button);
        return log.at(log.size() - 2);  // move, press, release: the press
    };
    const struct {
        POINT first, second;
        std::int64_t wait;
        int button;
        const char* expected;
    } cases[] = {
        {{50, 50}, {50, 50}, 499, kButtonLeft, "A dbl 1 (50,50)"},
        {{50, 50}, {50, 50}, 500, kButtonLeft, "A down 1 (50,50)"},
        {{50, 50}, {52, 48}, 100, kButtonLeft, "A dbl 1 (52,48)"},
        {{50, 50}, {53, 50}, 100, kButtonLeft, "A down 1 (53,50)"},
        {{50, 50}, {50, 47}, 100, kButtonLeft, "A down 1 (50,47)"},
        {{50, 50}, {50, 50}, 100, kButtonRight, "A down 2 (50,50)"},
        {{99, 50}, {100, 50}, 10, kButtonLeft, "B down 1 (0,50)"},  // another window
    };
    for (const auto& k : cases) {
        SCOPED_TRACE(k.expected);
        press(k.first, 1000);  // long after earlier presses
        EXPECT_EQ(press(k.second, k.wait, k.button), k.expected);
    }
    // A double click does not begin another: the third quick press is a plain press.
    press({50, 50}, 1000);
    EXPECT_EQ(press({50, 50}, 100), "A dbl 1 (50,50)");
    EXPECT_EQ(press({50, 50}, 100), "A down 1 (50,50)");
    EXPECT_EQ(a.last.time, platform.clock().Now());  // input carries the virtual time
}

// Focus: notifications old-then-new, refusals for hidden and disabled windows, loss on hide
// (notified) and on destroy (silent); keys go to the focused window or nowhere.
TEST_F(Routing, FocusNotificationsAndKeys) {
    const HWND wa = Top({0, 0, 50, 50}, &a);
    const HWND wb = Top({60, 0, 110, 50}, &b);
    const HWND wc = win.CreateWindow(wa, {0, 0, 10, 10}, {.child = true}, &c);  // hidden
    input.KeyDown('X', 0);                                                      // no focus: dropped
    EXPECT_EQ(win.SetFocus(wa), HWND{});
    EXPECT_EQ(win.SetFocus(wb), wa);
    EXPECT_EQ(win.SetFocus(wb), wb);      // no change, no notifications
    EXPECT_EQ(win.SetFocus(wc), HWND{});  // hidden
    win.ShowWindow(wc, true);
    win.EnableWindow(wa, false);
    EXPECT_EQ(win.SetFocus(wc), HWND{});  // its parent is disabled
    win.EnableWindow(wa, true);
    // During the old window's OnFocus(false) the focus already names the new window.
    HWND seen;
    b.onFocus = [&](bool gained) {
        if (!gained) seen = win.GetFocus();
    };
    EXPECT_EQ(win.SetFocus(wc), wb);
    EXPECT_EQ(seen, wc);
    input.KeyDown(VK_SHIFT, kShiftMask);
    EXPECT_LT(win.GetAsyncKeyState(VK_SHIFT), 0);  // bit 15 while held
    input.KeyPress('x');
    input.KeyUp(VK_SHIFT, 0);
    win.ShowWindow(wa, false);  // hides the focused child with its parent
    EXPECT_EQ(win.GetFocus(), HWND{});

    // A window that takes the focus back while losing it wins: the window SetFocus named never
    // hears it gained the focus. A destroyed window loses it without notice.
    win.ShowWindow(wa, true);
    win.SetFocus(wb);
    b.onFocus = [&](bool gained) {
        if (!gained) win.SetFocus(wb);
    };
    EXPECT_EQ(win.SetFocus(wa), wb);
    EXPECT_EQ(win.GetFocus(), wb);
    b.onFocus = nullptr;
    win.DestroyWindow(wb);
    input.KeyDown('Y', 0);
    EXPECT_EQ(win.GetFocus(), HWND{});
    EXPECT_EQ(TakeLog(), (Log{"A focus+", "A focus-", "B focus+", "B focus-", "C focus+",
                              "C keydown 16 shift 1", "C press 120 shift 1", "C keyup 16 shift 0",
                              "C focus-", "B focus+", "B focus-", "A focus-", "B focus+"}));
}

// The cursor shown: the capture window's, else the deepest window's under the pointer, with
// default meaning "the parent's" and the arrow at the top; the pointer stays on the screen.
TEST_F(Routing, CursorInheritsAndFollowsCapture) {
    const HWND wa = Top({0, 0, 100, 100}, &a);
    const HWND wc = Child(wa, {10, 10, 50, 50}, &c);
    const HWND wb = Top({150, 0, 200, 50}, &b);
    win.SetCursorPos(20, 20);
    win.SetWindowCursor(wa, 11);
    EXPECT_EQ(win.CurrentCursor(), 11);
    win.SetWindowCursor(wc, 3);
    win.SetWindowCursor(wb, 5);
    EXPECT_EQ(win.CurrentCursor(), 3);
    win.SetCapture(wb);
    EXPECT_EQ(win.CurrentCursor(), 5);
    win.SetWindowCursor(wb, 0);
    EXPECT_EQ(win.CurrentCursor(), kCursorArrow);
    POINT p;
    win.SetCursorPos(-5, 500);
    ASSERT_TRUE(win.GetCursorPos(&p));
    EXPECT_EQ(p, (POINT{0, 149}));
}

}  // namespace
}  // namespace korvex::test
