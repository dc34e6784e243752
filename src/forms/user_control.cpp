#include "forms/user_control.hpp"

#include "base/error.hpp"

namespace korvex::forms {

using namespace platform;

namespace {

RECT DefaultPosition(Platform& platform) {
    // The designer's default extent of a new control surface.
    constexpr std::int32_t kWidthTwips = 4800, kHeightTwips = 3600;
    return {0, 0, kWidthTwips / platform::TwipsPerPixelX(platform),
            kHeightTwips / platform::TwipsPerPixelY(platform)};
}

}  // namespace

UserControlSurface::UserControlSurface(platform::Platform& platform, HWND parent)
    : DrawingSurface(platform, parent, static_cast<bool>(parent), DefaultPosition(platform)) {}

// Twips in the floating type: a pixel position near the 32-bit limits times the twips per
// pixel does not fit 32 bits.
float UserControlSurface::Width() const {
    return static_cast<float>(static_cast<double>(WindowPosition().Width()) *
                              Scale().TwipsPerPixelX());
}
float UserControlSurface::Height() const {
    return static_cast<float>(static_cast<double>(WindowPosition().Height()) *
                              Scale().TwipsPerPixelY());
}
float UserControlSurface::Left() const {
    return static_cast<float>(static_cast<double>(WindowPosition().left) *
                              Scale().TwipsPerPixelX());
}
float UserControlSurface::Top() const {
    return static_cast<float>(static_cast<double>(WindowPosition().top) * Scale().TwipsPerPixelY());
}

void UserControlSurface::Move(float Left, std::optional<float> Top, std::optional<float> Width,
                              std::optional<float> Height) {
    if ((Width && *Width < 0) || (Height && *Height < 0))
        throw host::HostError(host::kErrInvalidPropertyValue,
                              Width && *Width < 0 ? "Width" : "Height");
    const RECT now = WindowPosition();
    const double tx = Scale().TwipsPerPixelX(), ty = Scale().TwipsPerPixelY();
    const std::int32_t l = ToDevice(Left / tx);
    const std::int32_t t = Top ? ToDevice(*Top / ty) : now.top;
    const std::int32_t w = Width ? ToDevice(*Width / tx) : now.Width();
    const std::int32_t h = Height ? ToDevice(*Height / ty) : now.Height();
    PlaceWindow(
        RECT{l, t, ToDevice(static_cast<double>(l) + w), ToDevice(static_cast<double>(t) + h)});
}

void UserControlSurface::BackStyle(std::int16_t value) {
    if (value != 0 && value != 1)
        throw host::HostError(host::kErrInvalidPropertyValue, "BackStyle");
    SetTransparent(value == 0);
}

void UserControlSurface::BorderStyle(std::int16_t value) {
    if (value != 0 && value != 1)
        throw host::HostError(host::kErrInvalidPropertyValue, "BorderStyle");
    if (value == borderStyle_) return;
    borderStyle_ = value;
    SetFrame(value == 1 ? Frame::Single : Frame::None);
}

}  // namespace korvex::forms
