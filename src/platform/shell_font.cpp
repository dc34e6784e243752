// The shell's font.

#include "platform/shell_font.hpp"

#include <cmath>
#include <cstdint>

namespace korvex::platform {

HFONT CreateShellFont(Gdi& gdi, int weight) {
    LOGFONT font;
    font.lfHeight =
        -static_cast<std::int32_t>(std::lround(8 * gdi.GetDeviceCaps(HDC{}, LOGPIXELSY) / 72.0));
    font.lfWeight = weight;
    font.lfCharSet = ANSI_CHARSET;
    font.lfFaceName = "Tahoma";
    return gdi.CreateFontIndirect(font);
}

}  // namespace korvex::platform
