// An application that embeds the library, as the README shows: a host on the virtual platform,
// the library registered, a control placed and driven by name.
#include <cstdio>

#include "host/container.hpp"
#include "host/form_file.hpp"
#include "library/library.hpp"
#include "platform/sim/sim_platform.hpp"

int main() {
    korvex::platform::sim::SimPlatform platform;
    korvex::host::HostContext context(&platform);
    korvex::RegisterLibrary(context);
    korvex::host::Container form(context);
    korvex::host::LoadFormJson(form,
                               R"({"Controls": [{"ProgID": "Korvex_Tools.Line3D", "Name": "Line3D1",
                      "Left": 120, "Top": 240, "Width": 3000, "Height": 30}]})");
    form.SwitchMode(true);
    form.Show();
    auto& site = form.Get("Line3D1");
    form.LetProperty(site, "BorderWidth", 3);
    std::printf("Integer %d, Long %d, Height %d\n", korvex::host::Variant(2.5).ToInteger(),
                korvex::host::Variant(3.5f).ToLong(), form.GetProperty(site, "Height").ToLong());
    return 0;
}
