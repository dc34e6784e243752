#include "forms/timer.hpp"

#include "base/error.hpp"
#include "forms/events.hpp"

namespace korvex::forms {

Timer::Timer(platform::Platform& platform) : clock_(platform.clock()) {}

Timer::~Timer() {
    if (id_) clock_.KillTimer(id_);
}

void Timer::Interval(std::int32_t value) {
    if (value < 0 || value > 65535)
        throw host::HostError(host::kErrInvalidPropertyValue, "Interval");
    if (value == interval_) return;
    interval_ = value;
    Restart();
}

void Timer::Enabled(bool value) {
    if (value == enabled_) return;
    enabled_ = value;
    Restart();
}

void Timer::Restart() {
    if (id_) clock_.KillTimer(id_);
    id_ = 0;
    if (!enabled_ || interval_ == 0) return;
    id_ = clock_.SetTimer(static_cast<std::uint32_t>(interval_), [this] { Raise(Tick); });
}

}  // namespace korvex::forms
