// korvex-gdi-win: runs a drawing script against the real Windows GDI and writes the canvas as hex.
// Same command line as `korvex gdi`; its output is the reference the software rasteriser is
// compared with (under Wine in the test suite).

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <vector>

#include "driver/gdi_script.hpp"
#include "platform/win32/win32_gdi.hpp"

namespace korvex::platform::win32 {
int BenchLines(int passes);
}

int main(int argc, char** argv) {
    using namespace korvex::platform;
    const std::vector<std::string_view> args(argv + 1, argv + argc);
    // The benchmark's real-GDI baseline (see bench/bench_raster.cpp).
    if (args.size() == 2 && args[0] == "--bench-lines")
        return win32::BenchLines(std::atoi(argv[2]));
    std::string error;
    const auto parsed = ParseGdiScriptArgs(args, error);
    if (!parsed) {
        std::fprintf(stderr, "korvex-gdi-win: %s\nUsage: korvex-gdi-win %.*s\n", error.c_str(),
                     static_cast<int>(kGdiScriptArgsUsage.size()), kGdiScriptArgsUsage.data());
        return 2;
    }
    try {
        const GdiScript script = LoadGdiScript(parsed->script);
        win32::Win32Gdi gdi;
        const PixelView pixels = RunGdiScript(gdi, script);
        // Only the hex form is needed from this side; the comparison makes the pictures.
        if (!parsed->png.empty())
            std::fprintf(stderr, "korvex-gdi-win: --png is not supported here, ignored\n");
        WritePixelsHexFile(parsed->hex.empty() ? "-" : parsed->hex, pixels);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "korvex-gdi-win: %s\n", e.what());
        return 1;
    }
    return 0;
}
