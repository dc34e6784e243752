#pragma once
// Icons: a program's access to the library's built-in icon collection. On the form it is a small
// raised square; Icon(PicOver, Size, Index) hands out one of the button images as a picture.

#include <cstdint>
#include <memory>
#include <string>

#include "forms/surface_control.hpp"
#include "host/font.hpp"

namespace korvex::controls {

class Icons final : public forms::SurfaceControl {
  public:
    explicit Icons(host::HostContext& context);

    static const host::ClassInfo& Class();
    [[nodiscard]] const host::ClassInfo& TypeInfo() const override { return Class(); }
    // Nothing to type into or click: Tab passes it by.
    [[nodiscard]] bool CanGetFocus() const override { return false; }

    // Always 38 x 38 pixels with a raised edge.
    void UserControl_Resize() override;

    // The image of set PicOver (0 normal, 1 hover, anything else down) at Size 32 or, for any
    // other Size, 16 pixels. Both texts are read as numbers (error 13 when they are none); an
    // identifier beyond the 32-bit range is error 6; a missing group gives Nothing.
    [[nodiscard]] std::shared_ptr<host::StdPicture> Icon(const std::string& PicOver,
                                                         const std::string& Size,
                                                         std::int32_t Index) const;

    static constexpr std::int32_t kSidePixels = 38;
};

}  // namespace korvex::controls
