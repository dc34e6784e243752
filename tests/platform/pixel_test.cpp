// What the drawing scripts checked against the real GDI (tests/gdi) cannot show: return values,
// rects written back, the clip as a copy, the rows a real GDI draws unstably, and the text cell
// of our own font engine.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "support/shot.hpp"

namespace korvex::platform {
namespace {

using test::kSentinelPixel;
using test::Rows;
using test::SameRows;
using SimCanvas = test::Canvas;

constexpr COLORREF kBrush = RGB(0x33, 0xAA, 0xFF);

TEST(DrawEdge, ResultsAdjustedRectsAndTheDiagonal) {
    SimCanvas c(7, 5);
    RECT r{0, 0, 7, 5};
    EXPECT_FALSE(c.gdi.DrawEdge(c.dc, &r, BDR_RAISEDOUTER | BDR_SUNKENOUTER | BDR_RAISEDINNER,
                                BF_RECT | BF_MIDDLE));
    EXPECT_EQ(c.Raw(3, 2), kSentinelPixel) << "no middle for an invalid combination";
    EXPECT_TRUE(c.gdi.DrawEdge(c.dc, &r, EDGE_SUNKEN, BF_RECT | BF_ADJUST));
    EXPECT_EQ(r, (RECT{2, 2, 5, 3}));
    r = {0, 0, 7, 5};
    c.gdi.DrawEdge(c.dc, &r, BDR_RAISEDOUTER, BF_LEFT | BF_BOTTOM | BF_ADJUST);
    EXPECT_EQ(r, (RECT{1, 0, 7, 4}));

    c.Fill(kSentinelPixel);
    r = {0, 0, 5, 5};
    EXPECT_TRUE(c.gdi.DrawEdge(c.dc, &r, BDR_RAISEDOUTER, BF_DIAGONAL | BF_TOP | BF_RIGHT));
    EXPECT_TRUE(SameRows(c.Map({{c.gdi.GetSysColor(COLOR_3DLIGHT), 'L'}}),
                         {"....L..", "...L...", "..L....", ".L.....", "L......"}));
    POINT cp{};
    c.gdi.GetCurrentPositionEx(c.dc, &cp);
    EXPECT_EQ(cp, (POINT{0, 0})) << "the current position is put back";
}

TEST(Regions, ThinTallEllipseEndRowsNarrowToTheTip) {
    // The ellipse stepper stops before it reaches the first and last rows of a 4 x 31 ellipse;
    // those rows keep the two-pixel tip it got to last instead of the full width.
    SimCanvas c(8, 34);
    c.gdi.FillRgn(c.dc, c.gdi.CreateEllipticRgn(1, 1, 6, 33), c.gdi.CreateSolidBrush(kBrush));
    const Rows rows = c.Map({{kBrush, '#'}});
    for (std::size_t y : {0u, 32u}) EXPECT_EQ(rows[y], "........") << y;
    for (std::size_t y : {1u, 2u, 6u, 26u, 30u, 31u}) EXPECT_EQ(rows[y], "..##....") << y;
    for (std::size_t y = 7; y <= 25; ++y) EXPECT_EQ(rows[y], ".####...") << y;
}

TEST(Regions, CombineOffsetAndQueries) {
    sim::SimGdi gdi;
    const HRGN a = gdi.CreateRectRgn(0, 0, 10, 10), b = gdi.CreateRectRgn(5, 5, 15, 15);
    const HRGN out = gdi.CreateRectRgn(0, 0, 0, 0);
    // Membership of the combined pixels is the region sweep's; here the types and boxes.
    const struct {
        int mode, type;
        RECT box;
    } cases[] = {{RGN_AND, SIMPLEREGION, {5, 5, 10, 10}},
                 {RGN_OR, COMPLEXREGION, {0, 0, 15, 15}},
                 {RGN_DIFF, COMPLEXREGION, {0, 0, 10, 10}},
                 {RGN_XOR, COMPLEXREGION, {0, 0, 15, 15}}};
    RECT box;
    for (const auto& c : cases) {
        EXPECT_EQ(gdi.CombineRgn(out, a, b, c.mode), c.type) << "mode " << c.mode;
        EXPECT_EQ(gdi.GetRgnBox(out, &box), c.type) << "mode " << c.mode;
        EXPECT_EQ(box, c.box) << "mode " << c.mode;
    }
    EXPECT_EQ(gdi.CombineRgn(out, a, HRGN{}, RGN_COPY), SIMPLEREGION);
    EXPECT_EQ(gdi.OffsetRgn(out, 3, -2), SIMPLEREGION);
    EXPECT_EQ(gdi.GetRgnBox(out, &box), SIMPLEREGION);
    EXPECT_EQ(box, (RECT{3, -2, 13, 8}));
    EXPECT_TRUE(gdi.PtInRegion(out, 3, -2));
    EXPECT_FALSE(gdi.PtInRegion(out, 13, 0)) << "right edge is exclusive";
    EXPECT_FALSE(gdi.PtInRegion(out, 5, 8)) << "bottom edge is exclusive";
    EXPECT_EQ(gdi.CombineRgn(out, a, gdi.CreateRectRgn(20, 20, 30, 30), RGN_AND), NULLREGION);
    EXPECT_EQ(gdi.CombineRgn(out, a, HRGN{}, RGN_AND), RGN_ERROR);
    EXPECT_EQ(gdi.CombineRgn(out, a, HRGN{}, RGN_AND), RGN_ERROR);
    // A zero-width box loses its right edge first, then is normalised: the column left of it.
    EXPECT_EQ(gdi.GetRgnBox(gdi.CreateEllipticRgn(5, 5, 5, 25), &box), SIMPLEREGION);
    EXPECT_EQ(box, (RECT{4, 5, 5, 24}));
}

TEST(Clipping, DrawingStaysInsideACopyOfTheSelectedRegion) {
    SimCanvas c(12, 12);
    const HRGN clip = c.gdi.CreateEllipticRgn(0, 0, 9, 9),
               same = c.gdi.CreateEllipticRgn(0, 0, 9, 9);
    EXPECT_EQ(c.gdi.SelectClipRgn(c.dc, clip), COMPLEXREGION);
    c.gdi.OffsetRgn(clip, 3, 3);  // moving the handle afterwards does not move the clip
    c.gdi.FillRect(c.dc, RECT{0, 0, 12, 12}, c.gdi.CreateSolidBrush(kBrush));
    for (std::int32_t y = 0; y < 12; ++y)
        for (std::int32_t x = 0; x < 12; ++x)
            EXPECT_EQ(c.Raw(x, y) != kSentinelPixel, c.gdi.PtInRegion(same, x, y)) << x << "," << y;
    EXPECT_EQ(c.gdi.GetPixel(c.dc, 0, 0), CLR_INVALID);
    EXPECT_EQ(c.gdi.SetPixel(c.dc, 0, 0, 0), CLR_INVALID);
    EXPECT_EQ(c.gdi.SelectClipRgn(c.dc, HRGN{}), SIMPLEREGION);
    EXPECT_EQ(c.gdi.GetPixel(c.dc, 0, 0), RGB(0xCC, 0xCC, 0xCC));
}

TEST(FillRect, NullBrushFallsBackToTheSelectedOneAndFrameRectTakesNoSystemColours) {
    SimCanvas c(8, 3);
    c.gdi.SelectObject(c.dc, c.gdi.CreateSolidBrush(kBrush));
    // A swapped rect is a negative extent: {6,1,2,3} covers x 3..6, the anchor included.
    EXPECT_EQ(c.gdi.FillRect(c.dc, RECT{6, 1, 2, 3}, HBRUSH{}), 1);
    EXPECT_EQ(c.Map({{kBrush, '#'}})[2], "...####.");
    EXPECT_EQ(c.gdi.FrameRect(c.dc, RECT{3, 0, 3, 2}, HBRUSH{}), 0) << "empty rect";
    EXPECT_EQ(c.gdi.FrameRect(c.dc, RECT{0, 0, 8, 3}, HBRUSH{COLOR_BTNFACE + 1}), 0);
    EXPECT_EQ(c.gdi.FrameRect(c.dc, RECT{0, 0, 8, 3}, HBRUSH{}), 0);
    EXPECT_EQ(c.Raw(0, 0), kSentinelPixel);
}

// ---------------------------------------------------------------------------------------------
// Text cell placement (glyph shapes belong to the font engine)

struct TextBox {
    RECT ink{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    RECT any{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
};

TextBox Extents(const SimCanvas& c, COLORREF fg) {
    TextBox box;
    for (std::int32_t y = 0; y < c.view.height; ++y)
        for (std::int32_t x = 0; x < c.view.width; ++x) {
            if (c.Raw(x, y) == kSentinelPixel) continue;
            RECT& r = c.At(x, y) == fg ? box.ink : box.any;
            r = {std::min(r.left, x), std::min(r.top, y), std::max(r.right, x + 1),
                 std::max(r.bottom, y + 1)};
        }
    return box;
}

TEST(TextOut, OpaqueBoxIsTheExtentAtTheReferencePoint) {
    constexpr COLORREF kInk = RGB(0xFF, 0, 0), kBk = RGB(0, 0xFF, 0);
    SimCanvas c(120, 60);
    c.gdi.SelectObject(c.dc, c.gdi.GetStockObject(DEFAULT_GUI_FONT));
    c.gdi.SetTextColor(c.dc, kInk);
    c.gdi.SetBkColor(c.dc, kBk);
    SIZE ext{};
    ASSERT_TRUE(c.gdi.GetTextExtentPoint32(c.dc, "Hello", &ext));
    TEXTMETRIC tm{};
    ASSERT_TRUE(c.gdi.GetTextMetrics(c.dc, &tm));

    c.gdi.SetROP2(c.dc, R2_NOT);  // text ignores it
    c.gdi.TextOut(c.dc, 7, 5, "Hello");
    TextBox box = Extents(c, kInk);
    EXPECT_EQ(box.any, (RECT{7, 5, 7 + ext.cx, 5 + ext.cy})) << "background box";
    EXPECT_GE(box.ink.left, 7);
    EXPECT_LE(box.ink.bottom, 5 + ext.cy);

    c.Fill(kSentinelPixel);
    c.gdi.SetTextAlign(c.dc, TA_RIGHT | TA_BOTTOM);
    c.gdi.TextOut(c.dc, 100, 50, "Hello");
    EXPECT_EQ(Extents(c, kInk).any, (RECT{100 - ext.cx, 50 - ext.cy, 100, 50}));

    c.Fill(kSentinelPixel);
    c.gdi.SetTextAlign(c.dc, TA_CENTER | TA_BASELINE);
    c.gdi.SetBkMode(c.dc, TRANSPARENT);
    c.gdi.TextOut(c.dc, 60, 30, "Hello");
    box = Extents(c, kInk);
    EXPECT_EQ(box.any.left, INT32_MAX) << "no background in TRANSPARENT mode";
    EXPECT_LE(box.ink.bottom, 30 + tm.tmDescent);
    EXPECT_GE(box.ink.top, 30 - tm.tmAscent);
    EXPECT_GE(box.ink.left, 60 - ext.cx / 2);
}

// End points at the 32-bit limits: the line is clipped to the bitmap like any other, nothing is
// written outside it (the sanitizer build checks that), and the visible part is where the
// closed form puts it.
TEST(Lines, EndPointsAtTheIntegerLimitsStayInsideTheBitmap) {
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
    SimCanvas c(50, 50);
    c.gdi.SelectObject(c.dc, c.gdi.CreatePen(PS_SOLID, 1, kBrush));
    c.gdi.MoveToEx(c.dc, 10, 10, nullptr);
    c.gdi.LineTo(c.dc, kMax, 20);
    c.gdi.MoveToEx(c.dc, 5, 0, nullptr);
    c.gdi.LineTo(c.dc, 5, kMax);
    const Rows rows = c.Map({{kBrush, '#'}});
    EXPECT_EQ(rows[10], ".....#....########################################");
    EXPECT_EQ(rows[49], ".....#............................................");

    c.Fill(kSentinelPixel);
    const POINT extremes[] = {{10, 10}, {kMax, 20}, {20, kMax}, {kMin, kMin}, {kMax, kMin}};
    EXPECT_TRUE(c.gdi.Polyline(c.dc, extremes));
    EXPECT_TRUE(c.gdi.Polygon(c.dc, extremes));
}

}  // namespace
}  // namespace korvex::platform
