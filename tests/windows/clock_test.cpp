// The virtual clock: timers fire only as Advance passes their due times, in due order (ties in
// creation order), as often as they fell due, and survive callbacks that kill or create timers.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/sim/sim_clock.hpp"

namespace korvex::test {
namespace {

using platform::sim::SimClock;
using Order = std::vector<std::string>;

// A callback that notes its name and the virtual time it ran at.
auto Note(SimClock& clock, Order& order, std::string name) {
    return [&clock, &order, name] { order.push_back(name + "@" + std::to_string(clock.Now())); };
}

TEST(Clock, DueOrderTiesAndTheTenMillisecondFloor) {
    SimClock clock;
    Order order;
    clock.SetTimer(30, Note(clock, order, "slow"));
    clock.SetTimer(20, Note(clock, order, "fast"));
    clock.SetTimer(1, Note(clock, order, "poll"));  // raised to 10 ms
    clock.Advance(19);
    EXPECT_EQ(order, Order{"poll@10"});
    // One long step fires every tick it passes, each at its own virtual time.
    clock.Advance(41);
    EXPECT_EQ(order, (Order{"poll@10", "fast@20", "poll@20", "slow@30", "poll@30", "fast@40",
                            "poll@40", "poll@50", "slow@60", "fast@60", "poll@60"}));
    EXPECT_EQ(clock.NextDue(), 70);
}

// Callbacks that change the timer set while Advance runs.
TEST(Clock, CallbacksKillAndCreateTimers) {
    SimClock clock;
    Order order;
    // Kills itself on its second tick.
    SimClock::TimerId self = 0;
    self = clock.SetTimer(10, [&] {
        Note(clock, order, "self")();
        if (order.size() == 2) {
            EXPECT_TRUE(clock.KillTimer(self));
        }
    });
    // Kills a victim due at the same instant but created after it: the victim never fires.
    // Each tick also starts a one-shot (5 ms, so 10) that kills itself, within the same Advance.
    SimClock::TimerId victim = 0, oneShot = 0;
    clock.SetTimer(25, [&] {
        Note(clock, order, "killer")();
        clock.KillTimer(victim);
        oneShot = clock.SetTimer(5, [&] {
            Note(clock, order, "one-shot")();
            clock.KillTimer(oneShot);
        });
    });

    victim = clock.SetTimer(25, Note(clock, order, "victim"));
    clock.Advance(100);
    EXPECT_EQ(order, (Order{"self@10", "self@20", "killer@25", "one-shot@35", "killer@50",
                            "one-shot@60", "killer@75", "one-shot@85", "killer@100"}));
    EXPECT_FALSE(clock.KillTimer(self));
}

}  // namespace
}  // namespace korvex::test
