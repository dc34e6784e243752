// Drawing calls with sizes and coordinates no control would pass: each must finish quickly with
// bounded memory, write nothing outside the bitmap or the clip (the sanitizer build checks the
// arithmetic), and show in the visible part what a moderately sized call of the same shape shows.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "driver/gdi_script.hpp"
#include "support/shot.hpp"

namespace korvex::platform {
namespace {

using test::kSentinelPixel;
using SimCanvas = test::Canvas;

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHuge = 10'000'000;
constexpr COLORREF kPen = RGB(0xC0, 0x10, 0x20);
constexpr COLORREF kBrush = RGB(0x33, 0xAA, 0xFF);

std::vector<std::uint32_t> Pixels(const SimCanvas& c) {
    return {c.view.bits, c.view.bits + c.view.width * c.view.height};
}

// Round shapes are clipped before their outline is built; which of its points are kept depends
// on the window, so each shape is drawn whole on a big canvas and again, moved, on small canvases
// that see a part of it, and the parts must agree pixel for pixel.
struct RoundCase {
    const char* name;
    bool ellipse;
    RECT box;
    std::int32_t ew, eh;
    int style, width, rop2;
    bool brush;
};

void DrawRound(SimCanvas& c, const RoundCase& rc, std::int32_t dx, std::int32_t dy) {
    c.gdi.SelectObject(c.dc, c.gdi.CreatePen(rc.style, rc.width, kPen));
    c.gdi.SelectObject(
        c.dc, rc.brush ? c.gdi.CreateSolidBrush(kBrush) : c.gdi.GetStockObject(NULL_BRUSH));
    c.gdi.SetROP2(c.dc, rc.rop2);
    c.gdi.SetBkColor(c.dc, RGB(0x10, 0xF0, 0x10));
    const RECT b{rc.box.left + dx, rc.box.top + dy, rc.box.right + dx, rc.box.bottom + dy};
    if (rc.ellipse)
        EXPECT_TRUE(c.gdi.Ellipse(c.dc, b.left, b.top, b.right, b.bottom));
    else
        EXPECT_TRUE(c.gdi.RoundRect(c.dc, b.left, b.top, b.right, b.bottom, rc.ew, rc.eh));
}

TEST(HostileDrawing, RoundShapesShowTheSamePixelsThroughEveryWindow) {
    const RoundCase cases[] = {
        {"thin ellipse", true, {20, 15, 300, 190}, 0, 0, PS_SOLID, 1, R2_COPYPEN, true},
        {"dashed ellipse, opaque gaps",
         true,
         {20, 15, 300, 190},
         0,
         0,
         PS_DASHDOT,
         1,
         R2_COPYPEN,
         false},
        {"xor dotted round rect", false, {10, 10, 310, 200}, 90, 60, PS_DOT, 1, R2_XORPEN, true},
        {"wide pen ellipse", true, {30, 25, 290, 180}, 0, 0, PS_SOLID, 9, R2_COPYPEN, true},
        {"wide xor round rect", false, {25, 20, 300, 190}, 120, 40, PS_SOLID, 6, R2_XORPEN, true},
        {"inside frame ellipse",
         true,
         {12, 12, 200, 150},
         0,
         0,
         PS_INSIDEFRAME,
         11,
         R2_COPYPEN,
         true},
        {"flat ellipse", true, {5, 90, 315, 97}, 0, 0, PS_SOLID, 1, R2_NOTXORPEN, true},
    };
    constexpr std::int32_t kW = 44, kH = 36;
    const POINT windows[] = {{0, 0},    {10, 60},  {140, 5}, {270, 160},
                             {20, 150}, {150, 80}, {276, 88}};
    for (const RoundCase& rc : cases) {
        SimCanvas whole(320, 210);
        DrawRound(whole, rc, 0, 0);
        for (const POINT w : windows) {
            SimCanvas part(kW, kH);
            DrawRound(part, rc, -w.x, -w.y);
            for (std::int32_t y = 0; y < kH; ++y)
                for (std::int32_t x = 0; x < kW; ++x)
                    ASSERT_EQ(part.Raw(x, y), whole.Raw(x + w.x, y + w.y))
                        << rc.name << ", window at " << w.x << "," << w.y << ", pixel " << x << ","
                        << y;
        }
    }
}

// One hostile call per case, checked against what a moderately sized equivalent draws on the
// same canvas (or, where noted, against the picture it must give).
struct HostileCase {
    const char* name;
    std::function<void(SimCanvas&)> hostile;
    std::function<void(SimCanvas&)> moderate;
};

void Prepare(SimCanvas& c, int penWidth) {
    c.gdi.SelectObject(c.dc, c.gdi.CreatePen(PS_SOLID, penWidth, kPen));
    c.gdi.SelectObject(c.dc, c.gdi.CreateSolidBrush(kBrush));
    // A pattern to blit from, different in every pixel.
    for (std::int32_t y = 0; y < c.view.height; ++y)
        for (std::int32_t x = 0; x < c.view.width; ++x)
            c.view.bits[y * c.view.width + x] =
                static_cast<std::uint32_t>(0x10101 * x + 0x1F00 * y);
}

TEST(HostileDrawing, HugeCallsDrawWhatAModerateOneDraws) {
    const HostileCase cases[] = {
        {"ellipse of 10,000,000 pixels, its top on the canvas",
         [](SimCanvas& c) {
             Prepare(c, 1);
             EXPECT_TRUE(c.gdi.Ellipse(c.dc, 50 - kHuge / 2, 30, 50 + kHuge / 2, 30 + kHuge));
         },
         [](SimCanvas& c) {
             Prepare(c, 1);
             c.gdi.Ellipse(c.dc, 50 - 5000, 30, 50 + 5000, 30 + 10000);
         }},
        {"round rect of 10,000,000 pixels with a huge corner, its left side on the canvas",
         [](SimCanvas& c) {
             Prepare(c, 1);
             EXPECT_TRUE(c.gdi.RoundRect(c.dc, 40, -kHuge, 40 + kHuge, kHuge, kHuge / 2, kHuge));
         },
         [](SimCanvas& c) {
             Prepare(c, 1);
             c.gdi.RoundRect(c.dc, 40, -20000, 40 + 20000, 20000, 10000, 20000);
         }},
        {"pen 10,000,000 pixels wide",
         [](SimCanvas& c) {
             Prepare(c, kHuge);
             c.gdi.MoveToEx(c.dc, -20, 50, nullptr);
             EXPECT_TRUE(c.gdi.LineTo(c.dc, 130, 60));
             const POINT zigzag[] = {{-kHuge, 0}, {kHuge, 90}, {-kHuge, 99}, {3, kHuge}};
             EXPECT_TRUE(c.gdi.Polyline(c.dc, zigzag));
         },
         [](SimCanvas& c) {
             Prepare(c, 400);
             c.gdi.MoveToEx(c.dc, -20, 50, nullptr);
             c.gdi.LineTo(c.dc, 130, 60);
         }},
        {"ellipse with a pen 10,000,000 pixels wide",
         [](SimCanvas& c) {
             Prepare(c, kHuge);
             EXPECT_TRUE(c.gdi.Ellipse(c.dc, 10, 10, 90, 90));
         },
         [](SimCanvas& c) {
             Prepare(c, 400);
             c.gdi.Ellipse(c.dc, 10, 10, 90, 90);
         }},
        {"one source pixel stretched over 2^31",
         [](SimCanvas& c) {
             Prepare(c, 1);
             EXPECT_TRUE(c.gdi.StretchBlt(c.dc, 0, 0, kMax, kMax, c.dc, 7, 9, 1, 1, SRCCOPY));
         },
         [](SimCanvas& c) {
             Prepare(c, 1);
             c.gdi.StretchBlt(c.dc, 0, 0, 1000, 1000, c.dc, 7, 9, 1, 1, SRCCOPY);
         }},
        {"2^31 source pixels shrunk into one, mirrored",
         [](SimCanvas& c) {
             Prepare(c, 1);
             c.gdi.SetStretchBltMode(c.dc, WHITEONBLACK);
             EXPECT_TRUE(c.gdi.StretchBlt(c.dc, 3, 3, 1, 1, c.dc, 0, 0, kMax, kMax, SRCCOPY));
             EXPECT_TRUE(
                 c.gdi.StretchBlt(c.dc, 60, 60, -2, -2, c.dc, 99, 99, kMin, kMin, SRCINVERT));
         },
         [](SimCanvas& c) {
             Prepare(c, 1);
             c.gdi.SetStretchBltMode(c.dc, WHITEONBLACK);
             // A destination of one drops the last source pixel, so 101 covers the 100.
             c.gdi.StretchBlt(c.dc, 3, 3, 1, 1, c.dc, 0, 0, 101, 101, SRCCOPY);
             // The first of the two destination pixels folds the whole bitmap, the second
             // none of it.
             c.gdi.StretchBlt(c.dc, 60, 60, -2, -2, c.dc, 99, 99, -200, -200, SRCINVERT);
         }},
        {"elliptic and round regions beyond the limits fail, a huge square corner works",
         [](SimCanvas& c) {
             Prepare(c, 1);
             EXPECT_FALSE(c.gdi.CreateEllipticRgn(0, 0, kHuge, kHuge));
             EXPECT_FALSE(c.gdi.CreateRoundRectRgn(kMin, kMin, kMax, kMax, kMax, kMax));
             const HRGN r = c.gdi.CreateRoundRectRgn(-kHuge, 20, 70, kMax, 30, 30);
             ASSERT_TRUE(r);
             RECT box;
             c.gdi.GetRgnBox(r, &box);
             EXPECT_EQ(box, (RECT{-kHuge, 20, 69, (1 << 27) - 1})) << "clamped to 2^27";
             c.gdi.FillRgn(c.dc, r, c.gdi.CreateSolidBrush(kBrush));
         },
         [](SimCanvas& c) {
             Prepare(c, 1);
             c.gdi.FillRgn(c.dc, c.gdi.CreateRoundRectRgn(-500, 20, 70, 900, 30, 30),
                           c.gdi.CreateSolidBrush(kBrush));
         }},
        {"polygon regions 2^31 tall: sloped edges fail, straight ones are one band",
         [](SimCanvas& c) {
             Prepare(c, 1);
             const POINT slope[] = {{0, kMin}, {kMax, kMax}, {0, kMax}};
             EXPECT_FALSE(c.gdi.CreatePolygonRgn(slope, ALTERNATE));
             const POINT column[] = {{10, kMin}, {40, kMin}, {40, kMax}, {10, kMax}};
             const HRGN r = c.gdi.CreatePolygonRgn(column, WINDING);
             ASSERT_TRUE(r);
             c.gdi.FillRgn(c.dc, r, c.gdi.CreateSolidBrush(kBrush));
         },
         [](SimCanvas& c) {
             Prepare(c, 1);
             const RECT column{10, 0, 40, 100};
             c.gdi.FillRect(c.dc, column, c.gdi.CreateSolidBrush(kBrush));
         }},
        {"regions moved past the limit stay where they were",
         [](SimCanvas& c) {
             Prepare(c, 1);
             const HRGN r = c.gdi.CreateRectRgn(5, 5, 50, 50);
             EXPECT_EQ(c.gdi.OffsetRgn(r, kMax, kMin), RGN_ERROR);
             EXPECT_EQ(c.gdi.OffsetRgn(r, 1 << 27, 0), RGN_ERROR);
             const HRGN far = c.gdi.CreateRectRgn(kMax, kMin, 1000, -1000);
             EXPECT_EQ(c.gdi.CombineRgn(r, r, far, RGN_OR), COMPLEXREGION);
             c.gdi.FillRgn(c.dc, r, c.gdi.CreateSolidBrush(kBrush));
             EXPECT_TRUE(c.gdi.FrameRgn(c.dc, r, c.gdi.CreateSolidBrush(kPen), kMax, kMin));
         },
         [](SimCanvas& c) {
             Prepare(c, 1);
             c.gdi.FillRgn(c.dc, c.gdi.CreateRectRgn(5, 5, 50, 50), c.gdi.CreateSolidBrush(kPen));
         }},
        {"a curve wider than 2^24 fails untouched, a huge box with small corners draws",
         [](SimCanvas& c) {
             Prepare(c, 1);
             EXPECT_FALSE(c.gdi.Ellipse(c.dc, -(1 << 25), -(1 << 25), 1 << 25, 1 << 25));
             EXPECT_FALSE(c.gdi.RoundRect(c.dc, 0, 0, 1 << 26, 90, 1 << 26, 40));
             EXPECT_TRUE(c.gdi.RoundRect(c.dc, 10, 10, 1 << 26, 1 << 26, 40, 40));
         },
         [](SimCanvas& c) {
             Prepare(c, 1);
             c.gdi.RoundRect(c.dc, 10, 10, 200, 200, 40, 40);
         }},
        {"a text of a million characters shows its start, and right-aligned its end",
         [](SimCanvas& c) {
             Prepare(c, 1);
             const std::string many(1'000'000, 'W');
             EXPECT_TRUE(c.gdi.TextOut(c.dc, 3, 5, "Ab" + many));
             c.gdi.SetTextAlign(c.dc, TA_RIGHT);
             EXPECT_TRUE(c.gdi.TextOut(c.dc, 97, 40, many + "yz"));
         },
         [](SimCanvas& c) {
             Prepare(c, 1);
             const std::string enough(40, 'W');
             c.gdi.TextOut(c.dc, 3, 5, "Ab" + enough);
             c.gdi.SetTextAlign(c.dc, TA_RIGHT);
             c.gdi.TextOut(c.dc, 97, 40, enough + "yz");
         }},
    };
    for (const HostileCase& hc : cases) {
        SimCanvas hostile(100, 100), moderate(100, 100);
        hc.hostile(hostile);
        hc.moderate(moderate);
        EXPECT_EQ(Pixels(hostile), Pixels(moderate)) << hc.name;
    }
}

// The clipped huge ellipse is not merely equal to a smaller one: its top row is the pen across
// the canvas and everything below it the brush.
TEST(HostileDrawing, HugeEllipseTopIsPenAboveBrush) {
    SimCanvas c(100, 100);
    Prepare(c, 1);
    c.Fill(kSentinelPixel);
    ASSERT_TRUE(c.gdi.Ellipse(c.dc, 50 - kHuge / 2, 30, 50 + kHuge / 2, 30 + kHuge));
    for (std::int32_t y = 0; y < 100; ++y)
        for (std::int32_t x = 0; x < 100; x += 33) {
            const std::uint32_t want =
                y < 30 ? kSentinelPixel : test::ToPixel(y == 30 ? kPen : kBrush);
            ASSERT_EQ(c.Raw(x, y) & 0xFFFFFFu, want & 0xFFFFFFu) << x << "," << y;
        }
}

// Every drawing call with coordinates at the 32-bit limits, through a clip in the middle of the
// canvas: nothing outside the clip changes and nothing overflows.
TEST(HostileDrawing, LimitCoordinatesInEveryCallStayInsideTheClip) {
    const std::int32_t v[] = {kMin, kMin + 1, -1, 0, 1, kMax - 1, kMax};
    SimCanvas c(64, 64);
    const HRGN clip = c.gdi.CreateRectRgn(16, 16, 48, 48);
    const HBRUSH brush = c.gdi.CreateSolidBrush(kBrush);
    const HRGN region = c.gdi.CreateRectRgn(kMin, kMin, kMax, kMax);
    const HPEN pens[] = {c.gdi.CreatePen(PS_DASH, 1, kPen), c.gdi.CreatePen(PS_SOLID, 5, kPen),
                         c.gdi.CreatePen(PS_INSIDEFRAME, kMax, kPen),
                         c.gdi.CreatePen(PS_SOLID, kMin, kPen)};
    for (const HPEN pen : pens) {
        c.Fill(kSentinelPixel);
        c.gdi.SelectClipRgn(c.dc, clip);
        c.gdi.SelectObject(c.dc, pen);
        c.gdi.SelectObject(c.dc, brush);
        for (const std::int32_t a : v)
            for (const std::int32_t b : v) {
                const POINT pts[] = {{a, b}, {b, a}, {a, a}, {b, 7}};
                c.gdi.Polygon(c.dc, pts);
                c.gdi.Polyline(c.dc, pts);
                c.gdi.Rectangle(c.dc, a, b, b, a);
                c.gdi.Ellipse(c.dc, a, 3, b, 60);
                c.gdi.RoundRect(c.dc, a, b, 30, 30, b, a);
                const RECT r{a, b, b, a};
                c.gdi.FillRect(c.dc, r, brush);
                c.gdi.FrameRect(c.dc, r, brush);
                c.gdi.InvertRect(c.dc, r);
                c.gdi.PatBlt(c.dc, a, b, b, a, PATINVERT);
                for (const unsigned flags :
                     {BF_RECT | BF_MIDDLE | BF_ADJUST, BF_DIAGONAL | BF_TOP | BF_RIGHT | BF_MIDDLE,
                      BF_DIAGONAL | BF_BOTTOM | BF_MIDDLE | BF_ADJUST}) {
                    RECT e = r;
                    c.gdi.DrawEdge(c.dc, &e, EDGE_SUNKEN, flags);
                }
                c.gdi.BitBlt(c.dc, a, b, b, a, c.dc, b, a, SRCCOPY);
                c.gdi.StretchBlt(c.dc, a, b, 9, a, c.dc, b, 3, a, b, SRCINVERT);
                c.gdi.StretchBlt(c.dc, 20, 20, 9, 9, c.dc, a, b, b, a, SRCCOPY);
                c.gdi.SetPixel(c.dc, a, b, kPen);
                c.gdi.TextOut(c.dc, a, b, "Wg");
                const HRGN e = c.gdi.CreateEllipticRgn(a, b, b, a);
                if (e) c.gdi.PaintRgn(c.dc, e);
                const HRGN rr = c.gdi.CreateRoundRectRgn(a, b, 40, 40, a, b);
                if (rr) c.gdi.FillRgn(c.dc, rr, brush);
                const HRGN poly = c.gdi.CreatePolygonRgn(pts, WINDING);
                if (poly) {
                    c.gdi.CombineRgn(poly, poly, region, RGN_XOR);
                    c.gdi.OffsetRgn(poly, a, b);
                    c.gdi.FrameRgn(c.dc, poly, brush, a, b);
                    c.gdi.DeleteObject(poly);
                }
                for (const HRGN h : {e, rr})
                    if (h) c.gdi.DeleteObject(h);
            }
        c.gdi.SelectClipRgn(c.dc, HRGN{});
        for (std::int32_t y = 0; y < 64; ++y)
            for (std::int32_t x = 0; x < 64; ++x) {
                if (x >= 16 && x < 48 && y >= 16 && y < 48) continue;
                ASSERT_EQ(c.Raw(x, y), kSentinelPixel) << "outside the clip at " << x << "," << y;
            }
    }
}

}  // namespace
}  // namespace korvex::platform
