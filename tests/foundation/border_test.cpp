// Pixel checks of the border painters: each case draws on a sentinel-filled bitmap larger than
// the rectangle and compares every pixel with a picture worked out by hand from the line rules
// (start painted, end not).

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include "base/error.hpp"
#include "foundation/border.hpp"
#include "support/error_of.hpp"
#include "support/shot.hpp"

namespace korvex::test {
namespace {

using platform::RECT;
using platform::RGB;

// Colour n is drawn as the digit n.
constexpr std::array<platform::COLORREF, 6> kColors = {RGB(200, 0, 0),   RGB(0, 200, 0),
                                                       RGB(0, 0, 200),   RGB(200, 200, 0),
                                                       RGB(0, 200, 200), RGB(200, 0, 200)};
const Legend kDigits = {{kColors[0], '1'}, {kColors[1], '2'}, {kColors[2], '3'},
                        {kColors[3], '4'}, {kColors[4], '5'}, {kColors[5], '6'}};

enum class Painter { kBorderStyle, kXPFrame };

// Draws with fresh copies of the six colours and returns the picture.
Rows Draw(Canvas& canvas, Painter painter, RECT rect, std::int32_t style, std::int32_t width,
          std::int32_t penStyle = platform::PS_SOLID) {
    std::array<host::OLE_COLOR, 6> c = kColors;
    auto* paint =
        painter == Painter::kBorderStyle ? &foundation::DrawBorderStyle : &foundation::DrawXPFrame;
    paint(canvas.gdi, canvas.dc, rect, style, c[0], c[1], c[2], c[3], c[4], c[5], penStyle, width);
    return canvas.Map(kDigits);
}

TEST(BorderStyle, EachStyleMatchesItsPicture) {
    // The bitmap is as large as the picture.
    struct Case {
        const char* name;
        Painter painter;
        RECT rect;
        std::int32_t style, width;
        Rows want;
    };
    constexpr Painter kStyle = Painter::kBorderStyle, kXP = Painter::kXPFrame;
    // clang-format off
    const Case cases[] = {
        {"single bevel", kStyle, {0, 0, 8, 5}, 1, 1,
         {"22222221.", "2......1.", "2......1.", "2......1.", "11111111.", "........."}},
        {"single bevel, two rings", kStyle, {1, 1, 9, 7}, 1, 2,
         {"..........", ".22222221.", ".22222211.", ".22....11.", ".22....11.", ".21111111.",
          ".11111111.", ".........."}},
        {"double bevel", kStyle, {0, 0, 8, 7}, 2, 1,
         {"22222221.", "24444431.", "24....31.", "24....31.", "24....31.", "23333331.",
          "11111111.", "........."}},
        {"outlined bevel", kStyle, {0, 0, 10, 9}, 3, 1,
         {"1111111111.", "1222222221.", "1244444431.", "124....531.", "124....531.",
          "124....531.", "1245555531.", "1233333331.", "1111111111.", "..........."}},
        {"rounded frame", kStyle, {0, 0, 12, 10}, 4, 1,
         {"..11111111...", ".1333333331..", "155555555521.", "125555555.21.", "12........21.",
          "12........21.", "12.666666.21.", "126666666621.", ".1444444441..", "..11111111...",
          "............."}},
        {"XP frame", kXP, {0, 0, 12, 10}, 1, 1,
         {"..44444444...", ".4666666664..", "421333333124.", "42........24.", "42........24.",
          "42........24.", "42........24.", "421333333124.", ".4555555554..", "..44444444...",
          "............."}},
        // With W = 0 the repeated rings vanish and only the passes drawn once (or, for the
        // rounded frame, the two rows at rings 0 and 1) remain; style 1 has none.
        {"double bevel, W 0", kStyle, {0, 0, 6, 5}, 2, 0,
         {"444443.", "4....3.", "4....3.", "4....3.", "333333.", "......."}},
        {"outlined bevel, W 0", kStyle, {0, 0, 7, 6}, 3, 0,
         {"........", ".44444..", ".4...5..", ".4...5..", ".45555..", "........", "........"}},
        {"rounded frame, W 0", kStyle, {0, 0, 8, 8}, 4, 0,
         {".........", "5555555..", ".55555...", ".........", ".........", "..6666...",
          ".666666..", ".........", "........."}},
        {"single bevel, W 0", kStyle, {0, 0, 6, 6}, 1, 0, Rows(6, "......")},
        {"XP frame, W 0", kXP, {0, 0, 6, 6}, 1, 0, Rows(6, "......")},
        // On a rectangle too small for its rings some lines end before they start and are
        // drawn backwards, outside the rectangle: with B = 3 the Color5 pass lands on row
        // B-W-2 = 0 and its right edge runs up from row 3 to row 1.
        {"small rectangle", kStyle, {0, 0, 10, 3}, 3, 1,
         {"1115555511.", "1233333531.", "1144444531.", ".......5...", "..........."}},
    };
    // clang-format on
    for (const Case& c : cases) {
        Canvas canvas(static_cast<std::int32_t>(c.want[0].size()),
                      static_cast<std::int32_t>(c.want.size()));
        EXPECT_TRUE(SameRows(Draw(canvas, c.painter, c.rect, c.style, c.width), c.want)) << c.name;
    }
}

// Unaccepted styles draw nothing; every call, drawing or not, ends with the stock black pen
// selected and the caller's pen deleted only if a pen was drawn with.
TEST(BorderStyle, UnacceptedStyleDrawsNothingAndSelectsTheBlackPen) {
    const struct {
        Painter painter;
        std::int32_t style;
    } cases[] = {{Painter::kBorderStyle, 0},
                 {Painter::kBorderStyle, 5},
                 {Painter::kXPFrame, 2},
                 {Painter::kXPFrame, 0}};
    for (const auto& c : cases) {
        Canvas canvas(4, 4);
        const platform::HPEN callerPen = canvas.gdi.CreatePen(platform::PS_SOLID, 1, RGB(1, 2, 3));
        canvas.gdi.SelectObject(canvas.dc, callerPen);
        EXPECT_TRUE(SameRows(Draw(canvas, c.painter, {0, 0, 4, 4}, c.style, 1),
                             {"....", "....", "....", "...."}))
            << "style " << c.style;
        EXPECT_EQ(canvas.gdi.GetCurrentObject(canvas.dc, platform::OBJ_PEN),
                  canvas.gdi.GetStockObject(platform::BLACK_PEN));
        EXPECT_TRUE(canvas.gdi.DeleteObject(callerPen)) << "no pen was created, so none is deleted";
    }
}

TEST(BorderStyle, ConvertsColoursInPlaceAndLeavesTheBlackPen) {
    Canvas canvas(6, 6);
    const platform::HPEN callerPen = canvas.gdi.CreatePen(platform::PS_SOLID, 1, RGB(1, 2, 3));
    canvas.gdi.SelectObject(canvas.dc, callerPen);
    host::OLE_COLOR c1 = 0x80000010, c2 = 0x80000014;  // button shadow, button highlight
    host::OLE_COLOR c3 = 0x00123456, c4 = 0, c5 = 0x8000000F, c6 = 0x80000063;
    foundation::DrawBorderStyle(canvas.gdi, canvas.dc, {0, 0, 5, 5}, 1, c1, c2, c3, c4, c5, c6,
                                platform::PS_SOLID, 1);
    const platform::COLORREF shadow = canvas.gdi.GetSysColor(platform::COLOR_BTNSHADOW);
    const platform::COLORREF highlight = canvas.gdi.GetSysColor(platform::COLOR_BTNHIGHLIGHT);
    EXPECT_EQ((std::array<host::OLE_COLOR, 6>{c1, c2, c3, c4, c5, c6}),
              (std::array<host::OLE_COLOR, 6>{shadow, highlight, 0x00123456u, 0u,
                                              canvas.gdi.GetSysColor(platform::COLOR_BTNFACE), 0u}))
        << "an unknown system colour index converts to black";
    EXPECT_EQ(canvas.At(0, 0), highlight);
    EXPECT_EQ(canvas.At(4, 4), shadow);
    EXPECT_EQ(canvas.gdi.GetCurrentObject(canvas.dc, platform::OBJ_PEN),
              canvas.gdi.GetStockObject(platform::BLACK_PEN));
    EXPECT_FALSE(canvas.gdi.DeleteObject(callerPen)) << "the caller's pen was deleted";
}

TEST(BorderStyle, PenStyleAppliesToEveryLine) {
    Canvas canvas(12, 3);
    const std::string top =
        Draw(canvas, Painter::kBorderStyle, {0, 0, 12, 3}, 1, 1, platform::PS_DOT)[0];
    const auto painted = std::count(top.begin(), top.begin() + 11, '2');
    EXPECT_GT(painted, 0);
    EXPECT_LT(painted, 11) << "a dotted top edge leaves gaps";
}

// Coordinates are checked sum by sum: an overflow raises error 6 mid-drawing, what was drawn
// stays and the pen of the pass that failed stays selected.
TEST(BorderStyle, OverflowRaisesErrorSixLeavingWhatWasDrawn) {
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    Canvas canvas(6, 4);
    // Pass 1 draws its top edge (0,0)-(4,0), then the left edge's end B-1 overflows.
    EXPECT_EQ(ErrorOf([&] {
                  Draw(canvas, Painter::kBorderStyle, {0, 0, 5, kMin}, 1, 1);
              }),
              host::kErrOverflow);
    // The pen left selected is pass 1's, in Color2.
    canvas.gdi.MoveToEx(canvas.dc, 0, 2, nullptr);
    canvas.gdi.LineTo(canvas.dc, 3, 2);
    EXPECT_TRUE(SameRows(canvas.Map(kDigits), {"2222..", "......", "222...", "......"}));

    // L+i-1 is (L+i)-1: with L at the top of the range the first sum already overflows,
    // although the whole expression would fit, so nothing is drawn.
    Canvas untouched(4, 2);
    EXPECT_EQ(ErrorOf([&] {
                  Draw(untouched, Painter::kBorderStyle, {kMax, 0, kMax, 4}, 1, 1);
              }),
              host::kErrOverflow);
    EXPECT_TRUE(SameRows(untouched.Map(kDigits), {"....", "...."}));
}

}  // namespace
}  // namespace korvex::test
