#include "forms/drawing_surface.hpp"

#include <algorithm>
#include <limits>

#include "base/error.hpp"
#include "forms/picture_box.hpp"
#include "forms/text_layout.hpp"
#include "host/control.hpp"

namespace korvex::forms {

using namespace platform;

namespace {

RECT Intersect(const RECT& a, const RECT& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

bool Contains(const RECT& r, POINT p) {
    return p.x >= r.left && p.x < r.right && p.y >= r.top && p.y < r.bottom;
}

RECT Offset(RECT r, std::int32_t dx, std::int32_t dy) {
    return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy};
}

std::int16_t CheckRange(std::int16_t value, std::int16_t low, std::int16_t high, const char* what) {
    if (value < low || value > high) throw host::HostError(host::kErrInvalidPropertyValue, what);
    return value;
}

// The lines of a text as Print and TextWidth see them: CR, LF and CR LF end a line.
std::vector<std::string_view> SplitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (const TextLine& line : BreakLines(text, -1, nullptr))
        lines.push_back(text.substr(line.begin, line.end - line.begin));
    return lines;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Construction

DrawingSurface::DrawingSurface(platform::Platform& platform, HWND parent, bool child,
                               const RECT& position)
    : platform_(platform),
      gdi_(platform.gdi()),
      scale_(platform::TwipsPerPixelX(platform), platform::TwipsPerPixelY(platform)),
      font_(std::make_shared<host::StdFont>()) {
    bitmapSize_ = {std::max(position.Width(), 1), std::max(position.Height(), 1)};
    bitmap_ = gdi_.CreateDIBSection32(bitmapSize_.cx, bitmapSize_.cy);
    if (!bitmap_) NoPersistentImage(bitmapSize_);
    dc_ = gdi_.CreateCompatibleDC(HDC{});
    originalBitmap_ = gdi_.SelectObject(dc_, bitmap_);
    scale_.Client({std::max(position.Width(), 0), std::max(position.Height(), 0)});
    SyncFont();
    SyncDc();
    FillBackground();
    fontSubscription_ = font_->Subscribe([this](std::string_view) {
        SyncFont();
        Invalidate();
    });
    position_ = position;
    hwnd_ = platform_.windows().CreateWindow(parent, position, WindowStyle{child, false}, this);
}

DrawingSurface::~DrawingSurface() {
    platform_.windows().DestroyWindow(hwnd_);
    for (Lightweight* child : children_) child->container_ = nullptr;
    for (PictureBox* window : windows_) window->container_ = nullptr;
    if (originalFont_) gdi_.SelectObject(dc_, originalFont_);
    fontObject_.Reset();
    if (originalBitmap_) gdi_.SelectObject(dc_, originalBitmap_);
    gdi_.DeleteObject(bitmap_);
    gdi_.DeleteDC(dc_);
}

// ---------------------------------------------------------------------------------------------
// Geometry and frame

RECT DrawingSurface::WindowPosition() const {
    return position_;
}

int DrawingSurface::Inset() const {
    switch (frame_) {
        case Frame::None:
            return 0;
        case Frame::Single:
            return 1;
        case Frame::Sunken:
            return 2;
    }
    return 0;
}

SIZE DrawingSurface::ClientSize() const {
    return {std::max(position_.Width() - 2 * Inset(), 0),
            std::max(position_.Height() - 2 * Inset(), 0)};
}

void DrawingSurface::PlaceWindow(const RECT& position) {
    const RECT old = position_;
    if (position == old) return;
    const bool resized = position.Width() != old.Width() || position.Height() != old.Height();
    // The bitmap first: when it cannot be made, the surface stays where and as it was.
    if (resized) {
        position_ = position;
        const SIZE client = ClientSize();
        position_ = old;
        ResizeBitmap(client);
    }
    position_ = position;
    platform_.windows().MoveWindow(hwnd_, position);
    Invalidate();
    if (resized) Raise(events.Resize);
}

void DrawingSurface::SetFrame(Frame frame) {
    if (frame == frame_) return;
    frame_ = frame;
    ResizeBitmap(ClientSize());
    for (PictureBox* window : windows_) window->Place();
    Invalidate();
}

void DrawingSurface::SetTransparent(bool transparent) {
    if (transparent == transparent_) return;
    transparent_ = transparent;
    if (!transparent_) platform_.windows().SetWindowRgn(hwnd_, HRGN{});
    Invalidate();
}

void DrawingSurface::NoPersistentImage(SIZE size) {
    throw host::HostError(host::kErrNoPersistentImage,
                          std::string(host::StandardErrorText(host::kErrNoPersistentImage)) + " (" +
                              std::to_string(size.cx) + " x " + std::to_string(size.cy) +
                              " pixels)",
                          "Control");
}

void DrawingSurface::ResizeBitmap(SIZE client) {
    const SIZE size{std::max(client.cx, 1), std::max(client.cy, 1)};
    if (size == bitmapSize_) {
        scale_.Client(client);
        return;
    }
    // The new bitmap starts as a cleared surface; the old drawing is kept where it still fits.
    const HBITMAP made = gdi_.CreateDIBSection32(size.cx, size.cy);
    if (!made) NoPersistentImage(size);
    scale_.Client(client);
    const HBITMAP old = bitmap_;
    const SIZE oldSize = bitmapSize_;
    bitmap_ = made;
    bitmapSize_ = size;
    gdi_.SelectObject(dc_, bitmap_);
    FillBackground();
    const HDC source = gdi_.CreateCompatibleDC(HDC{});
    const HGDIOBJ previous = gdi_.SelectObject(source, old);
    gdi_.BitBlt(dc_, 0, 0, oldSize.cx, oldSize.cy, source, 0, 0, SRCCOPY);
    gdi_.SelectObject(source, previous);
    gdi_.DeleteDC(source);
    gdi_.DeleteObject(old);
}

// ---------------------------------------------------------------------------------------------
// Scale, colours and drawing state

void DrawingSurface::ScaleMode(ScaleModeConstants value) {
    scale_.Mode(value);
}

void DrawingSurface::BackColor(host::OLE_COLOR value) {
    backColor_ = value;
    SyncDc();
    FillBackground();
    Invalidate();
}

void DrawingSurface::ForeColor(host::OLE_COLOR value) {
    foreColor_ = value;
    SyncDc();
}

void DrawingSurface::FillStyle(std::int16_t value) {
    fillStyle_ = CheckRange(value, 0, 7, "FillStyle");
}

void DrawingSurface::DrawMode(std::int16_t value) {
    drawMode_ = CheckRange(value, R2_BLACK, R2_WHITE, "DrawMode");
    SyncDc();
}

void DrawingSurface::DrawStyle(std::int16_t value) {
    drawStyle_ = CheckRange(value, 0, 6, "DrawStyle");
}

void DrawingSurface::DrawWidth(std::int16_t value) {
    drawWidth_ = CheckRange(value, 1, 32767, "DrawWidth");
}

void DrawingSurface::FontTransparent(bool value) {
    fontTransparent_ = value;
    SyncDc();
}

void DrawingSurface::Font(std::shared_ptr<host::StdFont> value) {
    if (!value) throw host::HostError(host::kErrInvalidPropertyValue, "Font");
    if (value == font_) return;
    font_ = std::move(value);
    fontSubscription_ = font_->Subscribe([this](std::string_view) {
        SyncFont();
        Invalidate();
    });
    SyncFont();
    Invalidate();
}

void DrawingSurface::Picture(std::shared_ptr<host::StdPicture> value) {
    picture_ = std::move(value);
    FillBackground();
    Invalidate();
}

void DrawingSurface::SyncDc() {
    gdi_.SetTextColor(dc_, OleColorToRGB(gdi_, foreColor_));
    gdi_.SetBkColor(dc_, OleColorToRGB(gdi_, backColor_));
    gdi_.SetBkMode(dc_, fontTransparent_ ? TRANSPARENT : OPAQUE);
    gdi_.SetROP2(dc_, drawMode_);
}

void DrawingSurface::SyncFont() {
    GdiObject font = MakeFont(gdi_, *font_);
    const HGDIOBJ previous = gdi_.SelectObject(dc_, font.get());
    if (!originalFont_) originalFont_ = previous;
    fontObject_ = std::move(font);  // the font it replaces is no longer selected: deleted here
}

void DrawingSurface::FillBackground() {
    const GdiObject brush = MakeBrush(gdi_, OleColorToRGB(gdi_, backColor_));
    gdi_.FillRect(dc_, RECT{0, 0, bitmapSize_.cx, bitmapSize_.cy}, brush.get());
    if (IsDrawable(picture_)) PictureBitmap(gdi_, *picture_).Draw(dc_, 0, 0);
}

// ---------------------------------------------------------------------------------------------
// Persistent drawing

void DrawingSurface::Cls() {
    FillBackground();
    currentX_ = 0;
    currentY_ = 0;
    Invalidate();
}

void DrawingSurface::Print(std::string_view Text, bool NewLine) {
    SyncDc();  // system colours are read now, not when the colour was set
    TEXTMETRIC tm;
    gdi_.GetTextMetrics(dc_, &tm);
    const double lineHeight = scale_.SizeFromPixelsY(tm.tmHeight + tm.tmExternalLeading);
    const std::vector<std::string_view> lines = SplitLines(Text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        gdi_.TextOut(dc_, ToDevice(scale_.ToPixelX(currentX_)),
                     ToDevice(scale_.ToPixelY(currentY_)), lines[i]);
        if (i + 1 < lines.size() || NewLine) {
            currentX_ = scale_.Left();
            currentY_ += lineHeight;
        } else {
            SIZE extent;
            gdi_.GetTextExtentPoint32(dc_, lines[i], &extent);
            currentX_ += scale_.SizeFromPixelsX(extent.cx);
        }
    }
    Invalidate();
}

void DrawingSurface::Line(float X1, float Y1, float X2, float Y2,
                          std::optional<host::OLE_COLOR> Color, LineBox Box) {
    const COLORREF colour = OleColorToRGB(gdi_, Color.value_or(foreColor_));
    const std::int32_t x1 = ToDevice(scale_.ToPixelX(X1)), y1 = ToDevice(scale_.ToPixelY(Y1));
    const std::int32_t x2 = ToDevice(scale_.ToPixelX(X2)), y2 = ToDevice(scale_.ToPixelY(Y2));
    // Dashes and dots exist only for the one-pixel pen; wider pens draw them solid.
    int style = drawStyle_;
    if (drawWidth_ > 1 && style >= PS_DASH && style <= PS_DASHDOTDOT) style = PS_SOLID;
    // One past the far corner, kept on the int range for coordinates clamped to its end.
    const auto past = [](std::int32_t v) {
        return v == std::numeric_limits<std::int32_t>::max() ? v : v + 1;
    };
    const RECT box{std::min(x1, x2), std::min(y1, y2), past(std::max(x1, x2)),
                   past(std::max(y1, y2))};
    switch (Box) {
        case LineBox::None: {
            const GdiObject pen = MakePen(gdi_, style, drawWidth_, colour);
            const ScopedSelect selectPen(gdi_, dc_, pen.get());
            gdi_.MoveToEx(dc_, x1, y1, nullptr);
            gdi_.LineTo(dc_, x2, y2);
            // LineTo leaves the end point out; the host's Line paints it. A wide pen's round
            // cap already covers it (and painting it twice would show under XOR modes).
            if (drawWidth_ == 1) gdi_.LineTo(dc_, past(x2), y2);
            break;
        }
        case LineBox::B: {
            const GdiObject pen = MakePen(gdi_, style, drawWidth_, colour);
            const GdiObject fill = MakeFillBrush(gdi_, fillStyle_, OleColorToRGB(gdi_, fillColor_));
            const ScopedSelect selectPen(gdi_, dc_, pen.get());
            const ScopedSelect selectBrush(gdi_, dc_,
                                           fill ? fill.get() : gdi_.GetStockObject(NULL_BRUSH));
            gdi_.Rectangle(dc_, box.left, box.top, box.right, box.bottom);
            break;
        }
        case LineBox::BF: {
            const GdiObject pen = MakePen(gdi_, PS_SOLID, 1, colour);
            const GdiObject fill = MakeBrush(gdi_, colour);
            const ScopedSelect selectPen(gdi_, dc_, pen.get());
            const ScopedSelect selectBrush(gdi_, dc_, fill.get());
            gdi_.Rectangle(dc_, box.left, box.top, box.right, box.bottom);
            break;
        }
    }
    currentX_ = X2;
    currentY_ = Y2;
    Invalidate();
}

void DrawingSurface::PaintPicture(const std::shared_ptr<host::StdPicture>& Picture, float X1,
                                  float Y1, std::optional<float> Width1,
                                  std::optional<float> Height1, std::optional<float> X2,
                                  std::optional<float> Y2, std::optional<float> Width2,
                                  std::optional<float> Height2,
                                  std::optional<std::int32_t> Opcode) {
    if (!IsDrawable(Picture)) throw host::HostError(host::kErrInvalidPicture, "PaintPicture");
    const PictureBitmap bitmap(gdi_, *Picture);
    const SIZE size = bitmap.size();
    auto px = [](std::optional<float> v, double (ScaleSystem::*convert)(double) const,
                 const ScaleSystem& s,
                 std::int32_t fallback) { return v ? ToDevice((s.*convert)(*v)) : fallback; };
    const std::int32_t sx = px(X2, &ScaleSystem::SizeToPixelsX, scale_, 0);
    const std::int32_t sy = px(Y2, &ScaleSystem::SizeToPixelsY, scale_, 0);
    const std::int32_t sw = px(Width2, &ScaleSystem::SizeToPixelsX, scale_, size.cx - sx);
    const std::int32_t sh = px(Height2, &ScaleSystem::SizeToPixelsY, scale_, size.cy - sy);
    const std::int32_t w = px(Width1, &ScaleSystem::SizeToPixelsX, scale_, size.cx);
    const std::int32_t h = px(Height1, &ScaleSystem::SizeToPixelsY, scale_, size.cy);
    bitmap.Draw(dc_, ToDevice(scale_.ToPixelX(X1)), ToDevice(scale_.ToPixelY(Y1)), w, h, sx, sy, sw,
                sh, static_cast<DWORD>(Opcode.value_or(static_cast<std::int32_t>(SRCCOPY))));
    Invalidate();
}

float DrawingSurface::TextWidth(std::string_view Text) const {
    std::int32_t widest = 0;
    for (std::string_view line : SplitLines(Text)) {
        SIZE extent;
        gdi_.GetTextExtentPoint32(dc_, line, &extent);
        widest = std::max(widest, extent.cx);
    }
    return static_cast<float>(scale_.SizeFromPixelsX(widest));
}

float DrawingSurface::TextHeight(std::string_view Text) const {
    TEXTMETRIC tm;
    gdi_.GetTextMetrics(dc_, &tm);
    const auto lines = static_cast<std::int32_t>(SplitLines(Text).size());
    return static_cast<float>(scale_.SizeFromPixelsY(lines * (tm.tmHeight + tm.tmExternalLeading)));
}

void DrawingSurface::Refresh() {
    Invalidate();
}

// ---------------------------------------------------------------------------------------------
// Painting

void DrawingSurface::Invalidate() {
    if (transparent_) UpdateShape();
    platform_.windows().InvalidateWindow(hwnd_);
}

void DrawingSurface::Compose(HDC dc, bool withBitmap) const {
    const RECT window{0, 0, position_.Width(), position_.Height()};
    switch (frame_) {
        case Frame::None:
            break;
        case Frame::Single:
            gdi_.FrameRect(dc, window, MakeBrush(gdi_, gdi_.GetSysColor(COLOR_WINDOWFRAME)).get());
            break;
        case Frame::Sunken: {
            RECT edge = window;
            gdi_.DrawEdge(dc, &edge, EDGE_SUNKEN, BF_RECT);
            break;
        }
    }
    const int inset = Inset();
    const SIZE client = ClientSize();
    if (withBitmap && !transparent_)
        gdi_.BitBlt(dc, inset, inset, client.cx, client.cy, dc_, 0, 0, SRCCOPY);
    const RECT clientRect{inset, inset, inset + client.cx, inset + client.cy};
    for (const Lightweight* child : children_) {
        if (!child->Visible()) continue;
        const RECT rect = Offset(child->PixelRect(), inset, inset);
        const RECT clip = Intersect(rect, clientRect);
        if (clip.IsEmpty()) continue;
        const HRGN region = gdi_.CreateRectRgn(clip.left, clip.top, clip.right, clip.bottom);
        gdi_.SelectClipRgn(dc, region);
        gdi_.DeleteObject(region);
        child->Paint(dc, rect);
    }
    gdi_.SelectClipRgn(dc, HRGN{});
}

void DrawingSurface::OnPaint(HDC dc, const RECT& client) {
    const SIZE size{std::max(client.Width(), 1), std::max(client.Height(), 1)};
    if (!composeBuffer_ || composeBuffer_->size() != size)
        composeBuffer_ = std::make_unique<MemoryBitmap>(gdi_, size);
    if (transparent_) gdi_.PatBlt(composeBuffer_->dc(), 0, 0, size.cx, size.cy, BLACKNESS);
    Compose(composeBuffer_->dc(), true);
    gdi_.BitBlt(dc, 0, 0, client.Width(), client.Height(), composeBuffer_->dc(), 0, 0, SRCCOPY);
}

// A transparent surface is shaped to what it paints: compose the objects once over black and
// once over white, and a pixel that came out the same both times was painted. Child windows
// are part of the shape too, since a window region clips the children.
void DrawingSurface::UpdateShape() {
    const std::int32_t width = std::max(position_.Width(), 0),
                       height = std::max(position_.Height(), 0);
    const SIZE size{std::max(width, 1), std::max(height, 1)};
    MemoryBitmap overBlack(gdi_, size), overWhite(gdi_, size);
    gdi_.PatBlt(overWhite.dc(), 0, 0, size.cx, size.cy, WHITENESS);
    Compose(overBlack.dc(), false);
    Compose(overWhite.dc(), false);
    const PixelView a = overBlack.pixels(), b = overWhite.pixels();
    std::vector<bool> inside(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            inside[static_cast<std::size_t>(y) * width + x] =
                a.bits[y * a.width + x] == b.bits[y * b.width + x];
    for (const PictureBox* window : windows_) {
        if (!window->Visible()) continue;
        const RECT r = Intersect(window->WindowPosition(), RECT{0, 0, width, height});
        for (std::int32_t y = r.top; y < r.bottom; ++y)
            for (std::int32_t x = r.left; x < r.right; ++x)
                inside[static_cast<std::size_t>(y) * width + x] = true;
    }
    platform_.windows().SetWindowRgn(hwnd_, RegionFromMask(gdi_, inside, width, height));
}

// ---------------------------------------------------------------------------------------------
// Input
//
// One routine turns the window's mouse input into events. The target of a step is the topmost
// visible, enabled windowless object taking input under the pointer, else the surface itself.
//
//   step                              raised
//   press, no button held             MouseDown on the target, which keeps all input until the
//                                     last button is up
//   press of a further button         MouseDown on the object holding the input
//   move                              MouseMove on the object holding the input, else the target
//   release                           MouseUp on the object holding the input; then, for the
//                                     left button that began the press, Click if the pointer is
//                                     still over that object
//   second press of a double click    DblClick (not MouseDown) when it hits the object that got
//                                     the last Click; otherwise an ordinary press
//   its release                       MouseUp only
//
// So one click raises MouseDown, MouseUp, Click and a double click adds DblClick, MouseUp.
// Everything is dropped while the surface is disabled; disabled objects pass input beneath.

InputLightweight* DrawingSurface::HitTest(POINT client) const {
    for (auto it = children_.rbegin(); it != children_.rend(); ++it) {
        Lightweight* child = *it;
        InputLightweight* input = child->Input();
        if (!input || !child->Visible() || !input->Enabled()) continue;
        if (Contains(child->PixelRect(), client)) return input;
    }
    return nullptr;
}

bool DrawingSurface::IsChild(const InputLightweight* object) const {
    return std::any_of(children_.begin(), children_.end(),
                       [&](Lightweight* c) { return c->Input() == object; });
}

std::pair<float, float> DrawingSurface::EventPoint(const InputLightweight* target,
                                                   POINT client) const {
    if (!target)
        return {static_cast<float>(scale_.FromPixelX(client.x)),
                static_cast<float>(scale_.FromPixelY(client.y))};
    const RECT rect = target->PixelRect();
    return {static_cast<float>(scale_.SizeFromPixelsX(client.x - rect.left)),
            static_cast<float>(scale_.SizeFromPixelsY(client.y - rect.top))};
}

void DrawingSurface::OnMouse(const MouseEvent& event) {
    if (!enabled_) return;
    const POINT client{event.client.x - Inset(), event.client.y - Inset()};
    const auto shift = static_cast<std::int16_t>(event.shift);
    const auto raise = [&](InputLightweight* target, MouseHandler MouseEvents::*which, int button) {
        const auto [x, y] = EventPoint(target, client);
        const MouseEvents& handlers = target ? target->events : events;
        Raise(handlers.*which, static_cast<std::int16_t>(button), shift, x, y);
    };
    const auto over = [&](InputLightweight* target) {
        const SIZE size = ClientSize();
        return Contains(RECT{0, 0, size.cx, size.cy}, client) && HitTest(client) == target;
    };

    switch (event.kind) {
        case MouseEvent::Kind::Move: {
            pointer_ = client;
            RefreshToolTip();
            InputLightweight* target = press_ ? press_->target : HitTest(client);
            UpdateCursor(target);
            raise(target, &MouseEvents::MouseMove, event.button);
            break;
        }
        case MouseEvent::Kind::Down:
        case MouseEvent::Kind::DoubleClick: {
            if (press_) {
                press_->buttons |= event.button;
                raise(press_->target, &MouseEvents::MouseDown, event.button);
                break;
            }
            InputLightweight* target = HitTest(client);
            const bool doubleClick =
                event.kind == MouseEvent::Kind::DoubleClick && lastClick_ == target;
            press_ = Press{target, event.button, event.button, doubleClick};
            lastClick_.reset();
            if (doubleClick) {
                const MouseEvents& handlers = target ? target->events : events;
                Raise(handlers.DblClick);
            } else {
                raise(target, &MouseEvents::MouseDown, event.button);
            }
            break;
        }
        case MouseEvent::Kind::Up: {
            if (!press_) {  // a release whose press we never saw
                raise(HitTest(client), &MouseEvents::MouseUp, event.button);
                break;
            }
            const Press press = *press_;
            press_->buttons &= ~event.button;
            if (press_->buttons == 0) press_.reset();
            raise(press.target, &MouseEvents::MouseUp, event.button);
            // The MouseUp handler may have removed the object.
            if (press.target && !IsChild(press.target)) break;
            if (event.button == kButtonLeft && press.firstButton == kButtonLeft &&
                !press.afterDoubleClick && over(press.target)) {
                lastClick_ = press.target;
                const MouseEvents& handlers = press.target ? press.target->events : events;
                Raise(handlers.Click);
            }
            break;
        }
    }
}

void DrawingSurface::ToolTipText(std::string value) {
    if (value == toolTipText_) return;
    toolTipText_ = std::move(value);
    RefreshToolTip();
}

// The object the pointer was last over, looked up again: objects move and change their texts
// under a resting pointer.
void DrawingSurface::RefreshToolTip() {
    const InputLightweight* target = pointer_ ? HitTest(*pointer_) : nullptr;
    platform_.windows().SetToolTip(
        hwnd_, target && !target->ToolTipText().empty() ? target->ToolTipText() : toolTipText_);
}

void DrawingSurface::OnCaptureLost() {
    press_.reset();
}

void DrawingSurface::OnKey(const KeyEvent& event) {
    if (!enabled_) return;
    auto code = static_cast<std::int16_t>(event.keyCode);
    const auto shift = static_cast<std::int16_t>(event.shift);
    switch (event.kind) {
        case KeyEvent::Kind::Down:
            Raise(events.KeyDown, code, shift);
            break;
        case KeyEvent::Kind::Press:
            Raise(events.KeyPress, code);
            break;
        case KeyEvent::Kind::Up:
            Raise(events.KeyUp, code, shift);
            break;
    }
}

void DrawingSurface::OnFocus(bool gained) {
    Raise(gained ? events.GotFocus : events.LostFocus);
}

void DrawingSurface::Enabled(bool value) {
    if (value == enabled_) return;
    enabled_ = value;
    if (!value) press_.reset();
    platform_.windows().EnableWindow(hwnd_, value);
}

void DrawingSurface::MousePointer(std::int16_t value) {
    mousePointer_ = CheckedMousePointer(value);
    UpdateCursor(nullptr);
}

void DrawingSurface::MouseIcon(std::shared_ptr<host::StdPicture> value) {
    mouseIcon_ = std::move(value);
    UpdateCursor(nullptr);
}

// The window shows the pointer of the object under the mouse, or the surface's own when that
// object leaves it at 0 (default).
void DrawingSurface::UpdateCursor(const InputLightweight* target) {
    std::int16_t pointer = host::EffectiveMousePointer(mousePointer_, mouseIcon_);
    std::shared_ptr<host::StdPicture> icon = mouseIcon_;
    if (target && target->MousePointer() != 0) {
        pointer = host::EffectiveMousePointer(target->MousePointer(), target->MouseIcon());
        icon = target->MouseIcon();
    }
    const void* owner = pointer == host::kMousePointerCustom ? icon.get() : nullptr;
    if (pointer == shownCursor_ && owner == shownCursorOwner_) return;
    shownCursor_ = pointer;
    shownCursorOwner_ = owner;
    if (pointer == host::kMousePointerCustom) {
        platform_.windows().SetWindowCursor(
            hwnd_, pointer, std::make_shared<const std::vector<std::uint32_t>>(icon->Pixels()),
            SIZE{icon->PixelWidth(), icon->PixelHeight()});
    } else {
        platform_.windows().SetWindowCursor(hwnd_, pointer);
    }
}

void DrawingSurface::SetFocus() {
    platform_.windows().SetFocus(hwnd_);
}

// ---------------------------------------------------------------------------------------------
// Windowless objects and child windows

// No repaint here: the object is still being constructed; its constructor repaints at the end.
void DrawingSurface::Attach(Lightweight* child) {
    children_.push_back(child);  // a new object comes in front, as the designer places it
}

void DrawingSurface::Detach(Lightweight* child) {
    std::erase(children_, child);
    InputLightweight* input = child->Input();
    if (input && press_ && press_->target == input) press_.reset();
    if (input && lastClick_ == input) lastClick_.reset();
    Invalidate();
}

void DrawingSurface::Restack(Lightweight* child, ZOrderConstants position) {
    std::erase(children_, child);
    if (position == ZOrderConstants::vbSendToBack)
        children_.insert(children_.begin(), child);
    else
        children_.push_back(child);
    Invalidate();
}

void DrawingSurface::AttachWindow(PictureBox* child) {
    windows_.push_back(child);
}

void DrawingSurface::DetachWindow(PictureBox* child) {
    std::erase(windows_, child);
    if (transparent_) Invalidate();
}

}  // namespace korvex::forms
