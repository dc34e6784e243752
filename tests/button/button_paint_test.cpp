// Button: what it looks like — derived colours, the gradient rows, frames per style and state,
// the focus rectangle drawn by inversion, the images of each state and the embossed image of a
// disabled button, and the minimum size the layout keeps.

#include "button_fixture.hpp"

#include <cmath>
#include <set>

#include "foundation/images.hpp"
#include "host/numeric.hpp"
#include "platform/sim/sim_gdi.hpp"

namespace korvex::test {
namespace {

using controls::EnumButton;

// The gradient's colour of row k of n rows from a to b, channel by channel.
std::uint32_t GradientRow(std::uint32_t a, std::uint32_t b, int k, int n) {
    std::uint32_t out = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        const int ca = static_cast<int>((a >> shift) & 0xFF), cb = static_cast<int>((b >> shift) & 0xFF);
        const float step = static_cast<float>(cb - ca) / static_cast<float>(n);
        const double value = host::RoundHalfEven(ca + k * static_cast<double>(step));
        out |= static_cast<std::uint32_t>(std::clamp(value, 0.0, 255.0)) << shift;
    }
    return out;
}

class ButtonPaintTest : public ButtonTest {
  protected:
    // A plain face: no image, no caption.
    Button& AddPlain(int style, std::uint32_t buttonColor = 0x00808080) {
        Button& b = Add();
        Let("B", "ButtonShow", 51);
        Let("B", "TextAlignment", 0);
        Let("B", "BorderStyle", style);
        Let("B", "ButtonColor", static_cast<std::int32_t>(buttonColor));
        return b;
    }
};

TEST_F(ButtonPaintTest, DerivedColoursOfAWhiteButtonAreClamped) {
    Add();
    Let("B", "ButtonColor", 0x00FFFFFF);
    // The Flat frame shows the dark colour on its shadow side.
    const Shot shot = Pixels();
    EXPECT_EQ(shot.at(shot.width - 1, 20), 0x9B9B9Bu);
    EXPECT_EQ(shot.at(60, shot.height - 1), 0x9B9B9Bu);
}

// Normal look: rows 1.. of the face run from the top colour down, row 0 keeps the top colour.
TEST_F(ButtonPaintTest, GradientRowsFollowTheFormula) {
    AddPlain(2);
    const std::uint32_t top = 0xA8A8A8, bottom = 0x626262;  // 0x80 + 40 and 0x80 - 30
    const Shot shot = Pixels();
    const int n = 38;  // the Flat face: 40 - 2 rows, at (1, 1)
    EXPECT_EQ(shot.at(5, 1), top);
    for (int y = 1; y < n; ++y) EXPECT_EQ(shot.at(5, 1 + y), GradientRow(top, bottom, y - 1, n)) << "row " << y;
}

// The XP down look paints upwards from the bottom row: the normal gradient upside down.
TEST_F(ButtonPaintTest, DownLookTurnsTheGradientUpsideDown) {
    AddPlain(5);
    Run("move B\ndown\n");
    const Shot shot = Pixels();
    const std::uint32_t top = 0xA8A8A8, bottom = 0x626262;
    const int n = 34;  // the XPStyle face: 40 - 6 rows, at (2, 3)
    for (int k = 0; k < n; ++k) EXPECT_EQ(shot.at(10, 3 + n - 1 - k), GradientRow(top, bottom, k, n)) << "k " << k;

    platform::sim::SimGdi gdi;
    const platform::HDC dc = gdi.CreateCompatibleDC({});
    gdi.SelectObject(dc, gdi.CreateDIBSection32(4, 4));
    // One or no row paints nothing, and an unknown direction paints nothing either.
    controls::FillGradient(gdi, dc, {0, 0, 4, 0}, 0x00FFFFFF, 0, 1);
    controls::FillGradient(gdi, dc, {0, 0, 4, 4}, 0x00FFFFFF, 0, 3);
    for (int y = 0; y < 4; ++y) EXPECT_EQ(gdi.GetPixel(dc, 1, y), 0u) << y;
}

TEST_F(ButtonPaintTest, NoFrameForNOffAndXPflatInAnyState) {
    for (int style : {0, 7}) {
        SCOPED_TRACE(style);
        Button& b = AddPlain(style);
        Let("B", "BackColorB", 0x0000FF00);
        Let("B", "OptionMode", 1);
        platform::Gdi& gdi = platform.gdi();
        const auto surfaceIsBlank = [&] {
            // The control's own drawing: only its back colour, no frame lines.
            const platform::HDC dc{static_cast<std::uint32_t>(b.HDC())};
            for (int x = 0; x < 120; ++x)
                for (int y : {0, 1, 38, 39}) {
                    if (gdi.GetPixel(dc, x, y) != platform::RGB(0, 255, 0)) return false;
                }
            return true;
        };
        EXPECT_TRUE(surfaceIsBlank());
        Run("move B\nwait 100\n");
        EXPECT_TRUE(surfaceIsBlank()) << "hover";
        Run("click\n");
        EXPECT_TRUE(surfaceIsBlank()) << "latched";
        form.Remove("B");
        Run("move 5 5\n");
    }
}

// The dotted rectangle inverts exactly the pixels under its dots, and goes again with the focus.
TEST_F(ButtonPaintTest, FocusRectangleInvertsTheDottedPixels) {
    AddPlain(2);
    Add("Other", 300, 1200);
    Let("B", "FocusRect", true);
    const Shot before = Pixels();
    Run("focus B\nwait 20\n");
    const Shot focused = Pixels();
    // The face is at (1, 1), 118 x 38: the rectangle runs from face (1, 1) to (116, 36).
    const auto onOutline = [](int x, int y) {
        const bool xs = x >= 2 && x <= 117, ys = y >= 2 && y <= 37;
        return (xs && (y == 2 || y == 37)) || (ys && (x == 2 || x == 117));
    };
    int changed = 0, outline = 0;
    for (int y = 0; y < before.height; ++y) {
        for (int x = 0; x < before.width; ++x) {
            const bool differs = focused.at(x, y) != before.at(x, y);
            if (onOutline(x, y)) ++outline;
            if (!differs) continue;
            ++changed;
            EXPECT_TRUE(onOutline(x, y)) << x << "," << y;
            EXPECT_EQ(focused.at(x, y), before.at(x, y) ^ 0xFFFFFFu) << x << "," << y;
        }
    }
    // Dots, not a line: short runs with gaps, about half the outline.
    EXPECT_GT(changed, outline / 3);
    EXPECT_LT(changed, outline * 2 / 3);
    int run = 0, longest = 0;
    for (int x = 2; x <= 117; ++x) {
        run = focused.at(x, 2) != before.at(x, 2) ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    EXPECT_GT(longest, 0);
    EXPECT_LE(longest, 3);

    Run("focus Other\n");
    EXPECT_EQ(Pixels().bits, before.bits);
    // NotFrmFocus hides it while the button keeps the focus.
    Run("focus B\nwait 20\ncall B.NotFrmFocus True\n");
    EXPECT_EQ(Pixels().bits, before.bits);
}

TEST_F(ButtonPaintTest, ImagesFollowTheStateAndSize) {
    Button& b = Add();
    const auto shows = [&](std::int32_t group, std::int32_t size) {
        const auto expected = foundation::LoadResImage(group, size, foundation::LR_COLOR);
        const auto picture = b.FaceImage().Picture();
        return picture && expected && picture->SameContent(*expected);
    };
    EXPECT_TRUE(shows(21, 16));
    Let("B", "IconSize", true);
    EXPECT_TRUE(shows(21, 32));
    Run("move B\nwait 100\n");
    EXPECT_TRUE(shows(121, 32)) << "hover";
    Run("down\n");
    EXPECT_TRUE(shows(221, 32)) << "down";
    Run("up\nmove 5 5\nwait 100\n");
    // btnX and the view images have no 32-pixel form.
    Let("B", "ButtonShow", 41);
    EXPECT_TRUE(shows(41, 16));
    Let("B", "ButtonShow", 47);
    EXPECT_TRUE(shows(47, 16));

    // A check box shows its right-button check when a right click latched it.
    Let("B", "ButtonShow", 42);
    Let("B", "OptionMode", 1);
    Run("move B\nclick right\n");
    EXPECT_TRUE(shows(242, 14));
    Run("wait 600\nclick\nwait 600\nclick\n");
    EXPECT_TRUE(shows(142, 14));
    // An LED lights when latched and stays dark on hover.
    Let("B", "ButtonShow", 44);
    Run("wait 600\nclick\nwait 100\n");
    EXPECT_TRUE(shows(44, 11));
    Run("wait 600\nclick\n");
    EXPECT_TRUE(shows(244, 11));

    Let("B", "ButtonShow", 51);
    for (const char* step : {"wait 600\nclick\n", "wait 600\nclick\n", "move 5 5\nwait 100\n"}) {
        Run(step);
        EXPECT_FALSE(b.FaceImage().Visible()) << step;
    }
}

// A disabled XPStyle button embosses its image on 0x00EDF1F1 whatever its face colour.
TEST_F(ButtonPaintTest, DisabledXPStyleEmbossesOnItsOwnGrey) {
    Button& b = Add();
    Let("B", "BorderStyle", 5);
    Let("B", "ButtonColor", 0x000000FF);
    Let("B", "EnabledB", false);
    const auto picture = b.FaceImage().Picture();
    ASSERT_TRUE(picture);
    ASSERT_EQ(picture->PixelWidth(), 16);
    constexpr std::uint32_t kBase = 0xF1F1ED;  // OLE 0x00EDF1F1 as a pixel
    const auto source = foundation::ComposeOnColor(*foundation::LoadResImage(21, 16, 2), kBase);
    const auto& out = picture->Pixels();
    int lifted = 0;
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const std::uint32_t got = out[static_cast<std::size_t>(y * 16 + x)] & 0xFFFFFF;
            if (x == 0 || y == 0 || x == 15 || y == 15) {
                EXPECT_EQ(got, kBase) << x << "," << y;
                continue;
            }
            const std::uint32_t here = source[static_cast<std::size_t>(y * 16 + x)];
            const std::uint32_t below = source[static_cast<std::size_t>((y + 1) * 16 + x + 1)];
            if (here == below) {
                EXPECT_EQ(got, kBase) << x << "," << y;
            } else {
                ++lifted;
            }
        }
    }
    EXPECT_GT(lifted, 10) << "the outline shows";
    // The caption greys and the face takes no input.
    EXPECT_EQ(b.CaptionLabel().ForeColor(), 0x00808080u);
    EXPECT_EQ(Run("move B\nclick\n"), "");
}

TEST_F(ButtonPaintTest, LayoutKeepsTheMinimumSizeAndCentresTheRow) {
    Button& b = Add("B", 300, 300, 150, 150);
    // tRight with a 16-pixel image: caption width + 16 + 3 wide, 16 + 2 high at least.
    const float caption = b.CaptionLabel().Width();
    EXPECT_EQ(Read("B", "Width").ToLong(), static_cast<std::int32_t>(std::ceil(caption + 19) * 15));
    EXPECT_EQ(Read("B", "Height").ToLong(), 18 * 15);
    // On a wide face image and caption form one centred row; the shadow copy sits up-left.
    Run("set B.Width 3000\nset B.Height 600\n");
    const float face = b.Face().ScaleWidth();
    EXPECT_NEAR(b.FaceImage().Left() + 8 + caption / 2, face / 2, 0.01);
    EXPECT_NEAR(b.CaptionLabel().Left(), b.FaceImage().Left() + 16, 0.01);
    EXPECT_NEAR(b.CaptionCopy().Left(), b.CaptionLabel().Left() - 1, 0.01);
    // Pressed, the caption of a Flat button moves one pixel right and down; the image stays.
    const float left = b.CaptionLabel().Left(), image = b.FaceImage().Left();
    Run("move B\ndown\n");
    EXPECT_NEAR(b.CaptionLabel().Left(), left + 1, 0.01);
    EXPECT_NEAR(b.FaceImage().Left(), image, 0.01);
    // A bottom caption needs image + caption + 3 rows, and then gets 10 more.
    Run("up\nset B.TextAlignment 3\nset B.Height 300\n");
    EXPECT_EQ(Read("B", "Height").ToLong(),
              static_cast<std::int32_t>(std::lround((b.CaptionLabel().Height() + 16 + 13) * 15)));
}

}  // namespace
}  // namespace korvex::test

namespace korvex::test {
namespace {

std::shared_ptr<host::StdPicture> Solid(int width, int height, std::uint32_t rgb) {
    return std::make_shared<host::StdPicture>(host::PictureType::Bitmap, width, height,
                                              std::vector<std::uint32_t>(static_cast<std::size_t>(width * height),
                                                                         0xFF000000u | rgb));
}

// The designer's own pictures: small ones show as the image of each state, a large one becomes
// the face and the control fits round it.
TEST_F(ButtonTest, DesignerPicturesSmallAndLarge) {
    Button& b = Add();
    Let("B", "ButtonShow", 0);
    Let("B", "PictureOver", Solid(16, 16, 0x00FF00));
    Let("B", "PictureUp", Solid(16, 16, 0xFF0000));
    EXPECT_EQ(b.FaceImage().Picture(), b.PictureUp());
    Run("move B\nwait 100\n");
    EXPECT_EQ(b.FaceImage().Picture(), b.PictureOver());
    Run("move 5 5\nwait 100\n");

    Let("B", "PictureUp", Solid(48, 40, 0x0000FF));
    EXPECT_FALSE(b.FaceImage().Visible());
    EXPECT_EQ(Read("B", "Width").ToLong(), 50 * 15);
    EXPECT_EQ(Read("B", "Height").ToLong(), 42 * 15);
    const Shot shot = Pixels();
    EXPECT_EQ(shot.at(1, 1), 0x0000FFu);
    EXPECT_EQ(shot.at(48, 40), 0x0000FFu);
    // A built-in image ends the big-picture look.
    Let("B", "ButtonShow", 21);
    EXPECT_TRUE(b.FaceImage().Visible());
    EXPECT_NE(Pixels().at(1, 1), 0x0000FFu);
}

}  // namespace
}  // namespace korvex::test
