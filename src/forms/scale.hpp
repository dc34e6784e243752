#pragma once
// Coordinate systems of drawing surfaces. A surface measures in one of the host's scale modes
// (twips by default) or in a user scale set through ScaleLeft/ScaleTop/ScaleWidth/ScaleHeight;
// everything on the device is pixels. One ScaleSystem per surface converts between the two, so
// no object ever assumes 15 twips per pixel: the factor comes from the platform's screen.

#include <cstdint>
#include <optional>

#include "platform/gdi.hpp"

namespace korvex::forms {

enum class ScaleModeConstants : std::int32_t {
    vbUser = 0,
    vbTwips = 1,
    vbPoints = 2,
    vbPixels = 3,
    vbCharacters = 4,
    vbInches = 5,
    vbMillimeters = 6,
    vbCentimeters = 7,
};

// Device pixels from a scale value: to nearest, halves away from zero (MulDiv's rule), clamped
// to the 32-bit range so that absurd coordinates degrade into off-bitmap drawing, not UB.
std::int32_t ToDevice(double pixels);

class ScaleSystem {
  public:
    ScaleSystem(int twipsPerPixelX, int twipsPerPixelY);

    [[nodiscard]] ScaleModeConstants Mode() const { return mode_; }
    // A standard mode puts the origin back to 0,0 and measures the client area in that unit;
    // vbUser keeps the current scale. Error 380 for a value outside 0 to 7.
    void Mode(ScaleModeConstants mode);

    // The client area in scale units. Setting any of them switches to vbUser, as the host does;
    // a zero width or height is error 380 (it would map the surface to nothing).
    [[nodiscard]] double Left() const { return left_; }
    [[nodiscard]] double Top() const { return top_; }
    [[nodiscard]] double Width() const;
    [[nodiscard]] double Height() const;
    void Left(double value);
    void Top(double value);
    void Width(double value);
    void Height(double value);

    // The client area the scale maps, in pixels. A user scale stretches with it; a standard
    // scale keeps its unit and reports a new width and height.
    void Client(platform::SIZE pixels) { client_ = pixels; }
    [[nodiscard]] platform::SIZE Client() const { return client_; }

    // Positions (with the origin) and extents (without it), both ways, unrounded pixels.
    [[nodiscard]] double ToPixelX(double x) const { return (x - left_) * PixelsPerUnitX(); }
    [[nodiscard]] double ToPixelY(double y) const { return (y - top_) * PixelsPerUnitY(); }
    [[nodiscard]] double FromPixelX(double px) const { return SizeFromPixelsX(px) + left_; }
    [[nodiscard]] double FromPixelY(double py) const { return SizeFromPixelsY(py) + top_; }
    [[nodiscard]] double SizeToPixelsX(double w) const { return w * PixelsPerUnitX(); }
    [[nodiscard]] double SizeToPixelsY(double h) const { return h * PixelsPerUnitY(); }
    [[nodiscard]] double SizeFromPixelsX(double px) const;
    [[nodiscard]] double SizeFromPixelsY(double py) const;

    [[nodiscard]] int TwipsPerPixelX() const { return tppX_; }
    [[nodiscard]] int TwipsPerPixelY() const { return tppY_; }

  private:
    [[nodiscard]] double PixelsPerUnitX() const;
    [[nodiscard]] double PixelsPerUnitY() const;

    ScaleModeConstants mode_ = ScaleModeConstants::vbTwips;
    int tppX_;
    int tppY_;
    double left_ = 0;
    double top_ = 0;
    double userWidth_ = 1;  // only read in vbUser
    double userHeight_ = 1;
    platform::SIZE client_{};
};

// A rectangle kept in unrounded container pixels and read back through the container's scale, so
// a value set in twips reads back unchanged and a later ScaleMode change moves nothing. Windowless
// objects and picture boxes both place themselves with it.
struct PixelBounds {
    double left = 0, top = 0, width = 0, height = 0;

    // In the scale's units; plain pixels without a scale (the container has gone).
    [[nodiscard]] float Left(const ScaleSystem* scale) const;
    [[nodiscard]] float Top(const ScaleSystem* scale) const;
    [[nodiscard]] float Width(const ScaleSystem* scale) const;
    [[nodiscard]] float Height(const ScaleSystem* scale) const;
    // These bounds with the values given (in the scale's units) put in; the others kept exactly.
    [[nodiscard]] PixelBounds With(const ScaleSystem& scale, std::optional<float> newLeft,
                                   std::optional<float> newTop, std::optional<float> newWidth,
                                   std::optional<float> newHeight) const;
    // Rounded to device pixels, moved by inset.
    [[nodiscard]] platform::RECT Device(std::int32_t inset = 0) const;

    friend bool operator==(const PixelBounds&, const PixelBounds&) = default;
};

// Error 380 naming the size that is negative.
void CheckSizes(std::optional<float> width, std::optional<float> height);

}  // namespace korvex::forms
