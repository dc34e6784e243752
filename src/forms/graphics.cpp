#include "forms/graphics.hpp"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdlib>

namespace korvex::forms {

using namespace platform;

LOGFONT ToLogFont(Gdi& gdi, const host::StdFont& font) {
    LOGFONT lf;
    const int dpi = gdi.GetDeviceCaps(HDC{}, LOGPIXELSY);
    lf.lfHeight =
        -static_cast<std::int32_t>(std::lround(font.Size() * (dpi > 0 ? dpi : 96) / 72.0));
    lf.lfWeight = font.Weight();
    lf.lfItalic = font.Italic() ? 1 : 0;
    lf.lfUnderline = font.Underline() ? 1 : 0;
    lf.lfStrikeOut = font.Strikethrough() ? 1 : 0;
    lf.lfCharSet = static_cast<std::uint8_t>(font.Charset());
    lf.lfFaceName = font.Name();
    return lf;
}

GdiObject& GdiObject::operator=(GdiObject&& other) noexcept {
    if (this != &other) {
        Reset();
        gdi_ = other.gdi_;
        object_ = other.object_;
        other.object_ = {};
    }
    return *this;
}

void GdiObject::Reset() {
    if (object_ && gdi_) gdi_->DeleteObject(object_);
    object_ = {};
}

GdiObject MakeFont(Gdi& gdi, const host::StdFont& font) {
    return GdiObject(gdi, gdi.CreateFontIndirect(ToLogFont(gdi, font)));
}

GdiObject MakeBrush(Gdi& gdi, COLORREF color) {
    return GdiObject(gdi, gdi.CreateSolidBrush(color));
}

GdiObject MakePen(Gdi& gdi, int style, int width, COLORREF color) {
    return GdiObject(gdi, gdi.CreatePen(style, width, color));
}

GdiObject MakeFillBrush(Gdi& gdi, std::int16_t fillStyle, COLORREF color) {
    // The host counts its hatches from 2 in the order horizontal, vertical, upward diagonal
    // (GDI's backward diagonal, "/"), downward diagonal (the forward one, "\"), cross and
    // diagonal cross.
    static constexpr int kHatch[] = {HS_HORIZONTAL, HS_VERTICAL, HS_BDIAGONAL,
                                     HS_FDIAGONAL,  HS_CROSS,    HS_DIAGCROSS};
    if (fillStyle == 0) return MakeBrush(gdi, color);
    if (fillStyle < 2 || fillStyle > 7) return {};
    return GdiObject(gdi, gdi.CreateHatchBrush(kHatch[fillStyle - 2], color));
}

MemoryBitmap::MemoryBitmap(Gdi& gdi, SIZE size)
    : gdi_(gdi), size_{std::max(size.cx, 1), std::max(size.cy, 1)} {
    dc_ = gdi_.CreateCompatibleDC(HDC{});
    bitmap_ = gdi_.CreateDIBSection32(size_.cx, size_.cy);
    previous_ = gdi_.SelectObject(dc_, bitmap_);
}

MemoryBitmap::~MemoryBitmap() {
    if (previous_) gdi_.SelectObject(dc_, previous_);
    gdi_.DeleteObject(bitmap_);
    gdi_.DeleteDC(dc_);
}

bool IsDrawable(const std::shared_ptr<host::StdPicture>& picture) {
    return picture && picture->Type() != host::PictureType::None && picture->PixelWidth() > 0 &&
           picture->PixelHeight() > 0;
}

PictureBitmap::PictureBitmap(Gdi& gdi, const host::StdPicture& picture)
    : gdi_(gdi), colour_(gdi, {picture.PixelWidth(), picture.PixelHeight()}) {
    const PixelView colour = colour_.pixels();
    const auto& source = picture.Pixels();
    const std::size_t count =
        std::min(source.size(), static_cast<std::size_t>(colour.width) * colour.height);
    const auto end = source.begin() + static_cast<std::ptrdiff_t>(count);
    blended_ = std::any_of(source.begin(), end, [](std::uint32_t p) {
        const std::uint32_t alpha = p >> 24;
        return alpha != 0 && alpha != 255;
    });
    if (blended_) {
        // Premultiplied as the platform prepares a 32-bit icon for drawing: each channel times
        // alpha / 255, truncated.
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t alpha = source[i] >> 24;
            std::uint32_t word = alpha << 24;
            for (unsigned shift = 0; shift < 24; shift += 8)
                word |= (((source[i] >> shift) & 0xFFu) * alpha / 255) << shift;
            colour.bits[i] = word;
        }
        return;
    }
    const bool transparent =
        std::any_of(source.begin(), end, [](std::uint32_t p) { return (p >> 24) == 0; });
    PixelView mask;
    if (transparent) {
        mask_ = std::make_unique<MemoryBitmap>(gdi, colour_.size());
        mask = mask_->pixels();
    }
    for (std::size_t i = 0; i < count; ++i) {
        const bool clear = (source[i] >> 24) == 0;
        colour.bits[i] = clear ? 0 : (source[i] & 0x00FFFFFFu);
        if (transparent) mask.bits[i] = clear ? 0x00FFFFFFu : 0;
    }
}

void PictureBitmap::Draw(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                         std::int32_t sx, std::int32_t sy, std::int32_t sw, std::int32_t sh,
                         DWORD rop) const {
    if (blended_) {
        Blend(dst, x, y, w, h, sx, sy, sw, sh);
        return;
    }
    // Shrinking must pick pixels, not AND them together as the DC's default mode would.
    const int previous = gdi_.SetStretchBltMode(dst, COLORONCOLOR);
    if (mask_) {
        gdi_.StretchBlt(dst, x, y, w, h, mask_->dc(), sx, sy, sw, sh, SRCAND);
        gdi_.StretchBlt(dst, x, y, w, h, colour_.dc(), sx, sy, sw, sh, SRCINVERT);
    } else {
        gdi_.StretchBlt(dst, x, y, w, h, colour_.dc(), sx, sy, sw, sh, rop);
    }
    if (previous) gdi_.SetStretchBltMode(dst, previous);
}

void PictureBitmap::Blend(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                          std::int32_t sx, std::int32_t sy, std::int32_t sw,
                          std::int32_t sh) const {
    if (w == 0 || h == 0 || sw == 0 || sh == 0) return;
    const BLENDFUNCTION blend{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    const SIZE size = colour_.size();
    const bool inside = sw > 0 && sh > 0 && sx >= 0 && sy >= 0 &&
                        std::int64_t{sx} + sw <= size.cx && std::int64_t{sy} + sh <= size.cy;
    if (w > 0 && h > 0 && inside) {
        gdi_.AlphaBlend(dst, x, y, w, h, colour_.dc(), sx, sy, sw, sh, blend);
        return;
    }
    // AlphaBlend takes neither mirrored extents nor a source reaching past the picture: copy the
    // source rectangle, mirrored as the extents' signs say, into a bitmap of its own first. What
    // lies outside the picture stays alpha 0, transparent.
    constexpr std::int64_t kLimit = std::int64_t{1} << 24;  // far beyond any picture
    const std::int64_t tw = std::llabs(sw), th = std::llabs(sh);
    const std::int64_t dw = std::llabs(w), dh = std::llabs(h);
    if (tw * th > kLimit / 4 || dw > kLimit || dh > kLimit) return;
    const MemoryBitmap copy(gdi_, {static_cast<std::int32_t>(tw), static_cast<std::int32_t>(th)});
    const bool flipX = (w < 0) != (sw < 0), flipY = (h < 0) != (sh < 0);
    const std::int64_t fromX = sw < 0 ? std::int64_t{sx} + sw + 1 : sx;
    const std::int64_t fromY = sh < 0 ? std::int64_t{sy} + sh + 1 : sy;
    if (fromX < -kLimit || fromY < -kLimit) return;
    const auto i32 = [](std::int64_t v) { return static_cast<std::int32_t>(v); };
    gdi_.StretchBlt(copy.dc(), flipX ? i32(tw - 1) : 0, flipY ? i32(th - 1) : 0,
                    i32(flipX ? -tw : tw), i32(flipY ? -th : th), colour_.dc(), i32(fromX),
                    i32(fromY), i32(tw), i32(th), SRCCOPY);
    const std::int64_t left = w < 0 ? std::int64_t{x} + w + 1 : x;
    const std::int64_t top = h < 0 ? std::int64_t{y} + h + 1 : y;
    gdi_.AlphaBlend(dst, i32(left), i32(top), i32(dw), i32(dh), copy.dc(), 0, 0, i32(tw), i32(th),
                    blend);
}

HRGN RegionFromMask(Gdi& gdi, const std::vector<bool>& inside, std::int32_t width,
                    std::int32_t height) {
    assert(inside.size() >= static_cast<std::size_t>(width) * static_cast<std::size_t>(height) &&
           "RegionFromMask: the mask is smaller than width x height");
    HRGN region = gdi.CreateRectRgn(0, 0, 0, 0);
    using Runs = std::vector<std::pair<std::int32_t, std::int32_t>>;
    auto runsOf = [&](std::int32_t y) {
        Runs runs;
        const std::size_t row = static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
        for (std::int32_t x = 0; x < width;) {
            if (!inside[row + static_cast<std::size_t>(x)]) {
                ++x;
                continue;
            }
            const std::int32_t start = x;
            while (x < width && inside[row + static_cast<std::size_t>(x)]) ++x;
            runs.emplace_back(start, x);
        }
        return runs;
    };
    auto flush = [&](const Runs& runs, std::int32_t top, std::int32_t bottom) {
        for (const auto& [l, r] : runs) {
            const HRGN band = gdi.CreateRectRgn(l, top, r, bottom);
            gdi.CombineRgn(region, region, band, RGN_OR);
            gdi.DeleteObject(band);
        }
    };
    Runs band;
    std::int32_t bandTop = 0;
    for (std::int32_t y = 0; y < height; ++y) {
        Runs runs = runsOf(y);
        if (runs != band) {
            flush(band, bandTop, y);
            band = std::move(runs);
            bandTop = y;
        }
    }
    flush(band, bandTop, height);
    return region;
}

}  // namespace korvex::forms
