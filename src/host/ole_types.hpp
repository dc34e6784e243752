#pragma once
// Scalar types of the host's public interfaces.

#include <cstdint>

namespace korvex::host {

// A colour: with the high bit set, the low bits name a system colour index; otherwise 0x00BBGGRR.
using OLE_COLOR = std::uint32_t;
inline constexpr OLE_COLOR kSystemColorFlag = 0x80000000u;

// Booleans as the host stores them: True is -1.
using VBBool = std::int16_t;
inline constexpr VBBool kTrue = -1;
inline constexpr VBBool kFalse = 0;

}  // namespace korvex::host
