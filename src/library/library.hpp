#pragma once
// The library as a host sees it: its creatable controls by ProgID "Korvex_Tools.<ControlName>"
// and its about box.

#include <string_view>

#include "host/control.hpp"

namespace korvex {

inline constexpr std::string_view kLibraryName = "Korvex_Tools";

// Registers every control of the library with the host and installs the library's about box,
// which the controls' ShowAboutBox opens.
void RegisterLibrary(host::HostContext& context);

// Registers the controls the library uses on its own forms and does not offer to hosts
// (FlatButton), for tools and tests that show them on a form of their own.
void RegisterPrivateControls(host::HostContext& context);

}  // namespace korvex
