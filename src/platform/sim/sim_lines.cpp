// SimGdi: pen strokes (LineTo, Polyline, figure outlines, wide pens).

#include <algorithm>
#include <map>

#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform::sim {

namespace {

RECT Intersect(const RECT& a, const RECT& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

bool ContainsRect(const RECT& outer, const RECT& inner) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

// Collects spans row by row and turns them into a banded region; used for the few strokes that
// are not single rects.
class RowBuilder {
public:
    explicit RowBuilder(const RECT& limit) : limit_(limit) {}
    void Add(const RECT& r) {
        const RECT c = Intersect(r, limit_);
        if (c.IsEmpty()) return;
        for (std::int32_t y = c.top; y < c.bottom; ++y) rows_[y].emplace_back(c.left, c.right);
    }
    Region Build() {
        Region region;
        for (auto& [y, spans] : rows_) {
            std::sort(spans.begin(), spans.end());
            std::vector<std::int32_t> xs;
            for (const auto& [a, b] : spans) {
                if (!xs.empty() && a <= xs.back()) xs.back() = std::max(xs.back(), b);
                else {
                    xs.push_back(a);
                    xs.push_back(b);
                }
            }
            region.AppendBand(y, y + 1, std::move(xs));
        }
        return region;
    }

private:
    RECT limit_;
    std::map<std::int32_t, std::vector<std::pair<std::int32_t, std::int32_t>>> rows_;
};

}  // namespace

bool SimGdi::LineTo(HDC hdc, std::int32_t x, std::int32_t y) {
    DcObj* dc = Dc(hdc);
    if (!dc) return false;
    // Read the position as the two words MoveToEx stored: one wide load of two narrow stores
    // cannot be forwarded and would wait for every pending pixel store to retire first.
    const std::int32_t fromX = dc->cp.x;
    const std::int32_t fromY = dc->cp.y;
    const POINT points[2] = {{fromX, fromY}, {x, y}};
    StrokeFigure(*dc, points, false);
    dc->cp = {x, y};
    return true;
}

bool SimGdi::Polyline(HDC hdc, std::span<const POINT> points) {
    DcObj* dc = Dc(hdc);
    if (!dc || points.size() < 2) return false;
    StrokeFigure(*dc, points, false);
    return true;
}

void SimGdi::StrokeFigure(DcObj& dc, std::span<const POINT> points, bool closed) {
    if (dc.penData.IsNull() || points.empty()) return;
    if (dc.penData.IsWide()) {
        // Wide strokes are painted as one region so overlapping segments hit a pixel only once.
        PaintRegion(dc, WideStrokeRegion(dc.penData, points, closed, dc.visible.Box()), dc.penRop);
        return;
    }
    // The dash pattern runs on through every segment and corner of one figure.
    std::int64_t phase = 0;
    const std::size_t segments = closed ? points.size() : points.size() - 1;
    for (std::size_t i = 0; i < segments; ++i) {
        const POINT a = points[i], b = points[(i + 1) % points.size()];
        phase += StrokeSegment(dc, a, b, phase);
    }
}

std::int64_t SimGdi::StrokeSegment(DcObj& dc, POINT a, POINT b, std::int64_t phase) {
    const LineGeom line(a.x, a.y, b.x, b.y);
    if (line.n == 0) return 0;
    const bool drawGaps = dc.bkMode == OPAQUE;
    // Every pixel of the line lies in this box (the end point included, which is harmless).
    const RECT box{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x) + 1,
                   std::max(a.y, b.y) + 1};
    const std::vector<Region::Band>& bands = dc.visible.Bands();
    if (bands.size() == 1 && bands.front().xs.size() == 2) {
        const RECT clip{bands.front().xs[0], bands.front().top, bands.front().xs[1], bands.front().bottom};
        if (ContainsRect(clip, box)) {
            DrawLinePixels(dc.surface, line, 0, line.n, dc.penRop, dc.dash, phase, drawGaps, dc.gapRop);
            return line.n;
        }
    }
    // Clipping selects pixels of the unclipped line and never moves them: within each clip rect
    // the line's pixels form one contiguous index range, found from the closed form.
    for (const Region::Band& band : bands) {
        if (band.bottom <= box.top) continue;
        if (band.top >= box.bottom) break;
        for (std::size_t k = 0; k < band.xs.size(); k += 2) {
            const RECT r = Intersect({band.xs[k], band.top, band.xs[k + 1], band.bottom}, box);
            if (r.IsEmpty()) continue;
            const auto [i0, i1] = line.RangeIn(r);
            if (i0 < i1)
                DrawLinePixels(dc.surface, line, i0, i1, dc.penRop, dc.dash, phase, drawGaps, dc.gapRop);
        }
    }
    return line.n;
}

// A geometric pen of width w covers [c - w/2, c - w/2 + w) across each centre pixel c. Axis
// lines become one rect reaching w/2 past both ends; slanted ones stamp a w x w square on every
// pixel. FIXME: GDI rounds the caps and joins of CreatePen's wide pens; this keeps them square,
// which matches for widths up to 3 and for the rectangle outlines built separately.
Region SimGdi::WideStrokeRegion(const PenObj& pen, std::span<const POINT> points, bool closed,
                                const RECT& limit) {
    const std::int32_t w = pen.width, f = w / 2;
    RowBuilder rows(limit);
    const std::size_t segments = closed ? points.size() : points.size() - 1;
    if (points.size() == 1) rows.Add({points[0].x - f, points[0].y - f, points[0].x - f + w, points[0].y - f + w});
    for (std::size_t i = 0; i < segments; ++i) {
        const POINT a = points[i], b = points[(i + 1) % points.size()];
        if (a.x == b.x || a.y == b.y) {
            rows.Add({std::min(a.x, b.x) - f, std::min(a.y, b.y) - f, std::max(a.x, b.x) - f + w,
                      std::max(a.y, b.y) - f + w});
            continue;
        }
        const LineGeom line(a.x, a.y, b.x, b.y);
        // Only centre pixels within w of the limit can reach it.
        const auto [k0, k1] = line.RangeIn({limit.left - w, limit.top - w, limit.right + w, limit.bottom + w});
        for (std::int64_t k = k0; k < k1; ++k) {
            const POINT p = line.PixelAt(k);
            rows.Add({p.x - f, p.y - f, p.x - f + w, p.y - f + w});
        }
        rows.Add({b.x - f, b.y - f, b.x - f + w, b.y - f + w});
    }
    return rows.Build();
}

}  // namespace korvex::platform::sim
