#pragma once
// Scalar types of the host's public interfaces.

#include <cstdint>

#include "platform/gdi.hpp"

namespace korvex::host {

// A colour: with the high bit set, the low bits name a system colour index; otherwise 0x00BBGGRR.
using OLE_COLOR = std::uint32_t;
inline constexpr OLE_COLOR kSystemColorFlag = 0x80000000u;

// An OLE colour as RGB: the high bit names a system colour, read from the device now, so a
// scheme change shows at the next conversion. Unknown indices are the device's business
// (GetSysColor answers 0).
inline platform::COLORREF OleColorToRGB(platform::Gdi& gdi, OLE_COLOR color) {
    return (color & kSystemColorFlag) ? gdi.GetSysColor(static_cast<int>(color ^ kSystemColorFlag))
                                      : color;
}

// Booleans as the host stores them: True is -1.
using VBBool = std::int16_t;
inline constexpr VBBool kTrue = -1;
inline constexpr VBBool kFalse = 0;

}  // namespace korvex::host
