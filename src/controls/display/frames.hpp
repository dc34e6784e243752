#pragma once
// Frames: a captioned frame that groups other controls. The border runs round the whole surface
// (in one of eleven looks: none, the eight edge combinations of DrawEdge, a flat one-pixel line
// and the rounded grey XP frame); the caption label T sits at the top edge, opaque in the
// frame's colour, so where it lies across the border line it hides it.
//
//   AlignmentTop fStandard      fUnderBorder          fOverBorder
//       ┌─ Caption ───┐      ┌───────────────┐          Caption
//       │             │      │ Caption       │       ┌─────────────┐
//
// The surface works in pixels: every position here is a pixel, and the border is painted into
// the persistent drawing, so the host repaints without asking the control.

#include <cstdint>
#include <memory>
#include <string>

#include "forms/label.hpp"
#include "forms/surface_control.hpp"
#include "host/declare.hpp"
#include "host/ole_types.hpp"
#include "host/property_bag.hpp"

namespace korvex::controls {

KORVEX_ENUM(BoStyle, Off_Frame = 0, Standard_Down = 1, Standard_Up = 2, Bright_Down = 3,
            Bright_Up = 4, Dark_Down = 5, Dark_UP = 6, Dark_Frame = 7, Standard_Frame = 8,
            Flat_Frame = 9, XP_Frame = 10)
KORVEX_ENUM(BoAli, fLeft = 0, fCenter = 1, fRight = 2)
KORVEX_ENUM(BoAl, fStandard = 0, fUnderBorder = 1, fOverBorder = 2)
KORVEX_POINTER_ENUM(fMousePointerConst, "fMouseIcon")
KORVEX_EVENTS(FramesEvents, Click, DblClick, MouseDown, MouseMove, MouseUp, KeyDown, KeyPress,
              KeyUp, Focus)

class Frames final : public forms::SurfaceControl {
  public:
    // Where the caption starts from the left (or ends from the right) edge, in pixels.
    static constexpr float kCaptionIndent = 7;
    // The edge flags styles 1 to 8 paint with before any BorderStyle let: etched.
    static constexpr std::int32_t kNewEdgeKind = 6;

    explicit Frames(host::HostContext& context);

    static const host::ClassInfo& Class();
    [[nodiscard]] const host::ClassInfo& TypeInfo() const override { return Class(); }

    // ---- lifecycle
    void UserControl_Initialize() override;
    void UserControl_InitProperties() override;
    void UserControl_ReadProperties(host::PropertyBag& PropBag) override;
    void UserControl_WriteProperties(host::PropertyBag& PropBag) override;
    void UserControl_Resize() override;
    // The caption's "&" letter moves the focus on to the next control, the frame's first one.
    [[nodiscard]] std::u32string AccessKeys() const override { return T.ShownAccessKeys(); }
    [[nodiscard]] bool ForwardFocus() const override { return true; }

    // ---- properties, in the interface's order
    // A copy of the assigned font: the caption's own attribute properties change it, and they
    // must not reach the form's font or another control's.
    [[nodiscard]] std::shared_ptr<host::StdFont> Font() const { return T.Font(); }
    void Font(std::shared_ptr<host::StdFont> New_Font);
    [[nodiscard]] host::OLE_COLOR TextColor() const { return T.ForeColor(); }
    void TextColor(host::OLE_COLOR New_TextColor);
    [[nodiscard]] host::OLE_COLOR BackColorF() const { return UserControl.BackColor(); }
    void BackColorF(host::OLE_COLOR New_BackColorF);
    [[nodiscard]] bool FontBold() const { return T.Font()->Bold(); }
    void FontBold(bool New_FontBold);
    [[nodiscard]] bool FontItalic() const { return T.Font()->Italic(); }
    void FontItalic(bool New_FontItalic);
    [[nodiscard]] std::string FontName() const { return T.Font()->Name(); }
    void FontName(std::string New_FontName);
    [[nodiscard]] float FontSize() const { return static_cast<float>(T.Font()->Size()); }
    void FontSize(float New_FontSize);
    [[nodiscard]] bool FontStrikethru() const { return T.Font()->Strikethrough(); }
    void FontStrikethru(bool New_FontStrikethru);
    [[nodiscard]] std::shared_ptr<host::StdPicture> MouseIcon() const {
        return UserControl.MouseIcon();
    }
    void MouseIcon(std::shared_ptr<host::StdPicture> New_MouseIcon);
    [[nodiscard]] fMousePointerConst MousePointer() const {
        return static_cast<fMousePointerConst>(UserControl.MousePointer());
    }
    void MousePointer(fMousePointerConst New_MousePointer);
    [[nodiscard]] BoStyle BorderStyle() const { return BorderStyle_; }
    void BorderStyle(BoStyle New_BorderStyle);
    [[nodiscard]] BoAli Alignment() const { return Alignment_; }
    void Alignment(BoAli New_Alignment);
    [[nodiscard]] BoAl AlignmentTop() const { return AlignmentTop_; }
    void AlignmentTop(BoAl New_AlignmentTop);
    [[nodiscard]] bool EnabledF() const { return UserControl.Enabled(); }
    void EnabledF(bool New_EnabledF);
    [[nodiscard]] std::string Caption() const { return T.Caption(); }
    void Caption(std::string New_Caption);

    // The edge flags styles 1 to 8 paint with (read-only view for tests and the gallery).
    [[nodiscard]] std::int32_t EdgeKind() const { return edgeKind_; }

  private:
    struct Props;  // the property declarations

    // Places the caption for the alignments, then repaints.
    void ResizeFrame();
    void SetNewState();
    // Clears the drawing and paints the border for the current style.
    void Repaint();
    void ForwardInput();
    void SetCaptionText(std::string caption);

    forms::Label T;

    // State record; the constructor gives it the new control's values.
    BoStyle BorderStyle_ = BoStyle::Off_Frame;
    BoAli Alignment_ = BoAli::fLeft;
    BoAl AlignmentTop_ = BoAl::fStandard;
    std::int32_t edgeKind_ = kNewEdgeKind;
};

}  // namespace korvex::controls
