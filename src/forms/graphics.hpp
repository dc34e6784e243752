#pragma once
// Small drawing helpers every object of this layer shares: colour and font conversion, owned GDI
// objects, pictures realised as device bitmaps, and the region of the pixels a paint touched.

#include <cstdint>
#include <memory>
#include <vector>

#include "host/font.hpp"
#include "host/ole_types.hpp"
#include "platform/gdi.hpp"

namespace korvex::forms {

using host::OleColorToRGB;

// The font request of a font object: lfHeight = -(points × logical pixels per inch / 72),
// rounded half away from zero as MulDiv does.
platform::LOGFONT ToLogFont(platform::Gdi& gdi, const host::StdFont& font);

// A GDI object deleted with its owner. Move-only.
class GdiObject {
  public:
    GdiObject() = default;
    GdiObject(platform::Gdi& gdi, platform::HGDIOBJ object) : gdi_(&gdi), object_(object) {}
    GdiObject(GdiObject&& other) noexcept : gdi_(other.gdi_), object_(other.object_) {
        other.object_ = {};
    }
    GdiObject& operator=(GdiObject&& other) noexcept;
    GdiObject(const GdiObject&) = delete;
    GdiObject& operator=(const GdiObject&) = delete;
    ~GdiObject() { Reset(); }

    [[nodiscard]] platform::HGDIOBJ get() const { return object_; }
    explicit operator bool() const { return static_cast<bool>(object_); }
    void Reset();

  private:
    platform::Gdi* gdi_ = nullptr;
    platform::HGDIOBJ object_;
};

GdiObject MakeFont(platform::Gdi& gdi, const host::StdFont& font);
GdiObject MakeBrush(platform::Gdi& gdi, platform::COLORREF color);
GdiObject MakePen(platform::Gdi& gdi, int style, int width, platform::COLORREF color);
// The brush of the host's FillStyle in `color`: 0 solid, 1 transparent (no brush: an empty
// object), 2 horizontal, 3 vertical, 4 upward diagonal, 5 downward diagonal, 6 cross and
// 7 diagonal cross lines, drawn as hatch brushes whose gaps follow the DC's background mode.
GdiObject MakeFillBrush(platform::Gdi& gdi, std::int16_t fillStyle, platform::COLORREF color);

// A memory DC with a 32-bit bitmap of its own, deleted together.
class MemoryBitmap {
  public:
    MemoryBitmap(platform::Gdi& gdi, platform::SIZE size);
    ~MemoryBitmap();
    MemoryBitmap(const MemoryBitmap&) = delete;
    MemoryBitmap& operator=(const MemoryBitmap&) = delete;

    [[nodiscard]] platform::HDC dc() const { return dc_; }
    [[nodiscard]] platform::SIZE size() const { return size_; }
    [[nodiscard]] platform::PixelView pixels() const { return gdi_.BitmapPixels(bitmap_); }

  private:
    platform::Gdi& gdi_;
    platform::SIZE size_;
    platform::HDC dc_;
    platform::HBITMAP bitmap_;
    platform::HGDIOBJ previous_;
};

// A picture realised on the device. A picture whose alpha is only 0 or 255 is drawn as icons
// without an alpha channel are, the mask ANDed in and the colours XORed over it, so it works with
// any destination; one without alpha 0 is a plain copy. A picture with partial alpha (soft icon
// edges) is premultiplied and alpha blended, as the platform draws a 32-bit icon: alpha 0 stays
// transparent, 255 opaque, and the values between mix with what lies beneath.
class PictureBitmap {
  public:
    PictureBitmap(platform::Gdi& gdi, const host::StdPicture& picture);

    [[nodiscard]] platform::SIZE size() const { return colour_.size(); }
    [[nodiscard]] bool HasTransparency() const { return mask_ != nullptr || blended_; }
    // Draws source rectangle (sx, sy, sw, sh) of the picture stretched to (x, y, w, h) of dst.
    // rop applies to opaque pictures; transparent ones always draw through their mask or blend.
    void Draw(platform::HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
              std::int32_t sx, std::int32_t sy, std::int32_t sw, std::int32_t sh,
              platform::DWORD rop = platform::SRCCOPY) const;
    void Draw(platform::HDC dst, std::int32_t x, std::int32_t y) const {
        Draw(dst, x, y, size().cx, size().cy, 0, 0, size().cx, size().cy);
    }

  private:
    void Blend(platform::HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
               std::int32_t sx, std::int32_t sy, std::int32_t sw, std::int32_t sh) const;

    platform::Gdi& gdi_;
    MemoryBitmap colour_;                 // black where transparent; premultiplied when blended
    std::unique_ptr<MemoryBitmap> mask_;  // white where transparent, black elsewhere
    bool blended_ = false;
};

// Whether a picture has anything to draw.
bool IsDrawable(const std::shared_ptr<host::StdPicture>& picture);

// The region of the pixels set in `inside` (width × height, row-major), as one region handle
// the caller owns; rows with equal runs are merged into bands.
platform::HRGN RegionFromMask(platform::Gdi& gdi, const std::vector<bool>& inside,
                              std::int32_t width, std::int32_t height);

}  // namespace korvex::forms
