#include "foundation/color.hpp"

namespace korvex::foundation {

platform::COLORREF OleColorToRGBTopByte(platform::Gdi& gdi, host::OLE_COLOR color) {
    if ((color >> 24) != 0x80) return color;
    return gdi.GetSysColor(static_cast<int>(color & 255));
}

}  // namespace korvex::foundation
