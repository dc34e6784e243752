// SimGdi: filled shapes, rect fills, PatBlt and single pixels.

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <optional>
#include <utility>
#include <vector>

#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform::sim {

namespace {

std::int64_t Width64(const RECT& r) {
    return std::int64_t{r.right} - r.left;
}
std::int64_t Height64(const RECT& r) {
    return std::int64_t{r.bottom} - r.top;
}

void Normalise(std::int32_t& l, std::int32_t& t, std::int32_t& r, std::int32_t& b) {
    if (l > r) std::swap(l, r);
    if (t > b) std::swap(t, b);
}

bool OutsideCoordLimit(std::initializer_list<std::int32_t> values) {
    return std::any_of(values.begin(), values.end(),
                       [](std::int32_t v) { return v < -kCoordLimit || v > kCoordLimit; });
}

// A point of a RoundRect/Ellipse outline and its position in the whole outline.
struct OutlinePoint {
    std::int64_t pos = 0;
    POINT at{};
};

// The outline of a RoundRect/Ellipse in [l,r)x[t,b) with corner ellipse ew x eh, starting at the
// right end of the top-right arc and running counter-clockwise on screen: 4m points, the quadrant
// walked by the stepper and its three mirrors. Only the points inside keep are listed, and the
// ends of each arc, which the straight sides join; everything between two listed points that are
// not neighbours is a run of one-pixel steps outside keep.
struct RoundOutline {
    std::int64_t m = 0;
    std::vector<OutlinePoint> points;  // by position
};

RoundOutline BuildRoundOutline(std::int64_t l, std::int64_t t, std::int64_t r, std::int64_t b,
                               std::int64_t ew, std::int64_t eh, const RECT& keep) {
    struct Quadrant {
        std::int64_t k, x, y;
    };
    auto inKeep = [&](std::int64_t x, std::int64_t y) {
        return x >= keep.left && x < keep.right && y >= keep.top && y < keep.bottom;
    };
    // Screen columns of the right and left arcs, rows of the top and bottom ones.
    auto rightX = [&](const Quadrant& q) { return r - ew + q.x; };
    auto leftX = [&](const Quadrant& q) { return l + ew - 1 - q.x; };
    auto topY = [&](const Quadrant& q) { return t + eh - 1 - q.y; };
    auto bottomY = [&](const Quadrant& q) { return b - eh + q.y; };

    std::vector<Quadrant> kept;
    Quadrant last{};
    std::int64_t k = 0;
    const std::int64_t a = ew - 1;
    WalkEllipseQuadrant(ew, eh, [&](std::int64_t i, std::int64_t j) {
        const Quadrant q{k, a - i, eh / 2 + j};
        if (q.x < ew / 2) return false;
        if (k == 0 || inKeep(rightX(q), topY(q)) || inKeep(leftX(q), topY(q)) ||
            inKeep(leftX(q), bottomY(q)) || inKeep(rightX(q), bottomY(q)))
            kept.push_back(q);
        last = q;
        ++k;
        return true;
    });
    RoundOutline out;
    out.m = k;
    if (kept.empty() || kept.back().k != last.k) kept.push_back(last);
    const std::int64_t m = k;
    auto add = [&](std::int64_t pos, const Quadrant& q, std::int64_t x, std::int64_t y) {
        if (q.k == 0 || q.k == m - 1 || inKeep(x, y))
            out.points.push_back(
                {pos, POINT{static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)}});
    };
    for (const Quadrant& q : kept) add(q.k, q, rightX(q), topY(q));
    for (std::size_t n = kept.size(); n-- > 0;)
        add(2 * m - 1 - kept[n].k, kept[n], leftX(kept[n]), topY(kept[n]));
    for (const Quadrant& q : kept) add(2 * m + q.k, q, leftX(q), bottomY(q));
    for (std::size_t n = kept.size(); n-- > 0;)
        add(4 * m - 1 - kept[n].k, kept[n], rightX(kept[n]), bottomY(kept[n]));
    return out;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Fill helpers (device coordinates, clipped here)

void SimGdi::FillClipped(DcObj& dc, const RECT& rect, const FillPaint& paint) {
    if (rect.IsEmpty() || paint.IsNop()) return;
    for (const Region::Band& band : dc.visible.Bands()) {
        if (band.bottom <= rect.top) continue;
        if (band.top >= rect.bottom) break;
        for (std::size_t k = 0; k < band.xs.size(); k += 2) {
            const RECT r = Intersect({band.xs[k], band.top, band.xs[k + 1], band.bottom}, rect);
            if (!r.IsEmpty()) sim::FillRect(dc.surface, r, paint);
        }
    }
}

void SimGdi::PaintRegion(DcObj& dc, const Region& region, const FillPaint& paint) {
    if (region.Type() == SIMPLEREGION) {
        FillClipped(dc, region.Box(), paint);
        return;
    }
    Region::Combine(region, dc.visible, RGN_AND).ForEachRect([&](const RECT& r) {
        sim::FillRect(dc.surface, r, paint);
    });
}

bool SimGdi::PatBltBrush(DcObj& dc, std::int64_t x, std::int64_t y, std::int64_t w, std::int64_t h,
                         DWORD rop, const BrushObj& brush) {
    if (Rop3UsesSource(rop)) return false;  // PatBlt has no source
    if (Rop3UsesPattern(rop) && brush.null) return true;
    // A code that ignores the pattern touches every pixel, whatever brush is selected.
    const int rop2 = Rop3ToRop2(rop);
    FillClipped(dc, BlitRect(x, y, w, h),
                Rop3UsesPattern(rop) ? PaintFor(dc, brush, rop2) : FillPaint(Rop2Pair(rop2, 0)));
    return true;
}

// ---------------------------------------------------------------------------------------------
// Rect fills: their own ROP3, never the DC's ROP2

bool SimGdi::PatBlt(HDC hdc, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                    DWORD rop) {
    DcObj* dc = Dc(hdc);
    return dc && PatBltBrush(*dc, x, y, w, h, rop, dc->brushData);
}

int SimGdi::FillRect(HDC hdc, const RECT& rect, HBRUSH brush) {
    DcObj* dc = Dc(hdc);
    if (!dc) return 0;
    return PatBltBrush(*dc, rect.left, rect.top, Width64(rect), Height64(rect), PATCOPY,
                       ResolveBrush(*dc, brush))
               ? 1
               : 0;
}

int SimGdi::FrameRect(HDC hdc, const RECT& rect, HBRUSH brush) {
    DcObj* dc = Dc(hdc);
    if (!dc || rect.IsEmpty()) return 0;
    // Unlike FillRect, FrameRect selects the handle as it is (user32 FrameRect): a system colour
    // number (COLOR_x + 1) or any other non-brush makes the selection fail and nothing is drawn.
    const BrushObj* found = Find<BrushObj>(brush.value);
    if (!found) return 0;
    const BrushObj b = *found;
    const std::int64_t w = Width64(rect), h = Height64(rect);
    PatBltBrush(*dc, rect.left, rect.top, 1, h, PATCOPY, b);
    PatBltBrush(*dc, std::int64_t{rect.right} - 1, rect.top, 1, h, PATCOPY, b);
    PatBltBrush(*dc, rect.left, rect.top, w, 1, PATCOPY, b);
    PatBltBrush(*dc, rect.left, std::int64_t{rect.bottom} - 1, w, 1, PATCOPY, b);
    return 1;
}

bool SimGdi::InvertRect(HDC hdc, const RECT& rect) {
    DcObj* dc = Dc(hdc);
    return dc && PatBltBrush(*dc, rect.left, rect.top, Width64(rect), Height64(rect), DSTINVERT,
                             dc->brushData);
}

// ---------------------------------------------------------------------------------------------
// Pixels: SetPixel goes through the ROP2 like a one-pixel pen

COLORREF SimGdi::SetPixel(HDC hdc, std::int32_t x, std::int32_t y, COLORREF color) {
    DcObj* dc = Dc(hdc);
    if (!dc || !dc->visible.Contains(x, y)) return CLR_INVALID;
    color &= 0x00FFFFFF;
    std::uint32_t& pixel = dc->surface.Row(y)[x];
    pixel = Rop2Pair(dc->rop2, ToPixel(color)).Apply(pixel);
    return color;
}

COLORREF SimGdi::GetPixel(HDC hdc, std::int32_t x, std::int32_t y) {
    DcObj* dc = Dc(hdc);
    if (!dc || !dc->visible.Contains(x, y)) return CLR_INVALID;
    return ToColorRef(dc->surface.Row(y)[x] & 0x00FFFFFF);
}

// ---------------------------------------------------------------------------------------------
// Shapes: pen outline plus brush interior, both through the DC's ROP2

bool SimGdi::Rectangle(HDC hdc, std::int32_t l32, std::int32_t t32, std::int32_t r32,
                       std::int32_t b32) {
    DcObj* dc = Dc(hdc);
    if (!dc) return false;
    Normalise(l32, t32, r32, b32);
    if (l32 == r32 || t32 == b32) return true;
    // 64-bit edges: a rect at the 32-bit limits moved by half a pen width does not fit 32 bits.
    // What is handed on saturates, which changes nothing inside a bitmap.
    std::int64_t l = l32, t = t32, r = r32, b = b32;
    const PenObj& pen = dc->penData;
    const std::int32_t w = pen.IsNull() ? 0 : std::max(pen.width, 1);
    if (pen.style == PS_INSIDEFRAME && w > 1) {
        // Keep the wide outline inside the rect (get_pen_device_rect); Wine does not check the
        // shrunk rect again.
        l += w / 2;
        t += w / 2;
        r -= (w - 1) / 2;
        b -= (w - 1) / 2;
    }
    auto pt = [](std::int64_t x, std::int64_t y) { return POINT{Saturate(x), Saturate(y)}; };
    // Start at the top-right corner and go counter-clockwise: the dash phase of a styled pen
    // depends on it (dibdrv_Rectangle). Each corner is hit once as the start of the next side.
    const POINT corners[4] = {pt(r - 1, t), pt(l, t), pt(l, b - 1), pt(r - 1, b - 1)};
    if (pen.IsWide()) {
        // The interior is the rect one short on the right and bottom, minus the outline.
        const Region interior =
            Region::FromRect({Saturate(std::min(l, r - 1)), Saturate(std::min(t, b - 1)),
                              Saturate(std::max(l, r - 1)), Saturate(std::max(t, b - 1))});
        PaintFigure(*dc, corners, dc->brushData.null ? nullptr : &interior);
        return true;
    }
    if (!pen.IsNull()) StrokeFigure(*dc, corners, true);
    if (!dc->brushData.null) {
        // Inside the outline; with no pen that is one pixel short on the right and bottom.
        const std::int64_t in = (w + 1) / 2, out = w / 2;
        FillClipped(
            *dc, {Saturate(l + in), Saturate(t + in), Saturate(r - 1 - out), Saturate(b - 1 - out)},
            dc->brushRop);
    }
    return true;
}

void SimGdi::PaintFigure(DcObj& dc, std::span<const POINT> outline, const Region* interior) {
    if (!dc.penData.IsWide()) {
        if (interior) PaintRegion(dc, *interior, dc.brushRop);
        StrokeFigure(dc, outline, true);
        return;
    }
    const Region pen = WideStrokeRegion(dc.penData, outline, true, dc.surface.Bounds());
    if (interior) PaintRegion(dc, Region::Combine(*interior, pen, RGN_DIFF), dc.brushRop);
    PaintRegion(dc, pen, dc.penRop);
}

bool SimGdi::RoundRect(HDC hdc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                       std::int32_t ew, std::int32_t eh) {
    DcObj* dc = Dc(hdc);
    if (!dc || OutsideCoordLimit({l, t, r, b})) return false;
    Normalise(l, t, r, b);
    if (l == r || t == b) return true;
    const std::int32_t l0 = l, t0 = t, r0 = r, b0 = b;
    const PenObj& pen = dc->penData;
    if (pen.style == PS_INSIDEFRAME && pen.width > 1) {
        l += pen.width / 2;
        t += pen.width / 2;
        r -= (pen.width - 1) / 2;
        b -= (pen.width - 1) / 2;
    }
    // The corner is limited by the rect after the inside-frame shrink (dibdrv_RoundRect).
    ew = static_cast<std::int32_t>(std::min<std::int64_t>(std::int64_t{r} - l, std::llabs(ew)));
    eh = static_cast<std::int32_t>(std::min<std::int64_t>(std::int64_t{b} - t, std::llabs(eh)));
    if (ew <= 2 || eh <= 2) return Rectangle(hdc, l0, t0, r0, b0);
    if (ew > kMaxCurve || eh > kMaxCurve) return false;
    PaintRoundFigure(*dc, l, t, r, b, ew, eh);
    return true;
}

// Clip first: the outline keeps only the points near the visible box and the interior only the
// visible rows, so a shape millions of pixels across on a small bitmap costs the stepper's walk
// and what is visible, not its size in memory.
void SimGdi::PaintRoundFigure(DcObj& dc, std::int32_t l, std::int32_t t, std::int32_t r,
                              std::int32_t b, std::int32_t ew, std::int32_t eh) {
    if (dc.visible.IsEmpty()) return;
    const RECT vis = dc.visible.Box();
    const PenObj& pen = dc.penData;
    const bool wide = pen.IsWide();
    // A point farther out than half a pen width and a step cannot touch the box.
    const std::int64_t margin = wide ? pen.width / 2 + 3 : 1;
    const RECT keep{Saturate(vis.left - margin), Saturate(vis.top - margin),
                    Saturate(vis.right + margin), Saturate(vis.bottom + margin)};
    const RoundOutline outline = BuildRoundOutline(l, t, r, b, ew, eh, keep);
    const std::vector<OutlinePoint>& pts = outline.points;
    const std::int64_t total = 4 * outline.m;
    // Is the point after entry n in the outline the next entry (the last wraps to the first)?
    auto joined = [&](std::size_t n) {
        const std::int64_t next = n + 1 < pts.size() ? pts[n + 1].pos : pts.front().pos + total;
        return next == pts[n].pos + 1;
    };

    std::optional<Region> interior;
    // The interior covers the whole box; the region call loses a pixel on the right and
    // bottom, hence r + 1, b + 1.
    if (!dc.brushData.null)
        interior = Region::FromRoundRect(l, t, r + 1, b + 1, ew, eh, vis.top, vis.bottom);

    if (!wide) {
        if (interior) PaintRegion(dc, *interior, dc.brushRop);
        if (pen.IsNull()) return;
        // The dash phase counts every pixel before a point; the skipped runs are one-pixel steps.
        std::int64_t extra = 0;
        for (std::size_t n = 0; n < pts.size(); ++n) {
            if (!joined(n)) continue;
            const POINT to = pts[(n + 1) % pts.size()].at;
            extra += StrokeSegment(dc, pts[n].at, to, pts[n].pos + extra) - 1;
        }
        return;
    }
    // Runs of neighbouring points are open pieces of the figure; the one through the last point
    // goes on into the first. Without a gap the figure is whole and closed, as drawn before.
    std::vector<std::vector<POINT>> pieces(1);
    bool gap = false;
    for (std::size_t n = 0; n < pts.size(); ++n) {
        pieces.back().push_back(pts[n].at);
        if (n + 1 < pts.size() && !joined(n)) {
            gap = true;
            pieces.emplace_back();
        }
    }
    if (gap) {
        pieces.back().insert(pieces.back().end(), pieces.front().begin(), pieces.front().end());
        pieces.front().clear();
    }
    std::vector<std::span<const POINT>> figures(pieces.begin(), pieces.end());
    const Region stroke = WideStrokeRegion(pen, figures, !gap, dc.surface.Bounds());
    if (interior) PaintRegion(dc, Region::Combine(*interior, stroke, RGN_DIFF), dc.brushRop);
    PaintRegion(dc, stroke, dc.penRop);
}

bool SimGdi::Ellipse(HDC hdc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) {
    if (OutsideCoordLimit({l, t, r, b})) return false;
    Normalise(l, t, r, b);
    return RoundRect(hdc, l, t, r, b, r - l, b - t);
}

bool SimGdi::Polygon(HDC hdc, std::span<const POINT> points) {
    DcObj* dc = Dc(hdc);
    if (!dc || points.size() < 2) return false;
    if (dc->brushData.null) {
        PaintFigure(*dc, points, nullptr);
    } else {
        const Region interior = Region::FromPolygon(points, ALTERNATE, dc->surface.Bounds());
        PaintFigure(*dc, points, &interior);
    }
    return true;
}

}  // namespace korvex::platform::sim
