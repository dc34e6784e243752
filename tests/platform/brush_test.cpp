// Hatch brushes and alpha blending of the software device, against the documented 8x8 hatch
// patterns and the blend rule worked out by hand (tests/gdi/hatch.txt and alpha.txt compare
// whole pictures with the real GDI).

#include <gtest/gtest.h>

#include <string>

#include "support/shot.hpp"

namespace korvex::platform {
namespace {

using test::kSentinelPixel;
using test::Rows;
using test::SameRows;
using SimCanvas = test::Canvas;

constexpr COLORREF kLine = RGB(0x10, 0x20, 0xC0);
constexpr COLORREF kGap = RGB(0xF0, 0xE0, 0x30);

TEST(HatchBrush, EveryStyleDrawsItsEightByEightPattern) {
    const struct {
        int style;
        Rows rows;
    } cases[] = {
        {HS_HORIZONTAL,
         {"--------", "--------", "--------", "########", "--------", "--------", "--------",
          "--------"}},
        {HS_VERTICAL,
         {"----#---", "----#---", "----#---", "----#---", "----#---", "----#---", "----#---",
          "----#---"}},
        {HS_FDIAGONAL,
         {"#-------", "-#------", "--#-----", "---#----", "----#---", "-----#--", "------#-",
          "-------#"}},
        {HS_BDIAGONAL,
         {"-------#", "------#-", "-----#--", "----#---", "---#----", "--#-----", "-#------",
          "#-------"}},
        {HS_CROSS,
         {"----#---", "----#---", "----#---", "########", "----#---", "----#---", "----#---",
          "----#---"}},
        {HS_DIAGCROSS,
         {"#------#", "-#----#-", "--#--#--", "---##---", "---##---", "--#--#--", "-#----#-",
          "#------#"}},
    };
    for (const auto& c : cases) {
        SimCanvas canvas(8, 8);
        canvas.gdi.SetBkColor(canvas.dc, kGap);
        const HBRUSH brush = canvas.gdi.CreateHatchBrush(c.style, kLine);
        ASSERT_TRUE(brush) << c.style;
        EXPECT_EQ(canvas.gdi.FillRect(canvas.dc, RECT{0, 0, 8, 8}, brush), 1);
        EXPECT_TRUE(SameRows(canvas.Map({{kLine, '#'}, {kGap, '-'}}), c.rows)) << c.style;
    }
}

TEST(HatchBrush, TransparentBackgroundKeepsTheGapsAndTheOriginMovesThePattern) {
    SimCanvas c(10, 3);
    const HBRUSH vertical = c.gdi.CreateHatchBrush(HS_VERTICAL, kLine);
    c.gdi.SetBkMode(c.dc, TRANSPARENT);
    c.gdi.FillRect(c.dc, RECT{0, 0, 10, 1}, vertical);
    // Pattern column 4 lies at device x = origin + 4 (mod 8).
    POINT previous{-1, -1};
    EXPECT_TRUE(c.gdi.SetBrushOrgEx(c.dc, 3, 0, &previous));
    EXPECT_EQ(previous, (POINT{0, 0}));
    c.gdi.FillRect(c.dc, RECT{0, 1, 10, 2}, vertical);
    c.gdi.SetBrushOrgEx(c.dc, -7, 0, nullptr);
    c.gdi.FillRect(c.dc, RECT{0, 2, 10, 3}, vertical);
    EXPECT_TRUE(SameRows(c.Map({{kLine, '#'}}), {"....#.....", ".......#..", ".....#...."}));
}

TEST(HatchBrush, ShapesFillThroughTheRop2AndPatBltThroughItsRasterCode) {
    SimCanvas c(8, 4);
    c.Fill(0x00FFFFFF);
    const HBRUSH horizontal = c.gdi.CreateHatchBrush(HS_HORIZONTAL, RGB(0xFF, 0, 0));
    c.gdi.SetBkColor(c.dc, RGB(0, 0, 0xFF));
    c.gdi.SelectObject(c.dc, horizontal);
    c.gdi.SelectObject(c.dc, c.gdi.GetStockObject(NULL_PEN));
    c.gdi.SetROP2(c.dc, R2_XORPEN);
    // A null pen leaves the right column and bottom row out; rows 2 and 3 are the gaps.
    c.gdi.Rectangle(c.dc, 0, 2, 8, 5);
    EXPECT_EQ(c.At(0, 2), RGB(0xFF, 0xFF, 0x00)) << "white XOR blue background";
    EXPECT_EQ(c.At(7, 2), RGB(0xFF, 0xFF, 0xFF)) << "outside the interior";
    // PatBlt ignores the ROP2: PATCOPY writes the line and the background as they are.
    c.gdi.PatBlt(c.dc, 0, 0, 8, 4, PATCOPY);
    EXPECT_EQ(c.At(5, 3), RGB(0xFF, 0, 0));
    EXPECT_EQ(c.At(5, 1), RGB(0, 0, 0xFF));
}

TEST(HatchBrush, UnknownStylesAreRefused) {
    sim::SimGdi gdi;
    EXPECT_FALSE(gdi.CreateHatchBrush(-1, 0));
    EXPECT_FALSE(gdi.CreateHatchBrush(HS_DIAGCROSS + 1, 0));
}

// A one-row source bitmap of premultiplied words in a DC of its own.
struct Source {
    Source(sim::SimGdi& gdi, std::initializer_list<std::uint32_t> words) : gdi_(gdi) {
        dc = gdi.CreateCompatibleDC(HDC{});
        bitmap = gdi.CreateDIBSection32(static_cast<std::int32_t>(words.size()), 1);
        gdi.SelectObject(dc, bitmap);
        std::copy(words.begin(), words.end(), gdi.BitmapPixels(bitmap).bits);
    }
    sim::SimGdi& gdi_;
    HDC dc;
    HBITMAP bitmap;
};

TEST(AlphaBlend, PremultipliedSourceOverTheDestinationRoundsToNearest) {
    SimCanvas c(5, 1);
    for (std::int32_t x = 0; x < 5; ++x) c.view.bits[x] = 0x00808080;
    c.view.bits[3] = 0x007F7F7F;
    // alpha 0, 128, 255, 127, and 1.
    const Source s(c.gdi, {0x00000000, 0x80804000, 0xFF112233, 0x7F7F001B, 0x01010000});
    const BLENDFUNCTION blend{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    EXPECT_TRUE(c.gdi.AlphaBlend(c.dc, 0, 0, 5, 1, s.dc, 0, 0, 5, 1, blend));
    // Each channel: s + d (255 - a) / 255, to nearest.
    EXPECT_EQ(c.Raw(0, 0) & 0xFFFFFF, 0x808080u) << "alpha 0 leaves the destination";
    EXPECT_EQ(c.Raw(1, 0) & 0xFFFFFF, 0xC08040u) << "128 + 128 * 127 / 255 = 128 + 63.75";
    EXPECT_EQ(c.Raw(2, 0) & 0xFFFFFF, 0x112233u) << "alpha 255 replaces it";
    EXPECT_EQ(c.Raw(3, 0) & 0xFFFFFF, 0xBF405Bu) << "127 * 128 / 255 = 63.75 rounds up";
    EXPECT_EQ(c.Raw(4, 0) & 0xFFFFFF, 0x807F7Fu) << "1 + 128 * 254 / 255 = 1 + 127.498";
}

TEST(AlphaBlend, ConstantAlphaScalesTheSourceFirstAndStretchingRepeatsPixels) {
    SimCanvas c(4, 1);
    for (std::int32_t x = 0; x < 4; ++x) c.view.bits[x] = 0x00646464;  // 100
    const Source s(c.gdi, {0xFF202020, 0x00000000});
    EXPECT_TRUE(c.gdi.AlphaBlend(c.dc, 0, 0, 4, 1, s.dc, 0, 0, 2, 1,
                                 BLENDFUNCTION{AC_SRC_OVER, 0, 128, AC_SRC_ALPHA}));
    // Alpha 255 * 128 / 255 = 128, colour 32 * 128 / 255 = 16.06: 16 + 100 * 127 / 255 = 16 + 49.8.
    EXPECT_EQ(c.Raw(0, 0) & 0xFFFFFF, 0x424242u);
    EXPECT_EQ(c.Raw(1, 0) & 0xFFFFFF, 0x424242u);
    EXPECT_EQ(c.Raw(2, 0) & 0xFFFFFF, 0x646464u);
    EXPECT_EQ(c.Raw(3, 0) & 0xFFFFFF, 0x646464u);
}

TEST(AlphaBlend, RefusesWhatTheRealCallRefuses) {
    SimCanvas c(8, 8);
    const Source s(c.gdi, {0xFF000000, 0xFF000000});
    const BLENDFUNCTION blend{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    EXPECT_FALSE(c.gdi.AlphaBlend(c.dc, 0, 0, -2, 1, s.dc, 0, 0, 2, 1, blend));
    EXPECT_FALSE(c.gdi.AlphaBlend(c.dc, 0, 0, 2, 1, s.dc, 1, 0, 2, 1, blend)) << "past the source";
    EXPECT_FALSE(c.gdi.AlphaBlend(c.dc, 0, 0, 2, 1, s.dc, -1, 0, 2, 1, blend));
    EXPECT_FALSE(c.gdi.AlphaBlend(c.dc, 0, 0, 4, 4, c.dc, 2, 2, 4, 4, blend)) << "overlapping";
    EXPECT_FALSE(c.gdi.AlphaBlend(c.dc, 0, 0, 2, 1, s.dc, 0, 0, 2, 1,
                                  BLENDFUNCTION{1, 0, 255, AC_SRC_ALPHA}))
        << "only AC_SRC_OVER";
    EXPECT_EQ(c.Raw(0, 0), kSentinelPixel);
}

}  // namespace
}  // namespace korvex::platform
