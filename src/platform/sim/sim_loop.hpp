#pragma once
// SimEventLoop: the inbound funnel and the nested loops of the portable platform, on the shared
// rules of platform/driven_loop.hpp. Input is stamped with the virtual clock and handed to
// SimWindows for routing; a modal loop with its script spent lets virtual time run.

#include <cstdint>
#include <functional>
#include <string_view>

#include "platform/driven_loop.hpp"
#include "platform/sim/sim_clock.hpp"
#include "platform/sim/sim_windows.hpp"

namespace korvex::platform::sim {

class SimEventLoop final : public DrivenEventLoop<SimWindows, SimClock> {
  public:
    SimEventLoop(SimWindows& windows, SimClock& clock) : DrivenEventLoop(windows, clock) {}

    int DoEvents() override;
    // Pending work runs, then the virtual clock moves one millisecond, until ms have passed.
    void Wait(std::int64_t ms) override;
    // Pending work, then script steps; with the script spent, time runs timer by timer for at
    // most kIdleLimitMs before the host's error ends the loop.
    void RunModal(const std::function<bool()>& stillOpen, std::string_view what) override;
};

}  // namespace korvex::platform::sim
