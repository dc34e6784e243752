// Pixel checks of the border painters: each case draws on a sentinel-filled bitmap one pixel
// larger than the rectangle (or more) and compares every pixel with a picture worked out by hand
// from the line rules (start painted, end not).

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <map>

#include "foundation/border.hpp"
#include "foundation/canvas.hpp"
#include "base/error.hpp"

namespace korvex::testing {
namespace {

using foundation::DrawBorderStyle;
using foundation::DrawXPFrame;
using platform::RECT;
using platform::RGB;

// Colour n is drawn as the digit n.
constexpr std::array<platform::COLORREF, 6> kColors = {
    RGB(200, 0, 0), RGB(0, 200, 0), RGB(0, 0, 200), RGB(200, 200, 0), RGB(0, 200, 200), RGB(200, 0, 200)};

std::map<platform::COLORREF, char> Legend() {
    std::map<platform::COLORREF, char> legend;
    for (std::size_t k = 0; k < kColors.size(); ++k) legend[kColors[k]] = static_cast<char>('1' + k);
    return legend;
}

enum class Painter { kBorderStyle, kXPFrame };

// Draws with fresh copies of the six colours and returns the picture.
std::string Draw(Canvas& canvas, Painter painter, RECT rect, std::int32_t style, std::int32_t width) {
    std::array<host::OLE_COLOR, 6> c = kColors;
    auto* paint = painter == Painter::kBorderStyle ? &DrawBorderStyle : &DrawXPFrame;
    paint(canvas.gdi, canvas.dc, rect, style, c[0], c[1], c[2], c[3], c[4], c[5], platform::PS_SOLID, width);
    return canvas.Picture(Legend());
}

TEST(BorderStyle, SingleBevelWorkedExample) {
    Canvas canvas(101, 21);
    std::array<host::OLE_COLOR, 6> c = kColors;
    DrawBorderStyle(canvas.gdi, canvas.dc, RECT{0, 0, 100, 20}, 1, c[0], c[1], c[2], c[3], c[4], c[5],
                    platform::PS_SOLID, 1);
    // Color2: row 0 for x 0..98 and column 0 for y 0..18; Color1: row 19 for x 0..98 and column
    // 99 for y 0..19; nothing else.
    for (std::int32_t y = 0; y < 21; ++y) {
        for (std::int32_t x = 0; x < 101; ++x) {
            platform::COLORREF expected = kSentinel;
            if ((y == 0 && x <= 98) || (x == 0 && y <= 18)) expected = kColors[1];
            if ((y == 19 && x <= 98) || (x == 99 && y <= 19)) expected = kColors[0];
            ASSERT_EQ(canvas.At(x, y), expected) << "pixel (" << x << ", " << y << ")";
        }
    }
}

TEST(BorderStyle, EachStyleMatchesItsPicture) {
    struct Case {
        const char* name;
        Painter painter;
        RECT rect;
        std::int32_t style, width, bitmapW, bitmapH;
        std::string expected;
    };
    const Case cases[] = {
        {"single bevel, two rings", Painter::kBorderStyle, {1, 1, 9, 7}, 1, 2, 10, 8,
         Rows({"..........",
               ".22222221.",
               ".22222211.",
               ".22....11.",
               ".22....11.",
               ".21111111.",
               ".11111111.",
               ".........."})},
        {"double bevel", Painter::kBorderStyle, {0, 0, 8, 7}, 2, 1, 9, 8,
         Rows({"22222221.",
               "24444431.",
               "24....31.",
               "24....31.",
               "24....31.",
               "23333331.",
               "11111111.",
               "........."})},
        {"outlined bevel", Painter::kBorderStyle, {0, 0, 10, 9}, 3, 1, 11, 10,
         Rows({"1111111111.",
               "1222222221.",
               "1244444431.",
               "124....531.",
               "124....531.",
               "124....531.",
               "1245555531.",
               "1233333331.",
               "1111111111.",
               "..........."})},
        {"rounded frame", Painter::kBorderStyle, {0, 0, 12, 10}, 4, 1, 13, 11,
         Rows({"..11111111...",
               ".1333333331..",
               "155555555521.",
               "125555555.21.",
               "12........21.",
               "12........21.",
               "12.666666.21.",
               "126666666621.",
               ".1444444441..",
               "..11111111...",
               "............."})},
        {"XP frame", Painter::kXPFrame, {0, 0, 12, 10}, 1, 1, 13, 11,
         Rows({"..44444444...",
               ".4666666664..",
               "421333333124.",
               "42........24.",
               "42........24.",
               "42........24.",
               "42........24.",
               "421333333124.",
               ".4555555554..",
               "..44444444...",
               "............."})},
    };
    for (const Case& c : cases) {
        Canvas canvas(c.bitmapW, c.bitmapH);
        EXPECT_EQ(Draw(canvas, c.painter, c.rect, c.style, c.width), c.expected) << c.name;
    }
}

// With W = 0 the repeated rings vanish and only the passes drawn once (or, for the rounded
// frame, the two rows at rings 0 and 1) remain.
TEST(BorderStyle, ZeroWidthKeepsOnlyTheFixedPasses) {
    {
        Canvas canvas(7, 6);
        EXPECT_EQ(Draw(canvas, Painter::kBorderStyle, {0, 0, 6, 5}, 2, 0),
                  Rows({"444443.", "4....3.", "4....3.", "4....3.", "333333.", "......."}));
    }
    {
        Canvas canvas(8, 7);
        EXPECT_EQ(Draw(canvas, Painter::kBorderStyle, {0, 0, 7, 6}, 3, 0),
                  Rows({"........", ".44444..", ".4...5..", ".4...5..", ".45555..", "........",
                        "........"}));
    }
    {
        Canvas canvas(9, 9);
        EXPECT_EQ(Draw(canvas, Painter::kBorderStyle, {0, 0, 8, 8}, 4, 0),
                  Rows({".........", "5555555..", ".55555...", ".........", ".........",
                        "..6666...", ".666666..", ".........", "........."}));
    }
    for (std::int32_t style : {1, 2}) {
        Canvas canvas(6, 6);
        const Painter painter = style == 1 ? Painter::kBorderStyle : Painter::kXPFrame;
        EXPECT_EQ(Draw(canvas, painter, {0, 0, 6, 6}, 1, 0),
                  Rows({"......", "......", "......", "......", "......", "......"}))
            << "style 1 with W = 0 has no fixed pass";
    }
}

// On a rectangle too small for its rings some lines end before they start; they are drawn
// backwards from the start, which can paint outside the rectangle. Here, with B = 3, the
// Color5 pass lands on row B-W-2 = 0 and its right edge runs up from row 3 to row 1.
TEST(BorderStyle, SmallRectangleDrawsLinesBackwards) {
    Canvas canvas(11, 5);
    EXPECT_EQ(Draw(canvas, Painter::kBorderStyle, {0, 0, 10, 3}, 3, 1),
              Rows({"1115555511.",
                    "1233333531.",
                    "1144444531.",
                    ".......5...",
                    "..........."}));
}

TEST(BorderStyle, UnacceptedStyleDrawsNothingAndSelectsTheBlackPen) {
    const struct {
        Painter painter;
        std::int32_t style;
    } cases[] = {{Painter::kBorderStyle, 0}, {Painter::kBorderStyle, 5}, {Painter::kXPFrame, 2},
                 {Painter::kXPFrame, 0}};
    for (const auto& c : cases) {
        Canvas canvas(8, 8);
        const platform::HPEN callerPen = canvas.gdi.CreatePen(platform::PS_SOLID, 1, RGB(1, 2, 3));
        canvas.gdi.SelectObject(canvas.dc, callerPen);
        const std::string picture = Draw(canvas, c.painter, {0, 0, 8, 8}, c.style, 1);
        EXPECT_EQ(picture, Rows({"........", "........", "........", "........", "........",
                                 "........", "........", "........"}))
            << "style " << c.style;
        EXPECT_EQ(canvas.gdi.GetCurrentObject(canvas.dc, platform::OBJ_PEN),
                  canvas.gdi.GetStockObject(platform::BLACK_PEN));
        EXPECT_TRUE(canvas.gdi.DeleteObject(callerPen)) << "no pen was created, so none is deleted";
    }
}

// After drawing: colours converted in place, the stock black pen selected, the caller's pen
// deleted rather than restored.
TEST(BorderStyle, ConvertsColoursInPlaceAndLeavesTheBlackPen) {
    Canvas canvas(6, 6);
    const platform::HPEN callerPen = canvas.gdi.CreatePen(platform::PS_SOLID, 1, RGB(1, 2, 3));
    canvas.gdi.SelectObject(canvas.dc, callerPen);
    host::OLE_COLOR c1 = 0x80000010;  // button shadow
    host::OLE_COLOR c2 = 0x80000014;  // button highlight
    host::OLE_COLOR c3 = 0x00123456, c4 = 0, c5 = 0x8000000F, c6 = 0x80000063;
    DrawBorderStyle(canvas.gdi, canvas.dc, {0, 0, 5, 5}, 1, c1, c2, c3, c4, c5, c6,
                    platform::PS_SOLID, 1);
    const platform::COLORREF shadow = canvas.gdi.GetSysColor(platform::COLOR_BTNSHADOW);
    const platform::COLORREF highlight = canvas.gdi.GetSysColor(platform::COLOR_BTNHIGHLIGHT);
    EXPECT_EQ(c1, shadow);
    EXPECT_EQ(c2, highlight);
    EXPECT_EQ(c3, 0x00123456u);
    EXPECT_EQ(c4, 0u);
    EXPECT_EQ(c5, canvas.gdi.GetSysColor(platform::COLOR_BTNFACE));
    EXPECT_EQ(c6, 0u) << "an unknown system colour index converts to black";
    EXPECT_EQ(canvas.At(0, 0), highlight);
    EXPECT_EQ(canvas.At(4, 4), shadow);
    EXPECT_EQ(canvas.gdi.GetCurrentObject(canvas.dc, platform::OBJ_PEN),
              canvas.gdi.GetStockObject(platform::BLACK_PEN));
    EXPECT_FALSE(canvas.gdi.DeleteObject(callerPen)) << "the caller's pen was deleted";
}

TEST(BorderStyle, PenStyleAppliesToEveryLine) {
    Canvas canvas(12, 3);
    std::array<host::OLE_COLOR, 6> c = kColors;
    DrawBorderStyle(canvas.gdi, canvas.dc, {0, 0, 12, 3}, 1, c[0], c[1], c[2], c[3], c[4], c[5],
                    platform::PS_DOT, 1);
    // A dotted top edge leaves gaps; a solid one would not.
    int painted = 0;
    for (std::int32_t x = 0; x < 11; ++x) painted += canvas.At(x, 0) == kColors[1] ? 1 : 0;
    EXPECT_GT(painted, 0);
    EXPECT_LT(painted, 11);
}

// An overflowing coordinate raises error 6 mid-drawing: what was drawn stays, and the pen of the
// pass that failed stays selected.
TEST(BorderStyle, OverflowRaisesErrorSixLeavingWhatWasDrawn) {
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
    Canvas canvas(6, 4);
    std::array<host::OLE_COLOR, 6> c = kColors;
    // Pass 1 draws its top edge (0,0)-(4,0), then the left edge's end B-1 overflows.
    try {
        DrawBorderStyle(canvas.gdi, canvas.dc, {0, 0, 5, kMin}, 1, c[0], c[1], c[2], c[3], c[4], c[5],
                        platform::PS_SOLID, 1);
        FAIL() << "expected error 6";
    } catch (const host::HostError& e) {
        EXPECT_EQ(e.Number(), host::kErrOverflow);
    }
    EXPECT_EQ(canvas.Picture(Legend()), Rows({"2222..", "......", "......", "......"}));
    EXPECT_NE(canvas.gdi.GetCurrentObject(canvas.dc, platform::OBJ_PEN),
              canvas.gdi.GetStockObject(platform::BLACK_PEN));
    // The pen left selected is pass 1's, in Color2.
    canvas.gdi.MoveToEx(canvas.dc, 0, 2, nullptr);
    canvas.gdi.LineTo(canvas.dc, 3, 2);
    EXPECT_EQ(canvas.Picture(Legend()), Rows({"2222..", "......", "222...", "......"}));
}

TEST(BorderStyle, OverflowIsCheckedSumBySum) {
    // L+i-1 is (L+i)-1: with L at the top of the range the first sum already overflows, although
    // the whole expression would fit, so nothing is drawn.
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    Canvas canvas(4, 4);
    std::array<host::OLE_COLOR, 6> c = kColors;
    try {
        DrawBorderStyle(canvas.gdi, canvas.dc, {kMax, 0, kMax, 4}, 1, c[0], c[1], c[2], c[3], c[4],
                        c[5], platform::PS_SOLID, 1);
        FAIL() << "expected error 6";
    } catch (const host::HostError& e) {
        EXPECT_EQ(e.Number(), host::kErrOverflow);
    }
    EXPECT_EQ(canvas.Picture(Legend()), Rows({"....", "....", "....", "...."}));
}

}  // namespace
}  // namespace korvex::testing
