#pragma once
// SimClock: the virtual clock. Time stands still until Advance moves it; timers fire only then,
// in due order, each tick a plain call on the caller's thread. Nothing reads the wall clock, so
// every run of a script sees the same ticks at the same virtual times.

#include <cstdint>
#include <functional>
#include <utility>

#include "platform/virtual_timers.hpp"
#include "platform/window.hpp"

namespace korvex::platform::sim {

class SimClock final : public Clock {
  public:
    static constexpr std::uint32_t kMinimumInterval = VirtualTimers::kMinimumInterval;
    static constexpr std::uint32_t kMaximumInterval = VirtualTimers::kMaximumInterval;

    SimClock() = default;
    SimClock(const SimClock&) = delete;
    SimClock& operator=(const SimClock&) = delete;

    [[nodiscard]] std::int64_t Now() override { return now_; }
    TimerId SetTimer(std::uint32_t intervalMs, std::function<void()> tick) override {
        return timers_.Add(now_, intervalMs, std::move(tick));
    }
    bool KillTimer(TimerId id) override { return timers_.Remove(id); }
    // The driver's side (see platform/driver.hpp): moves time forward by ms, firing due timers
    // in order (a timer due twice fires twice); the due time of the earliest timer, or -1.
    void Advance(std::int64_t ms) { timers_.Advance(now_, ms); }
    [[nodiscard]] std::int64_t NextDue() { return timers_.NextDue(); }

  private:
    VirtualTimers timers_;
    std::int64_t now_ = 0;
};

}  // namespace korvex::platform::sim
