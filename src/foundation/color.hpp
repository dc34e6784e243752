#pragma once
// Colour conversion shared by every painter. Colours reach the controls as OLE_COLOR values,
// which may name a system colour; painters convert each colour once per paint, before drawing,
// and the system colour is read at that moment, so a scheme change shows on the next paint.

#include <cstdint>

#include "host/ole_types.hpp"
#include "platform/gdi.hpp"

namespace korvex::foundation {

// The one conversion of OLE colours, kept in the host so the forms layer uses it too.
using host::OleColorToRGB;

// The progress bar's variant: only a top byte of exactly 0x80 names a system colour, and then
// the index is the low byte. It agrees with OleColorToRGB on every value a control produces.
platform::COLORREF OleColorToRGBTopByte(platform::Gdi& gdi, host::OLE_COLOR color);

// Channels of an RGB value for the image filters, each 0 to 255 for an RGB value. The host's
// integer division truncates toward zero, which these keep for negative inputs.
constexpr std::int16_t RedComponent(std::int32_t rgb) {
    return static_cast<std::int16_t>(rgb & 255);
}
constexpr std::int16_t GreenComponent(std::int32_t rgb) {
    return static_cast<std::int16_t>((rgb / 256) & 255);
}
constexpr std::int16_t BlueComponent(std::int32_t rgb) {
    return static_cast<std::int16_t>((rgb / 65536) & 255);
}

}  // namespace korvex::foundation
