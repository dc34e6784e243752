#include "forms/scale.hpp"

#include <cmath>
#include <limits>

#include "base/error.hpp"

namespace korvex::forms {

namespace {

// Twips per unit of each standard mode; characters are 120 twips wide and 240 high.
double UnitTwips(ScaleModeConstants mode, int twipsPerPixel, bool vertical) {
    switch (mode) {
        case ScaleModeConstants::vbTwips:
            return 1;
        case ScaleModeConstants::vbPoints:
            return 20;
        case ScaleModeConstants::vbPixels:
            return twipsPerPixel;
        case ScaleModeConstants::vbCharacters:
            return vertical ? 240 : 120;
        case ScaleModeConstants::vbInches:
            return 1440;
        case ScaleModeConstants::vbMillimeters:
            return 1440 / 25.4;
        case ScaleModeConstants::vbCentimeters:
            return 1440 / 2.54;
        case ScaleModeConstants::vbUser:
            break;
    }
    return 1;
}

}  // namespace

std::int32_t ToDevice(double pixels) {
    if (!(pixels == pixels)) return 0;  // NaN from a degenerate user scale
    constexpr double kMax = std::numeric_limits<std::int32_t>::max();
    constexpr double kMin = std::numeric_limits<std::int32_t>::min();
    const double rounded = std::round(pixels);
    if (rounded >= kMax) return std::numeric_limits<std::int32_t>::max();
    if (rounded <= kMin) return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(rounded);
}

ScaleSystem::ScaleSystem(int twipsPerPixelX, int twipsPerPixelY)
    : tppX_(twipsPerPixelX > 0 ? twipsPerPixelX : 1),
      tppY_(twipsPerPixelY > 0 ? twipsPerPixelY : 1) {}

void ScaleSystem::Mode(ScaleModeConstants mode) {
    const auto value = static_cast<std::int32_t>(mode);
    if (value < 0 || value > 7) throw host::HostError(host::kErrInvalidPropertyValue, "ScaleMode");
    if (mode == ScaleModeConstants::vbUser) {
        // Freeze the current mapping as a user scale.
        userWidth_ = Width();
        userHeight_ = Height();
        mode_ = mode;
        return;
    }
    mode_ = mode;
    left_ = 0;
    top_ = 0;
}

double ScaleSystem::Width() const {
    if (mode_ == ScaleModeConstants::vbUser) return userWidth_;
    return client_.cx * tppX_ / UnitTwips(mode_, tppX_, false);
}

double ScaleSystem::Height() const {
    if (mode_ == ScaleModeConstants::vbUser) return userHeight_;
    return client_.cy * tppY_ / UnitTwips(mode_, tppY_, true);
}

void ScaleSystem::Left(double value) {
    Mode(ScaleModeConstants::vbUser);
    left_ = value;
}

void ScaleSystem::Top(double value) {
    Mode(ScaleModeConstants::vbUser);
    top_ = value;
}

void ScaleSystem::Width(double value) {
    if (value == 0 || !std::isfinite(value))
        throw host::HostError(host::kErrInvalidPropertyValue, "ScaleWidth");
    Mode(ScaleModeConstants::vbUser);
    userWidth_ = value;
}

void ScaleSystem::Height(double value) {
    if (value == 0 || !std::isfinite(value))
        throw host::HostError(host::kErrInvalidPropertyValue, "ScaleHeight");
    Mode(ScaleModeConstants::vbUser);
    userHeight_ = value;
}

double ScaleSystem::PixelsPerUnitX() const {
    if (mode_ == ScaleModeConstants::vbUser) return client_.cx / userWidth_;
    return UnitTwips(mode_, tppX_, false) / tppX_;
}

double ScaleSystem::PixelsPerUnitY() const {
    if (mode_ == ScaleModeConstants::vbUser) return client_.cy / userHeight_;
    return UnitTwips(mode_, tppY_, true) / tppY_;
}

// A user scale over an empty client area maps every unit to no pixels; reading back gives 0
// rather than a division by zero.
double ScaleSystem::SizeFromPixelsX(double px) const {
    const double ppu = PixelsPerUnitX();
    return ppu == 0 ? 0 : px / ppu;
}

double ScaleSystem::SizeFromPixelsY(double py) const {
    const double ppu = PixelsPerUnitY();
    return ppu == 0 ? 0 : py / ppu;
}

float PixelBounds::Left(const ScaleSystem* scale) const {
    return static_cast<float>(scale ? scale->FromPixelX(left) : left);
}
float PixelBounds::Top(const ScaleSystem* scale) const {
    return static_cast<float>(scale ? scale->FromPixelY(top) : top);
}
float PixelBounds::Width(const ScaleSystem* scale) const {
    return static_cast<float>(scale ? scale->SizeFromPixelsX(width) : width);
}
float PixelBounds::Height(const ScaleSystem* scale) const {
    return static_cast<float>(scale ? scale->SizeFromPixelsY(height) : height);
}

PixelBounds PixelBounds::With(const ScaleSystem& scale, std::optional<float> newLeft,
                              std::optional<float> newTop, std::optional<float> newWidth,
                              std::optional<float> newHeight) const {
    return {newLeft ? scale.ToPixelX(*newLeft) : left, newTop ? scale.ToPixelY(*newTop) : top,
            newWidth ? scale.SizeToPixelsX(*newWidth) : width,
            newHeight ? scale.SizeToPixelsY(*newHeight) : height};
}

platform::RECT PixelBounds::Device(std::int32_t inset) const {
    // Summed in the wide type, so an extreme position clamps instead of wrapping.
    const auto add = [](std::int32_t a, std::int32_t b) {
        return ToDevice(static_cast<double>(a) + b);
    };
    const std::int32_t l = add(inset, ToDevice(left)), t = add(inset, ToDevice(top));
    return {l, t, add(l, ToDevice(width)), add(t, ToDevice(height))};
}

void CheckSizes(std::optional<float> width, std::optional<float> height) {
    if ((width && *width < 0) || (height && *height < 0)) {
        throw host::HostError(host::kErrInvalidPropertyValue,
                              width && *width < 0 ? "Width" : "Height");
    }
}

}  // namespace korvex::forms
