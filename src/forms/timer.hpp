#pragma once
// Timer: raises Tick every Interval milliseconds of the platform's clock while Enabled. An
// interval of 0 or a disabled timer is stopped; changing either starts the count anew.

#include <cstdint>
#include <functional>

#include "platform/window.hpp"

namespace korvex::forms {

class Timer {
  public:
    explicit Timer(platform::Platform& platform);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    // 0 to 65535 as the host allows; error 380 otherwise.
    [[nodiscard]] std::int32_t Interval() const { return interval_; }
    void Interval(std::int32_t value);
    [[nodiscard]] bool Enabled() const { return enabled_; }
    void Enabled(bool value);

    std::function<void()> Tick;

  private:
    void Restart();

    platform::Clock& clock_;
    std::int32_t interval_ = 0;
    bool enabled_ = true;
    platform::Clock::TimerId id_ = 0;
};

}  // namespace korvex::forms
