#include "platform/gdi.hpp"

namespace korvex::platform {

const std::array<COLORREF, kSysColorCount>& ClassicSysColors() {
    // The classic Windows scheme; indices follow COLOR_SCROLLBAR .. COLOR_MENUBAR.
    static constexpr std::array<COLORREF, kSysColorCount> kClassic = {
        0xC8D0D4, 0xA56E3A, 0x6A240A, 0x808080, 0xC8D0D4, 0xFFFFFF, 0x000000, 0x000000,
        0x000000, 0xFFFFFF, 0xC8D0D4, 0xC8D0D4, 0x808080, 0x6A240A, 0xFFFFFF, 0xC8D0D4,
        0x808080, 0x808080, 0x000000, 0xC8D0D4, 0xFFFFFF, 0x404040, 0xC8D0D4, 0x000000,
        0xE1FFFF, 0xC8D0D4, 0x800000, 0xF0CAA6, 0xC0C0C0, 0x6A240A, 0xC8D0D4};
    return kClassic;
}

}  // namespace korvex::platform
