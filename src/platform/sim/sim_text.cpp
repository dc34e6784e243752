// SimGdi: fonts and text. Glyph shapes and metrics come from the FontEngine; this file places
// the text cell, paints its background and writes the covered pixels.

#include <algorithm>

#include "platform/sim/font_engine.hpp"
#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform::sim {

namespace {

constexpr unsigned kUpdateCp = 1;  // TA_UPDATECP

}  // namespace

const LOGFONT& SimGdi::SelectedFont(const DcObj& dc) {
    if (const FontObj* font = Find<FontObj>(dc.font)) return font->font;
    return Find<FontObj>(stock_[SYSTEM_FONT])->font;
}

bool SimGdi::TextOut(HDC hdc, std::int32_t x, std::int32_t y, std::string_view text) {
    DcObj* dc = Dc(hdc);
    if (!dc) return false;
    const FontEngine::Face& face = fonts_->Realize(SelectedFont(*dc));
    const TEXTMETRIC tm = fonts_->Metrics(face);
    const SIZE extent = fonts_->Extent(face, text);
    const unsigned align = dc->textAlign;
    if (align & kUpdateCp) {
        x = dc->cp.x;
        y = dc->cp.y;
    }

    // The reference point names a spot of the cell: left, centre or right; top, baseline or
    // bottom. TA_CENTER and TA_BASELINE share bits with TA_RIGHT and TA_BOTTOM, so test them first.
    // 64-bit: a reference point at the 32-bit limits moved by the text's extent does not fit 32
    // bits. What lies beyond them lies beyond every bitmap, so the rects saturate.
    std::int64_t left = x;
    if ((align & TA_CENTER) == TA_CENTER)
        left = std::int64_t{x} - extent.cx / 2;
    else if (align & TA_RIGHT)
        left = std::int64_t{x} - extent.cx;
    std::int64_t top = y;
    if ((align & TA_BASELINE) == TA_BASELINE)
        top = std::int64_t{y} - tm.tmAscent;
    else if (align & TA_BOTTOM)
        top = std::int64_t{y} - tm.tmAscent - tm.tmDescent;
    const RECT cell{Saturate(left), Saturate(top), Saturate(left + extent.cx),
                    Saturate(top + tm.tmAscent + tm.tmDescent)};

    // Background and glyphs are plain copies: text ignores the ROP2.
    if (dc->bkMode == OPAQUE) FillClipped(*dc, cell, Rop2Pair(R2_COPYPEN, ToPixel(dc->bkColor)));
    // Only the columns that can show are rendered: a text far wider than the bitmap costs what
    // it walks, not what it would cover.
    const RECT visible = Intersect(dc->visible.Box(), cell);
    if (!visible.IsEmpty()) {
        const GlyphMask mask = fonts_->Render(face, text, std::int64_t{visible.left} - left,
                                              std::int64_t{visible.right} - left);
        const std::uint32_t ink = ToPixel(dc->textColor);
        const std::int64_t maskLeft = left + mask.left;
        const RECT maskRect{Saturate(maskLeft), Saturate(top), Saturate(maskLeft + mask.width),
                            Saturate(top + mask.height)};
        dc->visible.ForEachRect([&](const RECT& clip) {
            const RECT r = Intersect(clip, maskRect);
            if (r.IsEmpty()) return;
            for (std::int32_t py = r.top; py < r.bottom; ++py) {
                const std::uint8_t* coverage =
                    mask.coverage.data() + static_cast<std::ptrdiff_t>(py - top) * mask.width;
                std::uint32_t* out = dc->surface.Row(py);
                for (std::int32_t px = r.left; px < r.right; ++px)
                    if (coverage[px - maskLeft] >= 128) out[px] = ink;
            }
        });
    }

    if (align & kUpdateCp) {
        if ((align & TA_CENTER) == TA_CENTER) {
            // the current position stays where it was
        } else if (align & TA_RIGHT) {
            dc->cp.x = Saturate(left);
        } else {
            dc->cp.x = Saturate(left + extent.cx);
        }
    }
    return true;
}

bool SimGdi::GetTextExtentPoint32(HDC hdc, std::string_view text, SIZE* size) {
    DcObj* dc = Dc(hdc);
    if (!dc || !size) return false;
    *size = fonts_->Extent(fonts_->Realize(SelectedFont(*dc)), text);
    return true;
}

bool SimGdi::GetTextMetrics(HDC hdc, TEXTMETRIC* metrics) {
    DcObj* dc = Dc(hdc);
    if (!dc || !metrics) return false;
    *metrics = fonts_->Metrics(fonts_->Realize(SelectedFont(*dc)));
    return true;
}

std::string SimGdi::GetTextFace(HDC hdc) {
    DcObj* dc = Dc(hdc);
    if (!dc) return {};
    return fonts_->FaceName(fonts_->Realize(SelectedFont(*dc)));
}

}  // namespace korvex::platform::sim
