// SimGdi: BitBlt, StretchBlt and AlphaBlend.
//
// Both walk the destination from its anchor (x, y) in the direction of its extent's sign and the
// source from its anchor likewise, so a negative extent covers [x+w+1, x+1) and mirrors. Per axis
// (S source pixels, D destination pixels, k counted from the anchor):
//   D > S  destination k shows source ceil((k + 1/2) S / D) - 1   (ties to the lower index)
//   D < S  source i lands on destination ceil((i + 1/2) D / S) - 1; BLACKONWHITE ANDs the pixels
//          landing together, WHITEONBLACK ORs them, COLORONCOLOR keeps one
//   D = S  one to one
// and a destination extent of 1 drops the last of several source pixels first. Source pixels
// outside the bitmap never take part; a destination pixel with none inside is left alone.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform::sim {

namespace {

struct Run {
    std::int64_t first = 0;  // source offset from the anchor
    std::int64_t count = 1;
};

// The source run of destination offset k along one axis of d destination and s source pixels,
// worked out for k alone: the extents reach 2^31, so nothing may be proportional to them.
class AxisMap {
  public:
    AxisMap(std::int64_t d, std::int64_t s) : d_(d), s_(d == 1 && s > 1 ? s - 1 : s) {}
    [[nodiscard]] Run At(std::int64_t k) const {
        // ceil(num / 2d) - 1 with num >= 1 is floor((num - 1) / 2d), which stays below 2^63.
        if (d_ >= s_) return {((2 * k + 1) * s_ - 1) / (2 * d_), 1};
        // Source i lands on ceil((2i + 1) d / 2s) - 1, so the first i landing on k or later is
        // ceil(floor(2sk / d) / 2).
        return {First(k), First(k + 1) - First(k)};
    }

  private:
    [[nodiscard]] std::int64_t First(std::int64_t k) const { return (2 * s_ * k / d_ + 1) / 2; }
    std::int64_t d_, s_;
};

// The part [j0, j1) of a run whose source pixels anchor + dir * (first + j) lie in [0, size).
std::pair<std::int64_t, std::int64_t> InBitmap(const Run& run, std::int64_t anchor,
                                               std::int64_t dir, std::int64_t size) {
    // anchor + dir * (first + j) in [0, size)  <=>  j in [lo, hi)
    std::int64_t lo, hi;
    if (dir > 0) {
        lo = -anchor - run.first;
        hi = size - anchor - run.first;
    } else {
        lo = anchor - size + 1 - run.first;
        hi = anchor + 1 - run.first;
    }
    return {std::max<std::int64_t>(lo, 0), std::min(hi, run.count)};
}

// The source offset COLORONCOLOR keeps for destination offset k of d, with s source pixels: the
// closed form of AxisMap's runs, taking the last pixel of a run (columns) or the first (rows).
std::int64_t PickSource(std::int64_t k, std::int64_t d, std::int64_t s, bool last) {
    if (d == 1 && s > 1) --s;
    if (d >= s) return ((2 * k + 1) * s + 2 * d - 1) / (2 * d) - 1;
    // Source i lands on k when 2ks < (2i + 1) d <= 2(k + 1) s.
    if (last) return std::min(s - 1, (2 * (k + 1) * s - d) / (2 * d));
    return (2 * k * s - d + 2 * d) / (2 * d);  // floor((2ks - d) / 2d) + 1, never negative
}

// One channel (or the alpha byte) of premultiplied source over destination. A source that is not
// premultiplied (a channel above its alpha) is undefined for the real call; here it saturates.
std::uint32_t Over(std::uint32_t s, std::uint32_t d, std::uint32_t a) {
    return std::min<std::uint32_t>(255, s + (d * (255 - a) + 127) / 255);
}

std::uint32_t Scale(std::uint32_t c, std::uint32_t alpha) {
    return (c * alpha + 127) / 255;
}

std::uint32_t BlendPixel(std::uint32_t src, std::uint32_t dst, const BLENDFUNCTION& blend) {
    const std::uint32_t constant = blend.SourceConstantAlpha;
    std::uint32_t out = 0;
    if (blend.AlphaFormat & AC_SRC_ALPHA) {
        std::uint32_t alpha = src >> 24;
        if (constant != 255) {
            std::uint32_t scaled = 0;
            for (unsigned shift = 0; shift < 32; shift += 8)
                scaled |= Scale((src >> shift) & 0xFF, constant) << shift;
            src = scaled;
            alpha = src >> 24;
        }
        for (unsigned shift = 0; shift < 32; shift += 8)
            out |= Over((src >> shift) & 0xFF, (dst >> shift) & 0xFF, alpha) << shift;
        return out;
    }
    // No per-pixel alpha: every channel mixes by the constant alone.
    for (unsigned shift = 0; shift < 32; shift += 8) {
        const std::uint32_t sc = (src >> shift) & 0xFF, dc = (dst >> shift) & 0xFF;
        out |= ((sc * constant + dc * (255 - constant) + 127) / 255) << shift;
    }
    return out;
}

}  // namespace

bool SimGdi::BitBlt(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                    HDC src, std::int32_t sx, std::int32_t sy, DWORD rop) {
    return StretchBlt(dst, x, y, w, h, src, sx, sy, w, h, rop);
}

bool SimGdi::StretchBlt(HDC hdst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                        HDC hsrc, std::int32_t sx, std::int32_t sy, std::int32_t sw,
                        std::int32_t sh, DWORD rop) {
    DcObj* dc = Dc(hdst);
    if (!dc) return false;
    if (!Rop3UsesSource(rop)) return PatBltBrush(*dc, x, y, w, h, rop, dc->brushData);
    DcObj* source = Dc(hsrc);
    if (!source) return false;
    if (w == 0 || h == 0 || sw == 0 || sh == 0) return true;
    const bool usesPattern = Rop3UsesPattern(rop);
    if (usesPattern && dc->brushData.null) return true;

    const RECT target = BlitRect(x, y, w, h);
    const Surface from = source->surface;
    // Overlapping blits within one bitmap read the pixels as they were before the call: the rows
    // the source rect covers are copied first.
    std::vector<std::uint32_t> snapshot;
    const std::uint32_t* srcBits = from.bits;
    std::int64_t firstRow = 0;  // the row srcBits starts with
    if (from.bits == dc->surface.bits) {
        const RECT rows = Intersect(BlitRect(sx, sy, sw, sh), from.Bounds());
        if (!rows.IsEmpty()) {
            snapshot.assign(from.Row(rows.top), from.Row(rows.bottom));
            srcBits = snapshot.data();
            firstRow = rows.top;
        }
    }
    auto srcPtr = [&](std::int64_t px, std::int64_t py) {
        return srcBits + (py - firstRow) * from.width + px;
    };

    const std::int64_t dW = std::abs(std::int64_t{w}), dH = std::abs(std::int64_t{h});
    const std::int64_t sW = std::abs(std::int64_t{sw}), sH = std::abs(std::int64_t{sh});
    const std::int64_t dirX = w > 0 ? 1 : -1, dirY = h > 0 ? 1 : -1;
    const std::int64_t sDirX = sw > 0 ? 1 : -1, sDirY = sh > 0 ? 1 : -1;

    // Plain copies of equal size and direction are row copies.
    if (rop == SRCCOPY && dW == sW && dH == sH && dirX == sDirX && dirY == sDirY) {
        const RECT shiftedSource = BlitRect(sx, sy, sw, sh);
        const std::int64_t ox = std::int64_t{shiftedSource.left} - target.left,
                           oy = std::int64_t{shiftedSource.top} - target.top;
        // The source bitmap seen from the destination.
        const RECT fromHere{Saturate(-ox), Saturate(-oy), Saturate(from.width - ox),
                            Saturate(from.height - oy)};
        dc->visible.ForEachRect([&](const RECT& clip) {
            const RECT r = Intersect(Intersect(clip, target), fromHere);
            if (r.IsEmpty()) return;
            for (std::int32_t row = r.top; row < r.bottom; ++row)
                std::memmove(dc->surface.Row(row) + r.left, srcPtr(r.left + ox, row + oy),
                             static_cast<std::size_t>(r.Width()) * sizeof(std::uint32_t));
        });
        return true;
    }

    const AxisMap mapX(dW, sW), mapY(dH, sH);
    const int mode = dc->stretchMode;
    const std::uint8_t index = Rop3Index(rop);
    // A hatch shows its colour on its lines and the background colour between them.
    const FillPaint hatch = PaintFor(*dc, dc->brushData, R2_COPYPEN);
    const std::uint32_t lineColour = ToPixel(dc->brushData.color);
    const std::uint32_t gapColour = ToPixel(dc->bkColor);
    // Only source pixels inside the bitmap take part: Wine clips the stepping line to the source
    // (calc_1d_stretch_params), so a run partly off the bitmap is made of the pixels left in it.
    // COLORONCOLOR keeps the first of those rows and the last of those columns; the other modes
    // fold them all. Only destination pixels inside the clip are visited, so the work is bounded
    // by the clip and the source bitmap, never by the extents.
    const bool keepOne = mode == COLORONCOLOR || mode == HALFTONE;

    dc->visible.ForEachRect([&](const RECT& clip) {
        const RECT r = Intersect(clip, target);
        if (r.IsEmpty()) return;
        for (std::int32_t py = r.top; py < r.bottom; ++py) {
            const Run ry = mapY.At((std::int64_t{py} - y) * dirY);
            const auto [j0, j1] = InBitmap(ry, sy, sDirY, from.height);
            if (j0 >= j1) continue;
            std::uint32_t* out = dc->surface.Row(py);
            for (std::int32_t px = r.left; px < r.right; ++px) {
                const Run rx = mapX.At((std::int64_t{px} - x) * dirX);
                const auto [i0, i1] = InBitmap(rx, sx, sDirX, from.width);
                if (i0 >= i1) continue;  // nothing to read: the destination stays as it was
                std::uint32_t value = mode == WHITEONBLACK ? 0u : ~0u;
                for (std::int64_t j = j0; j < j1; ++j) {
                    const std::int64_t srcY = sy + sDirY * (ry.first + j);
                    for (std::int64_t i = i1; i-- > i0;) {
                        const std::uint32_t s = *srcPtr(sx + sDirX * (rx.first + i), srcY);
                        value = keepOne ? s : mode == WHITEONBLACK ? (value | s) : (value & s);
                        if (keepOne) break;
                    }
                    if (keepOne) break;
                }
                const std::uint32_t pattern =
                    !hatch.hatch || hatch.On(px, py) ? lineColour : gapColour;
                out[px] = rop == SRCCOPY ? value : Rop3Apply(index, pattern, value, out[px]);
            }
        }
    });
    return true;
}

// AlphaBlend: the source rectangle must lie inside the source bitmap (no clipping there, as the
// real call refuses it), the destination is clipped as any drawing is.
bool SimGdi::AlphaBlend(HDC hdst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                        HDC hsrc, std::int32_t sx, std::int32_t sy, std::int32_t sw,
                        std::int32_t sh, BLENDFUNCTION blend) {
    DcObj* dc = Dc(hdst);
    DcObj* source = Dc(hsrc);
    if (!dc || !source || blend.BlendOp != AC_SRC_OVER) return false;
    if (w < 0 || h < 0 || sw < 0 || sh < 0 || sx < 0 || sy < 0) return false;
    const Surface from = source->surface;
    if (std::int64_t{sx} + sw > from.width || std::int64_t{sy} + sh > from.height) return false;
    auto end = [](std::int32_t at, std::int32_t extent) {
        return static_cast<std::int32_t>(std::min<std::int64_t>(
            std::int64_t{at} + extent, std::numeric_limits<std::int32_t>::max()));
    };
    const RECT target{x, y, end(x, w), end(y, h)};
    if (hsrc == hdst) {
        const RECT sourceRect{sx, sy, sx + sw, sy + sh};
        if (!Intersect(target, sourceRect).IsEmpty()) return false;
    }
    if (target.IsEmpty() || sw == 0 || sh == 0) return true;

    dc->visible.ForEachRect([&](const RECT& clip) {
        const RECT r = Intersect(clip, target);
        if (r.IsEmpty()) return;
        for (std::int32_t py = r.top; py < r.bottom; ++py) {
            const std::int64_t srcY = sy + PickSource(py - std::int64_t{y}, h, sh, false);
            const std::uint32_t* in = from.Row(static_cast<std::int32_t>(srcY));
            std::uint32_t* out = dc->surface.Row(py);
            for (std::int32_t px = r.left; px < r.right; ++px) {
                const std::int64_t srcX = sx + PickSource(px - std::int64_t{x}, w, sw, true);
                out[px] = BlendPixel(in[srcX], out[px], blend);
            }
        }
    });
    return true;
}

}  // namespace korvex::platform::sim
