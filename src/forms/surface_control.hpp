#pragma once
// SurfaceControl: a control built on a UserControlSurface, the way every control of the library
// is. The surface's window is created as a child of the container's window (the one the host
// names while it creates the control) and kept in step with the extender: the host's placement
// moves the surface, and a size the control gives its own surface (UserControl.Height = ...) goes
// back to the host, which then resizes the extender and calls UserControl_Resize again.

#include <cstdint>

#include "forms/user_control.hpp"
#include "host/control.hpp"

namespace korvex::forms {

class SurfaceControl : public host::Control {
  public:
    // Error 5 when the host has no platform to show controls on.
    explicit SurfaceControl(host::HostContext& context);

    [[nodiscard]] platform::HWND SurfaceWindow() const override { return UserControl.hWnd(); }

    // The handles a control publishes as its read-only HDC, hwnd and HasDC: its surface's, as
    // the system behind the platform numbers them (Win32 handles fit a host Long).
    [[nodiscard]] std::int32_t HDC() const {
        return static_cast<std::int32_t>(
            UserControl.Platform().gdi().NativeHandle(UserControl.hDC()));
    }
    [[nodiscard]] std::int32_t hwnd() const {
        return static_cast<std::int32_t>(
            UserControl.Platform().windows().NativeHandle(UserControl.hWnd()));
    }
    [[nodiscard]] bool HasDC() const { return UserControl.HasDC(); }
    void Place(const platform::RECT& bounds, bool visible, bool enabled) override;

  protected:
    // Raises MouseDown, MouseMove and MouseUp of the control (their event numbers given) for the
    // same input on a constituent object, with its arguments.
    void ForwardMouse(MouseEvents& source, std::int32_t mouseDown, std::int32_t mouseMove,
                      std::int32_t mouseUp);

    UserControlSurface UserControl;

  private:
    bool placing_ = false;
};

}  // namespace korvex::forms
