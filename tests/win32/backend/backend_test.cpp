// The Win32 backend under Wine (or Windows): the window seam's rules checked against real user32
// windows on the virtual clock, through the driver face as a script would use it. GoogleTest is
// not cross-built, so a small runner counts the checks and names each one that fails; the exit
// status is the number of failed groups.

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "backend_check.hpp"
#include "base/error.hpp"

namespace korvex::backend_test {

int checks = 0;
int failures = 0;

void Check(bool ok, const std::string& what, int line) {
    ++checks;
    if (ok) return;
    ++failures;
    std::printf("FAILED line %d: %s\n", line, what.c_str());
}

}  // namespace korvex::backend_test

namespace {

using namespace korvex::platform;
using namespace korvex::backend_test;

void TreeAndGeometry() {
    Fixture f;
    const HWND top = f.Top("top", {100, 50, 400, 350});
    const HWND a = f.Child(top, "a", {10, 20, 110, 70});
    const HWND b = f.Child(a, "b", {5, 5, 25, 15});
    CHECK(f.windows.IsWindow(b));
    CHECK_EQ(f.windows.GetParent(b), a);
    CHECK_EQ(f.windows.GetParent(a), top);
    CHECK(!f.windows.GetParent(top));
    RECT r;
    CHECK(f.windows.GetWindowRect(b, &r));
    CHECK_EQ(r, (RECT{115, 75, 135, 85}));
    CHECK(f.windows.GetClientRect(a, &r));
    CHECK_EQ(r, (RECT{0, 0, 100, 50}));
    CHECK_EQ(f.windows.ClientToScreen(b, {1, 2}), (POINT{116, 77}));
    CHECK_EQ(f.windows.ScreenToClient(a, {110, 70}), (POINT{0, 0}));
    CHECK(f.windows.MoveWindow(a, {0, 0, 50, 50}));
    CHECK(f.windows.GetWindowRect(b, &r));
    CHECK_EQ(r, (RECT{105, 55, 125, 65}));
    // A captioned window: the client area sits inside the system's frame.
    const HWND framed = f.Top("framed", {0, 0, 200, 150}, true);
    RECT outer{0, 0, 100, 80};
    CHECK(f.windows.AdjustWindowRect(&outer, {false, false, true}));
    CHECK(outer.Width() > 100 && outer.Height() > 80 + 10);
    TITLEBARINFO bar;
    CHECK(f.windows.GetTitleBarInfo(framed, &bar));
    CHECK(!bar.rcClose.IsEmpty() && bar.rcClose.right <= bar.rcTitleBar.right);
    CHECK(!f.windows.GetTitleBarInfo(top, &bar));
    CHECK_EQ(f.windows.GetWindowText(framed), "framed");
    CHECK(f.windows.SetWindowText(framed, "Grüße"));
    CHECK_EQ(f.windows.GetWindowText(framed), "Grüße");
    CHECK(f.windows.NativeHandle(framed) != 0);
    // Reparenting keeps the parent-relative position and refuses a parent inside the window.
    CHECK(!f.windows.SetParent(a, b));
    CHECK_EQ(f.windows.SetParent(b, top), a);
    CHECK_EQ(f.windows.GetParent(b), top);
    // Destroying a window takes its children along.
    const HWND c = f.Child(a, "c", {0, 0, 5, 5});
    CHECK(f.windows.DestroyWindow(a));
    CHECK(!f.windows.IsWindow(a));
    CHECK(!f.windows.IsWindow(c));
    CHECK(f.windows.IsWindow(b));
    const SIZE screen = f.windows.ScreenSize();
    CHECK(screen.cx > 0 && screen.cy > 0);
}

// Two hosts in one process each have their own platform; the window classes stay registered
// while either lives.
void TwoPlatforms() {
    auto first = std::make_unique<Fixture>();
    Fixture second;
    const HWND a = first->Top("a", {0, 0, 50, 50});
    const HWND b = second.Top("b", {100, 0, 150, 50});
    CHECK(first->windows.IsWindow(a) && second.windows.IsWindow(b));
    CHECK_EQ(first->windows.ZOrder({}), (std::vector<HWND>{a}));
    CHECK_EQ(second.windows.ZOrder({}), (std::vector<HWND>{b}));
    first.reset();
    const HWND c = second.Top("c", {0, 100, 50, 150});
    CHECK(second.windows.IsWindow(c));
    CHECK_EQ(second.windows.WindowFromPoint({10, 110}), c);
}

void ZOrder() {
    Fixture f;
    const HWND top = f.Top("top", {0, 0, 300, 300});
    const HWND a = f.Child(top, "a", {0, 0, 100, 100});
    const HWND b = f.Child(top, "b", {50, 50, 150, 150});
    // New windows go on top of their siblings.
    CHECK_EQ(f.windows.ZOrder(top), (std::vector<HWND>{b, a}));
    CHECK_EQ(f.windows.WindowFromPoint({60, 60}), b);
    CHECK(f.windows.BringWindowToTop(a));
    CHECK_EQ(f.windows.ZOrder(top), (std::vector<HWND>{a, b}));
    CHECK_EQ(f.windows.WindowFromPoint({60, 60}), a);
    CHECK(f.windows.SetWindowPos(a, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE));
    CHECK_EQ(f.windows.WindowFromPoint({60, 60}), b);
    // Hidden and disabled windows: hidden ones are passed over, a disabled child stands for its
    // parent.
    f.windows.ShowWindow(b, false);
    CHECK_EQ(f.windows.WindowFromPoint({60, 60}), a);
    f.windows.EnableWindow(a, false);
    CHECK_EQ(f.windows.WindowFromPoint({60, 60}), top);
    // Top-level windows: only this platform's count, topmost first.
    const HWND other = f.Top("other", {500, 0, 600, 100});
    const std::vector<HWND> order = f.windows.ZOrder({});
    CHECK(order.size() == 2 && order[0] == other && order[1] == top);
}

void Regions() {
    Fixture f;
    const HWND top = f.Top("top", {0, 0, 300, 300});
    const HWND round = f.Child(top, "round", {100, 100, 200, 200});
    Gdi& gdi = f.platform.gdi();
    CHECK(f.windows.SetWindowRgn(round, gdi.CreateEllipticRgn(0, 0, 100, 100)));
    CHECK_EQ(f.windows.WindowFromPoint({150, 150}), round);
    CHECK_EQ(f.windows.WindowFromPoint({102, 102}), top);  // the corner is outside the ellipse
    CHECK(f.windows.SetWindowRgn(round, HRGN{}));
    CHECK_EQ(f.windows.WindowFromPoint({102, 102}), round);
}

void FocusAndCapture() {
    Fixture f;
    const HWND top = f.Top("top", {0, 0, 300, 300});
    const HWND a = f.Child(top, "a", {0, 0, 100, 100});
    const HWND b = f.Child(top, "b", {100, 0, 200, 100});
    f.Take();
    CHECK(!f.windows.SetFocus(a));
    CHECK_EQ(f.windows.GetFocus(), a);
    CHECK_EQ(f.windows.SetFocus(b), a);
    CHECK_EQ(f.Take(), "a focus\na blur\nb focus\n");
    // Hiding takes the focus away with a notification; a hidden window cannot take it.
    f.windows.ShowWindow(b, false);
    CHECK(!f.windows.GetFocus());
    CHECK(!f.windows.SetFocus(b));
    CHECK_EQ(f.Take(), "b blur\n");
    f.windows.ShowWindow(b, true);
    f.windows.SetFocus(b);
    f.Take();
    // Destroying the focused window drops the focus silently.
    f.windows.DestroyWindow(b);
    CHECK(!f.windows.GetFocus());
    CHECK_EQ(f.Take(), "");
    // Capture: a second window taking it tells the first; releasing tells nobody.
    const HWND c = f.Child(top, "c", {0, 100, 100, 200});
    f.windows.SetCapture(a);
    CHECK_EQ(f.windows.GetCapture(), a);
    CHECK_EQ(f.windows.SetCapture(c), a);
    CHECK_EQ(f.Take(), "a capturelost\n");
    CHECK(f.windows.ReleaseCapture());
    CHECK(!f.windows.GetCapture());
    CHECK_EQ(f.Take(), "");
    // Disabling the capture window ends its capture with a notification.
    f.windows.SetCapture(c);
    f.windows.EnableWindow(c, false);
    CHECK(!f.windows.GetCapture());
    CHECK_EQ(f.Take(), "c capturelost\n");
}

void Input() {
    Fixture f;
    const HWND top = f.Top("top", {10, 10, 310, 310});
    const HWND a = f.Child(top, "a", {0, 0, 100, 100});
    const HWND b = f.Child(top, "b", {100, 0, 200, 100});
    f.Take();
    f.driver.MouseMove({20, 30});
    f.driver.MouseDown(kButtonLeft, kShiftMask);
    CHECK_EQ(f.windows.GetCapture(), a);  // the press captures
    CHECK(f.windows.GetAsyncKeyState(VK_LBUTTON) < 0);
    f.driver.MouseMove({120, 30});  // still a's while the button is down
    f.driver.MouseUp(kButtonLeft, 0);
    CHECK(!f.windows.GetCapture());
    CHECK(f.windows.GetAsyncKeyState(VK_LBUTTON) == 0);
    f.driver.MouseMove({125, 35});
    CHECK_EQ(f.Take(),
             "a move 0 0 10,20 20,30 t0\n"
             "a down 1 1 10,20 20,30 t0\n"
             "a move 1 0 110,20 120,30 t0\n"
             "a up 1 0 110,20 120,30 t0\n"
             "b move 0 0 15,25 125,35 t0\n");
    // A second press within 500 ms on the same spot is a double click; a third starts afresh.
    f.driver.MouseDown(kButtonLeft, 0);
    f.driver.MouseUp(kButtonLeft, 0);
    f.driver.Advance(100);
    f.driver.MouseDown(kButtonLeft, 0);
    f.driver.MouseUp(kButtonLeft, 0);
    f.driver.Advance(600);
    f.driver.MouseDown(kButtonRight, 0);
    f.driver.MouseUp(kButtonRight, 0);
    CHECK_EQ(f.Take(),
             "b down 1 0 15,25 125,35 t0\n"
             "b up 1 0 15,25 125,35 t0\n"
             "b dbl 1 0 15,25 125,35 t100\n"
             "b up 1 0 15,25 125,35 t100\n"
             "b down 2 0 15,25 125,35 t700\n"
             "b up 2 0 15,25 125,35 t700\n");
    // Input for a disabled window is dropped.
    f.windows.EnableWindow(b, false);
    f.driver.MouseDown(kButtonLeft, 0);
    f.driver.MouseUp(kButtonLeft, 0);
    CHECK_EQ(f.Take(), "");
    f.windows.EnableWindow(b, true);

    // Keys go to the focused window after the filters, newest first; a consumed key still
    // counts as held.
    f.windows.SetFocus(a);
    f.Take();
    EventLoop& loop = f.platform.loop();
    std::vector<std::string> filtered;
    const auto first = loop.AddKeyFilter([&](const KeyEvent& e, HWND focus) {
        filtered.push_back("first " + std::to_string(e.keyCode) + (focus == a ? " a" : " ?"));
        return e.keyCode == VK_TAB;
    });
    const auto second = loop.AddKeyFilter([&](const KeyEvent& e, HWND) {
        filtered.push_back("second " + std::to_string(e.keyCode));
        return false;
    });
    f.driver.KeyDown(VK_TAB, 0);
    CHECK(f.windows.GetAsyncKeyState(VK_TAB) < 0);
    f.driver.KeyUp(VK_TAB, 0);
    f.driver.KeyDown(VK_SHIFT, kShiftMask);
    f.driver.KeyPress('A');
    f.driver.KeyUp(VK_SHIFT, 0);
    CHECK_EQ(f.Take(), "a keydown 16 1\na press 65 1\na keyup 16 0\n");
    CHECK_EQ(filtered.size(), 10u);
    CHECK(filtered.size() > 1 && filtered[0] == "second 9" && filtered[1] == "first 9 a");
    loop.RemoveKeyFilter(first);
    loop.RemoveKeyFilter(second);
    f.driver.KeyDown(VK_TAB, 0);
    CHECK_EQ(f.Take(), "a keydown 9 0\n");
}

void CloseBox() {
    Fixture f;
    const HWND framed = f.Top("framed", {100, 100, 300, 250}, true);
    TITLEBARINFO bar;
    f.windows.GetTitleBarInfo(framed, &bar);
    const POINT close{(bar.rcClose.left + bar.rcClose.right) / 2,
                      (bar.rcClose.top + bar.rcClose.bottom) / 2};
    f.Take();
    // Released off the box: nothing; released on it: OnClose. The frame's input is the
    // platform's own, the handler hears none of it.
    f.driver.MouseMove(close);
    f.driver.MouseDown(kButtonLeft, 0);
    f.windows.GetTitleBarInfo(framed, &bar);
    CHECK(bar.closePressed);
    f.driver.MouseMove({close.x - 40, close.y});
    f.driver.MouseUp(kButtonLeft, 0);
    CHECK_EQ(f.Take(), "");
    f.driver.MouseMove(close);
    f.driver.Advance(1000);
    f.driver.MouseDown(kButtonLeft, 0);
    f.driver.MouseUp(kButtonLeft, 0);
    CHECK_EQ(f.Take(), "framed close\n");
    CHECK(f.windows.IsWindow(framed));  // closing is the handler's decision
}

void Timers() {
    Fixture f;
    Clock& clock = f.platform.clock();
    std::vector<std::string> ticks;
    auto note = [&](const char* name) {
        return [&ticks, &clock, name] {
            ticks.push_back(std::string(name) + "@" + std::to_string(clock.Now()));
        };
    };
    CHECK_EQ(clock.Now(), 0);
    const auto fast = clock.SetTimer(1, note("fast"));  // raised to 10 ms
    clock.SetTimer(20, note("a"));
    clock.SetTimer(20, note("b"));  // due with a: creation order breaks the tie
    CHECK_EQ(f.driver.NextDue(), 10);
    f.driver.Advance(20);
    CHECK_EQ(ticks, (std::vector<std::string>{"fast@10", "fast@20", "a@20", "b@20"}));
    ticks.clear();
    CHECK(clock.KillTimer(fast));
    CHECK(!clock.KillTimer(fast));
    // A tick that kills its own timer leaves nothing behind.
    Clock::TimerId once = 0;
    once = clock.SetTimer(15, [&] {
        ticks.push_back("once@" + std::to_string(clock.Now()));
        clock.KillTimer(once);
    });
    f.driver.Advance(40);
    CHECK_EQ(ticks, (std::vector<std::string>{"once@35", "a@40", "b@40", "a@60", "b@60"}));
    CHECK_EQ(clock.Now(), 60);
}

void LoopAndModal() {
    Fixture f;
    EventLoop& loop = f.platform.loop();
    Clock& clock = f.platform.clock();
    std::vector<std::string> done;
    loop.Post([&] {
        done.push_back("one");
        loop.Post([&] { done.push_back("three"); });  // waits for the next round
    });
    loop.Post([&] { done.push_back("two"); });
    CHECK(done.empty());
    CHECK_EQ(loop.DoEvents(), 0);
    CHECK_EQ(done, (std::vector<std::string>{"one", "two"}));
    loop.DoEvents();
    CHECK_EQ(done.size(), 3u);

    // Wait lets virtual time pass with the timers firing.
    int ticks = 0;
    const auto timer = clock.SetTimer(100, [&] { ++ticks; });
    loop.Wait(250);
    CHECK_EQ(clock.Now(), 250);
    CHECK_EQ(ticks, 2);
    clock.KillTimer(timer);

    // RunModal takes script steps until the loop's window closes; it knows its depth.
    struct Steps final : InputSource {
        int left = 3;
        int depth = -1;
        EventLoop* loop = nullptr;
        bool Step() override {
            if (left == 0) return false;
            depth = loop->DoEvents();
            --left;
            return true;
        }
    } steps;
    steps.loop = &loop;
    f.driver.SetInputSource(&steps);
    loop.RunModal([&] { return steps.left > 0; }, "test box");
    CHECK_EQ(steps.left, 0);
    CHECK_EQ(steps.depth, 1);
    // Closed by a timer once the script is spent.
    bool open = true;
    const auto closer = clock.SetTimer(1000, [&] { open = false; });
    const std::int64_t before = clock.Now();
    loop.RunModal([&] { return open; }, "test box");
    CHECK_EQ(clock.Now() - before, 1000);
    clock.KillTimer(closer);
    // Nothing left that could close it: the host's error instead of a hang.
    int code = 0;
    try {
        loop.RunModal([] { return true; }, "test box");
    } catch (const korvex::host::HostError& e) {
        code = e.Number();
    }
    CHECK_EQ(code, korvex::host::kErrModalDeadlock);
    f.driver.SetInputSource(nullptr);
}

void Pixels() {
    Fixture f;
    const HWND top = f.Top("top", {0, 0, 100, 60});
    const HWND child = f.Child(top, "child", {60, 10, 80, 30});
    f.recorders[0]->fill = RGB(255, 0, 0);
    f.recorders[1]->fill = RGB(0, 0, 255);
    const std::vector<std::uint32_t> pixels = f.driver.ComposeWindow(top);
    CHECK_EQ(pixels.size(), 100u * 60u);
    if (pixels.size() == 100u * 60u) {
        const COLORREF window = f.platform.gdi().GetSysColor(COLOR_WINDOW);
        const std::uint32_t windowRgb =
            (GetRValue(window) << 16) | (GetGValue(window) << 8) | GetBValue(window);
        CHECK_EQ(pixels[5 * 100 + 10], 0xFF0000u);   // the parent's left half
        CHECK_EQ(pixels[50 * 100 + 90], windowRgb);  // its right half, erased
        CHECK_EQ(pixels[15 * 100 + 65], 0x0000FFu);  // the child's left half, over the parent
        CHECK_EQ(pixels[15 * 100 + 75], windowRgb);  // the child's right half
    }
    // A region clips the child's pixels; hiding it shows the parent there.
    f.windows.SetWindowRgn(child, f.platform.gdi().CreateRectRgn(0, 0, 3, 3));
    const std::vector<std::uint32_t> clipped = f.driver.ComposeWindow(top);
    CHECK(clipped.size() == pixels.size() && clipped[11 * 100 + 61] == 0x0000FFu &&
          clipped[15 * 100 + 65] != 0x0000FFu);
    const std::vector<std::uint32_t> screen = f.driver.ComposeScreen();
    const SIZE size = f.windows.ScreenSize();
    CHECK_EQ(screen.size(), static_cast<std::size_t>(size.cx) * size.cy);
    CHECK(!screen.empty() && screen[5 * size.cx + 10] == 0xFF0000u);
}

void ToolTips() {
    Fixture f;
    const HWND top = f.Top("top", {0, 0, 300, 300});
    const HWND a = f.Child(top, "a", {0, 0, 100, 100});
    f.windows.SetToolTip(a, "Hallo");
    CHECK_EQ(f.windows.GetToolTip(a), "Hallo");
    f.driver.MouseMove({10, 10});
    f.driver.Advance(499);
    CHECK(f.driver.ToolTip().text.empty());
    f.driver.Advance(1);
    CHECK_EQ(f.driver.ToolTip().text, "Hallo");
    CHECK_EQ(f.driver.ToolTip().screen.top, 30);
    // The tip's own window on the screen is none of the platform's windows: not in the z-order,
    // not hit, and the pointer goes through it.
    CHECK_EQ(f.windows.ZOrder({}), (std::vector<HWND>{top}));
    const RECT tip = f.driver.ToolTip().screen;
    CHECK_EQ(f.windows.WindowFromPoint({tip.left + 2, tip.top + 2}), a);
    f.driver.MouseDown(kButtonLeft, 0);  // a press hides it for good
    f.driver.MouseUp(kButtonLeft, 0);
    CHECK(f.driver.ToolTip().text.empty());
    f.driver.Advance(1000);
    CHECK(f.driver.ToolTip().text.empty());
}

}  // namespace

int main() {
    const std::pair<const char*, void (*)()> groups[] = {
        {"tree and geometry", TreeAndGeometry},
        {"two platforms", TwoPlatforms},
        {"z-order", ZOrder},
        {"regions", Regions},
        {"focus and capture", FocusAndCapture},
        {"input", Input},
        {"close box", CloseBox},
        {"timers", Timers},
        {"loop and modal", LoopAndModal},
        {"pixels", Pixels},
        {"tooltips", ToolTips},
        {"native side", korvex::backend_test::NativeSide},
        {"system time", korvex::backend_test::SystemTime},
        {"invalidation", korvex::backend_test::Invalidation},
        {"handle numbers", korvex::backend_test::HandleNumbers},
    };
    int failedGroups = 0;
    for (const auto& [name, run] : groups) {
        const int before = failures, checksBefore = checks;
        try {
            run();
        } catch (const std::exception& e) {
            Check(false, std::string("exception: ") + e.what(), 0);
        }
        std::printf("%-18s %3d checks, %d failed\n", name, checks - checksBefore,
                    failures - before);
        if (failures > before) ++failedGroups;
    }
    std::printf("total %d checks, %d failed\n", checks, failures);
    return failedGroups;
}
