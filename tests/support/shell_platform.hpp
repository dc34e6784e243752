#pragma once
// The simulated platform with its shell replaced by a test's own, one that watches the calls or
// fails them.

#include "platform/sim/sim_platform.hpp"

namespace korvex::test {

template <class ReplacementShell>
class ShellPlatform final : public platform::Platform {
  public:
    platform::Gdi& gdi() override { return sim.gdi(); }
    platform::Windows& windows() override { return sim.windows(); }
    platform::Clock& clock() override { return sim.clock(); }
    platform::EventLoop& loop() override { return sim.loop(); }
    platform::Sound& sound() override { return sim.sound(); }
    platform::Shell& shell() override { return replacement; }

    platform::sim::SimPlatform sim;
    ReplacementShell replacement;
};

}  // namespace korvex::test
