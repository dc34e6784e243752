// SimClock: virtual time and periodic timers.

#include "platform/sim/sim_clock.hpp"

#include <algorithm>
#include <utility>

namespace korvex::platform::sim {

Clock::TimerId SimClock::SetTimer(std::uint32_t intervalMs, std::function<void()> tick) {
    const std::uint32_t interval = std::clamp(intervalMs, kMinimumInterval, kMaximumInterval);
    const TimerId id = nextId_++;
    timers_[id] =
        Timer{interval, now_ + interval, std::make_shared<std::function<void()>>(std::move(tick))};
    return id;
}

bool SimClock::KillTimer(TimerId id) {
    return timers_.erase(id) > 0;
}

std::int64_t SimClock::NextDue() {
    std::int64_t best = -1;
    for (const auto& [id, timer] : timers_)
        if (best < 0 || timer.due < best) best = timer.due;
    return best;
}

// Each round looks the earliest timer up afresh, because a tick may kill or create timers
// (itself included) or even advance the clock again from a nested modal loop. The timer is
// re-armed before its tick runs, so a tick sees the next due time in NextDue and a tick that
// kills its timer leaves nothing behind to fire.
void SimClock::Advance(std::int64_t ms) {
    if (ms < 0) return;
    const std::int64_t target = now_ + ms;
    for (;;) {
        auto next = timers_.end();
        for (auto it = timers_.begin(); it != timers_.end(); ++it)
            if (it->second.due <= target &&
                (next == timers_.end() || it->second.due < next->second.due))
                next = it;
        if (next == timers_.end()) break;
        Timer& timer = next->second;
        now_ = std::max(now_, timer.due);
        timer.due += timer.interval;
        const std::shared_ptr<std::function<void()>> tick = timer.tick;
        if (*tick) (*tick)();
    }
    now_ = std::max(now_, target);
}

}  // namespace korvex::platform::sim
