// korvex gdi: runs a drawing script on the software device and writes the canvas. The Windows
// build of the same runner (korvex-gdi-win) gives the reference pixels for the same script.

#include <cstdio>
#include <string>

#include "commands.hpp"
#include "driver/gdi_script.hpp"
#include "platform/png.hpp"
#include "platform/sim/sim_gdi.hpp"

namespace korvex::cli {

int RunGdi(Args args) {
    using namespace korvex::platform;
    std::string error;
    const auto parsed = ParseGdiScriptArgs(args, error);
    if (!parsed) {
        std::fprintf(stderr, "korvex gdi: %s\nUsage: korvex gdi %.*s\n", error.c_str(),
                     static_cast<int>(kGdiScriptArgsUsage.size()), kGdiScriptArgsUsage.data());
        return 2;
    }
    const GdiScript script = LoadGdiScript(parsed->script);
    sim::SimGdi gdi;
    const PixelView pixels = RunGdiScript(gdi, script);
    if (!parsed->png.empty()) WritePng(parsed->png, pixels);
    // With no output named, the hex form goes to standard output so the command can be piped.
    if (!parsed->hex.empty() || parsed->png.empty()) {
        WritePixelsHexFile(parsed->hex.empty() ? "-" : parsed->hex, pixels);
    }
    return 0;
}

}  // namespace korvex::cli
