#pragma once
// VirtualTimers: the timer queue of a clock that only its driver moves. Both backends keep their
// virtual time here, so a scripted run sees the same ticks at the same times on either: due
// order, ties in creation order, a timer as often as it is due, intervals clamped to the
// system's limits.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "platform/window.hpp"

namespace korvex::platform {

class VirtualTimers {
  public:
    // Win32's USER_TIMER_MINIMUM: SetTimer raises any shorter interval to 10 ms, so a 1 ms poll
    // ticks every 10 ms. USER_TIMER_MAXIMUM caps the other end.
    static constexpr std::uint32_t kMinimumInterval = 10;
    static constexpr std::uint32_t kMaximumInterval = 0x7FFFFFFF;

    VirtualTimers() = default;
    VirtualTimers(const VirtualTimers&) = delete;
    VirtualTimers& operator=(const VirtualTimers&) = delete;

    // A timer first due interval ms after now; the interval as clamped is in *clamped.
    Clock::TimerId Add(std::int64_t now, std::uint32_t intervalMs, std::function<void()> tick,
                       std::uint32_t* clamped = nullptr);
    bool Remove(Clock::TimerId id);
    [[nodiscard]] std::vector<Clock::TimerId> Ids() const;
    // The due time of the earliest timer, or -1.
    [[nodiscard]] std::int64_t NextDue() const;
    // Moves now forward by ms, firing due timers in order (a timer due twice fires twice).
    void Advance(std::int64_t& now, std::int64_t ms);
    // Fires one timer at now and re-arms it from there (a tick the system's clock delivers).
    void Fire(Clock::TimerId id, std::int64_t now);

  private:
    struct Timer {
        std::uint32_t interval = kMinimumInterval;
        std::int64_t due = 0;
        // Shared so that a tick that kills its own timer does not destroy the running callback.
        std::shared_ptr<std::function<void()>> tick;
    };
    // Keyed by id; ids grow with every Add, so map order is creation order, which breaks ties
    // between timers due at the same moment.
    std::map<Clock::TimerId, Timer> timers_;
    Clock::TimerId nextId_ = 1;
};

}  // namespace korvex::platform
