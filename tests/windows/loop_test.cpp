// The event loop: posted tasks, modal loops driven by a script, time running from timer to
// timer once the script is spent, and the error that replaces a hang.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "recorder.hpp"
#include "support/error_of.hpp"

namespace korvex::test {
namespace {

using Trace = std::vector<std::string>;

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

class EventLoopTest : public ::testing::Test {
  protected:
    std::string Now() { return std::to_string(platform.clock().Now()); }

    sim::SimPlatform platform;
    sim::SimEventLoop& loop = platform.loop();
    Trace trace;
    Script script;
};

// A step opens a nested modal loop that takes the next steps from the same script; neither
// takes a step more than it needs.
TEST_F(EventLoopTest, NestedModalLoopsShareTheScript) {
    bool outerOpen = true, innerOpen = true;
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
        [&] { FAIL() << "stepped past the close"; },
    };
    loop.SetInputSource(&script);
    loop.RunModal([&] { return outerOpen; }, "form frmMain");
    EXPECT_EQ(trace, (Trace{"open inner at depth 1", "close inner at depth 2", "inner returned"}));
}

// With the script spent, time runs timer by timer for at most 60 000 virtual ms: a form its
// timer closes within them closes; one nothing can close raises the host's error instead of
// hanging, and the loop is left cleanly.
TEST_F(EventLoopTest, ModalLoopRunsTimersThenGivesUp) {
    loop.SetInputSource(&script);
    bool open = true;
    // The poll stops by itself at 100 s, so a budget that never runs out fails, not hangs.
    sim::SimClock::TimerId poll = 0;
    poll = platform.clock().SetTimer(1000, [&] {
        trace.push_back("poll@" + Now());
        if (trace.size() == 100) platform.clock().KillTimer(poll);
    });
    const auto closer = platform.clock().SetTimer(3000, [&] { open = false; });
    loop.RunModal([&] { return open; }, "form msgFrm");
    EXPECT_EQ(trace, (Trace{"poll@1000", "poll@2000", "poll@3000"}));
    platform.clock().KillTimer(closer);

    const auto runForever = [&] { loop.RunModal([] { return true; }, "form frmAbout"); };
    EXPECT_EQ(ErrorOf(runForever), host::kErrModalDeadlock);
    EXPECT_EQ(platform.clock().Now(), 63'000);
    EXPECT_EQ(trace.size(), 63u);
    EXPECT_EQ(loop.DoEvents(), 0);

    // A timer due beyond the budget is not waited for.
    sim::SimPlatform other;
    bool late = true;
    other.clock().SetTimer(61'000, [&] { late = false; });
    EXPECT_EQ(ErrorOf([&] { other.loop().RunModal([&] { return late; }, "form late"); }),
              host::kErrModalDeadlock);
    EXPECT_TRUE(late);
}

// Posted work runs one pass at a time, in order, work it posts on the next pass. A wait lets
// exactly that much virtual time pass, and what falls due meanwhile happens at its time: posted
// work before the clock moves on, timer ticks as they come due.
TEST_F(EventLoopTest, PostedWorkAndWaits) {
    loop.Post([&] {
        trace.push_back("first");
        loop.Post([&] { trace.push_back("posted by first"); });
    });
    loop.Post([&] { trace.push_back("second"); });
    EXPECT_EQ(loop.DoEvents(), 0);
    EXPECT_EQ(trace, (Trace{"first", "second"}));
    trace.clear();
    platform.clock().SetTimer(30, [&] {
        trace.push_back("tick " + Now());
        loop.Post([&] { trace.push_back("posted at " + Now()); });
    });
    loop.Wait(100);
    EXPECT_EQ(platform.clock().Now(), 100);
    EXPECT_EQ(trace, (Trace{"posted by first", "tick 30", "posted at 30", "tick 60", "posted at 60",
                            "tick 90", "posted at 90"}));
}

}  // namespace
}  // namespace korvex::test
