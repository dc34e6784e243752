// Button's painter, images: the image of each look — a built-in icon group, the designer's own
// pictures (shown whole on the face when they are larger than the icons), or the embossed copy
// of a disabled button — and the face colour that goes with it.

#include <algorithm>

#include "controls/button/button_painter.hpp"
#include "foundation/color.hpp"
#include "foundation/images.hpp"

namespace korvex::controls {

using host::OLE_COLOR;

namespace {

constexpr OLE_COLOR kXPStyleEmbossBase = 0x00EDF1F1;
// Groups: the hover image of ButtonShow n is n + 100, the down image n + 200.
constexpr std::int32_t kHoverGroups = 100;
constexpr std::int32_t kDownGroups = 200;
constexpr std::int32_t kCheckBox = 42;
constexpr std::int32_t kFirstLed = 43;
constexpr std::int32_t kLastLed = 46;
constexpr std::int32_t kLastLargeImage = 40;  // 1 to 40 also come at 32 pixels

std::uint32_t ToPixel(platform::COLORREF c) {
    return (std::uint32_t{platform::GetRValue(c)} << 16) |
           (std::uint32_t{platform::GetGValue(c)} << 8) | platform::GetBValue(c);
}

}  // namespace

std::shared_ptr<host::StdPicture> ButtonPainter::Builtin(std::int32_t group, std::int32_t size) {
    const auto hit = std::find_if(images_.begin(), images_.end(), [&](const CachedImage& c) {
        return c.group == group && c.size == size;
    });
    if (hit != images_.end()) return hit->picture;
    auto picture = foundation::LoadResImage(group, size, foundation::LR_COLOR);
    images_.push_back({group, size, picture});
    return picture;
}

std::optional<FrameLook> ButtonPainter::Image(ImageLook look) {
    const auto show = static_cast<std::int32_t>(look_.show);
    const std::int32_t group = look == ImageLook::Normal
                                   ? show
                                   : show + (look == ImageLook::Hover ? kHoverGroups : kDownGroups);

    if (!look_.IsXP() && (!look_.gradient || look_.style == EnumStyle::XPflat)) {
        const bool steady = show >= kCheckBox && show <= kLastLed;
        if (look == ImageLook::Normal || steady) {
            FaceBack(look_.style == EnumStyle::XPflat && look == ImageLook::Normal
                         ? kXPflatFace
                         : colours_.clrFace);
        } else {
            FaceBack(look == ImageLook::Hover ? colours_.clrHover : colours_.clrDown);
        }
    }

    // A disabled button takes no input on any of its parts, with or without an image.
    p_.face.Enabled(look_.enabled);
    p_.image.Enabled(look_.enabled);
    p_.caption.Enabled(look_.enabled);

    if (look_.show == EnumButton::pOff) {
        p_.image.Visible(false);
        return std::nullopt;
    }
    p_.image.Visible(true);
    const bool custom = look_.show == EnumButton::Benutzerdefiniert;
    if (!(custom && state_.bigPicture) && p_.face.Picture()) {
        p_.face.AutoSize(false);
        p_.face.Picture(nullptr);
    }

    if (!look_.enabled) {
        ShowEmbossed();
        return std::nullopt;
    }
    const auto& designed = look_.pictures[static_cast<std::size_t>(look) - 1];
    if (custom) {
        if (state_.bigPicture) return ShowBigPicture(look);
        p_.face.AutoSize(false);
        p_.image.Picture(designed);
        return std::nullopt;
    }
    std::shared_ptr<host::StdPicture> picture;
    if (show >= 1 && show <= kLastLargeImage && look_.iconSize) {
        picture = Builtin(group, 32);
    } else if (show == kCheckBox) {
        const std::int32_t checked = state_.switched == EnumSwitched::bRight
                                         ? kCheckBox + kDownGroups
                                         : kCheckBox + kHoverGroups;
        picture = Builtin(look == ImageLook::Down ? checked : kCheckBox, 14);
    } else if (show >= kFirstLed && show <= kLastLed) {
        picture = Builtin(look == ImageLook::Down ? show + kDownGroups : show, 11);
    } else {
        picture = Builtin(group, 16);
    }
    p_.image.Picture(std::move(picture));
    return std::nullopt;
}

// The normal image drawn on the base colour, then embossed in it: flat areas take the base
// colour and the outlines show as light and dark lines.
void ButtonPainter::ShowEmbossed() {
    const auto show = static_cast<std::int32_t>(look_.show);
    if (show < 1 || show > 50) {
        p_.image.Picture(nullptr);
        return;
    }
    const std::int32_t size = show <= kLastLargeImage && look_.iconSize ? 32
                              : show > kCheckBox                        ? 14
                                                                        : 16;
    embossSource_ = Builtin(show, size);
    if (!embossSource_) {
        p_.image.Picture(nullptr);
        return;
    }
    platform::Gdi& gdi = Platform().gdi();
    const OLE_COLOR base =
        look_.style == EnumStyle::XPStyle ? kXPStyleEmbossBase : p_.face.BackColor();
    const std::uint32_t basePixel = ToPixel(foundation::OleColorToRGB(gdi, base));
    const std::vector<std::uint32_t> source = foundation::ComposeOnColor(*embossSource_, basePixel);
    const std::int32_t w = embossSource_->PixelWidth(), h = embossSource_->PixelHeight();
    // Opaque words: the filter leaves the outer ring as it finds it, in the base colour.
    std::vector<std::uint32_t> result(source.size(), 0xFF000000u | basePixel);
    foundation::EmbossPicture(gdi, source, result, w, h, base);
    embossed_ =
        std::make_shared<host::StdPicture>(host::PictureType::Bitmap, w, h, std::move(result));
    p_.image.Picture(embossed_);
}

// A designer's picture larger than the icons is the face itself: the face takes its size and
// the control fits round it.
std::optional<FrameLook> ButtonPainter::ShowBigPicture(ImageLook look) {
    p_.image.Visible(false);
    p_.face.AutoSize(true);
    p_.face.Picture(look_.pictures[static_cast<std::size_t>(look) - 1]);
    const auto tx = static_cast<float>(p_.control.Scale().TwipsPerPixelX());
    const auto ty = static_cast<float>(p_.control.Scale().TwipsPerPixelY());
    p_.control.Move(p_.control.Left(), p_.control.Top(), (p_.face.ScaleWidth() + 2) * tx,
                    (p_.face.ScaleHeight() + 2) * ty);
    return Layout();
}

}  // namespace korvex::controls
