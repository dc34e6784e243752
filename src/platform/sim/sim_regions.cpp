// SimGdi: region objects, per-DC clipping and region painting.

#include <utility>

#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform::sim {

HRGN SimGdi::CreateRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) {
    if (l > r) std::swap(l, r);
    if (t > b) std::swap(t, b);
    return HRGN{Allocate(RegionObj{Region::FromRect({l, t, r, b})})};
}

HRGN SimGdi::CreateRoundRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                                std::int32_t w, std::int32_t h) {
    return HRGN{Allocate(RegionObj{Region::FromRoundRect(l, t, r, b, w, h)})};
}

HRGN SimGdi::CreateEllipticRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) {
    if (l > r) std::swap(l, r);
    if (t > b) std::swap(t, b);
    return HRGN{Allocate(RegionObj{Region::FromRoundRect(l, t, r, b, r - l, b - t)})};
}

HRGN SimGdi::CreatePolygonRgn(std::span<const POINT> points, int fillMode) {
    if (points.size() < 2 || (fillMode != ALTERNATE && fillMode != WINDING)) return {};
    return HRGN{Allocate(RegionObj{Region::FromPolygon(points, fillMode)})};
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
    d->region = Region::Combine(a->region, b->region, mode);  // dest may alias a source
    return d->region.Type();
}

int SimGdi::OffsetRgn(HRGN region, std::int32_t dx, std::int32_t dy) {
    RegionObj* r = Find<RegionObj>(region.value);
    if (!r) return RGN_ERROR;
    r->region.Offset(dx, dy);
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
