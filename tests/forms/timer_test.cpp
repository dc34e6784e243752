// Timers on the virtual clock: ticks every Interval while enabled, restarted by every change,
// stopped by interval 0, by Enabled false and by destruction.

#include "form_fixture.hpp"

namespace korvex::forms::testing {
namespace {

TEST(TimerTest, TicksOnTheVirtualClockOnlyWhileRunning) {
    sim::SimPlatform platform{{64, 48}};
    sim::SimClock& clock = platform.clock();
    std::vector<std::int64_t> ticks;
    auto timer = std::make_unique<Timer>(platform);
    timer->Tick = [&] { ticks.push_back(clock.Now()); };

    clock.Advance(500);  // interval 0: stopped although enabled
    EXPECT_TRUE(ticks.empty());
    timer->Interval(100);
    clock.Advance(350);
    EXPECT_EQ(ticks, (std::vector<std::int64_t>{600, 700, 800}));

    // A new interval starts the count from now.
    timer->Interval(200);
    clock.Advance(250);
    EXPECT_EQ(ticks.back(), 1050);
    timer->Enabled(false);
    clock.Advance(1000);
    EXPECT_EQ(ticks.size(), 4u);
    timer->Enabled(true);
    clock.Advance(200);
    EXPECT_EQ(ticks.back(), 2300);

    // A tick may stop its own timer.
    timer->Tick = [&] {
        ticks.push_back(clock.Now());
        timer->Enabled(false);
    };
    clock.Advance(1000);
    EXPECT_EQ(ticks.back(), 2500);
    EXPECT_EQ(ticks.size(), 6u);

    EXPECT_THROW(timer->Interval(-1), host::HostError);
    EXPECT_THROW(timer->Interval(65536), host::HostError);
    EXPECT_EQ(timer->Interval(), 200);

    timer->Enabled(true);
    timer.reset();
    EXPECT_EQ(clock.NextDue(), -1);
}

}  // namespace
}  // namespace korvex::forms::testing
