#include "forms/graphics.hpp"

#include <algorithm>
#include <cassert>
#include <cmath>

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
    const bool transparent =
        std::any_of(source.begin(), source.begin() + static_cast<std::ptrdiff_t>(count),
                    [](std::uint32_t p) { return (p >> 24) == 0; });
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
