#pragma once
// A form on a fresh virtual screen with the whole library registered: what korvex run, render
// and gallery show.

#include <string>

#include "host/container.hpp"
#include "host/form_file.hpp"
#include "library/library.hpp"
#include "platform/sim/sim_platform.hpp"

namespace korvex::cli {

struct Session {
    platform::sim::SimPlatform platform;
    host::HostContext context{&platform};
    host::Container form{context};

    // The tool shows the library's private controls too, so their looks can be rendered.
    Session() {
        RegisterLibrary(context);
        RegisterPrivateControls(context);
    }

    // Loads a form file's text, switches to run mode as a running application does, shows it.
    void Open(const std::string& formJson) {
        host::LoadFormJson(form, formJson);
        Run();
    }
    // The same for a form file; its errors name the file.
    void OpenFile(const std::string& path) {
        host::LoadFormFile(form, path);
        Run();
    }

  private:
    void Run() {
        form.SwitchMode(true);
        form.Show();
    }
};

}  // namespace korvex::cli
