#pragma once
// The shell's font for captions and tips, as both backends draw them.

#include "platform/gdi.hpp"

namespace korvex::platform {

// Tahoma 8 pt at the device's resolution; the caller deletes it.
HFONT CreateShellFont(Gdi& gdi, int weight);

}  // namespace korvex::platform
