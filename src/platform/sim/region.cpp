#include "platform/sim/region.hpp"

#include <algorithm>
#include <cassert>
#include <climits>
#include <cstdlib>
#include <utility>

namespace korvex::platform::sim {

namespace {

__extension__ typedef __int128 Wide;

Wide CeilDiv(Wide a, Wide b) {  // b > 0
    return a >= 0 ? (a + b - 1) / b : -((-a) / b);
}

// Sorts [x0, x1) pairs and merges the ones that overlap or touch.
std::vector<std::int32_t> NormaliseSpans(std::vector<std::pair<std::int32_t, std::int32_t>> spans) {
    std::sort(spans.begin(), spans.end());
    std::vector<std::int32_t> xs;
    for (const auto& [a, b] : spans) {
        if (a >= b) continue;
        if (!xs.empty() && a <= xs.back())
            xs.back() = std::max(xs.back(), b);
        else {
            xs.push_back(a);
            xs.push_back(b);
        }
    }
    return xs;
}

bool Apply(int mode, bool a, bool b) {
    switch (mode) {
        case RGN_AND:
            return a && b;
        case RGN_OR:
            return a || b;
        case RGN_XOR:
            return a != b;
        case RGN_DIFF:
            return a && !b;
        default:
            return a;
    }
}

// One boolean operation on the span lists of one band.
std::vector<std::int32_t> CombineSpans(const std::vector<std::int32_t>& a,
                                       const std::vector<std::int32_t>& b, int mode) {
    std::vector<std::int32_t> out;
    std::size_t i = 0, j = 0;
    bool inA = false, inB = false, cur = false;
    std::int32_t start = 0;
    while (i < a.size() || j < b.size()) {
        const std::int32_t xa = i < a.size() ? a[i] : INT32_MAX;
        const std::int32_t xb = j < b.size() ? b[j] : INT32_MAX;
        const std::int32_t x = std::min(xa, xb);
        if (xa == x) {
            inA = !inA;
            ++i;
        }
        if (xb == x) {
            inB = !inB;
            ++j;
        }
        const bool now = Apply(mode, inA, inB);
        if (now == cur) continue;
        cur = now;
        if (now) {
            start = x;
        } else if (!out.empty() && out.back() == start) {
            out.back() = x;
        } else {
            out.push_back(start);
            out.push_back(x);
        }
    }
    return out;
}

}  // namespace

Region Region::FromRect(const RECT& r) {
    Region region;
    if (!r.IsEmpty()) region.bands_.push_back({r.top, r.bottom, {r.left, r.right}});
    return region;
}

Region Region::FromRoundRect(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                             std::int32_t ew, std::int32_t eh) {
    return FromRoundRect(l, t, r, b, ew, eh, INT32_MIN, INT32_MAX);
}

Region Region::FromRoundRect(std::int32_t l32, std::int32_t t32, std::int32_t r32, std::int32_t b32,
                             std::int32_t ew, std::int32_t eh, std::int32_t top,
                             std::int32_t bottom) {
    std::int64_t l = l32, t = t32, r = r32, b = b32;
    if (l > r) std::swap(l, r);
    if (t > b) std::swap(t, b);
    // GDI's round and elliptic regions lose a pixel on the right and bottom; RoundRect and
    // Ellipse pass right+1, bottom+1 to get the full box back.
    r -= 1;
    b -= 1;
    const std::int64_t w = std::min<std::int64_t>(r - l, std::llabs(ew));
    const std::int64_t h = std::min<std::int64_t>(b - t, std::llabs(eh));
    auto sat = [](std::int64_t v) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(v, INT32_MIN, INT32_MAX));
    };
    // The fallback is CreateRectRgn, which normalises again: a box with l == r (t == b) has
    // become r = l - 1 and gives the column left of it (the row above).
    if (w < 2 || h < 2) {
        const Region rect = FromRect(
            {sat(std::min(l, r)), sat(std::min(t, b)), sat(std::max(l, r)), sat(std::max(t, b))});
        return top == INT32_MIN && bottom == INT32_MAX
                   ? rect
                   : rect.Intersect({INT32_MIN, top, INT32_MAX, bottom});
    }

    // Rows of the region: the top half's row t + i shows quadrant row h - 1 - i; the middle row
    // h / 2 stretches up to join the top half (the full-width band of the straight sides); the
    // bottom half's row b - h + k shows quadrant row k.
    const std::int64_t half = h / 2;
    const std::int64_t midTop = t + half, midBottom = b - h + half + 1;
    const std::int64_t y0 = std::max<std::int64_t>(t, top), y1 = std::min<std::int64_t>(b, bottom);
    if (y0 >= y1) return {};
    // The quadrant rows those rows need, as one range.
    std::int64_t kLo = h, kHi = half;
    auto need = [&](std::int64_t k0, std::int64_t k1) {  // [k0, k1)
        if (k0 >= k1) return;
        kLo = std::min(kLo, k0);
        kHi = std::max(kHi, k1);
    };
    {
        const std::int64_t i0 = y0 - t, i1 = std::min(y1 - t, half);  // top half, i in [i0, i1)
        if (i0 < i1) need(h - i1, h - i0);
        if (y0 < midBottom && y1 > midTop) need(half, half + 1);
        const std::int64_t k0 = std::max(y0 - (b - h), half + 1), k1 = std::min(y1 - (b - h), h);
        need(k0, k1);
    }
    if (kLo >= kHi) return {};

    // inset[k - kLo] is how far quadrant row k's span starts inside the box
    // (NtGdiCreateRoundRectRgn): the x-steps taken when the stepper entered the row.
    std::vector<std::int32_t> inset(static_cast<std::size_t>(kHi - kLo), 0);
    std::int64_t row = half, lastInset = 0, lastJ = 0;
    WalkEllipseQuadrant(w, h, [&](std::int64_t i, std::int64_t j) {
        if (j != lastJ) {
            lastJ = j;
            row = half + j;
            lastInset = i;
            if (row >= kLo && row < kHi)
                inset[static_cast<std::size_t>(row - kLo)] = static_cast<std::int32_t>(i);
        }
        return i <= w / 2 && row + 1 < kHi;
    });
    // For thin, tall ellipses the stepper stops before the end rows, which Wine leaves
    // unwritten; they keep the narrowest span it reached, the tip, instead of the full width.
    for (std::int64_t k = std::max(row + 1, kLo); k < kHi; ++k)
        inset[static_cast<std::size_t>(k - kLo)] = static_cast<std::int32_t>(lastInset);

    Region region;
    auto spanFor = [&](std::int64_t k) {
        const std::int64_t in = inset[static_cast<std::size_t>(k - kLo)];
        return std::vector<std::int32_t>{sat(l + in), sat(r - in)};
    };
    for (std::int64_t y = y0; y < std::min(y1, midTop); ++y)
        region.AppendBand(sat(y), sat(y + 1), spanFor(h - 1 - (y - t)));
    if (y0 < midBottom && y1 > midTop)
        region.AppendBand(sat(std::max(y0, midTop)), sat(std::min(y1, midBottom)), spanFor(half));
    for (std::int64_t y = std::max(y0, midBottom); y < y1; ++y)
        region.AppendBand(sat(y), sat(y + 1), spanFor(y - (b - h)));
    return region;
}

Region Region::FromPolygon(std::span<const POINT> points, int fillMode) {
    return FromPolygon(points, fillMode, RECT{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX});
}

Region Region::FromPolygon(std::span<const POINT> points, int fillMode, const RECT& within) {
    return *FromPolygon(points, fillMode, within, INT64_MAX);
}

std::optional<Region> Region::FromPolygon(std::span<const POINT> points, int fillMode,
                                          const RECT& within, std::int64_t maxRects) {
    Region region;
    if (points.size() < 2) return region;
    struct Edge {
        std::int32_t xTop, yTop, xBottom, yBottom;
        int dir;
    };
    std::vector<Edge> edges;
    std::int32_t ymin = INT32_MAX, ymax = INT32_MIN;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const POINT p = points[i], q = points[(i + 1) % points.size()];
        if (p.y == q.y) continue;  // horizontal edges cross no scanline
        if (p.y < q.y)
            edges.push_back({p.x, p.y, q.x, q.y, 1});
        else
            edges.push_back({q.x, q.y, p.x, p.y, -1});
        ymin = std::min({ymin, p.y, q.y});
        ymax = std::max({ymax, p.y, q.y});
    }
    // An edge whose crossing moves on more often than the limit allows needs as many scanlines;
    // refuse it before scanning.
    for (const Edge& e : edges) {
        const std::int64_t moves = std::min<std::int64_t>(
            std::llabs(std::int64_t{e.xBottom} - e.xTop), std::int64_t{e.yBottom} - e.yTop);
        if (moves > maxRects) return std::nullopt;
    }
    std::vector<std::pair<std::int32_t, int>> crossings;
    std::vector<std::pair<std::int32_t, std::int32_t>> spans;
    ymin = std::max(ymin, within.top);
    ymax = std::min(ymax, within.bottom);
    auto addSpan = [&](std::int32_t x0, std::int32_t x1) {
        spans.emplace_back(std::max(x0, within.left), std::min(x1, within.right));
    };
    std::int64_t rects = 0;
    // Scanlines between two rows where some crossing moves or an edge starts or ends are alike,
    // so they are worked out once, as one band.
    for (std::int64_t y = ymin; y < ymax;) {
        std::int64_t next = ymax;
        crossings.clear();
        for (const Edge& e : edges) {
            if (y < e.yTop) {
                next = std::min<std::int64_t>(next, e.yTop);
                continue;
            }
            if (y >= e.yBottom) continue;
            next = std::min<std::int64_t>(next, e.yBottom);
            // Each edge covers scanlines top <= y < bottom and crosses at the ceiling of its
            // exact x, so a pixel is in when its top-left corner point is inside.
            // Differences of 32-bit coordinates need the wide type before they are taken.
            const Wide dx = Wide{e.xBottom} - e.xTop, dy = Wide{e.yBottom} - e.yTop;
            const Wide off = CeilDiv((Wide{y} - e.yTop) * dx, dy);
            crossings.emplace_back(static_cast<std::int32_t>(e.xTop + off), e.dir);
            // The first row below where the crossing moves on.
            Wide moves = e.yBottom;
            if (dx > 0)
                moves = e.yTop + off * dy / dx + 1;
            else if (dx < 0)
                moves = e.yTop + CeilDiv((1 - off) * dy, -dx);
            next = std::min<std::int64_t>(
                next, static_cast<std::int64_t>(std::min<Wide>(moves, Wide{e.yBottom})));
        }
        std::sort(crossings.begin(), crossings.end());
        spans.clear();
        if (fillMode == WINDING) {
            int winding = 0;
            std::int32_t start = 0;
            for (const auto& [cx, dir] : crossings) {
                const int before = winding;
                winding += dir;
                if (before == 0 && winding != 0)
                    start = cx;
                else if (before != 0 && winding == 0)
                    addSpan(start, cx);
            }
        } else {
            for (std::size_t i = 0; i + 1 < crossings.size(); i += 2)
                addSpan(crossings[i].first, crossings[i + 1].first);
        }
        std::vector<std::int32_t> xs = NormaliseSpans(spans);
        // Scanlines worked out count too, even when they merge into the band above.
        rects += static_cast<std::int64_t>(std::max<std::size_t>(xs.size() / 2, 1));
        if (rects > maxRects) return std::nullopt;
        region.AppendBand(static_cast<std::int32_t>(y), static_cast<std::int32_t>(next),
                          std::move(xs));
        y = next;
    }
    return region;
}

Region Region::Combine(const Region& a, const Region& b, int mode) {
    return *Combine(a, b, mode, INT64_MAX);
}

std::optional<Region> Region::Combine(const Region& a, const Region& b, int mode,
                                      std::int64_t maxRects) {
    if (mode == RGN_COPY) return a;
    std::vector<std::int32_t> ys;
    ys.reserve(2 * (a.bands_.size() + b.bands_.size()));
    for (const Band& band : a.bands_) {
        ys.push_back(band.top);
        ys.push_back(band.bottom);
    }
    for (const Band& band : b.bands_) {
        ys.push_back(band.top);
        ys.push_back(band.bottom);
    }
    std::sort(ys.begin(), ys.end());
    ys.erase(std::unique(ys.begin(), ys.end()), ys.end());

    static const std::vector<std::int32_t> kNone;
    Region out;
    std::int64_t rects = 0;
    std::size_t ia = 0, ib = 0;
    for (std::size_t k = 0; k + 1 < ys.size(); ++k) {
        const std::int32_t y0 = ys[k], y1 = ys[k + 1];
        while (ia < a.bands_.size() && a.bands_[ia].bottom <= y0) ++ia;
        while (ib < b.bands_.size() && b.bands_[ib].bottom <= y0) ++ib;
        const auto& sa = (ia < a.bands_.size() && a.bands_[ia].top <= y0) ? a.bands_[ia].xs : kNone;
        const auto& sb = (ib < b.bands_.size() && b.bands_[ib].top <= y0) ? b.bands_[ib].xs : kNone;
        if (sa.empty() && sb.empty()) continue;
        std::vector<std::int32_t> xs = CombineSpans(sa, sb, mode);
        rects += static_cast<std::int64_t>(xs.size() / 2);
        if (rects > maxRects) return std::nullopt;
        out.AppendBand(y0, y1, std::move(xs));
    }
    assert(out.IsValid());
    return out;
}

std::int64_t Region::RectCount() const {
    std::int64_t n = 0;
    for (const Band& band : bands_) n += static_cast<std::int64_t>(band.xs.size() / 2);
    return n;
}

void Region::AppendBand(std::int32_t top, std::int32_t bottom, std::vector<std::int32_t> xs) {
    // Drop empty spans and join touching ones, so every producer may hand over raw spans.
    std::size_t out = 0;
    for (std::size_t i = 0; i + 1 < xs.size(); i += 2) {
        if (xs[i] >= xs[i + 1]) continue;
        if (out > 0 && xs[i] <= xs[out - 1]) {
            xs[out - 1] = std::max(xs[out - 1], xs[i + 1]);
            continue;
        }
        xs[out++] = xs[i];
        xs[out++] = xs[i + 1];
    }
    xs.resize(out);
    if (xs.empty() || top >= bottom) return;
    if (!bands_.empty() && bands_.back().bottom == top && bands_.back().xs == xs) {
        bands_.back().bottom = bottom;
        return;
    }
    bands_.push_back({top, bottom, std::move(xs)});
}

void Region::Offset(std::int32_t dx, std::int32_t dy) {
    for (Band& band : bands_) {
        band.top += dy;
        band.bottom += dy;
        for (std::int32_t& x : band.xs) x += dx;
    }
}

bool Region::Contains(std::int32_t x, std::int32_t y) const {
    auto it = std::upper_bound(bands_.begin(), bands_.end(), y,
                               [](std::int32_t v, const Band& band) { return v < band.bottom; });
    if (it == bands_.end() || y < it->top) return false;
    for (std::size_t i = 0; i < it->xs.size(); i += 2)
        if (x >= it->xs[i] && x < it->xs[i + 1]) return true;
    return false;
}

RECT Region::Box() const {
    if (bands_.empty()) return {};
    RECT box{INT32_MAX, bands_.front().top, INT32_MIN, bands_.back().bottom};
    for (const Band& band : bands_) {
        box.left = std::min(box.left, band.xs.front());
        box.right = std::max(box.right, band.xs.back());
    }
    return box;
}

int Region::Type() const {
    if (bands_.empty()) return NULLREGION;
    return bands_.size() == 1 && bands_.front().xs.size() == 2 ? SIMPLEREGION : COMPLEXREGION;
}

bool Region::IsValid() const {
    for (std::size_t k = 0; k < bands_.size(); ++k) {
        const Band& band = bands_[k];
        if (band.top >= band.bottom || band.xs.empty() || band.xs.size() % 2 != 0) return false;
        for (std::size_t i = 0; i < band.xs.size(); ++i) {
            if (i % 2 == 0 && band.xs[i] >= band.xs[i + 1]) return false;
            if (i % 2 == 1 && i + 1 < band.xs.size() && band.xs[i] >= band.xs[i + 1]) return false;
        }
        if (k > 0) {
            const Band& prev = bands_[k - 1];
            if (prev.bottom > band.top) return false;
            if (prev.bottom == band.top && prev.xs == band.xs) return false;
        }
    }
    return true;
}

}  // namespace korvex::platform::sim
