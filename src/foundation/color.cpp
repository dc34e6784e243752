#include "foundation/color.hpp"

namespace korvex::foundation {

platform::COLORREF OleColorToRGB(platform::Gdi& gdi, host::OLE_COLOR color) {
    if ((color & host::kSystemColorFlag) == 0) return color;
    // Indices beyond the platform's table are the platform's business: GetSysColor answers 0.
    return gdi.GetSysColor(static_cast<int>(color ^ host::kSystemColorFlag));
}

platform::COLORREF OleColorToRGBTopByte(platform::Gdi& gdi, host::OLE_COLOR color) {
    if ((color >> 24) != 0x80) return color;
    return gdi.GetSysColor(static_cast<int>(color & 255));
}

}  // namespace korvex::foundation
