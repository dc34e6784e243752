// korvex gdi: runs a drawing script on the software device and writes the canvas. The Windows
// build of the same runner (korvex-gdi-win) gives the reference pixels for the same script.

#include <cstdio>
#include <string>

#include "base/error.hpp"
#include "base/file.hpp"
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
        return kExitUsage;
    }
    sim::SimGdi gdi;
    PixelView pixels;
    try {
        // A line that cannot run (an object never created) is as malformed as one that cannot
        // be read: both are named by line.
        pixels = RunGdiScript(gdi, ParseGdiScript(ReadFileText(parsed->script)));
    } catch (const GdiScriptError& e) {
        return Fail("gdi", parsed->script + ": " + e.what(), kExitBadScript);
    }
    if (!parsed->png.empty()) {
        try {
            WritePng(parsed->png, pixels);
        } catch (const host::HostError&) {
            throw;
        } catch (const std::runtime_error& e) {
            throw host::HostError(host::kErrPathFileAccess,
                                  std::string("Path/File access error (") + e.what() + ")",
                                  "korvex");
        }
    }
    // With no output named, the hex form goes to standard output so the command can be piped.
    if (!parsed->hex.empty() || parsed->png.empty()) {
        WritePixelsHexFile(parsed->hex.empty() ? "-" : parsed->hex, pixels);
    }
    return kExitOk;
}

}  // namespace korvex::cli
