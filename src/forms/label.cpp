#include "forms/label.hpp"

#include <algorithm>

#include "base/error.hpp"
#include "forms/drawing_surface.hpp"
#include "forms/graphics.hpp"

namespace korvex::forms {

using namespace platform;

Label::Label(DrawingSurface& container)
    : InputLightweight(container), font_(container.Font()->Clone()) {
    Subscribe();
    Invalidate();
}

void Label::Subscribe() {
    fontSubscription_ = font_->Subscribe([this](std::string_view) {
        FitToText();
        Invalidate();
    });
}

void Label::Caption(std::string value) {
    if (value == caption_) return;
    caption_ = std::move(value);
    FitToText();
    Invalidate();
}

void Label::UseMnemonic(bool value) {
    if (value == useMnemonic_) return;
    useMnemonic_ = value;
    FitToText();
    Invalidate();
}

char32_t Label::AccessKey() const {
    return ParseMnemonic(caption_, useMnemonic_).accessKey;
}

void Label::Font(std::shared_ptr<host::StdFont> value) {
    if (!value) throw host::HostError(host::kErrInvalidPropertyValue, "Font");
    if (value == font_) return;
    font_ = std::move(value);
    Subscribe();
    FitToText();
    Invalidate();
}

void Label::ForeColor(host::OLE_COLOR value) {
    if (value == foreColor_) return;
    foreColor_ = value;
    Invalidate();
}

void Label::BackColor(host::OLE_COLOR value) {
    if (value == backColor_) return;
    backColor_ = value;
    Invalidate();
}

void Label::BackStyle(std::int16_t value) {
    if (value != 0 && value != 1)
        throw host::HostError(host::kErrInvalidPropertyValue, "BackStyle");
    if (value == backStyle_) return;
    backStyle_ = value;
    Invalidate();
}

void Label::Alignment(std::int16_t value) {
    if (value < 0 || value > 2) throw host::HostError(host::kErrInvalidPropertyValue, "Alignment");
    if (value == alignment_) return;
    alignment_ = value;
    Invalidate();
}

void Label::AutoSize(bool value) {
    if (value == autoSize_) return;
    autoSize_ = value;
    FitToText();
    Invalidate();
}

void Label::WordWrap(bool value) {
    if (value == wordWrap_) return;
    wordWrap_ = value;
    FitToText();
    Invalidate();
}

Label::Layout Label::LayOut(HDC dc, std::int32_t wrapWidth) const {
    platform::Gdi& gdi = *Device();
    Layout layout;
    layout.text = ParseMnemonic(caption_, useMnemonic_);
    TEXTMETRIC tm;
    gdi.GetTextMetrics(dc, &tm);
    layout.lineHeight = tm.tmHeight;
    layout.ascent = tm.tmAscent;
    const auto measure = [&](std::string_view piece) {
        SIZE extent;
        gdi.GetTextExtentPoint32(dc, piece, &extent);
        return extent.cx;
    };
    const std::string_view text = layout.text.text;
    layout.lines = BreakLines(text, wrapWidth, measure);
    for (const TextLine& line : layout.lines)
        layout.widths.push_back(measure(text.substr(line.begin, line.end - line.begin)));
    return layout;
}

// AutoSize: the widest line by the number of lines, or with WordWrap the width kept and the
// height grown to the wrapped lines.
void Label::FitToText() {
    if (!autoSize_ || !Container()) return;
    platform::Gdi& gdi = *Device();
    const HDC dc = Container()->hDC();
    const GdiObject font = MakeFont(gdi, *font_);
    const ScopedSelect select(gdi, dc, font.get());
    const RECT rect = PixelRect();
    const Layout layout = LayOut(dc, wordWrap_ ? rect.Width() : -1);
    const std::int32_t widest =
        layout.widths.empty() ? 0 : *std::max_element(layout.widths.begin(), layout.widths.end());
    const auto height = static_cast<std::int32_t>(layout.lines.size()) * layout.lineHeight;
    SizePixels(wordWrap_ ? rect.Width() : widest, height);
}

void Label::Paint(HDC dc, const RECT& rect) const {
    platform::Gdi& gdi = *Device();
    if (backStyle_ == 1)
        gdi.FillRect(dc, rect, MakeBrush(gdi, OleColorToRGB(gdi, backColor_)).get());

    const GdiObject font = MakeFont(gdi, *font_);
    const ScopedSelect select(gdi, dc, font.get());
    const int oldMode = gdi.SetBkMode(dc, TRANSPARENT);
    const COLORREF oldColour = gdi.GetTextColor(dc);
    const Layout layout = LayOut(dc, Wraps() ? rect.Width() : -1);
    const std::string_view text = layout.text.text;

    const auto draw = [&](COLORREF colour, std::int32_t dx, std::int32_t dy) {
        gdi.SetTextColor(dc, colour);
        for (std::size_t i = 0; i < layout.lines.size(); ++i) {
            const TextLine& line = layout.lines[i];
            const std::int32_t width = layout.widths[i];
            std::int32_t x = rect.left;
            if (alignment_ == 1)
                x = rect.right - width;
            else if (alignment_ == 2)
                x = rect.left + (rect.Width() - width) / 2;
            const std::int32_t y = rect.top + static_cast<std::int32_t>(i) * layout.lineHeight;
            gdi.TextOut(dc, x + dx, y + dy, text.substr(line.begin, line.end - line.begin));

            // The access letter's underline, as DrawText draws it: one pixel below the
            // baseline, from the letter's start to one pixel short of the next letter.
            const std::ptrdiff_t mark = layout.text.underline;
            if (mark < 0 || static_cast<std::size_t>(mark) < line.begin ||
                static_cast<std::size_t>(mark) + layout.text.underlineLength > line.end)
                continue;
            SIZE before, through;
            gdi.GetTextExtentPoint32(
                dc, text.substr(line.begin, static_cast<std::size_t>(mark) - line.begin), &before);
            gdi.GetTextExtentPoint32(
                dc,
                text.substr(line.begin, static_cast<std::size_t>(mark) +
                                            layout.text.underlineLength - line.begin),
                &through);
            const GdiObject pen = MakePen(gdi, PS_SOLID, 1, colour);
            const ScopedSelect selectPen(gdi, dc, pen.get());
            const std::int32_t underlineY = y + dy + layout.ascent + 1;
            gdi.MoveToEx(dc, x + dx + before.cx, underlineY, nullptr);
            gdi.LineTo(dc, x + dx + through.cx - 1, underlineY);
        }
    };
    if (Enabled()) {
        draw(OleColorToRGB(gdi, foreColor_), 0, 0);
    } else {
        // The etched look of disabled static text: a highlight copy one pixel down and right,
        // the shadow-coloured text over it.
        draw(gdi.GetSysColor(COLOR_BTNHIGHLIGHT), 1, 1);
        draw(gdi.GetSysColor(COLOR_BTNSHADOW), 0, 0);
    }
    gdi.SetTextColor(dc, oldColour);
    gdi.SetBkMode(dc, oldMode);
}

}  // namespace korvex::forms
