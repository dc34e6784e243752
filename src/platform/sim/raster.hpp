#pragma once
// The span tier of the software device: primitives that write pixels into a 32-bit surface and
// trust their input. Callers (the device-context tier in sim_gdi*.cpp) have already mapped,
// normalised and clipped everything, so these never clip; they assert instead.
//
// Sections: pixels and colours · ROP2 pairs · ROP3 · surfaces and spans · cosmetic lines

#include <algorithm>
#include <cassert>
#include <climits>
#include <cstdint>
#include <utility>

#include "platform/gdi.hpp"

namespace korvex::platform::sim {

// ---------------------------------------------------------------------------------------------
// Limits. The device takes any 32-bit coordinate, but what it builds must follow the bitmap, not
// the input. Like GDI on NT, whose device coordinates are 28-bit, curved shapes and regions work
// within +-2^27 (kCoordLimit) and fail beyond; lines, rects, polygons and blits take the whole
// range. A pen is at most kMaxPenWidth pixels wide (a wider one draws as that), so a round cap is a
// bounded table; regions hold at most kMaxRegionRects rects, and a call that would need more
// fails as GDI's does when it runs out of memory. The corner stepper walks every step of a curve,
// visible or not, so a curve wider or taller than kMaxCurve fails too: each call stays within a
// tenth of a second.
inline constexpr std::int32_t kCoordLimit = 1 << 27;
inline constexpr std::int32_t kMaxCurve = 1 << 24;
inline constexpr std::int32_t kMaxPenWidth = 1 << 16;
inline constexpr std::int64_t kMaxRegionRects = 1 << 20;

// ---------------------------------------------------------------------------------------------
// Pixels and colours

// A 32-bit DIB pixel is 0x00RRGGBB; a COLORREF is 0x00BBGGRR.
constexpr std::uint32_t ToPixel(COLORREF c) {
    return ((c & 0xFFu) << 16) | (c & 0xFF00u) | ((c >> 16) & 0xFFu);
}
constexpr COLORREF ToColorRef(std::uint32_t pixel) {
    return ((pixel & 0xFFu) << 16) | (pixel & 0xFF00u) | ((pixel >> 16) & 0xFFu);
}

// ---------------------------------------------------------------------------------------------
// ROP2 as an and/xor pair: D' = (D & andMask) ^ xorMask, with both masks depending only on the
// pen or brush pixel P. Worked out per code from the truth table (bitwise on the whole word, the
// unused top byte included, as GDI does):
//
//   code  name            result       and   xor
//    1    R2_BLACK        0             0     0
//    2    R2_NOTMERGEPEN  ~(P|D)       ~P    ~P
//    3    R2_MASKNOTPEN   ~P & D       ~P     0
//    4    R2_NOTCOPYPEN   ~P            0    ~P
//    5    R2_MASKPENNOT   P & ~D        P     P
//    6    R2_NOT          ~D           ~0    ~0
//    7    R2_XORPEN       P ^ D        ~0     P
//    8    R2_NOTMASKPEN   ~(P&D)        P    ~0
//    9    R2_MASKPEN      P & D         P     0
//   10    R2_NOTXORPEN    ~(P^D)       ~0    ~P
//   11    R2_NOP          D            ~0     0
//   12    R2_MERGENOTPEN  ~P | D        P    ~P
//   13    R2_COPYPEN      P             0     P
//   14    R2_MERGEPENNOT  P | ~D       ~P    ~0
//   15    R2_MERGEPEN     P | D        ~P     P
//   16    R2_WHITE        ~0            0    ~0
struct RopPair {
    std::uint32_t andMask = 0;
    std::uint32_t xorMask = 0;
    [[nodiscard]] constexpr std::uint32_t Apply(std::uint32_t d) const {
        return (d & andMask) ^ xorMask;
    }
    [[nodiscard]] constexpr bool IsCopy() const { return andMask == 0; }
    [[nodiscard]] constexpr bool IsNop() const { return andMask == ~0u && xorMask == 0; }
};

constexpr RopPair Rop2Pair(int rop2, std::uint32_t p) {
    constexpr std::uint32_t k1 = ~0u;
    switch (rop2) {
        case R2_BLACK:
            return {0, 0};
        case R2_NOTMERGEPEN:
            return {~p, ~p};
        case R2_MASKNOTPEN:
            return {~p, 0};
        case R2_NOTCOPYPEN:
            return {0, ~p};
        case R2_MASKPENNOT:
            return {p, p};
        case R2_NOT:
            return {k1, k1};
        case R2_XORPEN:
            return {k1, p};
        case R2_NOTMASKPEN:
            return {p, k1};
        case R2_MASKPEN:
            return {p, 0};
        case R2_NOTXORPEN:
            return {k1, ~p};
        case R2_NOP:
            return {k1, 0};
        case R2_MERGENOTPEN:
            return {p, ~p};
        case R2_COPYPEN:
            return {0, p};
        case R2_MERGEPENNOT:
            return {~p, k1};
        case R2_MERGEPEN:
            return {~p, p};
        case R2_WHITE:
            return {0, k1};
        default:
            return {0, p};
    }
}

// ---------------------------------------------------------------------------------------------
// ROP3: bit (4P + 2S + D) of the code's index byte gives each result bit.

constexpr std::uint8_t Rop3Index(DWORD rop) {
    return static_cast<std::uint8_t>((rop >> 16) & 0xFF);
}
// The source column of the truth table is what S selects: a code uses S when flipping S changes
// the result somewhere.
constexpr bool Rop3UsesSource(DWORD rop) {
    const unsigned i = Rop3Index(rop);
    return ((i >> 2) & 0x33u) != (i & 0x33u);
}
constexpr bool Rop3UsesPattern(DWORD rop) {
    const unsigned i = Rop3Index(rop);
    return ((i >> 4) & 0x0Fu) != (i & 0x0Fu);
}
// A pattern-only code folded into the equivalent ROP2.
constexpr int Rop3ToRop2(DWORD rop) {
    return static_cast<int>((((rop >> 18) & 0xCu) | ((rop >> 16) & 0x3u)) + 1);
}
constexpr std::uint32_t Rop3Apply(std::uint8_t index, std::uint32_t p, std::uint32_t s,
                                  std::uint32_t d) {
    std::uint32_t r = 0;
    for (unsigned bit = 0; bit < 8; ++bit) {
        if (!(index & (1u << bit))) continue;
        const std::uint32_t pm = (bit & 4) ? p : ~p;
        const std::uint32_t sm = (bit & 2) ? s : ~s;
        const std::uint32_t dm = (bit & 1) ? d : ~d;
        r |= pm & sm & dm;
    }
    return r;
}

// ---------------------------------------------------------------------------------------------
// Surfaces and spans

struct Surface {
    std::uint32_t* bits = nullptr;
    std::int32_t width = 0;
    std::int32_t height = 0;
    [[nodiscard]] std::uint32_t* Row(std::int32_t y) const {
        return bits + static_cast<std::ptrdiff_t>(y) * width;
    }
    [[nodiscard]] RECT Bounds() const { return {0, 0, width, height}; }
};

// Fills [x0, x1) of row y through the pair.
void FillSpan(const Surface& s, std::int32_t y, std::int32_t x0, std::int32_t x1, RopPair rop);
// Fills a non-empty rect inside the surface through the pair.
void FillRect(const Surface& s, const RECT& r, RopPair rop);

// The 8x8 hatch patterns of GDI, HS_HORIZONTAL .. HS_DIAGCROSS: one byte per row, bit 7 the
// leftmost pixel, a set bit a line pixel.
inline constexpr std::uint8_t kHatchPatterns[6][8] = {
    {0x00, 0x00, 0x00, 0xFF, 0x00, 0x00, 0x00, 0x00},  // HS_HORIZONTAL
    {0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08},  // HS_VERTICAL
    {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01},  // HS_FDIAGONAL
    {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80},  // HS_BDIAGONAL
    {0x08, 0x08, 0x08, 0xFF, 0x08, 0x08, 0x08, 0x08},  // HS_CROSS
    {0x81, 0x42, 0x24, 0x18, 0x18, 0x24, 0x42, 0x81},  // HS_DIAGCROSS
};

// What a brush writes. A solid brush is one pair for every pixel; a hatch writes its line pixels
// through `fg` and the others through `bg`, or leaves them alone when the background is
// transparent. Pattern pixel (0, 0) lies at device (orgX, orgY).
struct FillPaint {
    RopPair fg;
    RopPair bg;
    const std::uint8_t* hatch = nullptr;  // 8 rows as in kHatchPatterns; null for a solid brush
    bool drawBg = true;
    std::int32_t orgX = 0, orgY = 0;

    FillPaint() = default;
    FillPaint(RopPair solid) : fg(solid) {}  // NOLINT(google-explicit-constructor): a solid fill
    [[nodiscard]] bool IsNop() const { return fg.IsNop() && (!hatch || !drawBg || bg.IsNop()); }
    // The pattern bit at device (x, y): true on a hatch line.
    [[nodiscard]] bool On(std::int32_t x, std::int32_t y) const {
        const auto px = static_cast<unsigned>((std::int64_t{x} - orgX) & 7);
        const auto py = static_cast<unsigned>((std::int64_t{y} - orgY) & 7);
        return ((hatch[py] >> (7 - px)) & 1u) != 0;
    }
};

// Fills a non-empty rect inside the surface with the brush.
void FillRect(const Surface& s, const RECT& r, const FillPaint& paint);

// ---------------------------------------------------------------------------------------------
// Cosmetic lines

// One line of GDI's one-pixel rule, from (x1,y1) towards (x2,y2): n = max(|dx|,|dy|) pixels,
// i = 0..n-1; the major coordinate steps by one, the minor one is
// ceil(m1 + i*dm/n - 1/2), i.e. round to nearest with exact halves going to the smaller value.
struct LineGeom {
    std::int32_t x1 = 0, y1 = 0;
    std::int64_t dx = 0, dy = 0;
    std::int64_t n = 0;
    bool xMajor = true;

    LineGeom() = default;
    LineGeom(std::int32_t ax, std::int32_t ay, std::int32_t bx, std::int32_t by);
    // The minor-axis offset of pixel i from the start, and the remainder
    // r = (2*i*dm - n) - 2n*offset, which lies in (-2n, 0]; r drives the incremental stepper.
    [[nodiscard]] std::pair<std::int64_t, std::int64_t> MinorAt(std::int64_t i) const;
    [[nodiscard]] POINT PixelAt(std::int64_t i) const;
    // The indices [i0, i1) of the pixels lying inside rect; {0, 0} when none do. The pixels
    // move monotonically along both axes, so those inside any rect are one contiguous run.
    [[nodiscard]] std::pair<std::int64_t, std::int64_t> RangeIn(const RECT& r) const;
};

// Pixel pattern of a styled pen: pixel k of a figure is "on" when on[k % period].
struct DashPattern {
    std::int32_t period = 0;   // 0: solid
    std::uint32_t onBits = 0;  // bit k set: position k is a dash pixel (period <= 32)
    [[nodiscard]] bool On(std::int64_t k) const {
        return period == 0 || ((onBits >> static_cast<unsigned>(k % period)) & 1u) != 0;
    }
};

inline RECT Intersect(const RECT& a, const RECT& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

// A 64-bit coordinate saturated into the 32-bit range. Every bitmap lies well inside that range,
// so an edge that saturates is beyond any pixel and clips the same.
constexpr std::int32_t Saturate(std::int64_t v) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(v, INT32_MIN, INT32_MAX));
}

// Blit-family extents: a negative width at x covers [x+w+1, x+1), the anchor pixel included.
// Extents are 64-bit so that differences of 32-bit edges can be passed as they are.
inline RECT BlitRect(std::int64_t x, std::int64_t y, std::int64_t w, std::int64_t h) {
    const std::int64_t x0 = w < 0 ? x + w + 1 : x, x1 = w < 0 ? x + 1 : x + w;
    const std::int64_t y0 = h < 0 ? y + h + 1 : y, y1 = h < 0 ? y + 1 : y + h;
    return {Saturate(x0), Saturate(y0), Saturate(x1), Saturate(y1)};
}

// Draws pixels [i0, i1) of the line, all of which lie inside the surface. Pixel i uses pattern
// position phase + i; gaps use gapRop when drawGaps is set and are skipped otherwise.
void DrawLinePixels(const Surface& s, const LineGeom& line, std::int64_t i0, std::int64_t i1,
                    RopPair rop, const DashPattern& dash, std::int64_t phase, bool drawGaps,
                    RopPair gapRop);

}  // namespace korvex::platform::sim
