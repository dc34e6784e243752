// The control surface's persistent drawing: Cls, Line in each scale (and every unit's size) (end
// point included, boxes, draw modes), Print and the print position, the border, Resize, and a
// transparent surface that shows (and passes input to) the form beneath everywhere but its objects.

#include "form_fixture.hpp"
#include "support/error_of.hpp"

namespace korvex::forms::testing {
namespace {

class SurfaceTest : public FormTest {
  protected:
    // A small surface so that whole maps fit in a test: 12 x 8 pixels.
    void Shrink() { surface.Move(surface.Left(), surface.Top(), Tx(12), Ty(8)); }
    Rows Map() {
        return FormTest::Map({0, 0, 12, 8},
                             {{kRed, 'r'}, {kBlue, 'b'}, {RGB(0, 0, 0), 'k'}, {kYellow, 'y'}});
    }
    // Whether the whole surface shows one colour.
    bool AllOf(COLORREF c) {
        return Surface().Count(c) == static_cast<std::size_t>(kSurface.Width() * kSurface.Height());
    }
};

TEST_F(SurfaceTest, ClsFillsTheBackColourAndResetsThePrintPosition) {
    EXPECT_TRUE(AllOf(gdi.GetSysColor(COLOR_BTNFACE)));

    surface.Print("text");
    surface.Line(0, 0, Tx(50), Ty(30), kRed);
    surface.BackColor(kYellow);  // a new back colour clears the drawing too
    EXPECT_TRUE(AllOf(kYellow));
    surface.Line(0, 0, Tx(50), Ty(30), kRed);
    surface.CurrentX(Tx(3));
    surface.Cls();
    EXPECT_EQ(surface.CurrentX(), 0);
    EXPECT_EQ(surface.CurrentY(), 0);
    EXPECT_TRUE(AllOf(kYellow));
    // A system colour is read when painting, so a scheme change shows at the next Cls.
    surface.BackColor(0x80000000u | COLOR_BTNFACE);
    const std::array<int, 1> index{COLOR_BTNFACE};
    const std::array<COLORREF, 1> colour{kBlue};
    gdi.SetSysColors(index, colour);
    surface.Cls();
    EXPECT_TRUE(Surface().is(5, 5, kBlue));
}

TEST_F(SurfaceTest, LineInTwipsPixelsAndUserScaleLandsOnTheSamePixels) {
    Shrink();
    const std::vector<std::string> want{
        "............",
        ".rrrrrrrrrr.",  // (15,15)-(150,15): both ends painted
        "............",
        "..bbbbb.....",  // box (30,45)-(90,90) with its corners at both points
        "..b...b.....",
        "..b...b...r.",  // a zero-length line is one pixel
        "..b...b.....",
        "..bbbbb.....",  // the box's bottom row is painted too
    };
    surface.Line(Tx(1), Ty(1), Tx(10), Ty(1), kRed);
    surface.Line(Tx(2), Ty(3), Tx(6), Ty(7), kBlue, LineBox::B);
    surface.Line(Tx(10), Ty(5), Tx(10), Ty(5), kRed);
    EXPECT_TRUE(SameRows(Map(), want));
    EXPECT_EQ(surface.CurrentX(), Tx(10));
    EXPECT_EQ(surface.CurrentY(), Ty(5));

    surface.Cls();
    surface.ScaleMode(ScaleModeConstants::vbPixels);
    EXPECT_EQ(surface.ScaleWidth(), 12);
    surface.Line(1, 1, 10, 1, kRed);
    surface.Line(2, 3, 6, 7, kBlue, LineBox::B);
    surface.Line(10, 5, 10, 5, kRed);
    EXPECT_TRUE(SameRows(Map(), want));

    // The other standard units in twips; a character is 120 wide and 240 high.
    const std::pair<ScaleModeConstants, double> units[] = {
        {ScaleModeConstants::vbPoints, 20},
        {ScaleModeConstants::vbInches, 1440},
        {ScaleModeConstants::vbMillimeters, 1440 / 25.4},
        {ScaleModeConstants::vbCentimeters, 1440 / 2.54},
        {ScaleModeConstants::vbCharacters, 120}};
    for (const auto& [mode, twips] : units) {
        surface.ScaleMode(mode);
        EXPECT_FLOAT_EQ(surface.ScaleWidth(), static_cast<float>(Tx(12) / twips))
            << static_cast<int>(mode);
    }
    EXPECT_FLOAT_EQ(surface.ScaleHeight(), Ty(8) / 240.0f);

    // A user scale of 10 units a pixel, with the origin moved by one pixel.
    surface.Cls();
    surface.ScaleWidth(120);
    surface.ScaleHeight(80);
    surface.ScaleLeft(-10);
    surface.ScaleTop(-10);
    EXPECT_EQ(surface.ScaleMode(), ScaleModeConstants::vbUser);
    surface.Line(0, 0, 90, 0, kRed);
    surface.Line(10, 20, 50, 60, kBlue, LineBox::B);
    surface.Line(90, 40, 90, 40, kRed);
    EXPECT_TRUE(SameRows(Map(), want));
    EXPECT_THROW(surface.ScaleWidth(0), host::HostError);
}

TEST_F(SurfaceTest, FilledBoxesFillStylesAndDrawModes) {
    Shrink();
    surface.ScaleMode(ScaleModeConstants::vbPixels);
    surface.Line(1, 1, 3, 2, kRed, LineBox::BF);
    surface.FillStyle(0);
    surface.FillColor(kYellow);
    surface.Line(5, 1, 9, 3, kBlue, LineBox::B);
    // Under XOR the same line twice gives the background back: the end point is painted
    // exactly once each time.
    surface.DrawMode(R2_XORPEN);
    surface.Line(1, 5, 10, 6, kRed);
    surface.Line(1, 5, 10, 6, kRed);
    EXPECT_TRUE(SameRows(Map(), {"............", ".rrr.bbbbb..", ".rrr.byyyb..", ".....bbbbb..",
                                 "............", "............", "............", "............"}));
    EXPECT_THROW(surface.DrawMode(17), host::HostError);
    EXPECT_THROW(surface.DrawWidth(0), host::HostError);
    EXPECT_EQ(surface.DrawMode(), R2_XORPEN);
}

TEST_F(SurfaceTest, HatchFillStylesDrawLinesInTheFillColourOverOrBetweenTheBackColour) {
    Shrink();
    surface.ScaleMode(ScaleModeConstants::vbPixels);
    surface.BackColor(kYellow);
    surface.Line(0, 0, 11, 7, RGB(0, 0, 0), LineBox::BF);
    surface.FillColor(kRed);
    // 4, upward diagonal "/": pixels with x + y = 7 (mod 8); FontTransparent (the default)
    // leaves the gaps as they were.
    surface.FillStyle(4);
    surface.Line(0, 0, 5, 7, kBlue, LineBox::B);
    // 5, downward diagonal "\": x = y (mod 8); an opaque background fills the gaps with the
    // back colour.
    surface.FillStyle(5);
    surface.FontTransparent(false);
    surface.Line(6, 0, 11, 7, kBlue, LineBox::B);
    EXPECT_TRUE(SameRows(Map(), {"bbbbbbbbbbbb", "bkkkkbbyyryb", "bkkkkbbyyyrb", "bkkkrbbyyyyb",
                                 "bkkrkbbyyyyb", "bkrkkbbyyyyb", "brkkkbbyyyyb", "bbbbbbbbbbbb"}));
}

TEST_F(SurfaceTest, PrintWritesLinesAndAdvancesByTheTextHeight) {
    surface.ForeColor(kRed);
    surface.CurrentX(Tx(4));
    surface.CurrentY(Ty(2));
    surface.Print("Ab", false);
    EXPECT_EQ(surface.CurrentX(), Tx(4) + surface.TextWidth("Ab"));
    EXPECT_EQ(surface.CurrentY(), Ty(2));
    surface.Print("c\r\nd");
    const float line = surface.TextHeight("x");
    EXPECT_EQ(surface.TextHeight("x\ny"), 2 * line);
    EXPECT_EQ(surface.CurrentX(), 0);
    EXPECT_EQ(surface.CurrentY(), Ty(2) + 2 * line);

    const std::vector<POINT> ink = Surface().Find(kRed);
    ASSERT_FALSE(ink.empty());
    const int linePixels = static_cast<int>(line) / platform::TwipsPerPixelY(platform);
    const int dPixels =
        static_cast<int>(surface.TextWidth("d")) / platform::TwipsPerPixelX(platform);
    bool secondLine = false;
    for (const POINT p : ink) {
        EXPECT_GE(p.y, 2);
        EXPECT_LT(p.y, 2 + 2 * linePixels);
        if (p.y >= 2 + linePixels) {
            secondLine = true;
            EXPECT_LE(p.x, dPixels) << "\"d\" at the left edge";
        }
    }
    EXPECT_TRUE(secondLine);
}

TEST_F(SurfaceTest, BorderTakesAPixelOnEachSideOfTheClientArea) {
    Shrink();
    const float width = surface.ScaleWidth();
    surface.BorderStyle(1);
    EXPECT_EQ(surface.ScaleWidth(), width - Tx(2));
    surface.ScaleMode(ScaleModeConstants::vbPixels);
    surface.Line(0, 0, 0, 0, kRed);  // the client area's origin is inside the border
    EXPECT_TRUE(SameRows(Map(), {"kkkkkkkkkkkk", "kr.........k", "k..........k", "k..........k",
                                 "k..........k", "k..........k", "k..........k", "kkkkkkkkkkkk"}));
}

TEST_F(SurfaceTest, ResizeIsRaisedForSizeChangesAndKeepsTheDrawing) {
    int resizes = 0;
    surface.events.Resize = [&] { ++resizes; };
    surface.ScaleMode(ScaleModeConstants::vbPixels);
    surface.Line(2, 2, 2, 2, kRed);
    surface.Move(surface.Left() + Tx(5));  // moved, same size
    EXPECT_EQ(resizes, 0);
    surface.Width(Tx(100));
    EXPECT_EQ(resizes, 1);
    EXPECT_EQ(surface.ScaleWidth(), 100);
    surface.Height(surface.Height());
    EXPECT_EQ(resizes, 1);
    EXPECT_TRUE(Surface().is(2, 2, kRed));
}

TEST_F(SurfaceTest, TransparentSurfaceShowsTheFormAndPassesItsInput) {
    Label label{surface};
    label.Move(Tx(10), Ty(10), Tx(60), Ty(20));
    label.BackStyle(0);
    label.ForeColor(kRed);
    label.Caption("Hi");
    Shape shape{surface};
    shape.Move(Tx(80), Ty(10), Tx(10), Ty(10));
    shape.BackStyle(1);
    shape.BorderStyle(0);
    shape.BackColor(kBlue);
    surface.BackStyle(0);

    const Shot screen = Screen();
    const RECT shapeOnScreen{kSurface.left + 80, kSurface.top + 10, kSurface.left + 90,
                             kSurface.top + 20};
    const std::vector<POINT> ink = screen.Find(kRed, kSurface);
    ASSERT_FALSE(ink.empty());
    EXPECT_EQ(screen.Count(kBlue, shapeOnScreen), 100u);
    EXPECT_EQ(screen.Count(kBlue, kSurface) + ink.size() + screen.Count(kFormColour, kSurface),
              static_cast<std::size_t>(kSurface.Width() * kSurface.Height()))
        << "nothing but the form, the shape and the caption's ink";

    // The form gets the click where the surface is see-through; the label's ink is the label's.
    EXPECT_EQ(windows.WindowFromPoint({kSurface.left + 2, kSurface.top + 2}), form);
    EXPECT_EQ(windows.WindowFromPoint(ink.front()), surface.hWnd());

    surface.BackStyle(1);
    EXPECT_TRUE(Screen().is(kSurface.left + 2, kSurface.top + 2, gdi.GetSysColor(COLOR_BTNFACE)));
    EXPECT_EQ(windows.WindowFromPoint({kSurface.left + 2, kSurface.top + 2}), surface.hWnd());
}

// Positions near the 32-bit limits clamp at the edge instead of wrapping (UBSan watches the
// sums and products); a size the platform cannot back with a bitmap is error 480, and the surface
// keeps its place and size.
TEST_F(SurfaceTest, ExtremePositionsClampAndAnUnbackableSizeIsRefused) {
    const float tpp = Tx(1);
    surface.Move(1e11f, -1e11f, Tx(10), Ty(10));
    EXPECT_EQ(surface.Left(), static_cast<float>(2147483647.0 * tpp));
    EXPECT_EQ(surface.Top(), static_cast<float>(-2147483648.0 * tpp));
    EXPECT_EQ(surface.Width(), 0.0f);  // the right edge clamps at the limit too
    EXPECT_EQ(surface.Height(), Ty(10));

    surface.Move(0, 0, Tx(12), Ty(8));
    EXPECT_EQ(test::ErrorOf([&] { surface.Move(0, 0, Tx(8192), Ty(16385)); }), 480);
    EXPECT_EQ(
        (std::vector<float>{surface.Left(), surface.Top(), surface.Width(), surface.Height()}),
        (std::vector<float>{0, 0, Tx(12), Ty(8)}));
}

}  // namespace
}  // namespace korvex::forms::testing
