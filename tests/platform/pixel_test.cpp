// Direct pixel checks of what the conformance digests do not cover and a naive rasteriser gets
// wrong: DrawEdge rings, shape and region outlines, NULL_PEN rectangles, stretching, every ROP2,
// styled pens over several calls, wide pens, clipping, InvertRect and the text cell.

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "support/shot.hpp"

namespace korvex::platform {
namespace {

using test::kSentinelPixel;
using test::Rows;
using test::SameRows;
using SimCanvas = test::Canvas;

// Scheme colours made distinct, so each stroke of an edge is visible on its own.
constexpr COLORREF kLight = RGB(1, 1, 1), kDark = RGB(2, 2, 2), kShadow = RGB(3, 3, 3),
                   kHigh = RGB(4, 4, 4), kFace = RGB(5, 5, 5), kWindow = RGB(6, 6, 6),
                   kFrame = RGB(7, 7, 7);
const std::map<COLORREF, char> kEdgeLegend = {{kLight, 'L'}, {kDark, 'D'},   {kShadow, 'S'}, {kHigh, 'H'},
                                              {kFace, 'F'},  {kWindow, 'W'}, {kFrame, 'K'}};

void UseDistinctScheme(sim::SimGdi& gdi) {
    const std::array<int, 7> idx = {COLOR_3DLIGHT, COLOR_3DDKSHADOW, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT,
                                    COLOR_BTNFACE, COLOR_WINDOW,     COLOR_WINDOWFRAME};
    const std::array<COLORREF, 7> col = {kLight, kDark, kShadow, kHigh, kFace, kWindow, kFrame};
    ASSERT_TRUE(gdi.SetSysColors(idx, col));
}

Rows Edge(unsigned edge, unsigned flags, int rop2 = R2_COPYPEN, bool* result = nullptr) {
    SimCanvas c(7, 5);
    UseDistinctScheme(c.gdi);
    c.gdi.SetROP2(c.dc, rop2);
    RECT r{0, 0, 7, 5};
    const bool ok = c.gdi.DrawEdge(c.dc, &r, edge, flags);
    if (result) *result = ok;
    return c.Map(kEdgeLegend);
}

TEST(DrawEdge, RingsOfEveryEdgeKindAndFlag) {
    struct Case {
        unsigned edge, flags;
        Rows want;
        int rop2 = R2_COPYPEN;
    };
    const unsigned f = BF_RECT | BF_MIDDLE;
    const Case cases[] = {
        {EDGE_RAISED, f, {"LLLLLLD", "LHHHHSD", "LHFFFSD", "LSSSSSD", "DDDDDDD"}},
        {EDGE_SUNKEN, f, {"SSSSSSH", "SDDDDLH", "SDFFFLH", "SLLLLLH", "HHHHHHH"}},
        {EDGE_ETCHED, f, {"SSSSSSH", "SHHHHSH", "SHFFFSH", "SSSSSSH", "HHHHHHH"}},
        {EDGE_BUMP, f, {"LLLLLLD", "LDDDDLD", "LDFFFLD", "LLLLLLD", "DDDDDDD"}},
        {BDR_RAISEDOUTER, f, {"LLLLLLD", "LFFFFFD", "LFFFFFD", "LFFFFFD", "DDDDDDD"}},
        {BDR_SUNKENOUTER, f, {"SSSSSSH", "SFFFFFH", "SFFFFFH", "SFFFFFH", "HHHHHHH"}},
        // A lone inner flag paints the outer ring.
        {BDR_RAISEDINNER, f, {"HHHHHHS", "HFFFFFS", "HFFFFFS", "HFFFFFS", "SSSSSSS"}},
        {BDR_SUNKENINNER, f, {"DDDDDDL", "DFFFFFL", "DFFFFFL", "DFFFFFL", "LLLLLLL"}},
        // With two sides only, the inner strokes run to the far edge.
        {EDGE_RAISED, BF_TOPLEFT, {"LLLLLLL", "LHHHHHH", "LH.....", "LH.....", "LH....."}},
        {EDGE_RAISED, f | BF_SOFT, {"HHHHHHD", "HLLLLSD", "HLFFFSD", "HSSSSSD", "DDDDDDD"}},
        {EDGE_SUNKEN, f | BF_FLAT, {"SSSSSSS", "SFFFFFS", "SFFFFFS", "SFFFFFS", "SSSSSSS"}},
        {EDGE_RAISED, BF_RECT | BF_MONO, {"KKKKKKK", "KWWWWWK", "KW...WK", "KWWWWWK", "KKKKKKK"}},
        // The ROP2 is ignored.
        {EDGE_RAISED, f, {"LLLLLLD", "LHHHHSD", "LHFFFSD", "LSSSSSD", "DDDDDDD"}, R2_XORPEN},
    };
    for (const Case& c : cases)
        EXPECT_TRUE(SameRows(Edge(c.edge, c.flags, c.rop2), c.want))
            << "edge " << c.edge << " flags " << c.flags << " rop2 " << c.rop2;
}

TEST(DrawEdge, InvalidCombinationsFailAndSkipTheMiddleWhileAdjustShrinksByTheRings) {
    bool ok = true;
    const Rows both =
        Edge(BDR_RAISEDOUTER | BDR_SUNKENOUTER | BDR_RAISEDINNER, BF_RECT | BF_MIDDLE, R2_COPYPEN, &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(both[2][3], '.') << "no middle for an invalid combination";

    SimCanvas c(7, 5);
    RECT r{0, 0, 7, 5};
    EXPECT_TRUE(c.gdi.DrawEdge(c.dc, &r, EDGE_SUNKEN, BF_RECT | BF_ADJUST));
    EXPECT_EQ(r, (RECT{2, 2, 5, 3}));
    r = {0, 0, 7, 5};
    c.gdi.DrawEdge(c.dc, &r, BDR_RAISEDOUTER, BF_LEFT | BF_BOTTOM | BF_ADJUST);
    EXPECT_EQ(r, (RECT{1, 0, 7, 4}));
}

TEST(DrawEdge, DiagonalRunsFromTheBottomLeftToTheTopRightCorner) {
    SimCanvas c(5, 5);
    UseDistinctScheme(c.gdi);
    RECT r{0, 0, 5, 5};
    c.gdi.SetROP2(c.dc, R2_COPYPEN);
    EXPECT_TRUE(c.gdi.DrawEdge(c.dc, &r, BDR_RAISEDOUTER, BF_DIAGONAL | BF_TOP | BF_RIGHT));
    EXPECT_TRUE(SameRows(c.Map(kEdgeLegend), {"....L", "...L.", "..L..", ".L...", "L...."}));
    POINT cp{};
    c.gdi.GetCurrentPositionEx(c.dc, &cp);
    EXPECT_EQ(cp, (POINT{0, 0})) << "the current position is put back";
}

// ---------------------------------------------------------------------------------------------
// Rectangles, round shapes and regions

constexpr COLORREF kPen = RGB(0, 0, 0xFF), kBrush = RGB(0x33, 0xAA, 0xFF);
const std::map<COLORREF, char> kShapeLegend = {{kPen, '#'}, {kBrush, 'o'}};

// Draws on a canvas with a pen (none for NULL_PEN) and the test brush selected.
Rows Shape(std::int32_t w, std::int32_t h, int penStyle, std::int32_t penWidth,
           const std::function<void(sim::SimGdi&, HDC)>& draw) {
    SimCanvas c(w, h);
    c.gdi.SelectObject(c.dc, penWidth ? c.gdi.CreatePen(penStyle, penWidth, kPen) : c.gdi.GetStockObject(NULL_PEN));
    c.gdi.SelectObject(c.dc, c.gdi.CreateSolidBrush(kBrush));
    draw(c.gdi, c.dc);
    return c.Map(kShapeLegend);
}

TEST(Shapes, OutlinesInteriorsAndRoundCorners) {
    struct Case {
        const char* name;
        int penStyle;
        std::int32_t penWidth;
        std::function<void(sim::SimGdi&, HDC)> draw;
        Rows want;  // the canvas is as large as the picture
    };
    // clang-format off
    const Case cases[] = {
        {"null pen: the fill is one pixel short on the right and bottom; corners normalised", PS_SOLID, 0,
         [](sim::SimGdi& g, HDC dc) { EXPECT_TRUE(g.Rectangle(dc, 5, 4, 1, 1)); },
         {"......", ".ooo..", ".ooo..", "......", "......"}},
        {"outline inside the rect; one by one draws nothing", PS_SOLID, 1,
         [](sim::SimGdi& g, HDC dc) { g.Rectangle(dc, 1, 1, 5, 4); g.Rectangle(dc, 0, 4, 1, 5); },
         {"......", ".####.", ".#oo#.", ".####.", "......"}},
        {"inside-frame wide pen stays inside, with the pen's round joins at the corners", PS_INSIDEFRAME, 3,
         [](sim::SimGdi& g, HDC dc) { g.Rectangle(dc, 0, 0, 10, 8); },
         {".########.", "##########", "##########", "###oooo###", "###oooo###", "##########", "##########",
          ".########."}},
        {"wide outline: round corners, the interior comes out of it", PS_SOLID, 5,
         [](sim::SimGdi& g, HDC dc) { g.Rectangle(dc, 3, 3, 13, 10); },
         {"................", "..############..", ".##############.", ".##############.", ".##############.",
          ".##############.", ".#####oooo#####.", ".##############.", ".##############.", ".##############.",
          ".##############.", "..############..", "................"}},
        {"round rect", PS_SOLID, 1, [](sim::SimGdi& g, HDC dc) { g.RoundRect(dc, 0, 0, 10, 8, 4, 4); },
         {".########.", "#oooooooo#", "#oooooooo#", "#oooooooo#", "#oooooooo#", "#oooooooo#", "#oooooooo#",
          ".########."}},
        {"ellipse", PS_SOLID, 1, [](sim::SimGdi& g, HDC dc) { g.Ellipse(dc, 0, 0, 9, 7); },
         {"..#####..", ".#ooooo#.", "#ooooooo#", "#ooooooo#", "#ooooooo#", ".#ooooo#.", "..#####.."}},
    };
    // clang-format on
    for (const Case& c : cases) {
        const auto w = static_cast<std::int32_t>(c.want[0].size()), h = static_cast<std::int32_t>(c.want.size());
        EXPECT_TRUE(SameRows(Shape(w, h, c.penStyle, c.penWidth, c.draw), c.want)) << c.name;
    }
}

Rows RegionMap(std::int32_t w, std::int32_t h, HRGN (*make)(sim::SimGdi&)) {
    SimCanvas c(w, h);
    const HRGN rgn = make(c.gdi);
    c.gdi.FillRgn(c.dc, rgn, c.gdi.CreateSolidBrush(kBrush));
    return c.Map({{kBrush, '#'}});
}

TEST(Regions, RoundAndEllipticRegionsLoseAPixelOnTheRightAndBottom) {
    EXPECT_TRUE(SameRows(RegionMap(10, 10, [](sim::SimGdi& g) { return g.CreateRoundRectRgn(0, 0, 10, 10, 4, 4); }),
                         {".#######..", "#########.", "#########.", "#########.", "#########.",
                          "#########.", "#########.", "#########.", ".#######..", ".........."}));
    EXPECT_TRUE(SameRows(RegionMap(9, 9, [](sim::SimGdi& g) { return g.CreateEllipticRgn(0, 0, 9, 9); }),
                         {"..####...", ".######..", "########.", "########.", "########.", "########.",
                          ".######..", "..####...", "........."}));
    EXPECT_TRUE(SameRows(RegionMap(10, 10, [](sim::SimGdi& g) { return g.CreateRoundRectRgn(0, 0, 10, 10, 1, 1); }),
                         {"#########.", "#########.", "#########.", "#########.", "#########.",
                          "#########.", "#########.", "#########.", "#########.", ".........."}));
}

TEST(Regions, ZeroWidthOrHeightRoundBoxesGiveTheColumnLeftOrTheRowAbove) {
    // Right and bottom lose one first, so the rect region falling out is normalised: l == r gives
    // the column l - 1, t == b the row t - 1 (each one shorter at the far end).
    EXPECT_TRUE(SameRows(RegionMap(8, 8, [](sim::SimGdi& g) { return g.CreateEllipticRgn(5, 1, 5, 6); }),
                         {"........", "....#...", "....#...", "....#...", "....#...", "........",
                          "........", "........"}));
    EXPECT_TRUE(SameRows(RegionMap(8, 5, [](sim::SimGdi& g) { return g.CreateRoundRectRgn(1, 3, 7, 3, 6, 6); }),
                         {"........", "........", ".#####..", "........", "........"}));
    sim::SimGdi gdi;
    RECT box{};
    EXPECT_EQ(gdi.GetRgnBox(gdi.CreateEllipticRgn(5, 5, 5, 25), &box), SIMPLEREGION);
    EXPECT_EQ(box, (RECT{4, 5, 5, 24}));
}

TEST(Regions, ThinTallEllipseEndRowsNarrowToTheTip) {
    // The ellipse stepper stops before it reaches the first and last rows of a 4 x 31 ellipse;
    // those rows keep the two-pixel tip it got to last instead of the full width.
    SimCanvas c(8, 34);
    c.gdi.FillRgn(c.dc, c.gdi.CreateEllipticRgn(1, 1, 6, 33), c.gdi.CreateSolidBrush(kBrush));
    const Rows rows = c.Map({{kBrush, '#'}});
    EXPECT_EQ(rows[0], "........");
    for (std::size_t y : {1u, 2u, 6u, 26u, 30u, 31u}) EXPECT_EQ(rows[y], "..##....") << y;
    for (std::size_t y = 7; y <= 25; ++y) EXPECT_EQ(rows[y], ".####...") << y;
    EXPECT_EQ(rows[32], "........");
}

TEST(Regions, PolygonFillModesAndTheirEdgeRule) {
    sim::SimGdi gdi;
    const POINT star[] = {{10, 0}, {16, 19}, {0, 7}, {20, 7}, {4, 19}};
    const HRGN alternate = gdi.CreatePolygonRgn(star, ALTERNATE);
    const HRGN winding = gdi.CreatePolygonRgn(star, WINDING);
    EXPECT_FALSE(gdi.PtInRegion(alternate, 10, 10)) << "the pentagon in the middle is crossed twice";
    EXPECT_TRUE(gdi.PtInRegion(winding, 10, 10));
    EXPECT_TRUE(gdi.PtInRegion(alternate, 10, 3));

    // A rectangle polygon is exactly the half-open rect: left/top edges in, right/bottom out.
    const POINT box[] = {{2, 3}, {9, 3}, {9, 8}, {2, 8}};
    const HRGN poly = gdi.CreatePolygonRgn(box, ALTERNATE);
    const HRGN rect = gdi.CreateRectRgn(2, 3, 9, 8);
    const HRGN diff = gdi.CreateRectRgn(0, 0, 0, 0);
    EXPECT_EQ(gdi.CombineRgn(diff, poly, rect, RGN_XOR), NULLREGION);
}

TEST(Regions, CombineOffsetAndQueries) {
    sim::SimGdi gdi;
    const HRGN a = gdi.CreateRectRgn(0, 0, 10, 10), b = gdi.CreateRectRgn(5, 5, 15, 15);
    const HRGN out = gdi.CreateRectRgn(0, 0, 0, 0);
    const struct {
        int mode, type;
        RECT box;
        POINT in, out;
    } cases[] = {
        {RGN_AND, SIMPLEREGION, {5, 5, 10, 10}, {9, 9}, {4, 4}},
        {RGN_OR, COMPLEXREGION, {0, 0, 15, 15}, {14, 14}, {12, 2}},
        {RGN_DIFF, COMPLEXREGION, {0, 0, 10, 10}, {4, 9}, {5, 5}},
        {RGN_XOR, COMPLEXREGION, {0, 0, 15, 15}, {14, 14}, {7, 7}},
    };
    RECT box;
    for (const auto& c : cases) {
        EXPECT_EQ(gdi.CombineRgn(out, a, b, c.mode), c.type) << "mode " << c.mode;
        EXPECT_EQ(gdi.GetRgnBox(out, &box), c.type) << "mode " << c.mode;
        EXPECT_EQ(box, c.box) << "mode " << c.mode;
        EXPECT_TRUE(gdi.PtInRegion(out, c.in.x, c.in.y)) << "mode " << c.mode;
        EXPECT_FALSE(gdi.PtInRegion(out, c.out.x, c.out.y)) << "mode " << c.mode;
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
}

TEST(Regions, FrameRgnPaintsARingInsideAndHonoursTheRop2) {
    SimCanvas c(10, 8);
    const HRGN r = c.gdi.CreateRectRgn(1, 1, 9, 7);
    c.gdi.FrameRgn(c.dc, r, c.gdi.CreateSolidBrush(kBrush), 2, 1);
    EXPECT_TRUE(SameRows(c.Map({{kBrush, '#'}}), {"..........", ".########.", ".##....##.", ".##....##.",
                                                  ".##....##.", ".##....##.", ".########.", ".........."}));
    c.gdi.SetROP2(c.dc, R2_NOT);
    c.gdi.PaintRgn(c.dc, r);
    EXPECT_EQ(c.Raw(3, 3), ~kSentinelPixel);
}

// ---------------------------------------------------------------------------------------------
// Blits

struct BlitPair {
    sim::SimGdi gdi;
    HDC src, dst;
    PixelView s, d;
    BlitPair(std::int32_t sw, std::int32_t sh, std::int32_t dw, std::int32_t dh) {
        src = gdi.CreateCompatibleDC(HDC{});
        dst = gdi.CreateCompatibleDC(HDC{});
        const HBITMAP a = gdi.CreateDIBSection32(sw, sh), b = gdi.CreateDIBSection32(dw, dh);
        gdi.SelectObject(src, a);
        gdi.SelectObject(dst, b);
        s = gdi.BitmapPixels(a);
        d = gdi.BitmapPixels(b);
        std::fill_n(d.bits, dw * dh, kSentinelPixel);
    }
};

struct StretchCase {
    std::int32_t srcLen, dstLen;
    std::vector<int> dstFromSrc;  // the source index each destination pixel shows
};

TEST(StretchBlt, NearestPixelMapsWhenEnlarging) {
    const std::vector<StretchCase> cases = {
        {2, 5, {0, 0, 0, 1, 1}}, {3, 7, {0, 0, 1, 1, 1, 2, 2}}, {4, 6, {0, 0, 1, 2, 2, 3}}};
    for (const StretchCase& k : cases) {
        BlitPair p(k.srcLen, k.srcLen, k.dstLen, k.dstLen);
        auto tag = [](std::int32_t x, std::int32_t y) { return static_cast<std::uint32_t>(0x010000 * (y + 1) + x + 1); };
        for (std::int32_t y = 0; y < k.srcLen; ++y)
            for (std::int32_t x = 0; x < k.srcLen; ++x) p.s.bits[y * k.srcLen + x] = tag(x, y);
        ASSERT_TRUE(p.gdi.StretchBlt(p.dst, 0, 0, k.dstLen, k.dstLen, p.src, 0, 0, k.srcLen, k.srcLen, SRCCOPY));
        for (std::int32_t y = 0; y < k.dstLen; ++y)
            for (std::int32_t x = 0; x < k.dstLen; ++x)
                EXPECT_EQ(p.d.bits[y * k.dstLen + x], tag(k.dstFromSrc[static_cast<std::size_t>(x)], k.dstFromSrc[static_cast<std::size_t>(y)]))
                    << k.srcLen << "->" << k.dstLen << " at " << x << "," << y;
    }
}

TEST(StretchBlt, ShrinkingGroupsAndAndsInTheDefaultMode) {
    // 5 -> 2 puts source pixels 0,1,2 on destination 0 and 3,4 on destination 1.
    const std::uint32_t px[5] = {0x00F0F0F7, 0x00FF3FFF, 0x007FFFF8, 0x0012345F, 0x00FFFF0F};
    BlitPair p(5, 1, 2, 1);
    std::copy_n(px, 5, p.s.bits);
    ASSERT_TRUE(p.gdi.StretchBlt(p.dst, 0, 0, 2, 1, p.src, 0, 0, 5, 1, SRCCOPY));
    EXPECT_EQ(p.d.bits[0], px[0] & px[1] & px[2]);
    EXPECT_EQ(p.d.bits[1], px[3] & px[4]);

    p.gdi.SetStretchBltMode(p.dst, WHITEONBLACK);
    p.gdi.StretchBlt(p.dst, 0, 0, 2, 1, p.src, 0, 0, 5, 1, SRCCOPY);
    EXPECT_EQ(p.d.bits[0], px[0] | px[1] | px[2]);
    EXPECT_EQ(p.d.bits[1], px[3] | px[4]);

    p.gdi.SetStretchBltMode(p.dst, COLORONCOLOR);
    p.gdi.StretchBlt(p.dst, 0, 0, 2, 1, p.src, 0, 0, 5, 1, SRCCOPY);
    EXPECT_EQ(p.d.bits[0], px[2]) << "horizontally the last pixel of a group is kept";
    EXPECT_EQ(p.d.bits[1], px[4]);
}

TEST(StretchBlt, SourceRunningOffTheBitmapUsesOnlyThePixelsInsideIt) {
    // Ten distinct pixels at x 30..39 shrunk by three from x 30 over 12: the runs are 30-32,
    // 33-35, 36-38 and 39-41, and the last run keeps the one pixel inside the bitmap.
    BlitPair p(40, 4, 6, 2);
    for (std::uint32_t i = 0; i < 40 * 4; ++i) p.s.bits[i] = 0x00101010u + i;
    auto at = [&](std::int32_t x, std::int32_t y) { return p.s.bits[y * 40 + x]; };
    p.gdi.SetStretchBltMode(p.dst, COLORONCOLOR);
    ASSERT_TRUE(p.gdi.StretchBlt(p.dst, 0, 0, 4, 1, p.src, 30, 0, 12, 1, SRCCOPY));
    EXPECT_EQ(p.d.bits[0], at(32, 0));
    EXPECT_EQ(p.d.bits[1], at(35, 0));
    EXPECT_EQ(p.d.bits[2], at(38, 0));
    EXPECT_EQ(p.d.bits[3], at(39, 0)) << "the last pixel inside, not nothing";
    // Vertically the first row inside the bitmap stands for its group: rows -2..0 and 1..3.
    ASSERT_TRUE(p.gdi.StretchBlt(p.dst, 5, 0, 1, 2, p.src, 0, -2, 1, 6, SRCCOPY));
    EXPECT_EQ(p.d.bits[5], at(0, 0));
    EXPECT_EQ(p.d.bits[6 + 5], at(0, 1));
    // The folding modes combine just the pixels inside.
    p.gdi.SetStretchBltMode(p.dst, BLACKONWHITE);
    ASSERT_TRUE(p.gdi.StretchBlt(p.dst, 4, 0, 1, 2, p.src, 1, -2, 1, 6, SRCCOPY));
    EXPECT_EQ(p.d.bits[4], at(1, 0));
    EXPECT_EQ(p.d.bits[6 + 4], at(1, 1) & at(1, 2) & at(1, 3));
    p.gdi.SetStretchBltMode(p.dst, WHITEONBLACK);
    ASSERT_TRUE(p.gdi.StretchBlt(p.dst, 0, 1, 4, 1, p.src, 30, 1, 12, 1, SRCCOPY));
    EXPECT_EQ(p.d.bits[6 + 0], at(30, 1) | at(31, 1) | at(32, 1));
    EXPECT_EQ(p.d.bits[6 + 3], at(39, 1));
}

TEST(StretchBlt, SinglePixelDestinationTakesTheFirstSourcePixel) {
    BlitPair p(2, 2, 1, 1);
    const std::uint32_t px[4] = {0x00A0B0C0, 0x000F0F0F, 0x00F0F0F0, 0x00000001};
    std::copy_n(px, 4, p.s.bits);
    p.gdi.StretchBlt(p.dst, 0, 0, 1, 1, p.src, 0, 0, 2, 2, SRCCOPY);
    EXPECT_EQ(p.d.bits[0], px[0]);
}

TEST(StretchBlt, NegativeExtentsIncludeTheAnchorAndMirror) {
    BlitPair p(3, 1, 5, 1);
    const std::uint32_t px[3] = {1, 2, 3};
    std::copy_n(px, 3, p.s.bits);
    // Destination x = 3 going left over three pixels: covers 1..3, mirrored.
    p.gdi.StretchBlt(p.dst, 3, 0, -3, 1, p.src, 0, 0, 3, 1, SRCCOPY);
    EXPECT_EQ(p.d.bits[0], kSentinelPixel);
    EXPECT_EQ(p.d.bits[1], 3u);
    EXPECT_EQ(p.d.bits[2], 2u);
    EXPECT_EQ(p.d.bits[3], 1u);
    EXPECT_EQ(p.d.bits[4], kSentinelPixel);
}

TEST(BitBlt, RasterOpsCombineSourceDestinationAndBrush) {
    BlitPair p(2, 1, 2, 1);
    p.s.bits[0] = 0x00FF00FF;
    p.s.bits[1] = 0x000000F0;
    const std::uint32_t d0 = 0x00F0F0F0;
    auto run = [&](DWORD rop) {
        p.d.bits[0] = d0;
        p.d.bits[1] = d0;
        EXPECT_TRUE(p.gdi.BitBlt(p.dst, 0, 0, 2, 1, p.src, 0, 0, rop));
        return p.d.bits[0];
    };
    EXPECT_EQ(run(SRCCOPY), 0x00FF00FFu);
    EXPECT_EQ(run(SRCAND), 0x00F000F0u);
    EXPECT_EQ(run(SRCPAINT), 0x00FFF0FFu);
    EXPECT_EQ(run(SRCINVERT), 0x000FF00Fu);
    EXPECT_EQ(run(NOTSRCCOPY), 0xFF00FF00u);
    EXPECT_EQ(run(SRCERASE), 0x000F000Fu);
    p.gdi.SelectObject(p.dst, p.gdi.CreateSolidBrush(RGB(0x0F, 0xFF, 0x00)));  // pixel 0x000FFF00
    EXPECT_EQ(run(MERGECOPY), 0x00FF00FFu & 0x000FFF00u);
    // Copies within one bitmap read the pixels as they were before the call.
    p.d.bits[0] = 5;
    p.d.bits[1] = 6;
    p.gdi.BitBlt(p.dst, 1, 0, 1, 1, p.dst, 0, 0, SRCCOPY);
    EXPECT_EQ(p.d.bits[1], 5u);
}

// ---------------------------------------------------------------------------------------------
// ROP2 and the primitives that honour or ignore it

TEST(Rop2, AllSixteenCodesOverAKnownBackground) {
    // Each code's definition in pen P and destination D, over a background with its top byte
    // set: ROP2 works on the whole word.
    using Mix = std::uint32_t (*)(std::uint32_t, std::uint32_t);
    const std::array<Mix, 16> mixes = {
        [](std::uint32_t, std::uint32_t) { return 0u; },
        [](std::uint32_t p, std::uint32_t d) { return ~(p | d); },
        [](std::uint32_t p, std::uint32_t d) { return ~p & d; },
        [](std::uint32_t p, std::uint32_t) { return ~p; },
        [](std::uint32_t p, std::uint32_t d) { return p & ~d; },
        [](std::uint32_t, std::uint32_t d) { return ~d; },
        [](std::uint32_t p, std::uint32_t d) { return p ^ d; },
        [](std::uint32_t p, std::uint32_t d) { return ~(p & d); },
        [](std::uint32_t p, std::uint32_t d) { return p & d; },
        [](std::uint32_t p, std::uint32_t d) { return ~(p ^ d); },
        [](std::uint32_t, std::uint32_t d) { return d; },
        [](std::uint32_t p, std::uint32_t d) { return ~p | d; },
        [](std::uint32_t p, std::uint32_t) { return p; },
        [](std::uint32_t p, std::uint32_t d) { return p | ~d; },
        [](std::uint32_t p, std::uint32_t d) { return p | d; },
        [](std::uint32_t, std::uint32_t) { return ~0u; }};
    const std::uint32_t background = 0x5A3CC396, pen = 0x001234F0;
    SimCanvas c(6, 16);
    c.Fill(background);
    c.gdi.SelectObject(c.dc, c.gdi.CreatePen(PS_SOLID, 1, RGB(0x12, 0x34, 0xF0)));
    for (int code = R2_BLACK; code <= R2_WHITE; ++code) {
        c.gdi.SetROP2(c.dc, code);
        c.gdi.MoveToEx(c.dc, 0, code - 1, nullptr);
        c.gdi.LineTo(c.dc, 4, code - 1);
        for (std::int32_t x = 0; x < 4; ++x)
            EXPECT_EQ(c.Raw(x, code - 1), mixes[static_cast<std::size_t>(code - 1)](pen, background))
                << std::hex << "code " << code << " x " << x;
        EXPECT_EQ(c.Raw(4, code - 1), background) << "the end point is never drawn (code " << code << ")";
    }
}

TEST(Rop2, ShapesRegionsAndPixelsHonourItRectFillsBlitsAndEdgesDoNot) {
    SimCanvas c(16, 2);
    const HBRUSH brush = c.gdi.CreateSolidBrush(RGB(0xFF, 0xFF, 0xFF));
    c.gdi.SelectObject(c.dc, brush);
    c.gdi.SelectObject(c.dc, c.gdi.GetStockObject(NULL_PEN));
    c.gdi.SetROP2(c.dc, R2_XORPEN);
    const std::uint32_t xored = kSentinelPixel ^ 0x00FFFFFFu, copied = 0x00FFFFFFu;
    c.gdi.Rectangle(c.dc, 0, 0, 3, 2);  // null pen: fills (0,0) and (1,0)
    const HRGN one = c.gdi.CreateRectRgn(2, 0, 3, 1);
    c.gdi.PaintRgn(c.dc, one);
    c.gdi.OffsetRgn(one, 1, 0);
    c.gdi.FillRgn(c.dc, one, brush);
    c.gdi.SetPixel(c.dc, 4, 0, RGB(0xFF, 0xFF, 0xFF));
    c.gdi.FillRect(c.dc, RECT{5, 0, 6, 1}, brush);
    c.gdi.PatBlt(c.dc, 6, 0, 1, 1, PATCOPY);
    const HDC other = c.gdi.CreateCompatibleDC(HDC{});
    const HBITMAP white = c.gdi.CreateDIBSection32(1, 1);
    c.gdi.BitmapPixels(white).bits[0] = copied;
    c.gdi.SelectObject(other, white);
    c.gdi.BitBlt(c.dc, 7, 0, 1, 1, other, 0, 0, SRCCOPY);
    for (std::int32_t x = 0; x < 5; ++x) EXPECT_EQ(c.Raw(x, 0), xored) << "x " << x;
    for (std::int32_t x = 5; x < 8; ++x) EXPECT_EQ(c.Raw(x, 0), copied) << "x " << x;
}

// ---------------------------------------------------------------------------------------------
// Styled pens

TEST(StyledPens, DotPatternRestartsPerLineToAndRunsOnThroughAPolyline) {
    constexpr COLORREF kRed = RGB(0xFF, 0, 0), kGreen = RGB(0, 0xFF, 0);
    SimCanvas c(21, 3);
    c.gdi.SelectObject(c.dc, c.gdi.CreatePen(PS_DOT, 1, kRed));
    c.gdi.SetBkColor(c.dc, kGreen);  // OPAQUE is the default: gaps take the background colour
    c.gdi.MoveToEx(c.dc, 0, 0, nullptr);
    c.gdi.LineTo(c.dc, 5, 0);
    c.gdi.LineTo(c.dc, 12, 0);
    c.gdi.LineTo(c.dc, 20, 0);
    const POINT chain[] = {{0, 1}, {5, 1}, {12, 1}, {20, 1}};
    c.gdi.Polyline(c.dc, chain);
    c.gdi.SetBkMode(c.dc, TRANSPARENT);
    const POINT again[] = {{0, 2}, {5, 2}, {12, 2}, {20, 2}};
    c.gdi.Polyline(c.dc, again);
    EXPECT_TRUE(SameRows(c.Map({{kRed, 'r'}, {kGreen, 'g'}}),
                         {"rrrggrrrgggrrrrgggrr.", "rrrgggrrrgggrrrgggrr.", "rrr...rrr...rrr...rr."}));
}

TEST(StyledPens, DashAndWideStyles) {
    constexpr COLORREF kRed = RGB(0xFF, 0, 0);
    SimCanvas c(30, 4);
    c.gdi.SetBkMode(c.dc, TRANSPARENT);
    c.gdi.SelectObject(c.dc, c.gdi.CreatePen(PS_DASH, 1, kRed));
    c.gdi.MoveToEx(c.dc, 0, 0, nullptr);
    c.gdi.LineTo(c.dc, 30, 0);
    c.gdi.SelectObject(c.dc, c.gdi.CreatePen(PS_DASHDOT, 0, kRed));
    c.gdi.MoveToEx(c.dc, 0, 1, nullptr);
    c.gdi.LineTo(c.dc, 30, 1);
    // A styled CreatePen wider than one pixel draws solid.
    c.gdi.SelectObject(c.dc, c.gdi.CreatePen(PS_DOT, 2, kRed));
    c.gdi.MoveToEx(c.dc, 1, 3, nullptr);
    c.gdi.LineTo(c.dc, 28, 3);
    const Rows rows = c.Map({{kRed, 'r'}});
    EXPECT_EQ(rows[0], "rrrrrrrrrrrrrrrrrr......rrrrrr");
    EXPECT_EQ(rows[1], "rrrrrrrrr......rrr......rrrrrr");
    EXPECT_EQ(rows[3].substr(1, 27), std::string(27, 'r'));
}

// Wide pens are a region: segment bodies plus CreatePen's round caps and joins, painted once.
Rows WideStroke(std::int32_t w, std::int32_t h, std::int32_t width, std::span<const POINT> points,
                int rop2 = R2_COPYPEN) {
    SimCanvas c(w, h);
    c.gdi.SelectObject(c.dc, c.gdi.CreatePen(PS_SOLID, width, kPen));
    c.gdi.SetROP2(c.dc, rop2);
    if (points.size() == 2) {
        c.gdi.MoveToEx(c.dc, points[0].x, points[0].y, nullptr);
        c.gdi.LineTo(c.dc, points[1].x, points[1].y);
    } else {
        c.gdi.Polyline(c.dc, points);
    }
    // Under XOR a pixel hit once shows as 'x'; one hit twice would be back to '.'.
    return c.Map({{kPen, '#'}, {sim::ToColorRef(sim::ToPixel(kPen) ^ kSentinelPixel), 'x'}});
}

TEST(WidePens, CapsJoinsAndSlopesOfTheStrokeRegion) {
    struct Case {
        const char* name;
        std::int32_t width;
        std::vector<POINT> points;
        Rows want;  // the canvas is as large as the picture
    };
    // clang-format off
    const Case cases[] = {
        // The body spans [3, 14) between the end points; each cap is a plus of 3 x 3 centred on
        // its end point, which adds x 14 and the middle row's ends.
        {"horizontal, round caps past both ends", 3, {{3, 3}, {14, 3}},
         {"..................", "..................", "...############...", "..##############..",
          "...############...", "..................", ".................."}},
        {"vertical", 3, {{2, 1}, {2, 5}}, {"..#..", ".###.", ".###.", ".###.", ".###.", ".###.", "..#..", "....."}},
        {"sloped: a polygon with rounded half widths", 2, {{2, 2}, {12, 6}},
         {"................", ".##.............", ".#####..........", "..######........", ".....######.....",
          ".......######...", "..........###...", "................", "................"}},
        {"zero length: a round dot", 5, {{5, 5}, {5, 5}},
         {"..........", "..........", "..........", "....###...", "...#####..", "...#####..", "...#####..",
          "....###...", "..........", ".........."}},
        {"round join", 4, {{2, 9}, {6, 3}, {10, 9}},
         {"............", ".....##.....", "....#####...", "....######..", "...#######..", "..#########.",
          "..##########", ".###########", "######.#####", "######..####", ".####....##.", "............"}},
    };
    // clang-format on
    for (const Case& c : cases) {
        const auto w = static_cast<std::int32_t>(c.want[0].size()), h = static_cast<std::int32_t>(c.want.size());
        EXPECT_TRUE(SameRows(WideStroke(w, h, c.width, c.points), c.want)) << c.name;
    }
}

TEST(WidePens, OverlappingPiecesAreHitOnceUnderXor) {
    // The chain's bodies, caps and the join overlap; the region paints each pixel once, so XOR
    // leaves no holes.
    const POINT vee[3] = {{2, 9}, {6, 3}, {10, 9}};
    const Rows copy = WideStroke(12, 12, 4, vee);
    Rows xored = WideStroke(12, 12, 4, vee, R2_XORPEN);
    for (std::string& row : xored)
        for (char& ch : row)
            if (ch == 'x') ch = '#';
    EXPECT_TRUE(SameRows(xored, copy));
}

// ---------------------------------------------------------------------------------------------
// Clipping, inversion

TEST(Clipping, DrawingStaysInsideTheSelectedRegionWhichIsACopy) {
    SimCanvas c(12, 12);
    const HRGN clip = c.gdi.CreateEllipticRgn(0, 0, 9, 9);
    EXPECT_EQ(c.gdi.SelectClipRgn(c.dc, clip), COMPLEXREGION);
    c.gdi.OffsetRgn(clip, 3, 3);  // moving the handle afterwards does not move the clip
    c.gdi.FillRect(c.dc, RECT{0, 0, 12, 12}, c.gdi.CreateSolidBrush(kBrush));
    EXPECT_TRUE(SameRows(c.Map({{kBrush, '#'}}),
                         {"..####......", ".######.....", "########....", "########....", "########....",
                          "########....", ".######.....", "..####......", "............", "............",
                          "............", "............"}));
    EXPECT_EQ(c.gdi.GetPixel(c.dc, 0, 0), CLR_INVALID);
    EXPECT_EQ(c.gdi.SetPixel(c.dc, 0, 0, 0), CLR_INVALID);
    EXPECT_EQ(c.gdi.SelectObject(c.dc, HGDIOBJ{clip.value}).value, static_cast<std::uint32_t>(COMPLEXREGION));
    EXPECT_EQ(c.gdi.SelectClipRgn(c.dc, HRGN{}), SIMPLEREGION);
    EXPECT_EQ(c.gdi.GetPixel(c.dc, 0, 0), RGB(0xCC, 0xCC, 0xCC));
}

TEST(InvertRect, InvertsEveryBitIgnoringTheRop2) {
    SimCanvas c(4, 4);
    c.gdi.SetROP2(c.dc, R2_BLACK);
    EXPECT_TRUE(c.gdi.InvertRect(c.dc, RECT{1, 1, 3, 3}));
    for (std::int32_t y = 0; y < 4; ++y)
        for (std::int32_t x = 0; x < 4; ++x) {
            const bool inside = x >= 1 && x < 3 && y >= 1 && y < 3;
            EXPECT_EQ(c.Raw(x, y), inside ? 0x33333333u : kSentinelPixel) << x << "," << y;
        }
}

TEST(FillRect, SystemColourBrushesSelectedBrushFallbackAndBlitExtents) {
    SimCanvas c(8, 3);
    EXPECT_EQ(c.gdi.FillRect(c.dc, RECT{0, 0, 1, 1}, HBRUSH{COLOR_BTNSHADOW + 1}), 1);
    EXPECT_EQ(c.At(0, 0), c.gdi.GetSysColor(COLOR_BTNSHADOW));
    c.gdi.SelectObject(c.dc, c.gdi.CreateSolidBrush(kBrush));
    c.gdi.FillRect(c.dc, RECT{1, 0, 2, 1}, HBRUSH{});
    EXPECT_EQ(c.At(1, 0), kBrush);
    // A swapped rect is a negative extent: {6,1,2,3} covers x 3..6, the anchor included.
    c.gdi.FillRect(c.dc, RECT{6, 1, 2, 3}, HBRUSH{});
    EXPECT_EQ(c.Map({{kBrush, '#'}})[2], "...####.");
    EXPECT_EQ(c.gdi.FrameRect(c.dc, RECT{3, 0, 3, 2}, HBRUSH{}), 0) << "empty rect";
}

TEST(FrameRect, TakesOnlyRealBrushesNeverSystemColourNumbers) {
    // FrameRect selects its brush as given: COLOR_x + 1 and a null handle are no brushes, so
    // nothing is painted and it returns 0 (FillRect would paint COLOR_BTNFACE here).
    SimCanvas c(40, 20);
    c.gdi.SelectObject(c.dc, c.gdi.CreateSolidBrush(kBrush));
    EXPECT_EQ(c.gdi.FrameRect(c.dc, RECT{2, 2, 30, 15}, HBRUSH{COLOR_BTNFACE + 1}), 0);
    EXPECT_EQ(c.gdi.FrameRect(c.dc, RECT{4, 4, 20, 10}, HBRUSH{}), 0);
    for (const std::string& row : c.Map({})) EXPECT_EQ(row, std::string(40, '.'));
    // A real brush paints the one-pixel ring inside the rect.
    EXPECT_EQ(c.gdi.FrameRect(c.dc, RECT{1, 1, 5, 4}, c.gdi.CreateSolidBrush(kPen)), 1);
    const Rows rows = c.Map({{kPen, '#'}});
    EXPECT_EQ(rows[1].substr(0, 6), ".####.");
    EXPECT_EQ(rows[2].substr(0, 6), ".#..#.");
    EXPECT_EQ(rows[3].substr(0, 6), ".####.");
    EXPECT_EQ(rows[4].substr(0, 6), "......");
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
            r = {std::min(r.left, x), std::min(r.top, y), std::max(r.right, x + 1), std::max(r.bottom, y + 1)};
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
    ASSERT_GT(ext.cx, 0);
    TEXTMETRIC tm{};
    ASSERT_TRUE(c.gdi.GetTextMetrics(c.dc, &tm));
    EXPECT_EQ(ext.cy, tm.tmHeight);

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
    EXPECT_FALSE(c.gdi.GetTextFace(c.dc).empty());
}

}  // namespace
}  // namespace korvex::platform
