#include "forms/surface_control.hpp"

#include <cmath>

namespace korvex::forms {

namespace {

platform::Platform& RequirePlatform(host::HostContext& context) {
    if (!context.Platform()) {
        throw host::HostError(host::kErrInvalidCall,
                              "This control needs a host with a platform to show it on", "Control");
    }
    return *context.Platform();
}

}  // namespace

SurfaceControl::SurfaceControl(host::HostContext& context)
    : UserControl(RequirePlatform(context), context.NewControlParent()) {
    UserControl.events.Resize = [this] {
        if (placing_ || !Site()) return;
        Site()->RequestExtent(static_cast<std::int32_t>(std::lround(UserControl.Width())),
                              static_cast<std::int32_t>(std::lround(UserControl.Height())));
    };
}

void SurfaceControl::ForwardMouse(MouseEvents& source, std::int32_t mouseDown,
                                  std::int32_t mouseMove, std::int32_t mouseUp) {
    const auto forward = [this](std::int32_t id) {
        return [this, id](std::int16_t Button, std::int16_t Shift, float x, float y) {
            RaiseEvent(id, Button, Shift, x, y);
        };
    };
    source.MouseDown = forward(mouseDown);
    source.MouseMove = forward(mouseMove);
    source.MouseUp = forward(mouseUp);
}

void SurfaceControl::Place(const platform::RECT& bounds, bool visible, bool enabled) {
    placing_ = true;
    UserControl.Move(static_cast<float>(bounds.left), static_cast<float>(bounds.top),
                     static_cast<float>(bounds.Width()), static_cast<float>(bounds.Height()));
    placing_ = false;
    platform::Windows& windows = UserControl.Platform().windows();
    windows.ShowWindow(UserControl.hWnd(), visible);
    windows.EnableWindow(UserControl.hWnd(), enabled);
}

}  // namespace korvex::forms
