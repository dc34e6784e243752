#include "controls/display/icons.hpp"

#include "foundation/images.hpp"
#include "host/numeric.hpp"
#include "host/type_info.hpp"

namespace korvex::controls {

using host::Variant;

const host::ClassInfo& Icons::Class() {
    static const host::ClassInfo info =
        host::ClassBuilder<Icons>("Icons", "Korvex_Tools.Icons")
            .Method("ShowAboutBox", {}, [](Icons& c, std::span<Variant>) { c.OpenAboutBox(); })
            .Method(
                "Icon",
                {host::Arg("PicOver", host::TypeCode::String),
                 host::Arg("Size", host::TypeCode::String),
                 host::Arg("Index", host::TypeCode::Long)},
                [](Icons& c, std::span<Variant> a) {
                    return c.Icon(a[0].ToString(), a[1].ToString(), a[2].ToLong());
                },
                host::TypeCode::Picture)
            .Build();
    return info;
}

Icons::Icons(host::HostContext& context) : SurfaceControl(context) {}

void Icons::UserControl_Resize() {
    platform::Platform& p = UserControl.Platform();
    const float width = static_cast<float>(kSidePixels * platform::TwipsPerPixelX(p));
    const float height = static_cast<float>(kSidePixels * platform::TwipsPerPixelY(p));
    // The host answers a size change with another Resize, which then finds the size right.
    if (UserControl.Width() != width || UserControl.Height() != height) {
        UserControl.Move(UserControl.Left(), UserControl.Top(), width, height);
    }
    UserControl.Cls();
    platform::RECT edge{0, 0, kSidePixels, kSidePixels};
    p.gdi().DrawEdge(UserControl.hDC(), &edge, platform::EDGE_RAISED, platform::BF_RECT);
    UserControl.Refresh();
}

std::shared_ptr<host::StdPicture> Icons::Icon(const std::string& PicOver, const std::string& Size,
                                              std::int32_t Index) const {
    const double set = Variant(PicOver).ToDouble();
    const double size = Variant(Size).ToDouble();
    const std::int32_t id = set == 0 ? Index : host::AddLong(Index, set == 1 ? 100 : 200);
    return foundation::LoadResImage(id, size == 32 ? 32 : 16, 2);
}

}  // namespace korvex::controls
