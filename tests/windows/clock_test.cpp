// The virtual clock: timers fire only as Advance passes their due times, in due order (ties in
// creation order), as often as they fell due, and survive callbacks that kill or create timers.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/sim/sim_clock.hpp"

namespace korvex::test {
namespace {

using platform::sim::SimClock;
using Ticks = std::vector<std::int64_t>;

TEST(Clock, PeriodicTimersAndTheTenMillisecondFloor) {
    SimClock clock;
    EXPECT_EQ(clock.Now(), 0);
    EXPECT_EQ(clock.NextDue(), -1);

    Ticks hover, poll;
    clock.SetTimer(50, [&] { hover.push_back(clock.Now()); });
    clock.SetTimer(1, [&] { poll.push_back(clock.Now()); });  // raised to 10 ms
    EXPECT_EQ(clock.NextDue(), 10);

    clock.Advance(49);
    EXPECT_EQ(hover, Ticks{});
    EXPECT_EQ(poll, (Ticks{10, 20, 30, 40}));
    clock.Advance(1);
    EXPECT_EQ(hover, Ticks{50});
    // One long step fires every tick it passes, each at its own virtual time.
    clock.Advance(100);
    EXPECT_EQ(hover, (Ticks{50, 100, 150}));
    EXPECT_EQ(poll.size(), 15u);
    EXPECT_EQ(poll.back(), 150);
    EXPECT_EQ(clock.Now(), 150);
    EXPECT_EQ(clock.NextDue(), 160);
}

TEST(Clock, DueOrderWithTiesInCreationOrder) {
    SimClock clock;
    std::vector<std::string> order;
    clock.SetTimer(30, [&] { order.push_back("slow@" + std::to_string(clock.Now())); });
    clock.SetTimer(20, [&] { order.push_back("fast@" + std::to_string(clock.Now())); });
    clock.Advance(60);
    EXPECT_EQ(order, (std::vector<std::string>{"fast@20", "slow@30", "fast@40", "slow@60", "fast@60"}));
}

// Callbacks that change the timer set while Advance runs.
TEST(Clock, CallbacksKillAndCreateTimers) {
    SimClock clock;
    std::vector<std::string> order;

    // Kills itself on its second tick.
    SimClock::TimerId self = 0;
    int selfTicks = 0;
    self = clock.SetTimer(10, [&] {
        order.push_back("self@" + std::to_string(clock.Now()));
        if (++selfTicks == 2) {
            EXPECT_TRUE(clock.KillTimer(self));
        }
    });
    // Kills a victim due at the same instant but created after it: the victim never fires.
    // Each tick also starts a one-shot (5 ms, so 10) that kills itself, within the same Advance.
    SimClock::TimerId victim = 0, oneShot = 0;
    clock.SetTimer(25, [&] {
        order.push_back("killer@" + std::to_string(clock.Now()));
        clock.KillTimer(victim);
        oneShot = clock.SetTimer(5, [&] {
            order.push_back("one-shot@" + std::to_string(clock.Now()));
            clock.KillTimer(oneShot);
        });
    });
    victim = clock.SetTimer(25, [&] { order.push_back("victim@" + std::to_string(clock.Now())); });

    clock.Advance(100);
    EXPECT_EQ(order, (std::vector<std::string>{"self@10", "self@20", "killer@25", "one-shot@35",
                                               "killer@50", "one-shot@60", "killer@75",
                                               "one-shot@85", "killer@100"}));
    EXPECT_FALSE(clock.KillTimer(victim));  // already gone
    EXPECT_FALSE(clock.KillTimer(self));
}

}  // namespace
}  // namespace korvex::test
