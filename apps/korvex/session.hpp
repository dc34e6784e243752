#pragma once
// A form on a fresh virtual screen with the whole library registered: what korvex run, render
// and gallery show.

#include <fstream>
#include <sstream>
#include <string>

#include "host/container.hpp"
#include "host/form_file.hpp"
#include "library/library.hpp"
#include "platform/sim/sim_platform.hpp"

namespace korvex::cli {

// A form file's text; the host's file-not-found error when it cannot be read.
inline std::string ReadFormFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw host::HostError(host::kErrFileNotFound, "File not found (" + path + ")", "korvex");
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

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
        form.SwitchMode(true);
        form.Show();
    }
};

}  // namespace korvex::cli
