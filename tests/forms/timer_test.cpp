// Timers on the virtual clock: ticks every Interval while enabled, restarted by every change,
// stopped by interval 0, by Enabled false and by destruction.

#include "form_fixture.hpp"

namespace korvex::forms::testing {
namespace {

TEST(TimerTest, TicksOnTheVirtualClockOnlyWhileRunning) {
    test::SimBench bench{{64, 48}};
    Clock& clock = bench.platform.clock();
    std::vector<std::int64_t> ticks;
    auto timer = std::make_unique<Timer>(bench.platform);
    timer->Tick = [&] { ticks.push_back(clock.Now()); };

    bench.Advance(500);  // interval 0: stopped although enabled
    EXPECT_TRUE(ticks.empty());
    timer->Interval(100);
    bench.Advance(350);
    EXPECT_EQ(ticks, (std::vector<std::int64_t>{600, 700, 800}));

    // A new interval starts the count from now.
    timer->Interval(200);
    bench.Advance(250);
    EXPECT_EQ(ticks.back(), 1050);
    timer->Enabled(false);
    bench.Advance(1000);
    EXPECT_EQ(ticks.size(), 4u);
    timer->Enabled(true);
    bench.Advance(200);
    EXPECT_EQ(ticks.back(), 2300);

    // A tick may stop its own timer.
    timer->Tick = [&] {
        ticks.push_back(clock.Now());
        timer->Enabled(false);
    };
    bench.Advance(1000);
    EXPECT_EQ(ticks.back(), 2500);
    EXPECT_EQ(ticks.size(), 6u);

    EXPECT_THROW(timer->Interval(-1), host::HostError);
    EXPECT_THROW(timer->Interval(65536), host::HostError);
    EXPECT_EQ(timer->Interval(), 200);

    timer->Enabled(true);
    timer.reset();
    EXPECT_EQ(bench.platform.driver().NextDue(), -1);
}

}  // namespace
}  // namespace korvex::forms::testing
