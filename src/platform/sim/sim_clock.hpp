#pragma once
// SimClock: the virtual clock. Time stands still until Advance moves it; timers fire only then,
// in due order, each tick a plain call on the caller's thread. Nothing reads the wall clock, so
// every run of a script sees the same ticks at the same virtual times.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include "platform/window.hpp"

namespace korvex::platform::sim {

class SimClock final : public Clock {
  public:
    // Win32's USER_TIMER_MINIMUM: SetTimer raises any shorter interval to 10 ms, so a 1 ms poll
    // ticks every 10 ms. USER_TIMER_MAXIMUM caps the other end.
    static constexpr std::uint32_t kMinimumInterval = 10;
    static constexpr std::uint32_t kMaximumInterval = 0x7FFFFFFF;

    SimClock() = default;
    SimClock(const SimClock&) = delete;
    SimClock& operator=(const SimClock&) = delete;

    [[nodiscard]] std::int64_t Now() override { return now_; }
    TimerId SetTimer(std::uint32_t intervalMs, std::function<void()> tick) override;
    bool KillTimer(TimerId id) override;
    // The driver's side (see platform/driver.hpp): moves time forward by ms, firing due timers
    // in order (a timer due twice fires twice); the due time of the earliest timer, or -1.
    void Advance(std::int64_t ms);
    [[nodiscard]] std::int64_t NextDue();

  private:
    struct Timer {
        std::uint32_t interval = kMinimumInterval;
        std::int64_t due = 0;
        // Shared so that a tick that kills its own timer does not destroy the running callback.
        std::shared_ptr<std::function<void()>> tick;
    };
    // Keyed by id; ids grow with every SetTimer, so map order is creation order, which breaks
    // ties between timers due at the same moment.
    std::map<TimerId, Timer> timers_;
    TimerId nextId_ = 1;
    std::int64_t now_ = 0;
};

}  // namespace korvex::platform::sim
