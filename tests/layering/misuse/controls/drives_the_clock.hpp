// A control that moves time itself instead of waiting: what the layering test must refuse.
#include "platform/sim/sim_platform.hpp"

inline void Hold(korvex::platform::sim::SimPlatform& platform) {
    platform.driver().Advance(100);
}
