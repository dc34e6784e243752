// SimGdi: DrawEdge, the 3D border painter of USER.

#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform::sim {

namespace {

constexpr unsigned kOuter = BDR_RAISEDOUTER | BDR_SUNKENOUTER;
constexpr unsigned kInner = BDR_RAISEDINNER | BDR_SUNKENINNER;

// Stroke colours per edge & 15: left/top outer, right/bottom outer, left/top inner, right/bottom
// inner. L = 3DLIGHT, D = 3DDKSHADOW, S = BTNSHADOW, H = BTNHIGHLIGHT, - = not drawn.
//
//   edge          LTO RBO LTI RBI     with BF_SOFT
//    1 RAISEDOUTER  L   D   -   -      LTO H
//    2 SUNKENOUTER  S   H   -   -      LTO D
//    4 RAISEDINNER  H   S   -   -      LTO L      a lone inner flag paints the outer ring
//    8 SUNKENINNER  D   L   -   -      LTO S
//    5 RAISED       L   D   H   S      LTO H, LTI L
//    6 ETCHED       S   H   H   S      LTO D, LTI L
//    9 BUMP         L   D   D   L      LTO H, LTI S
//   10 SUNKEN       S   H   D   L      LTO D, LTI S
//   13, 14          as 1 and 2 (both inner bits: the inner ring is dropped)
//   0, 3, 7, 11, 12, 15: nothing
//
// BF_FLAT: outer ring BTNSHADOW (BTNFACE for a lone inner flag), inner ring BTNFACE.
// BF_MONO: outer ring WINDOWFRAME (WINDOW for a lone inner flag), inner ring WINDOW.
struct EdgeColours {
    int lto, rbo, lti, rbi;
};
constexpr int L = COLOR_3DLIGHT, D = COLOR_3DDKSHADOW, S = COLOR_BTNSHADOW, H = COLOR_BTNHIGHLIGHT;
constexpr int F = COLOR_BTNFACE, WF = COLOR_WINDOWFRAME, W = COLOR_WINDOW, N = -1;

constexpr EdgeColours kNormal[16] = {{N, N, N, N}, {L, D, N, N}, {S, H, N, N}, {N, N, N, N},
                                     {H, S, N, N}, {L, D, H, S}, {S, H, H, S}, {N, N, N, N},
                                     {D, L, N, N}, {L, D, D, L}, {S, H, D, L}, {N, N, N, N},
                                     {N, N, N, N}, {L, D, N, N}, {S, H, N, N}, {N, N, N, N}};
constexpr EdgeColours kSoft[16] = {{N, N, N, N}, {H, D, N, N}, {D, H, N, N}, {N, N, N, N},
                                   {L, S, N, N}, {H, D, L, S}, {D, H, L, S}, {N, N, N, N},
                                   {S, L, N, N}, {H, D, S, L}, {D, H, S, L}, {N, N, N, N},
                                   {N, N, N, N}, {H, D, N, N}, {D, H, N, N}, {N, N, N, N}};

bool HasOuterRing(unsigned edge) {
    return (edge & (kOuter | kInner)) != 0;
}
bool HasInnerRing(unsigned edge) {
    return (edge & kOuter) != 0 && (edge & kInner) != 0;
}

EdgeColours ColoursFor(unsigned edge, unsigned flags) {
    const unsigned e = edge & 15;
    if (flags & (BF_MONO | BF_FLAT)) {
        const bool mono = (flags & BF_MONO) != 0;
        const bool loneInner = (e & kOuter) == 0;
        const int outer = !HasOuterRing(e) ? N : loneInner ? (mono ? W : F) : (mono ? WF : S);
        const int inner = HasInnerRing(e) ? (mono ? W : F) : N;
        return {outer, outer, inner, inner};
    }
    return (flags & BF_SOFT) ? kSoft[e] : kNormal[e];
}

}  // namespace

bool SimGdi::DrawEdge(HDC hdc, RECT* rect, unsigned edge, unsigned flags) {
    DcObj* dc = Dc(hdc);
    if (!dc || !rect) return false;
    if (flags & BF_DIAGONAL) return DrawDiagonalEdge(hdc, rect, edge, flags);
    // Both inner or both outer bits make no sense: no middle, and the call reports failure.
    const bool valid = !(((edge & kInner) == kInner || (edge & kOuter) == kOuter) &&
                         !(flags & (BF_FLAT | BF_MONO)));
    const EdgeColours c = ColoursFor(edge, flags);
    const RECT r = *rect;
    // Edges one or two pixels in from a rect at the 32-bit limits are worked out in 64 bits; the
    // adjusted rect saturates.
    auto fill = [&](int colour, std::int64_t x, std::int64_t y, std::int64_t w, std::int64_t h) {
        // Strokes are PATCOPY fills: DrawEdge ignores the DC's pen, brush and ROP2.
        if (colour >= 0)
            PatBltBrush(*dc, x, y, w, h, PATCOPY,
                        BrushObj{false, sysColors_[static_cast<std::size_t>(colour)]});
    };
    const bool left = flags & BF_LEFT, top = flags & BF_TOP, right = flags & BF_RIGHT,
               bottom = flags & BF_BOTTOM;
    // Inner strokes stop one pixel short of a corner only where both of its sides are drawn.
    const std::int64_t kTL = top && left, kTR = top && right, kBL = bottom && left,
                       kBR = bottom && right;
    const std::int64_t l = r.left, t = r.top, rr = r.right, b = r.bottom;
    const std::int64_t w = rr - l, h = b - t;
    if (top) fill(c.lto, l, t, w, 1);
    if (left) fill(c.lto, l, t, 1, h);
    if (bottom) fill(c.rbo, l, b - 1, w, 1);
    if (right) fill(c.rbo, rr - 1, t, 1, h);
    if (top) fill(c.lti, l + kTL, t + 1, w - kTL - kTR, 1);
    if (left) fill(c.lti, l + 1, t + kTL, 1, h - kTL - kBL);
    if (bottom) fill(c.rbi, l + kBL, b - 2, w - kBL - kBR, 1);
    if (right) fill(c.rbi, rr - 2, t + kTR, 1, h - kTR - kBR);

    const std::int64_t add = (HasOuterRing(edge) ? 1 : 0) + (HasInnerRing(edge) ? 1 : 0);
    const std::int64_t il = left ? l + add : l, ir = right ? rr - add : rr;
    const std::int64_t it = top ? t + add : t, ib = bottom ? b - add : b;
    if ((flags & BF_MIDDLE) && valid)
        fill((flags & BF_MONO) ? COLOR_WINDOW : COLOR_BTNFACE, il, it, ir - il, ib - it);
    const RECT inner{Saturate(il), Saturate(it), Saturate(ir), Saturate(ib)};
    if (flags & BF_ADJUST) *rect = inner;
    return valid;
}

// The diagonal variant strokes one or two lines across the square of the rect's smaller side and
// fills the triangle or quadrilateral beside them; which corner it runs to follows the side flags.
bool SimGdi::DrawDiagonalEdge(HDC hdc, RECT* rc, unsigned edge, unsigned flags) {
    // 64-bit throughout: the corners of a rect at the 32-bit limits plus the diameter do not fit
    // 32 bits; the points handed on saturate.
    const std::int64_t rl = rc->left, rt = rc->top, rr = rc->right, rb = rc->bottom;
    const std::int64_t width = rr - rl, height = rb - rt;
    const std::int64_t diam = width > height ? height : width;
    const bool valid = !(((edge & kInner) == kInner || (edge & kOuter) == kOuter) &&
                         !(flags & (BF_FLAT | BF_MONO)));
    const std::int64_t add = (HasOuterRing(edge) ? 1 : 0) + (HasInnerRing(edge) ? 1 : 0);

    // One colour per ring: the right/bottom column when BF_BOTTOM is set, else the left/top one.
    int innerColour, outerColour;
    const unsigned e = edge & 15;
    if (flags & (BF_MONO | BF_FLAT)) {
        const EdgeColours c = ColoursFor(edge, flags);
        outerColour = c.lto;
        innerColour = c.lti;
    } else {
        const EdgeColours c = (flags & BF_SOFT) ? kSoft[e] : kNormal[e];
        const EdgeColours n = kNormal[e];
        outerColour = (flags & BF_BOTTOM) ? n.rbo : c.lto;
        innerColour = (flags & BF_BOTTOM) ? n.rbi : c.lti;
    }

    DcObj* dc = Dc(hdc);
    const PenObj savedPen = dc->penData;
    const POINT savedCp = dc->cp;
    auto usePen = [&](int colour) {
        DcObj* d = Dc(hdc);
        d->penData = colour < 0 ? PenObj{PS_NULL, 0, 0}
                                : PenObj{PS_SOLID, 1, sysColors_[static_cast<std::size_t>(colour)]};
        RefreshRops(*d);
    };
    auto line = [&](std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1) {
        MoveToEx(hdc, Saturate(x0), Saturate(y0), nullptr);
        LineTo(hdc, Saturate(x1), Saturate(y1));
    };
    auto pt = [](std::int64_t x, std::int64_t y) { return POINT{Saturate(x), Saturate(y)}; };

    std::int64_t spx = 0, spy = 0, epx = 0, epy = 0;
    switch (flags & BF_RECT) {
        case 0:
        case BF_LEFT:
        case BF_BOTTOM:
        case BF_BOTTOM | BF_LEFT:  // towards the bottom-left
            epx = rl - 1;
            spx = epx + diam;
            epy = rb;
            spy = epy - diam;
            break;
        case BF_TOPLEFT:
        case BF_BOTTOMRIGHT:  // towards the top-left
            epx = rl - 1;
            spx = epx + diam;
            epy = rt - 1;
            spy = epy + diam;
            break;
        default:  // towards the top-right
            spx = rl;
            epx = spx + diam;
            spy = rb - 1;
            epy = spy - diam;
            break;
    }
    usePen(outerColour);
    line(spx, spy, epx, epy);
    usePen(innerColour);

    POINT pts[4]{};
    switch (flags & (BF_RECT | BF_DIAGONAL)) {
        case BF_DIAGONAL | BF_BOTTOM | BF_LEFT:
        case BF_DIAGONAL | BF_BOTTOM:
        case BF_DIAGONAL:
        case BF_DIAGONAL | BF_LEFT:
            line(spx - 1, spy, epx, epy - 1);
            pts[0] = pt(spx - add, spy);
            pts[1] = pt(rl, rt);
            pts[2] = pt(epx + 1, epy - 1 - add);
            pts[3] = pts[2];
            break;
        case BF_DIAGONAL | BF_BOTTOM | BF_RIGHT:
            line(spx - 1, spy, epx, epy + 1);
            pts[0] = pt(spx - add, spy);
            pts[1] = pt(rl, rb - 1);
            pts[2] = pt(epx + 1, epy + 1 + add);
            pts[3] = pts[2];
            break;
        case BF_DIAGONAL | BF_BOTTOM | BF_RIGHT | BF_TOP:
        case BF_DIAGONAL | BF_RECT:
        case BF_DIAGONAL | BF_TOP | BF_RIGHT:
        case BF_DIAGONAL | BF_RIGHT | BF_TOP | BF_LEFT:
            line(spx + 1, spy, epx, epy + 1);
            pts[0] = pt(epx - 1, epy + 1 + add);
            pts[1] = pt(rr - 1, rt + add);
            pts[2] = pt(rr - 1, rb - 1);
            pts[3] = pt(spx + add, spy);
            break;
        case BF_DIAGONAL | BF_TOP | BF_LEFT:
            line(spx, spy - 1, epx + 1, epy);
            pts[0] = pt(epx + 1 + add, epy + 1);
            pts[1] = pt(rr - 1, rt);
            pts[2] = pt(rr - 1, rb - 1 - add);
            pts[3] = pt(spx, spy - add);
            break;
        case BF_DIAGONAL | BF_TOP:
        case BF_DIAGONAL | BF_BOTTOM | BF_TOP:
        case BF_DIAGONAL | BF_BOTTOM | BF_TOP | BF_LEFT:
            line(spx + 1, spy - 1, epx, epy);
            pts[0] = pt(epx - 1, epy + 1);
            pts[1] = pt(rr - 1, rt);
            pts[2] = pt(rr - 1, rb - 1 - add);
            pts[3] = pt(spx + add, spy - add);
            break;
        case BF_DIAGONAL | BF_RIGHT:
        case BF_DIAGONAL | BF_RIGHT | BF_LEFT:
        case BF_DIAGONAL | BF_RIGHT | BF_LEFT | BF_BOTTOM:
            line(spx, spy, epx - 1, epy + 1);
            pts[0] = pt(spx, spy);
            pts[1] = pt(rl, rt + add);
            pts[2] = pt(epx - 1 - add, epy + 1 + add);
            pts[3] = pts[2];
            break;
        default:
            break;
    }

    if ((flags & BF_MIDDLE) && valid) {
        DcObj* d = Dc(hdc);
        const BrushObj savedBrush = d->brushData;
        const COLORREF face = sysColors_[(flags & BF_MONO) ? COLOR_WINDOW : COLOR_BTNFACE];
        d->brushData = BrushObj{false, face};
        d->penData = PenObj{PS_SOLID, 1, face};
        RefreshRops(*d);
        Polygon(hdc, pts);
        d->brushData = savedBrush;
    }
    if (flags & BF_ADJUST) {
        if (flags & BF_LEFT) rc->left = Saturate(rl + add);
        if (flags & BF_RIGHT) rc->right = Saturate(rr - add);
        if (flags & BF_TOP) rc->top = Saturate(rt + add);
        if (flags & BF_BOTTOM) rc->bottom = Saturate(rb - add);
    }
    DcObj* d = Dc(hdc);
    d->penData = savedPen;
    d->cp = savedCp;
    RefreshRops(*d);
    return valid;
}

}  // namespace korvex::platform::sim
