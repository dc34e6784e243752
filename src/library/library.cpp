#include "library/library.hpp"

#include "controls/button/button.hpp"
#include "controls/button/flat_button.hpp"
#include "controls/display/frames.hpp"
#include "controls/display/hyperlink.hpp"
#include "controls/display/icons.hpp"
#include "controls/display/label3d.hpp"
#include "controls/display/line3d.hpp"
#include "controls/value/progress_bar.hpp"
#include "controls/value/ruler.hpp"
#include "controls/value/spin.hpp"
#include "dialog/about_box.hpp"

namespace korvex {

void RegisterLibrary(host::HostContext& context) {
    // Each control adds its own table here as it joins the library.
    context.Classes().Register(controls::Line3D::Class());
    context.Classes().Register(controls::Label3D::Class());
    context.Classes().Register(controls::Frames::Class());
    context.Classes().Register(controls::Hyperlink::Class());
    context.Classes().Register(controls::Icons::Class());
    context.Classes().Register(controls::Button::Class());
    context.Classes().Register(controls::ProgressBar::Class());
    context.Classes().Register(controls::Spin::Class());
    context.Classes().Register(controls::Ruler::Class());
    if (context.Platform()) context.SetAboutBox([&context] { dialog::ShowAboutBox(context); });
}

void RegisterPrivateControls(host::HostContext& context) {
    context.Classes().Register(controls::FlatButton::Class());
}

}  // namespace korvex
