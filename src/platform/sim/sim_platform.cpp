// SimPlatform: wiring of the portable platform's parts.

#include "platform/sim/sim_platform.hpp"

namespace korvex::platform::sim {

SimPlatform::SimPlatform(SIZE screen, int twipsPerPixel)
    : gdi_(screen), windows_(gdi_, screen, twipsPerPixel), loop_(windows_, clock_) {}

}  // namespace korvex::platform::sim
