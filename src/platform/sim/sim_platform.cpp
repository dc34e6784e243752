// SimPlatform: wiring of the portable platform's parts.

#include "platform/sim/sim_platform.hpp"

namespace korvex::platform::sim {

SimPlatform::SimPlatform(SIZE screen, int pixelsPerInch)
    : gdi_(screen, pixelsPerInch), windows_(gdi_, screen, &clock_), loop_(windows_, clock_) {}

}  // namespace korvex::platform::sim
