#pragma once
// ButtonPainter: draws a Button from its look properties and interaction state, which it only
// reads. Its operations are the named steps the behaviour runs in a fixed order: the layout
// pass, the frame, the gradient, the image and the caption colours, plus the focus rectangle.
// Each repaints the persistent bitmap of its surface (the frame on the control's own surface,
// gradient and focus on the face), so the order of the steps is part of the look: a later step
// may clear what an earlier one drew on the face.

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "controls/button/button_model.hpp"
#include "forms/image.hpp"
#include "forms/label.hpp"
#include "forms/picture_box.hpp"
#include "forms/user_control.hpp"

namespace korvex::controls {

// Fills rect of dc with a vertical gradient from colorA to colorB, one brush per row. Direction
// 1 paints rows top + 1 to bottom from A downwards, direction 2 rows bottom to top + 1 from A
// upwards; row `top` keeps what the DC held, and any other direction paints nothing. Each
// component is A + k × (B − A) / n for the k-th row painted, n = rect.bottom, rounded and clamped.
void FillGradient(platform::Gdi& gdi, platform::HDC dc, const platform::RECT& rect,
                  host::OLE_COLOR colorA, host::OLE_COLOR colorB, std::int32_t direction);

// The constituents the painter draws on; the Button owns them.
struct ButtonParts {
    forms::UserControlSurface& control;
    forms::PictureBox& face;
    forms::Image& image;
    forms::Label& copy;  // the caption's 3D copy, behind it
    forms::Label& caption;
    forms::Image& arrow;
    forms::Image& arrowGrey;
};

class ButtonPainter {
  public:
    ButtonPainter(ButtonParts parts, const ButtonLook& look, const ButtonState& state)
        : p_(parts), look_(look), state_(state) {}

    // Recomputes the derived colours from ButtonColor.
    void ComputeColours();
    // A new ButtonColor: the face takes it (XPflat keeps its own) and the colours follow.
    void TakeButtonColour();
    // Places face, image, caption, 3D copy and arrow, keeps the minimum size and, while enabled,
    // repaints the resting look. Returns the frame it drew, if any.
    std::optional<FrameLook> Layout();
    void Frame(FrameLook look);
    void Gradient(GradientLook look);
    void CaptionColours();
    // Loads the image of the look. A big designer's picture lays the button out again; the
    // frame that drew is returned.
    std::optional<FrameLook> Image(ImageLook look);
    // Draws or removes the focus rectangle. True: the face must be repainted with the normal
    // image (a big picture), which the caller does as an image step.
    bool Focus(bool focusRectOn);
    // The face's background, which also clears it.
    void FaceBack(host::OLE_COLOR colour);

    // The face of an XPflat button, whatever ButtonColor says.
    static constexpr host::OLE_COLOR kXPflatFace = 0x00F1FCFE;

  private:
    void PlaceFace();
    void EnforceMinimumSize();
    void ShowEmbossed();
    std::optional<FrameLook> ShowBigPicture(ImageLook look);
    [[nodiscard]] host::OLE_COLOR PlainFace() const;
    // A built-in image, loaded once per painter and size.
    std::shared_ptr<host::StdPicture> Builtin(std::int32_t group, std::int32_t size);
    [[nodiscard]] platform::Platform& Platform() const { return p_.control.Platform(); }

    // The colours derived from ButtonColor (0x00BBGGRR).
    struct Colours {
        host::OLE_COLOR clrFace = 0, clrDown = 0, clrHover = 0, clrLight = 0, clrDark = 0,
                        clrGradTop = 0, clrGradBottom = 0;
    };

    ButtonParts p_;
    const ButtonLook& look_;
    const ButtonState& state_;
    Colours colours_;
    // The face shows no focus rectangle since it was last repainted for that.
    bool faceClean_ = true;
    // The emboss filter's source and result for a disabled button.
    std::shared_ptr<host::StdPicture> embossSource_, embossed_;
    struct CachedImage {
        std::int32_t group, size;
        std::shared_ptr<host::StdPicture> picture;
    };
    std::vector<CachedImage> images_;
};

}  // namespace korvex::controls
