#pragma once
// DrawingSurface: what the control surface and the picture box share. A window of its own, a
// persistent bitmap that every drawing method paints into (the host's AutoRedraw look, always
// on), a scale system, the print position and drawing state, the windowless objects on top, and
// the one routine that turns the window's input into events.
//
// Paint composition, bottom to top: border (none, one pixel in the window-frame colour, or the
// sunken 3D edge), persistent bitmap (or nothing when transparent), windowless objects in
// z-order clipped to the client area. Child windows (picture boxes) are windows of their own.
// The border is drawn inside the window: the client area, the bitmap and all scale units start
// inside it, as a real non-client border would leave them.
//
// Sections: handles · scale · colours and drawing state · persistent drawing · input and focus ·
// windowless objects · subclass hooks

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "forms/events.hpp"
#include "forms/graphics.hpp"
#include "forms/lightweight.hpp"
#include "forms/scale.hpp"
#include "host/font.hpp"
#include "host/ole_types.hpp"
#include "platform/window.hpp"

namespace korvex::forms {

class PictureBox;

// Line's box flag: "B" draws the rectangle with corners at the two points, "BF" fills it with
// the line's colour.
enum class LineBox { None, B, BF };

class DrawingSurface : private platform::WindowHandler {
  public:
    ~DrawingSurface() override;
    DrawingSurface(const DrawingSurface&) = delete;
    DrawingSurface& operator=(const DrawingSurface&) = delete;

    [[nodiscard]] platform::Platform& Platform() const { return platform_; }

    // ---- handles
    [[nodiscard]] platform::HWND hWnd() const { return hwnd_; }
    // The persistent bitmap's DC; it stays the same for the surface's life and holds the
    // surface's font, text colour and draw mode, so API drawing on it matches Print and Line.
    [[nodiscard]] platform::HDC hDC() const { return dc_; }
    [[nodiscard]] bool HasDC() const { return true; }

    // ---- scale
    [[nodiscard]] ScaleModeConstants ScaleMode() const { return scale_.Mode(); }
    void ScaleMode(ScaleModeConstants value);
    [[nodiscard]] float ScaleLeft() const { return static_cast<float>(scale_.Left()); }
    [[nodiscard]] float ScaleTop() const { return static_cast<float>(scale_.Top()); }
    [[nodiscard]] float ScaleWidth() const { return static_cast<float>(scale_.Width()); }
    [[nodiscard]] float ScaleHeight() const { return static_cast<float>(scale_.Height()); }
    void ScaleLeft(float value) { scale_.Left(value); }
    void ScaleTop(float value) { scale_.Top(value); }
    void ScaleWidth(float value) { scale_.Width(value); }
    void ScaleHeight(float value) { scale_.Height(value); }
    [[nodiscard]] const ScaleSystem& Scale() const { return scale_; }

    // ---- colours and drawing state
    // Setting the back colour clears the persistent drawing to it, as the host does.
    [[nodiscard]] host::OLE_COLOR BackColor() const { return backColor_; }
    void BackColor(host::OLE_COLOR value);
    [[nodiscard]] host::OLE_COLOR ForeColor() const { return foreColor_; }
    void ForeColor(host::OLE_COLOR value);
    [[nodiscard]] host::OLE_COLOR FillColor() const { return fillColor_; }
    void FillColor(host::OLE_COLOR value) { fillColor_ = value; }
    // 0 solid, 1 transparent (the default), 2 to 7 hatches in FillColor (see MakeFillBrush); the
    // gaps of a hatch show the back colour unless FontTransparent leaves them clear, as the
    // device context's background mode decides both.
    [[nodiscard]] std::int16_t FillStyle() const { return fillStyle_; }
    void FillStyle(std::int16_t value);
    // The ROP2 codes 1 to 16; 13 (copy pen) by default.
    [[nodiscard]] std::int16_t DrawMode() const { return drawMode_; }
    void DrawMode(std::int16_t value);
    // 0 solid, 1 dash, 2 dot, 3 dash-dot, 4 dash-dot-dot, 5 transparent, 6 inside solid.
    [[nodiscard]] std::int16_t DrawStyle() const { return drawStyle_; }
    void DrawStyle(std::int16_t value);
    // Pen width in pixels, at least 1.
    [[nodiscard]] std::int16_t DrawWidth() const { return drawWidth_; }
    void DrawWidth(std::int16_t value);
    [[nodiscard]] bool FontTransparent() const { return fontTransparent_; }
    void FontTransparent(bool value);
    // Shared with whoever else holds it; its changes repaint the surface.
    [[nodiscard]] std::shared_ptr<host::StdFont> Font() const { return font_; }
    void Font(std::shared_ptr<host::StdFont> value);
    // Drawn at 0,0 beneath the persistent drawing; setting it clears the drawing.
    [[nodiscard]] std::shared_ptr<host::StdPicture> Picture() const { return picture_; }
    void Picture(std::shared_ptr<host::StdPicture> value);

    // ---- persistent drawing (all coordinates in scale units)
    [[nodiscard]] float CurrentX() const { return static_cast<float>(currentX_); }
    [[nodiscard]] float CurrentY() const { return static_cast<float>(currentY_); }
    void CurrentX(float value) { currentX_ = value; }
    void CurrentY(float value) { currentY_ = value; }
    // Fills with the back colour, draws the picture, puts the print position at 0,0.
    void Cls();
    // Prints text (CR/LF start new lines) at the print position in the font and fore colour.
    // With NewLine the position moves to the left edge of the next line, else after the text.
    void Print(std::string_view Text = {}, bool NewLine = true);
    // From (X1, Y1) to (X2, Y2) in the draw width, style and mode, both end points painted;
    // leaves the print position at (X2, Y2).
    void Line(float X1, float Y1, float X2, float Y2, std::optional<host::OLE_COLOR> Color = {},
              LineBox Box = LineBox::None);
    // Draws a picture or part of it, stretched when the sizes differ. Sizes default to the
    // picture's; Opcode is a raster operation (SRCCOPY by default). Error 481 without a picture.
    void PaintPicture(const std::shared_ptr<host::StdPicture>& Picture, float X1, float Y1,
                      std::optional<float> Width1 = {}, std::optional<float> Height1 = {},
                      std::optional<float> X2 = {}, std::optional<float> Y2 = {},
                      std::optional<float> Width2 = {}, std::optional<float> Height2 = {},
                      std::optional<std::int32_t> Opcode = {});
    // Extent of text in the surface's font, in scale units (height counts its lines).
    [[nodiscard]] float TextWidth(std::string_view Text) const;
    [[nodiscard]] float TextHeight(std::string_view Text) const;
    // Shows the current drawing and windowless objects.
    void Refresh();

    // ---- input and focus
    [[nodiscard]] bool Enabled() const { return enabled_; }
    void Enabled(bool value);
    [[nodiscard]] std::int16_t MousePointer() const { return mousePointer_; }
    void MousePointer(std::int16_t value);
    [[nodiscard]] std::shared_ptr<host::StdPicture> MouseIcon() const { return mouseIcon_; }
    void MouseIcon(std::shared_ptr<host::StdPicture> value);
    void SetFocus();

    // ---- tooltip
    // What the platform shows while the pointer rests on the surface: the text of the windowless
    // object under the pointer when it has one, the surface's own otherwise.
    [[nodiscard]] const std::string& ToolTipText() const { return toolTipText_; }
    void ToolTipText(std::string value);
    // A text changed: the platform gets the one for the object under the pointer now.
    void RefreshToolTip();

    SurfaceEvents events;

    // ---- windowless objects, bottom first
    [[nodiscard]] const std::vector<Lightweight*>& Controls() const { return children_; }
    // The topmost visible, enabled object taking input at a client pixel; null for the surface.
    [[nodiscard]] InputLightweight* HitTest(platform::POINT client) const;

  protected:
    // A window at `position` (parent-relative pixels for a child window, screen otherwise).
    DrawingSurface(platform::Platform& platform, platform::HWND parent, bool child,
                   const platform::RECT& position);

    // The window in its parent's client pixels (screen for a top-level window).
    [[nodiscard]] platform::RECT WindowPosition() const;
    // Moves and sizes the window; a size change resizes the bitmap (keeping the drawing) and
    // raises Resize.
    void PlaceWindow(const platform::RECT& position);

    enum class Frame { None, Single, Sunken };
    void SetFrame(Frame frame);
    // Pixels the frame takes on each side, and the client area inside it.
    [[nodiscard]] int Inset() const;
    [[nodiscard]] platform::SIZE ClientSize() const;
    // Transparent surfaces show only their windowless objects (and border); elsewhere the
    // parent shows through and input falls through to it.
    void SetTransparent(bool transparent);
    [[nodiscard]] bool IsTransparent() const { return transparent_; }
    // Marks the window stale; a transparent surface recomputes its shape first.
    void Invalidate();

  private:
    friend class Lightweight;
    friend class PictureBox;

    // ---- window handler
    void OnMouse(const platform::MouseEvent& event) override;
    void OnKey(const platform::KeyEvent& event) override;
    void OnFocus(bool gained) override;
    void OnCaptureLost() override;
    void OnPaint(platform::HDC dc, const platform::RECT& client) override;

    // Paints border, bitmap (unless transparent or !withBitmap) and windowless objects into dc,
    // window-sized.
    void Compose(platform::HDC dc, bool withBitmap) const;
    void UpdateShape();
    // Error 480 (with the size) when the platform cannot back the surface with a bitmap.
    [[noreturn]] static void NoPersistentImage(platform::SIZE size);
    void ResizeBitmap(platform::SIZE client);
    void FillBackground();
    void SyncDc();
    void SyncFont();
    void UpdateCursor(const InputLightweight* target);
    // Where the pointer's x, y (client pixels of the window) land for a target, in its units.
    [[nodiscard]] std::pair<float, float> EventPoint(const InputLightweight* target,
                                                     platform::POINT client) const;
    [[nodiscard]] bool IsChild(const InputLightweight* object) const;

    void Attach(Lightweight* child);
    void Detach(Lightweight* child);
    void Restack(Lightweight* child, ZOrderConstants position);
    void AttachWindow(PictureBox* child);
    void DetachWindow(PictureBox* child);

    platform::Platform& platform_;
    platform::Gdi& gdi_;
    platform::HWND hwnd_;
    platform::HDC dc_;
    platform::HBITMAP bitmap_;
    platform::SIZE bitmapSize_;
    platform::RECT position_;
    platform::HGDIOBJ originalBitmap_;
    platform::HGDIOBJ originalFont_;
    GdiObject fontObject_;
    std::unique_ptr<MemoryBitmap> composeBuffer_;
    ScaleSystem scale_;
    Frame frame_ = Frame::None;
    bool transparent_ = false;

    host::OLE_COLOR backColor_ = 0x8000000F;
    host::OLE_COLOR foreColor_ = 0x80000012;
    host::OLE_COLOR fillColor_ = 0;
    std::int16_t fillStyle_ = 1;
    std::int16_t drawMode_ = 13;
    std::int16_t drawStyle_ = 0;
    std::int16_t drawWidth_ = 1;
    bool fontTransparent_ = true;
    std::shared_ptr<host::StdFont> font_;
    std::shared_ptr<void> fontSubscription_;
    std::shared_ptr<host::StdPicture> picture_;
    double currentX_ = 0;
    double currentY_ = 0;

    bool enabled_ = true;
    std::int16_t mousePointer_ = 0;
    std::shared_ptr<host::StdPicture> mouseIcon_;
    int shownCursor_ = -1;
    std::string toolTipText_;
    std::optional<platform::POINT> pointer_;  // client pixels of the last move over the surface
    const void* shownCursorOwner_ = nullptr;

    // Input state machine (see OnMouse).
    struct Press {
        InputLightweight* target = nullptr;  // null: the surface itself
        int buttons = 0;                     // buttons held, kButton*
        int firstButton = 0;                 // the button whose release may click
        bool afterDoubleClick = false;       // the release of a double click raises no Click
    };
    std::optional<Press> press_;
    // The object that got the last Click (null: the surface), which a double click must hit.
    std::optional<InputLightweight*> lastClick_;

    std::vector<Lightweight*> children_;
    std::vector<PictureBox*> windows_;
};

}  // namespace korvex::forms
