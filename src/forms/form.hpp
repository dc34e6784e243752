#pragma once
// Form: a top-level window of the library's own (the about box, the message box). Its window
// has the platform's caption style: the platform draws the frame, the caption bar with the
// form's Caption and the close box, and tells the form when the close box is clicked. The
// client area is a drawing surface that holds labels, images, shapes, picture boxes and frames.
//
// Show(modal) centres the form on the screen the first time it appears; a modal show disables
// every other top-level window and runs a nested loop of the event loop until the form is hidden
// or unloaded, then enables them again. A click on the close box unloads the form.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "forms/drawing_surface.hpp"
#include "platform/window.hpp"

namespace korvex::forms {

// The client area of a form.
class FormClient final : public DrawingSurface {
  public:
    FormClient(platform::Platform& platform, platform::HWND frame, const platform::RECT& position);
    void Place(const platform::RECT& position) { PlaceWindow(position); }
};

class Form : private platform::WindowHandler {
  public:
    // A hidden form of 4800 x 3600 twips; `name` names it in the event loop's errors.
    explicit Form(platform::Platform& platform, std::string name = "Form1");
    ~Form() override;
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    [[nodiscard]] platform::Platform& Platform() const { return platform_; }
    [[nodiscard]] const std::string& Name() const { return name_; }
    // The form's window (what an owner handle is).
    [[nodiscard]] platform::HWND hWnd() const { return hwnd_; }
    // The client area: the container of the form's objects.
    [[nodiscard]] FormClient& Client() { return *client_; }

    [[nodiscard]] const std::string& Caption() const { return caption_; }
    void Caption(std::string value);

    // Outer position and size in twips (position in screen twips).
    [[nodiscard]] float Left() const;
    [[nodiscard]] float Top() const;
    [[nodiscard]] float Width() const;
    [[nodiscard]] float Height() const;
    void Move(float Left, float Top, float Width, float Height);
    // Sizes the form so that its client area is width x height twips.
    void ClientSize(float width, float height);

    [[nodiscard]] bool Visible() const { return visible_; }
    // Shows the form; modal keeps the caller here until the form is hidden or unloaded. Error
    // 400 for a modal show of a form already shown.
    void Show(bool modal = false);
    void Hide();
    // Hides the form and raises its Unload callback once; its windows go with the object.
    void Unload();
    [[nodiscard]] bool Loaded() const { return loaded_; }

    // The host's screen-wide mouse pointer as this form's windows show it (0 default, 11
    // hourglass, ...): while it is not 0 it overrides every pointer of the form. Only one form
    // takes input while a modal form is open, so that is everything the user can point at.
    [[nodiscard]] std::int16_t ScreenMousePointer() const { return screenPointer_; }
    void ScreenMousePointer(std::int16_t value);

    // The close box in window pixels, and whether it shows pressed now (as the platform draws
    // them).
    [[nodiscard]] platform::RECT CloseBoxRect() const;
    [[nodiscard]] bool CloseBoxPressed() const;
    // The caption bar in window pixels.
    [[nodiscard]] platform::RECT CaptionRect() const;

    // Runs when the form unloads (the close box, or Unload).
    std::function<void()> OnUnload;

  private:
    static constexpr platform::WindowStyle kStyle{.caption = true};

    // The close box was clicked.
    void OnClose() override { Unload(); }

    // The title bar's parts, in window pixels.
    [[nodiscard]] platform::TITLEBARINFO TitleBar() const;
    void PlaceClient();
    void ApplyScreenPointer();
    void AllWindows(platform::HWND window, std::vector<platform::HWND>& out) const;

    platform::Platform& platform_;
    std::string name_;
    platform::HWND hwnd_;
    platform::RECT position_;  // screen pixels
    std::unique_ptr<FormClient> client_;
    std::string caption_;
    bool visible_ = false;
    bool loaded_ = true;
    bool placed_ = false;  // centred once, when first shown
    bool modal_ = false;
    std::int16_t screenPointer_ = 0;
};

}  // namespace korvex::forms
