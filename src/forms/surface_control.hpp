#pragma once
// SurfaceControl: a control built on a UserControlSurface, the way every control of the library
// is. It keeps the surface's window a child of the container's window and in step with the
// extender: the host's placement moves the surface, and a size the control gives its own
// surface (UserControl.Height = ...) goes back to the host, which then resizes the extender and
// calls UserControl_Resize again.

#include "forms/user_control.hpp"
#include "host/control.hpp"

namespace korvex::forms {

class SurfaceControl : public host::Control {
public:
    // Error 5 when the host has no platform to show controls on.
    explicit SurfaceControl(host::HostContext& context);

    [[nodiscard]] platform::HWND SurfaceWindow() const override { return UserControl.hWnd(); }
    void Place(const platform::RECT& bounds, bool visible, bool enabled) override;

protected:
    void SiteAttached() override;
    // Raises MouseDown, MouseMove and MouseUp of the control (their event numbers given) for the
    // same input on a constituent object, with its arguments.
    void ForwardMouse(MouseEvents& source, std::int32_t mouseDown, std::int32_t mouseMove, std::int32_t mouseUp);

    UserControlSurface UserControl;

private:
    bool placing_ = false;
};

}  // namespace korvex::forms
