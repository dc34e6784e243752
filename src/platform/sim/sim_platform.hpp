#pragma once
// SimPlatform: one portable platform instance, owning its drawing device, window manager,
// virtual clock and event loop. Everything lives in the instance, so two platforms in one
// process (two hosts in one test) never see each other.
//
// Controls get it as a platform::Platform; whoever runs the platform (a test, the script
// runner, the korvex tool) also reaches its driver face through driver().

#include "platform/driver.hpp"
#include "platform/forwarding_driver.hpp"
#include "platform/sim/sim_clock.hpp"
#include "platform/sim/sim_gdi.hpp"
#include "platform/sim/sim_loop.hpp"
#include "platform/sim/sim_sound.hpp"
#include "platform/sim/sim_windows.hpp"
#include "platform/clipboard.hpp"
#include "platform/window.hpp"

namespace korvex::platform::sim {

// The driver face of the portable parts: plain forwarding.
using SimDriver = ForwardingDriver<SimWindows, SimClock, SimEventLoop>;

class SimPlatform final : public Platform {
  public:
    // pixelsPerInch is the screen's LOGPIXELSX and LOGPIXELSY: 96 gives 15 twips to a pixel.
    explicit SimPlatform(SIZE screen = {1024, 768}, int pixelsPerInch = 96);
    SimPlatform(const SimPlatform&) = delete;
    SimPlatform& operator=(const SimPlatform&) = delete;

    // Covariant, so code that holds the concrete platform reaches the sim-only members.
    SimGdi& gdi() override { return gdi_; }
    SimWindows& windows() override { return windows_; }
    SimClock& clock() override { return clock_; }
    SimEventLoop& loop() override { return loop_; }
    SimSound& sound() override { return sound_; }
    SimShell& shell() override { return shell_; }
    MemoryClipboard& clipboard() override { return clipboard_; }

    // The driver face: time, input, scripts and pixels.
    Driver& driver() { return driver_; }

  private:
    // Declaration order is destruction order reversed: the windows give their regions back to
    // the device before it goes.
    SimGdi gdi_;
    SimClock clock_;
    SimWindows windows_;
    SimEventLoop loop_;
    SimSound sound_{clock_};
    SimShell shell_{clock_};
    MemoryClipboard clipboard_;
    SimDriver driver_{windows_, clock_, loop_};
};

}  // namespace korvex::platform::sim
