// SimGdi: pen strokes (LineTo, Polyline, figure outlines, wide pens).

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>

#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform::sim {

namespace {

bool ContainsRect(const RECT& outer, const RECT& inner) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

// Collects spans row by row and turns them into a banded region; used for the few strokes that
// are not single rects. Rows are merged as they grow, and once the whole limit is covered nothing
// more is collected, so a wide pen's many overlapping pieces cost what the bitmap holds.
class RowBuilder {
  public:
    explicit RowBuilder(const RECT& limit) : limit_(limit) {}
    [[nodiscard]] bool Full() const { return full_; }
    void Add(const RECT& r) {
        if (full_) return;
        const RECT c = Intersect(r, limit_);
        if (c.IsEmpty()) return;
        if (c == limit_) {
            full_ = true;
            rows_.clear();
            return;
        }
        for (std::int32_t y = c.top; y < c.bottom; ++y) {
            Row& row = rows_[y];
            row.spans.emplace_back(c.left, c.right);
            if (row.spans.size() > 2 * row.merged + 16) {
                Merge(row.spans);
                row.merged = row.spans.size();
            }
        }
    }
    Region Build() {
        if (full_) return Region::FromRect(limit_);
        Region region;
        for (auto& [y, row] : rows_) {
            Merge(row.spans);
            std::vector<std::int32_t> xs;
            for (const auto& [a, b] : row.spans) {
                xs.push_back(a);
                xs.push_back(b);
            }
            region.AppendBand(y, y + 1, std::move(xs));
        }
        return region;
    }

  private:
    using Spans = std::vector<std::pair<std::int32_t, std::int32_t>>;
    struct Row {
        Spans spans;
        std::size_t merged = 0;
    };
    // Sorts the spans and joins those that overlap or touch.
    static void Merge(Spans& spans) {
        std::sort(spans.begin(), spans.end());
        std::size_t out = 0;
        for (const auto& span : spans) {
            if (out > 0 && span.first <= spans[out - 1].second)
                spans[out - 1].second = std::max(spans[out - 1].second, span.second);
            else
                spans[out++] = span;
        }
        spans.resize(out);
    }

    RECT limit_;
    bool full_ = false;
    std::map<std::int32_t, Row> rows_;
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
        PaintRegion(dc, WideStrokeRegion(dc.penData, points, closed, dc.surface.Bounds()),
                    dc.penRop);
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
    // Every pixel of the line lies in this box (the end point included, which is harmless). The
    // exclusive edge saturates: a pixel at the 32-bit limit lies outside every bitmap anyway, and
    // a wrapped edge would make the box look as if it fitted the clip.
    const auto after = [](std::int32_t v) {
        return v == std::numeric_limits<std::int32_t>::max() ? v : v + 1;
    };
    const RECT box{std::min(a.x, b.x), std::min(a.y, b.y), after(std::max(a.x, b.x)),
                   after(std::max(a.y, b.y))};
    const std::vector<Region::Band>& bands = dc.visible.Bands();
    if (bands.size() == 1 && bands.front().xs.size() == 2) {
        const RECT clip{bands.front().xs[0], bands.front().top, bands.front().xs[1],
                        bands.front().bottom};
        if (ContainsRect(clip, box)) {
            DrawLinePixels(dc.surface, line, 0, line.n, dc.penRop, dc.dash, phase, drawGaps,
                           dc.gapRop);
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
                DrawLinePixels(dc.surface, line, i0, i1, dc.penRop, dc.dash, phase, drawGaps,
                               dc.gapRop);
        }
    }
    return line.n;
}

// Wide pens, as Wine's region-based stroker (dibdrv/objects.c wide_pen_lines,
// wide_line_segments, wide_line_segment, add_cap, add_join): every segment contributes its
// own shape, axis lines a w-wide rect between the end points and sloped ones a four-point
// polygon with rounded half widths, and CreatePen's default round caps and joins are a small
// elliptic region placed on each end point and each inner vertex. Their union is painted once,
// so pixels covered by several pieces are hit a single time.
namespace {

std::int32_t RoundHalfAway(double v) {  // Wine's round() macro, truncated into a LONG
    return static_cast<std::int32_t>(v > 0 ? v + 0.5 : v - 0.5);
}

bool Touches(const RECT& r, const RECT& dib) {
    return !Intersect(r, dib).IsEmpty();
}

// Coordinates near the int32 limits plus half a pen width saturate instead of wrapping.
std::int32_t Sat(std::int64_t v) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(v, INT32_MIN, INT32_MAX));
}

// One segment's shape (wide_line_segment with flat ends; the caps come separately).
void AddWideSegment(RowBuilder& rows, std::int32_t w, POINT p1, POINT p2, const RECT& dib) {
    const std::int64_t dx = std::int64_t{p2.x} - p1.x, dy = std::int64_t{p2.y} - p1.y;
    if (dx == 0 && dy == 0) return;
    if (dy == 0) {
        const std::int64_t top = std::int64_t{p1.y} - w / 2;
        rows.Add({std::min(p1.x, p2.x), Sat(top), std::max(p1.x, p2.x), Sat(top + w)});
        return;
    }
    if (dx == 0) {
        const std::int64_t left = std::int64_t{p1.x} - w / 2;
        rows.Add({Sat(left), std::min(p1.y, p2.y), Sat(left + w), std::max(p1.y, p2.y)});
        return;
    }
    const double len = std::hypot(static_cast<double>(dx), static_cast<double>(dy));
    const double widthX = static_cast<double>(w) * static_cast<double>(std::llabs(dy)) / len;
    const double widthY = static_cast<double>(w) * static_cast<double>(std::llabs(dx)) / len;
    POINT narrow{RoundHalfAway(widthX / 2), RoundHalfAway(widthY / 2)};
    POINT wide{RoundHalfAway((widthX + 1) / 2), RoundHalfAway((widthY + 1) / 2)};
    if (dx < 0) {
        wide.y = -wide.y;
        narrow.y = -narrow.y;
    }
    if (dy < 0) {
        std::swap(narrow, wide);
        wide.x = -wide.x;
        narrow.x = -narrow.x;
    }
    auto at = [](POINT p, std::int64_t ox, std::int64_t oy) {
        return POINT{Sat(p.x + ox), Sat(p.y + oy)};
    };
    const POINT pts[4] = {at(p1, -narrow.x, narrow.y), at(p1, wide.x, -wide.y),
                          at(p2, wide.x, -wide.y), at(p2, -narrow.x, narrow.y)};
    // Wine tests this corner-built box against the bitmap before it builds the polygon.
    RECT box;
    if (dx > 0 && dy > 0)
        box = {pts[0].x, pts[1].y, pts[2].x, pts[3].y};
    else if (dx > 0)
        box = {pts[1].x, pts[2].y, pts[3].x, pts[0].y};
    else if (dy > 0)
        box = {pts[3].x, pts[0].y, pts[1].x, pts[2].y};
    else
        box = {pts[2].x, pts[3].y, pts[0].x, pts[1].y};
    if (!Touches(box, dib)) return;
    Region::FromPolygon(pts, ALTERNATE, dib).ForEachRect([&](const RECT& r) { rows.Add(r); });
}

}  // namespace

Region SimGdi::WideStrokeRegion(const PenObj& pen, std::span<const POINT> all, bool closed,
                                const RECT& dib) {
    const std::span<const POINT> figures[] = {all};
    return WideStrokeRegion(pen, figures, closed, dib);
}

Region SimGdi::WideStrokeRegion(const PenObj& pen, std::span<const std::span<const POINT>> figures,
                                bool closed, const RECT& dib) {
    const std::int32_t w = pen.width;
    RowBuilder rows(dib);
    auto same = [](POINT a, POINT b) { return a.x == b.x && a.y == b.y; };

    // The round cap: CreateEllipticRgn(-(w/2), -(w/2), (w+1)/2 + 1, (w+1)/2 + 1).
    const std::int32_t c0 = -(w / 2), c1 = (w + 1) / 2 + 1;
    // Only the cap rows some vertex can bring onto the bitmap are built.
    std::int64_t needTop = INT64_MAX, needBottom = INT64_MIN;
    for (const std::span<const POINT> figure : figures)
        for (const POINT p : figure) {
            needTop = std::min(needTop, std::int64_t{dib.top} - p.y);
            needBottom = std::max(needBottom, std::int64_t{dib.bottom} - p.y);
        }
    const Region cap = Region::FromRoundRect(c0, c0, c1, c1, c1 - c0, c1 - c0,
                                             Sat(std::max<std::int64_t>(needTop, c0)),
                                             Sat(std::min<std::int64_t>(needBottom, c1)));
    const std::vector<Region::Band>& capBands = cap.Bands();
    // The band of cap row y, or null.
    auto bandAt = [&](std::int64_t y) -> const Region::Band* {
        auto it =
            std::upper_bound(capBands.begin(), capBands.end(), y,
                             [](std::int64_t v, const Region::Band& b) { return v < b.bottom; });
        return it == capBands.end() || y < it->top ? nullptr : &*it;
    };
    auto addCap = [&](POINT p) {
        if (rows.Full()) return;
        // Only the cap's rows that reach the bitmap; a cap holding the whole bitmap (its rows are
        // convex and widest in the middle, so its top and bottom rows decide) is the bitmap.
        const std::int64_t y0 = std::int64_t{dib.top} - p.y, y1 = std::int64_t{dib.bottom} - p.y;
        auto holds = [&](std::int64_t y) {
            const Region::Band* band = bandAt(y);
            return band && band->xs.size() == 2 && std::int64_t{band->xs[0]} + p.x <= dib.left &&
                   std::int64_t{band->xs[1]} + p.x >= dib.right;
        };
        if (!dib.IsEmpty() && holds(y0) && holds(y1 - 1)) {
            rows.Add(dib);
            return;
        }
        auto it =
            std::upper_bound(capBands.begin(), capBands.end(), y0,
                             [](std::int64_t v, const Region::Band& b) { return v < b.bottom; });
        for (; it != capBands.end() && it->top < y1; ++it) {
            for (std::size_t k = 0; k < it->xs.size(); k += 2)
                rows.Add({Sat(std::int64_t{it->xs[k]} + p.x), Sat(std::int64_t{it->top} + p.y),
                          Sat(std::int64_t{it->xs[k + 1]} + p.x),
                          Sat(std::int64_t{it->bottom} + p.y)});
        }
    };

    for (const std::span<const POINT> all : figures) {
        if (all.size() < 2) continue;
        // Leading and trailing empty segments are dropped first.
        std::size_t first = 0, num = all.size();
        while (num > 2 && same(all[first], all[first + 1])) {
            ++first;
            --num;
        }
        while (num > 2 && same(all[first + num - 1], all[first + num - 2])) --num;
        const std::span<const POINT> pts = all.subspan(first, num);

        const std::size_t count = closed ? num : num - 1;  // segments
        if (!closed) {
            addCap(pts.front());
            addCap(pts.back());
        }
        for (std::size_t i = 0; i < count; ++i) {
            const POINT a = pts[i], b = pts[(i + 1) % num];
            if (!rows.Full()) AddWideSegment(rows, w, a, b, dib);
            // A round join at every inner vertex where a segment starts; an empty inner segment
            // adds none, the last one always does (wide_line_segments).
            const bool inner = i > 0;
            if (inner && (i == count - 1 || !same(a, b))) addCap(a);
        }
        if (closed) addCap(pts.front());
    }
    return rows.Build();
}

}  // namespace korvex::platform::sim
