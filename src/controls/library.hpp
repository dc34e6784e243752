#pragma once
// The library's creatable controls, registered by ProgID "Korvex_Tools.<ControlName>".

#include "host/type_info.hpp"

namespace korvex::controls {

inline constexpr std::string_view kLibraryName = "Korvex_Tools";

// Registers every public control of the library (and the private ones the library's own forms
// create) with a host's registry.
void RegisterLibrary(host::ClassRegistry& registry);

}  // namespace korvex::controls
