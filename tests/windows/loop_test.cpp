// The event loop: posted tasks, modal loops driven by a script, time running from timer to
// timer once the script is spent, and the error that replaces a hang.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "base/error.hpp"
#include "recorder.hpp"

namespace korvex::test {
namespace {

using namespace platform;

// A script: each step is one function; Step runs the next and counts.
class Script : public InputSource {
public:
    std::vector<std::function<void()>> steps;
    std::size_t taken = 0;
    bool Step() override {
        if (taken == steps.size()) return false;
        steps[taken++]();
        return true;
    }
};

TEST(EventLoop, PostedTasksRunInOrderOnePassAtATime) {
    sim::SimPlatform platform;
    sim::SimEventLoop& loop = platform.loop();
    std::vector<std::string> ran;
    loop.Post([&] {
        ran.push_back("first");
        loop.Post([&] { ran.push_back("posted by first"); });
    });
    loop.Post([&] { ran.push_back("second"); });
    EXPECT_EQ(loop.DoEvents(), 0);
    EXPECT_EQ(ran, (std::vector<std::string>{"first", "second"}));
    loop.DoEvents();
    EXPECT_EQ(ran.back(), "posted by first");
}

// A modal form with an OK button: the script moves onto the button, presses and releases it;
// the release closes the form, so the loop returns after exactly three steps.
TEST(EventLoop, ModalLoopClosedByScriptedInput) {
    sim::SimPlatform platform;
    Windows& win = platform.windows();
    sim::SimEventLoop& loop = platform.loop();
    std::vector<std::string> log;
    Recorder form("form", log), ok("ok", log);
    const HWND wForm = win.CreateWindow({}, {100, 100, 300, 200}, {}, &form);
    const HWND wOk = win.CreateWindow(wForm, {120, 60, 190, 90}, {.child = true}, &ok);
    win.ShowWindow(wForm, true);
    win.ShowWindow(wOk, true);
    bool open = true;
    std::vector<int> depths;
    ok.onMouse = [&](const MouseEvent& e) {
        depths.push_back(loop.DoEvents());
        if (e.kind == MouseEvent::Kind::Up) loop.Post([&] { open = false; });
    };

    Script script;
    script.steps = {[&] { loop.MouseMove({240, 170}); }, [&] { loop.MouseDown(kButtonLeft, 0); },
                    [&] { loop.MouseUp(kButtonLeft, 0); }, [&] { FAIL() << "stepped past the close"; }};
    loop.SetInputSource(&script);
    loop.RunModal([&] { return open; }, "form frmTest");
    EXPECT_EQ(script.taken, 3u);
    EXPECT_EQ(log, (std::vector<std::string>{"ok move 0 (20,10)", "ok down 1 (20,10)", "ok up 1 (20,10)"}));
    EXPECT_EQ(depths, (std::vector<int>{1, 1, 1}));
    EXPECT_EQ(loop.DoEvents(), 0);
}

// A step opens a nested modal loop that takes the next steps from the same script.
TEST(EventLoop, NestedModalLoopsShareTheScript) {
    sim::SimPlatform platform;
    sim::SimEventLoop& loop = platform.loop();
    bool outerOpen = true, innerOpen = true;
    std::vector<std::string> trace;
    Script script;
    script.steps = {
        [&] {
            trace.push_back("open inner at depth " + std::to_string(loop.DoEvents()));
            loop.RunModal([&] { return innerOpen; }, "message box");
            trace.push_back("inner returned");
        },
        [&] {
            trace.push_back("close inner at depth " + std::to_string(loop.DoEvents()));
            innerOpen = false;
        },
        [&] { outerOpen = false; },
    };
    loop.SetInputSource(&script);
    loop.RunModal([&] { return outerOpen; }, "form frmMain");
    EXPECT_EQ(trace, (std::vector<std::string>{"open inner at depth 1", "close inner at depth 2",
                                               "inner returned"}));
    EXPECT_EQ(script.taken, 3u);
}

// With the script spent, time runs timer by timer: a self-closing form closes on its timer.
TEST(EventLoop, ModalLoopLetsTimersCloseTheForm) {
    sim::SimPlatform platform;
    bool open = true;
    std::vector<std::int64_t> polls;
    platform.clock().SetTimer(1000, [&] { polls.push_back(platform.clock().Now()); });
    platform.clock().SetTimer(3000, [&] { open = false; });
    platform.loop().RunModal([&] { return open; }, "form msgFrm");
    EXPECT_EQ(platform.clock().Now(), 3000);
    EXPECT_EQ(polls, (std::vector<std::int64_t>{1000, 2000, 3000}));
}

// A modal loop nothing can close raises the host's error: at once without timers, after
// 60 000 virtual ms while only a poll timer ticks. The loop is left cleanly either way.
TEST(EventLoop, ModalDeadlockRaisesInsteadOfHanging) {
    sim::SimPlatform platform;
    sim::SimEventLoop& loop = platform.loop();
    Script empty;
    loop.SetInputSource(&empty);
    auto runForever = [&] { loop.RunModal([] { return true; }, "form frmAbout"); };
    try {
        runForever();
        FAIL() << "no error";
    } catch (const host::HostError& e) {
        EXPECT_EQ(e.Number(), host::kErrModalDeadlock);
        EXPECT_EQ(e.Description(),
                  "The modal form frmAbout is still open and nothing left in the script can close it");
        EXPECT_EQ(e.Source(), "EventLoop");
    }
    EXPECT_EQ(platform.clock().Now(), 0);
    EXPECT_EQ(loop.DoEvents(), 0);

    int ticks = 0;
    platform.clock().SetTimer(1, [&] { ++ticks; });
    EXPECT_THROW(runForever(), host::HostError);
    EXPECT_EQ(platform.clock().Now(), 60'000);
    EXPECT_EQ(ticks, 6000);
    EXPECT_EQ(loop.DoEvents(), 0);

    // A timer due beyond the budget is not waited for.
    sim::SimPlatform other;
    bool open = true;
    other.clock().SetTimer(61'000, [&] { open = false; });
    EXPECT_THROW(other.loop().RunModal([&] { return open; }, "form late"), host::HostError);
    EXPECT_TRUE(open);
}

// A wait lets exactly that much virtual time pass, and what falls due meanwhile happens at its
// time: posted work before the clock moves on, timer ticks as they come due.
TEST(EventLoop, WaitLetsTimeAndEventsRun) {
    sim::SimPlatform platform;
    EventLoop& loop = platform.loop();
    std::vector<std::string> trace;
    platform.clock().SetTimer(30, [&] {
        trace.push_back("tick " + std::to_string(platform.clock().Now()));
        loop.Post([&] { trace.push_back("posted at " + std::to_string(platform.clock().Now())); });
    });
    loop.Post([&] { trace.push_back("posted at " + std::to_string(platform.clock().Now())); });
    loop.Wait(100);
    EXPECT_EQ(platform.clock().Now(), 100);
    EXPECT_EQ(trace, (std::vector<std::string>{"posted at 0", "tick 30", "posted at 30", "tick 60", "posted at 60",
                                               "tick 90", "posted at 90"}));
    loop.Wait(0);
    EXPECT_EQ(platform.clock().Now(), 100);
}

}  // namespace
}  // namespace korvex::test
