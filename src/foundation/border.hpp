#pragma once
// The border painters shared by Frames and Button: one-pixel lines on a device context inside a
// pixel rectangle, the outer rings repeated `width` times so a border can be thicker.
//
// Both convert the six colours in place (afterwards the caller's variables hold RGB values),
// create one pen per pass (penStyle, width 1), select it and delete whatever pen was selected
// before; when done they select the stock black pen and delete the last pen they created. So the
// pen the caller had selected is deleted, not restored: never keep a pen selected that is still
// needed. Coordinates are checked 32-bit sums: an overflow throws host::HostError(6) in the middle
// of drawing, leaving the lines drawn so far and the last pen selected.

#include <cstdint>

#include "host/ole_types.hpp"
#include "platform/gdi.hpp"

namespace korvex::foundation {

// Style 1 single bevel, 2 double bevel, 3 outlined bevel, 4 rounded frame; any other style draws
// nothing (it still converts the colours and selects the stock black pen).
void DrawBorderStyle(platform::Gdi& gdi, platform::HDC dc, const platform::RECT& rect,
                     std::int32_t style, host::OLE_COLOR& color1, host::OLE_COLOR& color2,
                     host::OLE_COLOR& color3, host::OLE_COLOR& color4, host::OLE_COLOR& color5,
                     host::OLE_COLOR& color6, std::int32_t penStyle, std::int32_t width);

// The rounded double frame of the XP look; only style 1 draws.
void DrawXPFrame(platform::Gdi& gdi, platform::HDC dc, const platform::RECT& rect,
                 std::int32_t style, host::OLE_COLOR& color1, host::OLE_COLOR& color2,
                 host::OLE_COLOR& color3, host::OLE_COLOR& color4, host::OLE_COLOR& color5,
                 host::OLE_COLOR& color6, std::int32_t penStyle, std::int32_t width);

}  // namespace korvex::foundation
