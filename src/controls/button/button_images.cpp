// Button: the image of each state — a built-in icon group, the designer's own pictures (shown
// whole on the face when they are larger than the icons), or the embossed copy of a disabled
// button.

#include <algorithm>

#include "controls/button/button.hpp"
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
    return (std::uint32_t{platform::GetRValue(c)} << 16) | (std::uint32_t{platform::GetGValue(c)} << 8) |
           platform::GetBValue(c);
}

}  // namespace

std::shared_ptr<host::StdPicture> Button::Builtin(std::int32_t group, std::int32_t size) {
    const auto hit = std::find_if(images_.begin(), images_.end(),
                                  [&](const CachedImage& c) { return c.group == group && c.size == size; });
    if (hit != images_.end()) return hit->picture;
    auto picture = foundation::LoadResImage(group, size, foundation::LR_COLOR);
    images_.push_back({group, size, picture});
    return picture;
}

void Button::ImageState(std::int16_t s) {
    // The designer's pictures are indexed by state; a flat normal frame (0) shows the up image.
    s = std::clamp<std::int16_t>(s, 1, 3);
    const auto show = static_cast<std::int32_t>(ButtonShow_);
    const std::int32_t group = s == 1 ? show : show + (s == 2 ? kHoverGroups : kDownGroups);
    mImageState = s;

    if (!IsXP() && (!Gradient_ || BorderStyle_ == EnumStyle::XPflat)) {
        const bool steady = show >= kCheckBox && show <= kLastLed;
        if (s == 1 || steady) {
            SetFaceBack(BorderStyle_ == EnumStyle::XPflat && s == 1 ? kXPflatFace : colours_.clrFace);
        } else {
            SetFaceBack(s == 2 ? colours_.clrHover : colours_.clrDown);
        }
    }

    // A disabled button takes no input on any of its parts, with or without an image.
    PicBild1.Enabled(EnabledB_);
    imgBild.Enabled(EnabledB_);
    lbl2.Enabled(EnabledB_);

    if (ButtonShow_ == EnumButton::pOff) {
        imgBild.Visible(false);
        return;
    }
    imgBild.Visible(true);
    if (!(ButtonShow_ == EnumButton::Benutzerdefiniert && mBigPicture) && PicBild1.Picture()) {
        PicBild1.AutoSize(false);
        PicBild1.Picture(nullptr);
    }

    if (!EnabledB_) {
        ShowEmbossed();
        return;
    }
    if (ButtonShow_ == EnumButton::Benutzerdefiniert) {
        if (mBigPicture) {
            ShowBigPicture(s);
        } else {
            PicBild1.AutoSize(false);
            imgBild.Picture(Bild1[static_cast<std::size_t>(s - 1)]);
        }
        return;
    }
    std::shared_ptr<host::StdPicture> picture;
    if (show >= 1 && show <= kLastLargeImage && IconSize_) {
        picture = Builtin(group, 32);
    } else if (show == kCheckBox) {
        const std::int32_t checked = Switched_ == EnumSwitched::bRight ? kCheckBox + kDownGroups
                                                                        : kCheckBox + kHoverGroups;
        picture = Builtin(s == 3 ? checked : kCheckBox, 14);
    } else if (show >= kFirstLed && show <= kLastLed) {
        picture = Builtin(s == 3 ? show + kDownGroups : show, 11);
    } else {
        picture = Builtin(group, 16);
    }
    imgBild.Picture(std::move(picture));
}

// The normal image drawn on the base colour, then embossed in it: flat areas take the base
// colour and the outlines show as light and dark lines.
void Button::ShowEmbossed() {
    const auto show = static_cast<std::int32_t>(ButtonShow_);
    if (show < 1 || show > 50) {
        imgBild.Picture(nullptr);
        return;
    }
    const std::int32_t size = show <= kLastLargeImage && IconSize_ ? 32 : show > kCheckBox ? 14 : 16;
    Bild1[3] = Builtin(show, size);
    if (!Bild1[3]) {
        imgBild.Picture(nullptr);
        return;
    }
    platform::Gdi& gdi = Platform().gdi();
    const OLE_COLOR base = BorderStyle_ == EnumStyle::XPStyle ? kXPStyleEmbossBase : PicBild1.BackColor();
    const std::uint32_t basePixel = ToPixel(foundation::OleColorToRGB(gdi, base));
    const std::vector<std::uint32_t> source = foundation::ComposeOnColor(*Bild1[3], basePixel);
    const std::int32_t w = Bild1[3]->PixelWidth(), h = Bild1[3]->PixelHeight();
    // Opaque words: the filter leaves the outer ring as it finds it, in the base colour.
    std::vector<std::uint32_t> result(source.size(), 0xFF000000u | basePixel);
    foundation::EmbossPicture(gdi, source, result, w, h, base);
    Bild1[4] = std::make_shared<host::StdPicture>(host::PictureType::Bitmap, w, h, std::move(result));
    imgBild.Picture(Bild1[4]);
}

// A designer's picture larger than the icons is the face itself: the face takes its size and
// the control fits round it.
void Button::ShowBigPicture(std::int16_t s) {
    imgBild.Visible(false);
    PicBild1.AutoSize(true);
    PicBild1.Picture(Bild1[static_cast<std::size_t>(s - 1)]);
    const auto tx = static_cast<float>(UserControl.Scale().TwipsPerPixelX());
    const auto ty = static_cast<float>(UserControl.Scale().TwipsPerPixelY());
    UserControl.Move(UserControl.Left(), UserControl.Top(), (PicBild1.ScaleWidth() + 2) * tx,
                     (PicBild1.ScaleHeight() + 2) * ty);
    LayoutPass();
}

}  // namespace korvex::controls
