// VirtualTimers: periodic timers on a driven clock.

#include "platform/virtual_timers.hpp"

#include <algorithm>
#include <utility>

namespace korvex::platform {

Clock::TimerId VirtualTimers::Add(std::int64_t now, std::uint32_t intervalMs,
                                  std::function<void()> tick, std::uint32_t* clamped) {
    const std::uint32_t interval = std::clamp(intervalMs, kMinimumInterval, kMaximumInterval);
    const Clock::TimerId id = nextId_++;
    timers_[id] =
        Timer{interval, now + interval, std::make_shared<std::function<void()>>(std::move(tick))};
    if (clamped) *clamped = interval;
    return id;
}

bool VirtualTimers::Remove(Clock::TimerId id) {
    return timers_.erase(id) > 0;
}

std::vector<Clock::TimerId> VirtualTimers::Ids() const {
    std::vector<Clock::TimerId> ids;
    ids.reserve(timers_.size());
    for (const auto& [id, timer] : timers_) ids.push_back(id);
    return ids;
}

std::int64_t VirtualTimers::NextDue() const {
    std::int64_t best = -1;
    for (const auto& [id, timer] : timers_)
        if (best < 0 || timer.due < best) best = timer.due;
    return best;
}

// Each round looks the earliest timer up afresh, because a tick may kill or create timers
// (itself included) or even advance the clock again from a nested modal loop. The timer is
// re-armed before its tick runs, so a tick sees the next due time in NextDue and a tick that
// kills its timer leaves nothing behind to fire.
void VirtualTimers::Advance(std::int64_t& now, std::int64_t ms) {
    if (ms < 0) return;
    const std::int64_t target = now + ms;
    for (;;) {
        auto next = timers_.end();
        for (auto it = timers_.begin(); it != timers_.end(); ++it)
            if (it->second.due <= target &&
                (next == timers_.end() || it->second.due < next->second.due))
                next = it;
        if (next == timers_.end()) break;
        Timer& timer = next->second;
        now = std::max(now, timer.due);
        timer.due += timer.interval;
        const std::shared_ptr<std::function<void()>> tick = timer.tick;
        if (*tick) (*tick)();
    }
    now = std::max(now, target);
}

void VirtualTimers::Fire(Clock::TimerId id, std::int64_t now) {
    auto it = timers_.find(id);
    if (it == timers_.end()) return;
    it->second.due = now + it->second.interval;
    const std::shared_ptr<std::function<void()>> tick = it->second.tick;
    if (*tick) (*tick)();
}

}  // namespace korvex::platform
