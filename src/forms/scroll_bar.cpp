#include "forms/scroll_bar.hpp"

#include <algorithm>
#include <cstdlib>

#include "base/error.hpp"
#include "forms/graphics.hpp"

namespace korvex::forms {

using namespace platform;

VScrollBar::VScrollBar(DrawingSurface& container)
    : BoxedControl(container), repeat_(container.Platform()) {
    box_.BorderStyle(0);
    box_.ScaleMode(ScaleModeConstants::vbPixels);
    box_.BackColor(0x8000000F);
    repeat_.Enabled(false);
    repeat_.Tick = [this] {
        repeat_.Interval(kScrollRepeatDelayMs);
        if (over_) Step(pressed_);
    };
    box_.events.MouseDown = [this](std::int16_t button, std::int16_t shift, float x, float y) {
        if (button == kButtonLeft) OnDown(static_cast<int>(x), static_cast<int>(y));
        Raise(events.MouseDown, button, shift, x, y);
    };
    box_.events.MouseMove = [this](std::int16_t button, std::int16_t shift, float x, float y) {
        OnMove(static_cast<int>(x), static_cast<int>(y));
        Raise(events.MouseMove, button, shift, x, y);
    };
    box_.events.MouseUp = [this](std::int16_t button, std::int16_t shift, float x, float y) {
        if (button == kButtonLeft) OnUp();
        Raise(events.MouseUp, button, shift, x, y);
    };
    box_.events.GotFocus = [this] { Raise(events.GotFocus); };
    box_.events.LostFocus = [this] { Raise(events.LostFocus); };
    box_.events.Resize = [this] { Paint(); };
    Paint();
}

// ---------------------------------------------------------------------------------------------
// Range and value

void VScrollBar::Enabled(bool value) {
    box_.Enabled(value);
    if (!value) OnUp();
    Paint();
}

void VScrollBar::Min(std::int16_t value) {
    min_ = value;
    SetValue(std::clamp(value_, std::min(min_, max_), std::max(min_, max_)), true);
    Paint();
}

void VScrollBar::Max(std::int16_t value) {
    max_ = value;
    SetValue(std::clamp(value_, std::min(min_, max_), std::max(min_, max_)), true);
    Paint();
}

void VScrollBar::Value(std::int16_t value) {
    if (value < std::min(min_, max_) || value > std::max(min_, max_))
        throw host::HostError(host::kErrInvalidPropertyValue, "Value");
    SetValue(value, true);
}

void VScrollBar::SmallChange(std::int16_t value) {
    if (value < 1) throw host::HostError(host::kErrInvalidPropertyValue, "SmallChange");
    smallChange_ = value;
}

void VScrollBar::LargeChange(std::int16_t value) {
    if (value < 1) throw host::HostError(host::kErrInvalidPropertyValue, "LargeChange");
    largeChange_ = value;
}

// The value is stored and drawn before Change runs, so a handler that sets Value again (a
// nested Change) finds the bar as it stands.
void VScrollBar::SetValue(std::int16_t value, bool change) {
    if (value == value_) return;
    value_ = value;
    Paint();
    if (change) Raise(Change);
}

std::int16_t VScrollBar::Stepped(int amount) const {
    const int direction = max_ >= min_ ? 1 : -1;
    const int low = std::min(min_, max_);
    const int high = std::max(min_, max_);
    return static_cast<std::int16_t>(std::clamp(value_ + direction * amount, low, high));
}

void VScrollBar::Step(Part part) {
    switch (part) {
        case Part::UpArrow:
            SetValue(Stepped(-smallChange_), true);
            break;
        case Part::DownArrow:
            SetValue(Stepped(smallChange_), true);
            break;
        case Part::PageUp:
            SetValue(Stepped(-largeChange_), true);
            break;
        case Part::PageDown:
            SetValue(Stepped(largeChange_), true);
            break;
        default:
            break;
    }
}

// ---------------------------------------------------------------------------------------------
// Geometry: square arrows (halved when the bar is too short for two), a square thumb where the
// track has room for one.

VScrollBar::Layout VScrollBar::Measure() const {
    Layout l;
    l.width = static_cast<int>(box_.ScaleWidth());
    l.height = static_cast<int>(box_.ScaleHeight());
    l.arrow = std::min(l.width, l.height / 2);
    const int track = l.height - 2 * l.arrow;
    l.thumbSize = l.width;
    if (track < l.thumbSize || min_ == max_ || !box_.Enabled()) {
        l.thumbSize = 0;
        return l;
    }
    const int span = track - l.thumbSize;
    l.thumbTop =
        l.arrow + static_cast<int>(static_cast<long long>(span) * (value_ - min_) / (max_ - min_));
    return l;
}

VScrollBar::Part VScrollBar::PartAt(int x, int y) const {
    const Layout l = Measure();
    if (x < 0 || x >= l.width || y < 0 || y >= l.height) return Part::None;
    if (y < l.arrow) return Part::UpArrow;
    if (y >= l.height - l.arrow) return Part::DownArrow;
    if (l.thumbSize == 0) return Part::None;
    const int top = dragTop_.value_or(l.thumbTop);
    if (y < top) return Part::PageUp;
    if (y >= top + l.thumbSize) return Part::PageDown;
    return Part::Thumb;
}

std::int16_t VScrollBar::ValueAtThumb(int thumbTop) const {
    const Layout l = Measure();
    const int span = l.height - 2 * l.arrow - l.thumbSize;
    if (span <= 0) return value_;
    const int offset = std::clamp(thumbTop - l.arrow, 0, span);
    // Rounded to the nearest value, as a dragged thumb snaps.
    const long long range = max_ - min_;
    const long long scaled = range * offset;
    const long long step = (scaled + (scaled >= 0 ? span / 2 : -(span / 2))) / span;
    return static_cast<std::int16_t>(min_ + step);
}

// ---------------------------------------------------------------------------------------------
// Input

void VScrollBar::OnDown(int x, int y) {
    const Part part = PartAt(x, y);
    if (part == Part::None) return;
    pressed_ = part;
    over_ = true;
    if (part == Part::Thumb) {
        const Layout l = Measure();
        dragOffset_ = y - l.thumbTop;
        dragTop_ = l.thumbTop;
        Paint();
        return;
    }
    Paint();
    Step(part);
    repeat_.Enabled(false);
    repeat_.Interval(kScrollFirstDelayMs);
    repeat_.Enabled(true);
}

void VScrollBar::OnMove(int x, int y) {
    if (pressed_ == Part::None) return;
    if (pressed_ == Part::Thumb) {
        const Layout l = Measure();
        const int top = std::clamp(y - dragOffset_, l.arrow, l.height - l.arrow - l.thumbSize);
        if (top == dragTop_) return;
        const std::int16_t before = ValueAtThumb(*dragTop_);
        dragTop_ = top;
        Paint();
        if (ValueAtThumb(top) != before) Raise(Scroll);
        return;
    }
    // A page area ends where the thumb is; an arrow is where it was pressed.
    const bool over = PartAt(x, y) == pressed_;
    if (over == over_) return;
    over_ = over;
    Paint();
}

void VScrollBar::OnUp() {
    const Part was = pressed_;
    pressed_ = Part::None;
    over_ = false;
    repeat_.Enabled(false);
    if (was == Part::Thumb && dragTop_) {
        const std::int16_t value = ValueAtThumb(*dragTop_);
        dragTop_.reset();
        SetValue(value, true);
    }
    Paint();
}

// ---------------------------------------------------------------------------------------------
// Painting, the classic look

namespace {

// A push button's face: raised two-pixel edge, or pressed (one shadow line, the face inside).
void DrawButton(Gdi& gdi, HDC dc, RECT r, bool pressed) {
    const GdiObject face = MakeBrush(gdi, gdi.GetSysColor(COLOR_BTNFACE));
    gdi.FillRect(dc, r, face.get());
    if (pressed) {
        const GdiObject shadow = MakeBrush(gdi, gdi.GetSysColor(COLOR_BTNSHADOW));
        gdi.FrameRect(dc, r, shadow.get());
        return;
    }
    gdi.DrawEdge(dc, &r, EDGE_RAISED, BF_RECT);
}

// The arrow's triangle, pointing up or down, centred (shifted a pixel when pressed); a
// disabled one is embossed.
void DrawGlyph(Gdi& gdi, HDC dc, const RECT& r, bool up, bool pressed, bool enabled) {
    const int size = std::min(r.right - r.left, r.bottom - r.top);
    const int rows = std::max(1, (size + 1) / 4);
    const int cx = r.left + (r.right - r.left - 1) / 2 + (pressed ? 1 : 0);
    const int top = r.top + (r.bottom - r.top - rows) / 2 + (pressed ? 1 : 0);
    const auto draw = [&](int dx, int dy, COLORREF colour) {
        const GdiObject brush = MakeBrush(gdi, colour);
        for (int i = 0; i < rows; ++i) {
            const int half = up ? i : rows - 1 - i;
            gdi.FillRect(dc,
                         RECT{cx - half + dx, top + i + dy, cx + half + 1 + dx, top + i + 1 + dy},
                         brush.get());
        }
    };
    if (enabled) {
        draw(0, 0, gdi.GetSysColor(COLOR_BTNTEXT));
    } else {
        draw(1, 1, gdi.GetSysColor(COLOR_BTNHIGHLIGHT));
        draw(0, 0, gdi.GetSysColor(COLOR_BTNSHADOW));
    }
}

// The track: a checkerboard of the highlight and face colours, or dark where a page area is held.
void DrawTrack(Gdi& gdi, HDC dc, const RECT& r, bool pressed) {
    if (r.bottom <= r.top) return;
    if (pressed) {
        const GdiObject dark = MakeBrush(gdi, gdi.GetSysColor(COLOR_3DDKSHADOW));
        gdi.FillRect(dc, r, dark.get());
        return;
    }
    const GdiObject face = MakeBrush(gdi, gdi.GetSysColor(COLOR_BTNFACE));
    gdi.FillRect(dc, r, face.get());
    const COLORREF light = gdi.GetSysColor(COLOR_BTNHIGHLIGHT);
    for (int y = r.top; y < r.bottom; ++y)
        for (int x = r.left + ((r.left + y) & 1); x < r.right; x += 2)
            gdi.SetPixel(dc, x, y, light);
}

}  // namespace

void VScrollBar::Paint() {
    Gdi& gdi = box_.Platform().gdi();
    const HDC dc = box_.hDC();
    Layout l = Measure();
    if (l.width <= 0 || l.height <= 0) return;
    if (dragTop_) l.thumbTop = *dragTop_;
    const bool enabled = box_.Enabled();
    const auto held = [this](Part part) { return pressed_ == part && over_; };
    const RECT up{0, 0, l.width, l.arrow};
    const RECT down{0, l.height - l.arrow, l.width, l.height};
    DrawButton(gdi, dc, up, held(Part::UpArrow));
    DrawGlyph(gdi, dc, up, true, held(Part::UpArrow), enabled);
    DrawButton(gdi, dc, down, held(Part::DownArrow));
    DrawGlyph(gdi, dc, down, false, held(Part::DownArrow), enabled);
    if (l.thumbSize == 0) {
        DrawTrack(gdi, dc, RECT{0, l.arrow, l.width, l.height - l.arrow}, false);
    } else {
        DrawTrack(gdi, dc, RECT{0, l.arrow, l.width, l.thumbTop}, held(Part::PageUp));
        DrawTrack(gdi, dc, RECT{0, l.thumbTop + l.thumbSize, l.width, l.height - l.arrow},
                  held(Part::PageDown));
        DrawButton(gdi, dc, RECT{0, l.thumbTop, l.width, l.thumbTop + l.thumbSize}, false);
    }
    box_.Refresh();
}

}  // namespace korvex::forms
