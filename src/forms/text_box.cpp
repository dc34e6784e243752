#include "forms/text_box.hpp"

#include <algorithm>

#include "base/error.hpp"
#include "forms/graphics.hpp"
#include "platform/clipboard.hpp"
#include "platform/sound.hpp"

namespace korvex::forms {

using namespace platform;

namespace {

// Pixels between the field's edge and its text, as an edit field leaves them.
constexpr int kMargin = 1;
constexpr std::int16_t kIBeam = 3;

void CheckNotNegative(std::int32_t value, const char* what) {
    if (value < 0) throw host::HostError(host::kErrInvalidPropertyValue, what);
}

}  // namespace

TextBox::TextBox(DrawingSurface& container) : BoxedControl(container) {
    box_.ScaleMode(ScaleModeConstants::vbPixels);
    box_.BackColor(0x80000005);  // window
    box_.ForeColor(0x80000008);  // window text
    box_.MousePointer(kIBeam);
    box_.events.MouseDown = [this](std::int16_t button, std::int16_t shift, float x, float y) {
        OnMouseDown(button, shift, x);
        Raise(events.MouseDown, button, shift, x, y);
    };
    box_.events.MouseMove = [this](std::int16_t button, std::int16_t shift, float x, float y) {
        OnMouseMove(button, x);
        Raise(events.MouseMove, button, shift, x, y);
    };
    box_.events.MouseUp = [this](std::int16_t button, std::int16_t shift, float x, float y) {
        dragging_ = false;
        Raise(events.MouseUp, button, shift, x, y);
    };
    box_.events.Click = [this] { Raise(events.Click); };
    box_.events.DblClick = [this] {
        selStart_ = 0;
        selLength_ = static_cast<std::int32_t>(text_.size());
        caretAtStart_ = false;
        Paint();
        Raise(events.DblClick);
    };
    box_.events.KeyDown = [this](std::int16_t& code, std::int16_t shift) {
        OnKeyDown(code, shift);
    };
    box_.events.KeyPress = [this](std::int16_t& ascii) { OnKeyPress(ascii); };
    box_.events.KeyUp = [this](std::int16_t& code, std::int16_t shift) {
        Raise(events.KeyUp, code, shift);
    };
    box_.events.GotFocus = [this] {
        focused_ = true;
        Paint();
        Raise(events.GotFocus);
    };
    box_.events.LostFocus = [this] {
        focused_ = false;
        dragging_ = false;
        Paint();
        Raise(events.LostFocus);
    };
    box_.events.Resize = [this] { Paint(); };
    Paint();
}

// ---------------------------------------------------------------------------------------------
// Looks

void TextBox::BorderStyle(std::int16_t value) {
    box_.BorderStyle(value);
    Paint();
}

void TextBox::Appearance(std::int16_t value) {
    box_.Appearance(value);
    Paint();
}

void TextBox::Alignment(std::int16_t value) {
    if (value < 0 || value > 2) throw host::HostError(host::kErrInvalidPropertyValue, "Alignment");
    alignment_ = value;
    Paint();
}

void TextBox::BackColor(host::OLE_COLOR value) {
    box_.BackColor(value);
    Paint();
}

void TextBox::ForeColor(host::OLE_COLOR value) {
    box_.ForeColor(value);
    Paint();
}

void TextBox::Font(std::shared_ptr<host::StdFont> value) {
    box_.Font(std::move(value));
    Paint();
}

void TextBox::MousePointer(std::int16_t value) {
    box_.MousePointer(value == 0 ? kIBeam : value);
    mousePointer_ = value;
}

void TextBox::Enabled(bool value) {
    box_.Enabled(value);
    Paint();
}

// ---------------------------------------------------------------------------------------------
// Text and selection

void TextBox::Text(std::string_view value) {
    if (value == text_) return;
    text_ = std::string(value);
    selStart_ = 0;
    selLength_ = 0;
    caretAtStart_ = false;
    scroll_ = 0;
    Paint();
    Raise(Change);
}

void TextBox::SelStart(std::int32_t value) {
    CheckNotNegative(value, "SelStart");
    selStart_ = std::min(value, static_cast<std::int32_t>(text_.size()));
    selLength_ = 0;
    caretAtStart_ = false;
    Paint();
}

void TextBox::SelLength(std::int32_t value) {
    CheckNotNegative(value, "SelLength");
    selLength_ = std::min(value, static_cast<std::int32_t>(text_.size()) - selStart_);
    caretAtStart_ = false;
    Paint();
}

std::string TextBox::SelText() const {
    return text_.substr(static_cast<std::size_t>(selStart_), static_cast<std::size_t>(selLength_));
}

void TextBox::SelText(std::string_view value) {
    text_.replace(static_cast<std::size_t>(selStart_), static_cast<std::size_t>(selLength_), value);
    selStart_ += static_cast<std::int32_t>(value.size());
    selLength_ = 0;
    caretAtStart_ = false;
    Paint();
    Raise(Change);
}

void TextBox::MaxLength(std::int32_t value) {
    CheckNotNegative(value, "MaxLength");
    maxLength_ = value;
}

std::int32_t TextBox::LineFromChar(std::int32_t index) const {
    (void)index;
    return 0;
}

std::string TextBox::GetLine(std::int32_t line, std::int32_t bufferSize) const {
    if (line != 0 || bufferSize <= 0) return {};
    return text_.substr(0, static_cast<std::size_t>(bufferSize));
}

// ---------------------------------------------------------------------------------------------
// Clipboard

void TextBox::Copy() {
    if (selLength_ > 0) box_.Platform().clipboard().SetText(SelText());
}

void TextBox::Cut() {
    if (locked_ || selLength_ == 0) return;
    Copy();
    Edit({});
}

void TextBox::Paste() {
    if (locked_) return;
    std::optional<std::string> text = box_.Platform().clipboard().GetText();
    if (!text) return;
    // One line: a pasted text ends at its first line break.
    text->erase(std::min(text->find_first_of("\r\n"), text->size()));
    Edit(*text);
}

// ---------------------------------------------------------------------------------------------
// Input

void TextBox::Beep() {
    box_.Platform().sound().MessageBeep(0);
}

bool TextBox::Edit(std::string_view text) {
    const std::size_t length = text_.size() - static_cast<std::size_t>(selLength_) + text.size();
    if (maxLength_ > 0 && length > static_cast<std::size_t>(maxLength_) && !text.empty()) {
        Beep();
        return false;
    }
    SelText(text);
    return true;
}

std::int32_t TextBox::Caret() const {
    return caretAtStart_ ? selStart_ : selStart_ + selLength_;
}

std::int32_t TextBox::Anchor() const {
    return caretAtStart_ ? selStart_ + selLength_ : selStart_;
}

void TextBox::MoveCaret(std::int32_t to, bool extend) {
    to = std::clamp(to, 0, static_cast<std::int32_t>(text_.size()));
    const std::int32_t anchor = extend ? Anchor() : to;
    selStart_ = std::min(anchor, to);
    selLength_ = std::max(anchor, to) - selStart_;
    caretAtStart_ = to < anchor;
    Paint();
}

void TextBox::OnMouseDown(std::int16_t button, std::int16_t shift, float x) {
    if (button != kButtonLeft) return;
    if (!focused_) box_.SetFocus();
    MoveCaret(PositionAt(static_cast<int>(x)), (shift & kShiftMask) != 0);
    dragging_ = true;
}

void TextBox::OnMouseMove(std::int16_t button, float x) {
    if (dragging_ && (button & kButtonLeft)) MoveCaret(PositionAt(static_cast<int>(x)), true);
}

void TextBox::OnKeyDown(std::int16_t& code, std::int16_t shift) {
    Raise(events.KeyDown, code, shift);
    const bool extend = (shift & kShiftMask) != 0;
    const bool ctrl = (shift & kCtrlMask) != 0;
    const auto end = static_cast<std::int32_t>(text_.size());
    switch (code) {
        case VK_LEFT:
            if (selLength_ > 0 && !extend)
                MoveCaret(selStart_, false);
            else
                MoveCaret(Caret() - 1, extend);
            break;
        case VK_RIGHT:
            if (selLength_ > 0 && !extend)
                MoveCaret(selStart_ + selLength_, false);
            else
                MoveCaret(Caret() + 1, extend);
            break;
        case VK_HOME:
            MoveCaret(0, extend);
            break;
        case VK_END:
            MoveCaret(end, extend);
            break;
        case VK_DELETE:
            if (extend) {
                Cut();
            } else if (!locked_) {
                if (selLength_ == 0 && selStart_ < end) selLength_ = 1;
                if (selLength_ > 0) Edit({});
            }
            break;
        case VK_INSERT:
            if (ctrl) Copy();
            if (extend) Paste();
            break;
        default:
            break;
    }
}

// The control characters Ctrl+C, Ctrl+V and Ctrl+X arrive as characters 3, 22 and 24, after the
// handler has had its say, as in an edit field.
void TextBox::OnKeyPress(std::int16_t& ascii) {
    Raise(events.KeyPress, ascii);
    switch (ascii) {
        case 0:
            return;
        case 3:
            Copy();
            return;
        case 22:
            Paste();
            return;
        case 24:
            Cut();
            return;
        case 8:
            if (locked_) return;
            if (selLength_ == 0 && selStart_ > 0) {
                --selStart_;
                selLength_ = 1;
            }
            if (selLength_ > 0) Edit({});
            return;
        default:
            break;
    }
    if (ascii < 32 || ascii > 255 || locked_) return;
    const char c = static_cast<char>(ascii);
    Edit(std::string_view(&c, 1));
}

// ---------------------------------------------------------------------------------------------
// Painting

int TextBox::TextPixels(std::string_view text) const {
    SIZE size{};
    box_.Platform().gdi().GetTextExtentPoint32(box_.hDC(), text, &size);
    return size.cx;
}

int TextBox::XOf(std::int32_t position) const {
    const int width = static_cast<int>(box_.ScaleWidth());
    const int all = TextPixels(text_);
    const int before =
        TextPixels(std::string_view(text_).substr(0, static_cast<std::size_t>(position)));
    switch (alignment_) {
        case 1:
            return width - kMargin - all + before;
        case 2:
            return (width - all) / 2 + before;
        default:
            return kMargin - scroll_ + before;
    }
}

std::int32_t TextBox::PositionAt(int x) const {
    std::int32_t best = 0;
    int bestDistance = std::abs(XOf(0) - x);
    for (std::int32_t i = 1; i <= static_cast<std::int32_t>(text_.size()); ++i) {
        const int distance = std::abs(XOf(i) - x);
        if (distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

void TextBox::Paint() {
    Gdi& gdi = box_.Platform().gdi();
    const HDC dc = box_.hDC();
    const int width = static_cast<int>(box_.ScaleWidth());
    const int height = static_cast<int>(box_.ScaleHeight());
    if (alignment_ == 0) {
        // Scroll just far enough to show the caret.
        const int caret = XOf(Caret());
        if (caret > width - kMargin) scroll_ += caret - (width - kMargin);
        if (caret < kMargin) scroll_ = std::max(0, scroll_ - (kMargin - caret));
    }
    box_.Cls();
    TEXTMETRIC tm{};
    gdi.GetTextMetrics(dc, &tm);
    const int lineHeight = tm.tmHeight;
    const COLORREF oldText = gdi.GetTextColor(dc);
    const COLORREF text = box_.Enabled() ? host::OleColorToRGB(gdi, box_.ForeColor())
                                         : gdi.GetSysColor(COLOR_GRAYTEXT);
    gdi.SetTextColor(dc, text);
    const int oldMode = gdi.SetBkMode(dc, TRANSPARENT);
    const int x0 = XOf(0);
    gdi.TextOut(dc, x0, 0, text_);
    if (focused_ && selLength_ > 0) {
        const RECT selection{XOf(selStart_), 0, XOf(selStart_ + selLength_), lineHeight};
        const GdiObject brush = MakeBrush(gdi, gdi.GetSysColor(COLOR_HIGHLIGHT));
        gdi.FillRect(dc, selection, brush.get());
        gdi.SetTextColor(dc, gdi.GetSysColor(COLOR_HIGHLIGHTTEXT));
        gdi.TextOut(dc, selection.left, 0, SelText());
    } else if (focused_) {
        const int x = std::clamp(XOf(Caret()), 0, std::max(0, width - 1));
        gdi.InvertRect(dc, RECT{x, 0, x + 1, std::min(lineHeight, std::max(height, 1))});
    }
    gdi.SetBkMode(dc, oldMode);
    gdi.SetTextColor(dc, oldText);
    box_.Refresh();
}

}  // namespace korvex::forms
