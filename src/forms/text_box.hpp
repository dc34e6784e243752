#pragma once
// TextBox: a single-line text field in the classic look. A child window (so it takes the focus
// and keys) showing its text with a caret, a selection made with the mouse or Shift and the
// arrow keys, and cut, copy and paste through the platform's clipboard:
//
//   Ctrl+X, Shift+Del  cut        Ctrl+C, Ctrl+Ins  copy        Ctrl+V, Shift+Ins  paste
//
// Every key passes the KeyDown and KeyPress handlers first; a handler that sets the code to 0
// swallows it. A refused edit (past MaxLength) sounds the system beep. Locked keeps the text
// but still lets the user select and copy. Positions count bytes of the UTF-8 text.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "forms/boxed_control.hpp"
#include "forms/events.hpp"
#include "forms/picture_box.hpp"

namespace korvex::forms {

class TextBox : public BoxedControl {
  public:
    // Empty, visible, enabled, on the window colours, with a fixed single 3D border.
    explicit TextBox(DrawingSurface& container);

    // ---- looks
    // 0 none, 1 fixed single.
    [[nodiscard]] std::int16_t BorderStyle() const { return box_.BorderStyle(); }
    void BorderStyle(std::int16_t value);
    // 0 flat, 1 3D.
    [[nodiscard]] std::int16_t Appearance() const { return box_.Appearance(); }
    void Appearance(std::int16_t value);
    // 0 left, 1 right, 2 centre; error 380 otherwise.
    [[nodiscard]] std::int16_t Alignment() const { return alignment_; }
    void Alignment(std::int16_t value);
    [[nodiscard]] host::OLE_COLOR BackColor() const { return box_.BackColor(); }
    void BackColor(host::OLE_COLOR value);
    [[nodiscard]] host::OLE_COLOR ForeColor() const { return box_.ForeColor(); }
    void ForeColor(host::OLE_COLOR value);
    [[nodiscard]] std::shared_ptr<host::StdFont> Font() const { return box_.Font(); }
    void Font(std::shared_ptr<host::StdFont> value);
    using BoxedControl::Enabled;
    void Enabled(bool value);
    [[nodiscard]] const std::string& ToolTipText() const { return box_.ToolTipText(); }
    void ToolTipText(std::string value) { box_.ToolTipText(std::move(value)); }
    // 0, the default, shows the I-beam, as a text field's own cursor.
    [[nodiscard]] std::int16_t MousePointer() const { return mousePointer_; }
    void MousePointer(std::int16_t value);
    [[nodiscard]] std::shared_ptr<host::StdPicture> MouseIcon() const { return box_.MouseIcon(); }
    void MouseIcon(std::shared_ptr<host::StdPicture> value) { box_.MouseIcon(std::move(value)); }

    // ---- text and selection
    // Setting a different text raises Change and puts the caret at the start.
    [[nodiscard]] const std::string& Text() const { return text_; }
    void Text(std::string_view value);
    // The caret (the selection's start) and the selection's length; both clamp to the text.
    // Errors 380 for negative values, as the host's text box gives.
    [[nodiscard]] std::int32_t SelStart() const { return selStart_; }
    void SelStart(std::int32_t value);
    [[nodiscard]] std::int32_t SelLength() const { return selLength_; }
    void SelLength(std::int32_t value);
    [[nodiscard]] std::string SelText() const;
    // Replaces the selection (Change follows) and leaves the caret after the new text.
    void SelText(std::string_view value);
    // Keeps the text as it is against the user; code still changes it.
    [[nodiscard]] bool Locked() const { return locked_; }
    void Locked(bool value) { locked_ = value; }
    // Longest text the user may make, 0 for no limit; negative is error 380.
    [[nodiscard]] std::int32_t MaxLength() const { return maxLength_; }
    void MaxLength(std::int32_t value);

    // The line queries of an edit field: the line holding a character (-1: the caret's), and a
    // line's text as far as a buffer of bufferSize characters holds. One line here.
    [[nodiscard]] std::int32_t LineFromChar(std::int32_t index) const;
    [[nodiscard]] std::string GetLine(std::int32_t line, std::int32_t bufferSize) const;

    // ---- clipboard
    void Cut();
    void Copy();
    void Paste();

    // Draws the field again, after a change to its font object, say.
    void Refresh() { Paint(); }
    void SetFocus() { box_.SetFocus(); }
    [[nodiscard]] bool HasFocus() const { return focused_; }

    // KeyDown, KeyPress, KeyUp, GotFocus, LostFocus and the mouse events, as the field's own.
    SurfaceEvents events;
    std::function<void()> Change;

  private:
    void OnMouseDown(std::int16_t button, std::int16_t shift, float x);
    void OnMouseMove(std::int16_t button, float x);
    void OnKeyDown(std::int16_t& code, std::int16_t shift);
    void OnKeyPress(std::int16_t& ascii);
    // Replaces the selection with text as the user's edit; false (and a beep) past MaxLength.
    bool Edit(std::string_view text);
    void Beep();
    // Moves the caret to `to`, extending the selection from its anchor when extend is set.
    void MoveCaret(std::int32_t to, bool extend);
    [[nodiscard]] std::int32_t Anchor() const;
    [[nodiscard]] std::int32_t Caret() const;
    // Pixel x of a text position, and the position nearest a pixel x.
    [[nodiscard]] int XOf(std::int32_t position) const;
    [[nodiscard]] std::int32_t PositionAt(int x) const;
    [[nodiscard]] int TextPixels(std::string_view text) const;
    // Keeps the caret inside the field (left-aligned text scrolls) and repaints.
    void Paint();

    std::string text_;
    std::int32_t selStart_ = 0;
    std::int32_t selLength_ = 0;
    bool caretAtStart_ = false;  // the caret sits at the selection's start (extended leftwards)
    std::int16_t alignment_ = 0;
    bool locked_ = false;
    std::int32_t maxLength_ = 0;
    std::int16_t mousePointer_ = 0;
    bool focused_ = false;
    bool dragging_ = false;
    int scroll_ = 0;  // pixels of left-aligned text scrolled out on the left
};

}  // namespace korvex::forms
