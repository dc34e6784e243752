#pragma once
// A form on a fresh virtual screen with the whole library registered: what korvex run, render
// and gallery show.

#include <string>

#include "host/container.hpp"
#include "library/library.hpp"
#include "platform/sim/sim_platform.hpp"

namespace korvex::cli {

struct Session {
    platform::sim::SimPlatform platform;
    host::HostContext context{&platform};
    host::Container form{context};

    Session() { RegisterLibrary(context); }

    // Loads a form file's text, switches to run mode as a running application does, shows it.
    void Open(const std::string& formJson) {
        form.LoadJson(formJson);
        form.SwitchMode(true);
        form.Show();
    }
};

}  // namespace korvex::cli
