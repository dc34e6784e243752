// SimGdi: region objects, per-DC clipping and region painting.

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform::sim {

// Regions are data, not drawing, so they cannot be cut to a bitmap. They are bounded as GDI on NT
// bounds them: coordinates are clamped to +-2^27 (kCoordLimit), the elliptic part of a region is
// at most kMaxRegionRects pixels each way (it is built row by row), and a region of more than
// kMaxRegionRects rects is refused: the call returns no region or ERROR, as when GDI runs out of
// memory, and the regions passed in stay as they were.
namespace {

std::int32_t ClampCoord(std::int32_t v) {
    return std::clamp(v, -kCoordLimit, kCoordLimit);
}

}  // namespace

HRGN SimGdi::CreateRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) {
    l = ClampCoord(l);
    t = ClampCoord(t);
    r = ClampCoord(r);
    b = ClampCoord(b);
    if (l > r) std::swap(l, r);
    if (t > b) std::swap(t, b);
    return HRGN{Allocate(RegionObj{Region::FromRect({l, t, r, b})})};
}

HRGN SimGdi::CreateRoundRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                                std::int32_t w, std::int32_t h) {
    l = ClampCoord(l);
    t = ClampCoord(t);
    r = ClampCoord(r);
    b = ClampCoord(b);
    // The corner ellipse never exceeds the box, whose sides are now at most 2^28.
    w = static_cast<std::int32_t>(
        std::min<std::int64_t>(std::llabs(w), std::llabs(std::int64_t{r} - l)));
    h = static_cast<std::int32_t>(
        std::min<std::int64_t>(std::llabs(h), std::llabs(std::int64_t{b} - t)));
    if (w > kMaxRegionRects || h > kMaxRegionRects) return {};
    return HRGN{Allocate(RegionObj{Region::FromRoundRect(l, t, r, b, w, h)})};
}

HRGN SimGdi::CreateEllipticRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) {
    l = ClampCoord(l);
    t = ClampCoord(t);
    r = ClampCoord(r);
    b = ClampCoord(b);
    if (l > r) std::swap(l, r);
    if (t > b) std::swap(t, b);
    if (std::int64_t{r} - l > kMaxRegionRects || std::int64_t{b} - t > kMaxRegionRects) return {};
    return HRGN{Allocate(RegionObj{Region::FromRoundRect(l, t, r, b, r - l, b - t)})};
}

HRGN SimGdi::CreatePolygonRgn(std::span<const POINT> points, int fillMode) {
    if (points.size() < 2 || (fillMode != ALTERNATE && fillMode != WINDING)) return {};
    std::vector<POINT> clamped(points.begin(), points.end());
    for (POINT& p : clamped) p = {ClampCoord(p.x), ClampCoord(p.y)};
    std::optional<Region> region = Region::FromPolygon(
        clamped, fillMode, RECT{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, kMaxRegionRects);
    if (!region) return {};
    return HRGN{Allocate(RegionObj{std::move(*region)})};
}

int SimGdi::CombineRgn(HRGN dest, HRGN src1, HRGN src2, int mode) {
    RegionObj* d = Find<RegionObj>(dest.value);
    const RegionObj* a = Find<RegionObj>(src1.value);
    if (!d || !a || mode < RGN_AND || mode > RGN_COPY) return RGN_ERROR;
    if (mode == RGN_COPY) {
        d->region = a->region;
        return d->region.Type();
    }
    const RegionObj* b = Find<RegionObj>(src2.value);
    if (!b) return RGN_ERROR;
    std::optional<Region> combined = Region::Combine(a->region, b->region, mode, kMaxRegionRects);
    if (!combined) return RGN_ERROR;
    d->region = std::move(*combined);  // dest may alias a source
    return d->region.Type();
}

// A region moved past +-2^27 is refused and stays where it was.
int SimGdi::OffsetRgn(HRGN region, std::int32_t dx, std::int32_t dy) {
    RegionObj* r = Find<RegionObj>(region.value);
    if (!r) return RGN_ERROR;
    if (!r->region.IsEmpty()) {
        const RECT box = r->region.Box();
        auto fits = [](std::int64_t v) { return v >= -kCoordLimit && v <= kCoordLimit; };
        if (!fits(std::int64_t{box.left} + dx) || !fits(std::int64_t{box.right} + dx) ||
            !fits(std::int64_t{box.top} + dy) || !fits(std::int64_t{box.bottom} + dy))
            return RGN_ERROR;
        r->region.Offset(dx, dy);
    }
    return r->region.Type();
}

bool SimGdi::PtInRegion(HRGN region, std::int32_t x, std::int32_t y) {
    const RegionObj* r = Find<RegionObj>(region.value);
    return r && r->region.Contains(x, y);
}

int SimGdi::GetRgnBox(HRGN region, RECT* box) {
    const RegionObj* r = Find<RegionObj>(region.value);
    if (!r) return RGN_ERROR;
    if (box) *box = r->region.Box();
    return r->region.Type();
}

int SimGdi::SelectClipRgn(HDC hdc, HRGN region) {
    DcObj* dc = Dc(hdc);
    if (!dc) return RGN_ERROR;
    if (!region) {
        dc->clip.reset();
    } else {
        const RegionObj* r = Find<RegionObj>(region.value);
        if (!r) return RGN_ERROR;
        dc->clip = r->region;  // a copy: later changes to the region do not move the clip
    }
    RefreshVisible(*dc);
    return dc->visible.Type();
}

// Region painting goes through the DC's ROP2, unlike FillRect.
bool SimGdi::PaintRgn(HDC hdc, HRGN region) {
    DcObj* dc = Dc(hdc);
    const RegionObj* r = Find<RegionObj>(region.value);
    if (!dc || !r) return false;
    if (!dc->brushData.null) PaintRegion(*dc, r->region, dc->brushRop);
    return true;
}

bool SimGdi::FillRgn(HDC hdc, HRGN region, HBRUSH brush) {
    DcObj* dc = Dc(hdc);
    const RegionObj* r = Find<RegionObj>(region.value);
    const BrushObj* b = Find<BrushObj>(brush.value);
    if (!dc || !r || !b) return false;
    if (!b->null) PaintRegion(*dc, r->region, PaintFor(*dc, *b, dc->rop2));
    return true;
}

// The frame is the region minus the pixels whose neighbours w across and h down/up are all
// inside it: a ring w wide at the sides and h high at top and bottom.
bool SimGdi::FrameRgn(HDC hdc, HRGN region, HBRUSH brush, std::int32_t w, std::int32_t h) {
    DcObj* dc = Dc(hdc);
    const RegionObj* r = Find<RegionObj>(region.value);
    const BrushObj* b = Find<BrushObj>(brush.value);
    if (!dc || !r || !b) return false;
    const Region& source = r->region;
    Region inner = source;
    // Region objects lie within +-2^27, so a shift of 2^28 already leaves nothing in common; a
    // larger one is the same frame.
    const auto limit = [](std::int32_t v) {
        return static_cast<std::int32_t>(
            std::min<std::int64_t>(std::llabs(v), std::int64_t{2} * kCoordLimit));
    };
    w = limit(w);
    h = limit(h);
    const std::pair<std::int32_t, std::int32_t> shifts[] = {{-w, 0}, {w, 0}, {0, -h}, {0, h}};
    for (const auto& [dx, dy] : shifts) {
        Region moved = source;
        moved.Offset(dx, dy);
        inner = Region::Combine(inner, moved, RGN_AND);
    }
    if (!b->null)
        PaintRegion(*dc, Region::Combine(source, inner, RGN_DIFF), PaintFor(*dc, *b, dc->rop2));
    return true;
}

}  // namespace korvex::platform::sim
