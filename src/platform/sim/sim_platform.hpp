#pragma once
// SimPlatform: one portable platform instance, owning its drawing device, window manager,
// virtual clock and event loop. Everything lives in the instance, so two platforms in one
// process (two hosts in one test) never see each other.

#include "platform/sim/sim_clock.hpp"
#include "platform/sim/sim_gdi.hpp"
#include "platform/sim/sim_loop.hpp"
#include "platform/sim/sim_sound.hpp"
#include "platform/sim/sim_windows.hpp"
#include "platform/window.hpp"

namespace korvex::platform::sim {

class SimPlatform final : public Platform {
public:
    explicit SimPlatform(SIZE screen = {1024, 768}, int twipsPerPixel = 15);
    SimPlatform(const SimPlatform&) = delete;
    SimPlatform& operator=(const SimPlatform&) = delete;

    // Covariant, so code that holds the concrete platform reaches the sim-only members.
    SimGdi& gdi() override { return gdi_; }
    SimWindows& windows() override { return windows_; }
    SimClock& clock() override { return clock_; }
    SimEventLoop& loop() override { return loop_; }
    SimSound& sound() override { return sound_; }
    SimShell& shell() override { return shell_; }

private:
    // Declaration order is destruction order reversed: the windows give their regions back to
    // the device before it goes.
    SimGdi gdi_;
    SimClock clock_;
    SimWindows windows_;
    SimEventLoop loop_;
    SimSound sound_{clock_};
    SimShell shell_{clock_};
};

}  // namespace korvex::platform::sim
