#pragma once
// A form on a fresh virtual screen with the whole library registered: what korvex run, render
// and gallery show. The platform is chosen when the tool is built: the portable one on Linux,
// the Win32 backend on Windows, there on virtual time (so that a script's event log is the same
// on every run and on both) and opening or playing nothing on the machine. Both offer the
// driver face as platform.driver().

#include <string>

#include "host/container.hpp"
#include "host/form_file.hpp"
#include "library/library.hpp"
#if defined(_WIN32)
#include "platform/win32/win32_platform.hpp"
#else
#include "platform/sim/sim_platform.hpp"
#endif

namespace korvex::cli {

struct Session {
#if defined(_WIN32)
    platform::win32::Win32Platform platform{
        platform::win32::Win32Options{.virtualTime = true, .dryRun = true}};
#else
    platform::sim::SimPlatform platform;
#endif
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
