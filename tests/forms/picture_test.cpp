// Picture boxes and images: the sunken 3D edge and the flat frame around a picture box's client
// area, PaintPicture with and without stretching, pictures with transparent pixels, AutoSize,
// and input reaching a picture box in its own scale.

#include "form_fixture.hpp"

namespace korvex::forms::testing {
namespace {

constexpr COLORREF kShadow = 0x808080, kDark = 0x404040, kWhite = 0xFFFFFF;

std::shared_ptr<host::StdPicture> Checker() {
    // 2 x 2: red, blue / yellow, transparent (alpha 0).
    return std::make_shared<host::StdPicture>(
        host::PictureType::Bitmap, 2, 2,
        std::vector<std::uint32_t>{0xFFFF0000u, 0xFF0000FFu, 0xFFFFFF00u, 0x00123456u});
}

class PictureTest : public FormTest {
  protected:
    PictureTest() {
        surface.ScaleMode(ScaleModeConstants::vbPixels);
        box.Move(2, 2, 10, 8);  // in the surface's pixels
        box.BackColor(kGreen);
    }
    // The surface's top-left 14 x 12 pixels through the legend of the classic 3D colours.
    Rows Map() { return FormTest::Map({0, 0, 14, 12}, kLegend); }
    inline static const test::Legend kLegend{{kShadow, 's'}, {kDark, 'd'}, {kWhite, 'h'},
                                             {kGreen, 'g'},  {kRed, 'r'},  {kBlue, 'b'},
                                             {kYellow, 'y'}, {0, 'k'}};

    PictureBox box{surface};
};

TEST_F(PictureTest, ThreeDBoxHasTheSunkenEdgeAndItsClientAreaInside) {
    // Outer edge shadow over highlight, inner dark shadow over light (the face colour here).
    EXPECT_TRUE(
        SameRows(Map(), {"..............", "..............", "..sssssssssh..", "..sddddddd.h..",
                         "..sdgggggg.h..", "..sdgggggg.h..", "..sdgggggg.h..", "..sdgggggg.h..",
                         "..s........h..", "..hhhhhhhhhh..", "..............", ".............."}));
    EXPECT_EQ(box.ScaleWidth(), static_cast<float>(6 * platform::TwipsPerPixelX(platform)));

    box.Appearance(0);
    box.ScaleMode(ScaleModeConstants::vbPixels);
    box.Line(0, 0, 0, 0, kRed);
    EXPECT_TRUE(
        SameRows(Map(), {"..............", "..............", "..kkkkkkkkkk..", "..krgggggggk..",
                         "..kggggggggk..", "..kggggggggk..", "..kggggggggk..", "..kggggggggk..",
                         "..kggggggggk..", "..kkkkkkkkkk..", "..............", ".............."}));
    box.BorderStyle(0);
    EXPECT_EQ(box.ScaleWidth(), 10);
    EXPECT_THROW(box.Appearance(2), host::HostError);
}

TEST_F(PictureTest, PaintPictureCopiesStretchesAndKeepsTransparentPixels) {
    box.BorderStyle(0);
    box.ScaleMode(ScaleModeConstants::vbPixels);
    box.PaintPicture(Checker(), 0, 0);
    box.PaintPicture(Checker(), 3, 0, 4, 4);
    box.PaintPicture(Checker(), 8, 0, 1, 2, 1, 0, 1, 2);  // the right column only
    EXPECT_TRUE(
        SameRows(Map(), {"..............", "..............", "..rbgrrbbgbg..", "..yggrrbbggg..",
                         "..gggyyggggg..", "..gggyyggggg..", "..gggggggggg..", "..gggggggggg..",
                         "..gggggggggg..", "..gggggggggg..", "..............", ".............."}));
    EXPECT_THROW(box.PaintPicture(nullptr, 0, 0), host::HostError);
}

TEST_F(PictureTest, PartialAlphaBlendsOverTheDrawingAndMirrorsLikeAnyPicture) {
    box.BorderStyle(0);
    box.ScaleMode(ScaleModeConstants::vbPixels);
    // Alpha 0, half-transparent red, opaque blue.
    const auto soft = std::make_shared<host::StdPicture>(
        host::PictureType::Icon, 3, 1,
        std::vector<std::uint32_t>{0x00FF0000u, 0x80FF0000u, 0xFF0000FFu});
    box.PaintPicture(soft, 0, 0);
    box.PaintPicture(soft, 5, 0, -3, 1);  // mirrored: pixels 3..5 show the picture right to left
    // Red premultiplied by alpha 128 is 128; over green the channels are 128 + 0 * 127 / 255 and
    // 0 + 255 * 127 / 255 = 127.
    const test::Legend legend{{kGreen, 'g'}, {kBlue, 'b'}, {RGB(128, 127, 0), 'm'}};
    EXPECT_TRUE(
        SameRows(FormTest::Map({0, 2, 14, 4}, legend), {"..gmbbmggggg..", "..gggggggggg.."}));
}

TEST_F(PictureTest, ImageDrawsItsPictureWithTransparencyAndSizesToIt) {
    Image image{surface};
    image.Move(20, 20);
    image.Picture(Checker());
    EXPECT_EQ(image.Width(), 2);
    EXPECT_EQ(image.Height(), 2);
    const test::Legend legend{{kRed, 'r'}, {kBlue, 'b'}, {kYellow, 'y'}};
    // The picture's first row, then alpha 0 showing the surface.
    EXPECT_TRUE(SameRows(FormTest::Map({19, 19, 25, 22}, legend), {"......", ".rb...", ".y...."}));
    image.Stretch(true);
    image.Move(20, 20, 4, 2);
    EXPECT_TRUE(SameRows(FormTest::Map({19, 19, 25, 22}, legend), {"......", ".rrbb.", ".yy..."}));
}

TEST_F(PictureTest, AutoSizeFitsPictureAndBorder) {
    box.AutoSize(true);
    box.Picture(Checker());
    EXPECT_EQ(box.Width(), 2 + 4);
    EXPECT_EQ(box.Height(), 2 + 4);
    EXPECT_TRUE(Surface().is(4, 4, kRed));  // the picture at the client origin, inside the edge
    box.BorderStyle(0);
    EXPECT_EQ(box.Width(), 2);
}

TEST_F(PictureTest, PictureBoxRaisesItsOwnEventsInItsOwnScale) {
    Record(box.events, "box", log);
    Record(surface.events, "surface", log);
    Click({4, 5});  // client pixel (0, 1) of the box, inside its 2-pixel edge
    EXPECT_EQ(TakeLog(), (Log{"box MouseDown 1 0 0,15", "box MouseUp 1 0 0,15", "box Click"}));
    box.Visible(false);
    Click({4, 5});
    EXPECT_EQ(TakeLog(),
              (Log{"surface MouseDown 1 0 4,5", "surface MouseUp 1 0 4,5", "surface Click"}));
}

}  // namespace
}  // namespace korvex::forms::testing
