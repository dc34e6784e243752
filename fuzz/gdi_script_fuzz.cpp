// Drawing scripts come from files: any text must give a picture or a GdiScriptError, and drawing
// must stay inside the canvas whatever the coordinates (the sanitizers judge that).
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "driver/gdi_script.hpp"
#include "platform/sim/sim_gdi.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    korvex::platform::GdiScript script;
    try {
        script = korvex::platform::ParseGdiScript(text);
    } catch (const korvex::platform::GdiScriptError&) {
        return 0;
    }
    // Big canvases are legal but only slow the search down; the drawing limits do not depend on
    // the canvas size.
    if (std::int64_t{script.width} * script.height > 256 * 256) return -1;
    korvex::platform::sim::SimGdi gdi;
    try {
        const korvex::platform::PixelView pixels = korvex::platform::RunGdiScript(gdi, script);
        if (pixels.width != script.width || pixels.height != script.height) __builtin_trap();
    } catch (const korvex::platform::GdiScriptError&) {
    }
    return 0;
}
