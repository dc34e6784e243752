#pragma once
// A pixel set stored as y-x bands, as GDI stores regions: bands of equal top/bottom sorted by y,
// each holding sorted, non-touching [x0, x1) spans; vertically adjacent bands with the same spans
// are merged, so equal pixel sets have equal representations.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/gdi.hpp"

namespace korvex::platform::sim {

// Zingl's integer ellipse stepper for the lower-right quadrant of a w x h box (w, h >= 2), run
// from the middle row outwards: state (i, j) is i steps in from the right edge and j rows below
// the middle row h/2. visit(i, j) sees every state, the first one (0, 0) included, before the
// stepper moves on, and stops it by returning false. Both tests of a step use the error terms
// from before the step. The terms reach 2^100 for the largest boxes, so those use 128 bits.
template <class T, class Visit>
void WalkEllipseQuadrantIn(std::int64_t w, std::int64_t h, Visit& visit) {
    const T a = w - 1, bb = h - 1, p = bb % 2;
    T sx = 4 * bb * bb * (1 - a), sy = 4 * a * a * (1 + p), e = sx + sy + a * a * p;
    const T stepX = 8 * bb * bb, stepY = 8 * a * a;
    std::int64_t i = 0, j = 0;
    while (visit(i, j)) {
        const T d = 2 * e;
        if (d >= sx) {
            ++i;
            sx += stepX;
            e += sx;
        }
        if (d <= sy) {
            ++j;
            sy += stepY;
            e += sy;
        }
    }
}
template <class Visit>
void WalkEllipseQuadrant(std::int64_t w, std::int64_t h, Visit&& visit) {
    // 64 bits hold every term while both sides stay below 2^19.
    if (w < (1 << 19) && h < (1 << 19)) {
        WalkEllipseQuadrantIn<std::int64_t>(w, h, visit);
    } else {
        __extension__ typedef __int128 Wide;
        WalkEllipseQuadrantIn<Wide>(w, h, visit);
    }
}

class Region {
  public:
    struct Band {
        std::int32_t top = 0;
        std::int32_t bottom = 0;
        std::vector<std::int32_t> xs;  // x0, x1, x0, x1, ...
        friend bool operator==(const Band&, const Band&) = default;
    };

    Region() = default;
    // The half-open rect; empty when it has no area. The caller normalises.
    static Region FromRect(const RECT& r);
    // GDI's CreateRoundRectRgn shape (one pixel smaller on the right and bottom than asked).
    static Region FromRoundRect(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                                std::int32_t ew, std::int32_t eh);
    // Only its rows inside [top, bottom): the work and memory follow those rows, not the shape,
    // except for the stepper's walk to them.
    static Region FromRoundRect(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                                std::int32_t ew, std::int32_t eh, std::int32_t top,
                                std::int32_t bottom);
    // Integer points inside the polygon, top/left edges in, bottom/right out.
    static Region FromPolygon(std::span<const POINT> points, int fillMode);
    // The same intersected with within; only the scanlines inside it are scanned.
    static Region FromPolygon(std::span<const POINT> points, int fillMode, const RECT& within);
    // The same, or nothing when it would take more than maxRects rects and scanlines worked out
    // (each scanline that differs from the one above is worked out once, whatever its height).
    static std::optional<Region> FromPolygon(std::span<const POINT> points, int fillMode,
                                             const RECT& within, std::int64_t maxRects);
    // RGN_AND, RGN_OR, RGN_XOR, RGN_DIFF (a minus b); RGN_COPY gives a.
    static Region Combine(const Region& a, const Region& b, int mode);
    // The same, or nothing when the result would hold more than maxRects rects.
    static std::optional<Region> Combine(const Region& a, const Region& b, int mode,
                                         std::int64_t maxRects);
    [[nodiscard]] std::int64_t RectCount() const;

    void Offset(std::int32_t dx, std::int32_t dy);
    [[nodiscard]] bool Contains(std::int32_t x, std::int32_t y) const;
    [[nodiscard]] bool IsEmpty() const { return bands_.empty(); }
    [[nodiscard]] RECT Box() const;
    // NULLREGION, SIMPLEREGION or COMPLEXREGION.
    [[nodiscard]] int Type() const;
    [[nodiscard]] const std::vector<Band>& Bands() const { return bands_; }
    [[nodiscard]] Region Intersect(const RECT& r) const {
        return Combine(*this, FromRect(r), RGN_AND);
    }
    friend bool operator==(const Region&, const Region&) = default;

    // Calls f(RECT) for every rect of the region in band order.
    template <class F>
    void ForEachRect(F&& f) const {
        for (const Band& band : bands_)
            for (std::size_t i = 0; i < band.xs.size(); i += 2)
                f(RECT{band.xs[i], band.top, band.xs[i + 1], band.bottom});
    }

    // Appends a band below the existing ones, merging it into the last band when that one touches
    // it and has the same spans. xs must be sorted, non-touching pairs.
    void AppendBand(std::int32_t top, std::int32_t bottom, std::vector<std::int32_t> xs);
    // Debug self-check of the banding invariants.
    [[nodiscard]] bool IsValid() const;

  private:
    std::vector<Band> bands_;
};

}  // namespace korvex::platform::sim
