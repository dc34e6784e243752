// Device contexts, objects and handles of the software device: defaults of a new DC, what
// SelectObject hands back, deferred deletion, bitmap ownership, per-instance state.

#include <gtest/gtest.h>

#include <array>

#include "platform/sim/sim_gdi.hpp"

namespace korvex::platform {
namespace {

using sim::SimGdi;

// The state defaults of a new DC are the previous values its setters hand back (below).
TEST(SimGdiObjects, NewDcHasStockObjectsOfTheWin32IndicesOnly) {
    SimGdi gdi;
    const HDC dc = gdi.CreateCompatibleDC(HDC{});
    ASSERT_TRUE(dc);
    EXPECT_EQ(gdi.GetCurrentObject(dc, OBJ_PEN), gdi.GetStockObject(BLACK_PEN));
    EXPECT_EQ(gdi.GetCurrentObject(dc, OBJ_BRUSH), gdi.GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(gdi.GetCurrentObject(dc, OBJ_FONT), gdi.GetStockObject(SYSTEM_FONT));
    const PixelView one = gdi.BitmapPixels(gdi.GetCurrentObject(dc, OBJ_BITMAP));
    EXPECT_EQ((std::array{one.width, one.height}), (std::array{1, 1}));
    for (int index : {WHITE_BRUSH, LTGRAY_BRUSH, GRAY_BRUSH, DKGRAY_BRUSH, BLACK_BRUSH, NULL_BRUSH,
                      WHITE_PEN, BLACK_PEN, NULL_PEN, SYSTEM_FONT, DEFAULT_GUI_FONT})
        EXPECT_TRUE(gdi.GetStockObject(index)) << index;
    EXPECT_FALSE(gdi.GetStockObject(9));
    EXPECT_FALSE(gdi.GetStockObject(-1));
    EXPECT_TRUE(gdi.DeleteObject(gdi.GetStockObject(BLACK_PEN)));
    EXPECT_TRUE(gdi.GetStockObject(BLACK_PEN)) << "stock objects survive DeleteObject";
}

TEST(SimGdiObjects, SelectObjectReturnsThePreviousObjectOfItsKind) {
    SimGdi gdi;
    const HDC dc = gdi.CreateCompatibleDC(HDC{});
    const HPEN pen = gdi.CreatePen(PS_DASH, 1, RGB(1, 2, 3));
    const HBRUSH brush = gdi.CreateSolidBrush(RGB(4, 5, 6));
    EXPECT_EQ(gdi.SelectObject(dc, pen), gdi.GetStockObject(BLACK_PEN));
    EXPECT_EQ(gdi.SelectObject(dc, brush), gdi.GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(gdi.SelectObject(dc, gdi.GetStockObject(NULL_PEN)), pen);
    EXPECT_EQ(gdi.GetCurrentObject(dc, OBJ_BRUSH), brush);
    EXPECT_FALSE(gdi.SelectObject(dc, HGDIOBJ{12345}));
    EXPECT_FALSE(gdi.SelectObject(HDC{}, brush));
    // Selecting a region sets the clip and answers with the region's type.
    const HRGN rgn = gdi.CreateRectRgn(0, 0, 1, 1);
    const HBITMAP bm = gdi.CreateDIBSection32(4, 4);
    gdi.SelectObject(dc, bm);
    EXPECT_EQ(gdi.SelectObject(dc, rgn).value, static_cast<std::uint32_t>(SIMPLEREGION));
    EXPECT_EQ(gdi.GetPixel(dc, 1, 1), CLR_INVALID);
}

TEST(SimGdiObjects, DeletingASelectedObjectWaitsUntilItIsDeselected) {
    SimGdi gdi;
    const HDC dc = gdi.CreateCompatibleDC(HDC{});
    const HBITMAP bm = gdi.CreateDIBSection32(3, 1);
    gdi.SelectObject(dc, bm);
    const HPEN pen = gdi.CreatePen(PS_SOLID, 1, RGB(0, 0, 255));
    gdi.SelectObject(dc, pen);
    EXPECT_TRUE(gdi.DeleteObject(pen));
    gdi.MoveToEx(dc, 0, 0, nullptr);
    gdi.LineTo(dc, 2, 0);
    EXPECT_EQ(gdi.GetPixel(dc, 1, 0), RGB(0, 0, 255)) << "still drawing with the deleted pen";
    EXPECT_EQ(gdi.SelectObject(dc, gdi.GetStockObject(BLACK_PEN)), pen);
    EXPECT_FALSE(gdi.SelectObject(dc, pen)) << "gone once deselected";
    EXPECT_FALSE(gdi.DeleteObject(HGDIOBJ{dc.value})) << "DCs go through DeleteDC";
    EXPECT_TRUE(gdi.DeleteDC(dc));
    EXPECT_FALSE(gdi.DeleteDC(dc));
}

TEST(SimGdiObjects, BitmapsAreZeroedAndLiveInOneDcAtATime) {
    SimGdi gdi;
    const HBITMAP bm = gdi.CreateDIBSection32(5, 3);
    const PixelView v = gdi.BitmapPixels(bm);
    ASSERT_EQ(v.width, 5);
    ASSERT_EQ(v.height, 3);
    for (int i = 0; i < 15; ++i) EXPECT_EQ(v.bits[i], 0u);
    EXPECT_FALSE(gdi.CreateDIBSection32(0, 3));
    EXPECT_FALSE(gdi.CreateDIBSection32(4, -1));
    const HDC a = gdi.CreateCompatibleDC(HDC{}), b = gdi.CreateCompatibleDC(HDC{});
    EXPECT_TRUE(gdi.SelectObject(a, bm));
    EXPECT_FALSE(gdi.SelectObject(b, bm));
    gdi.DeleteDC(a);
    EXPECT_TRUE(gdi.SelectObject(b, bm)) << "free again once its DC is gone";
}

TEST(SimGdiObjects, StateSettersReturnThePreviousValueAndRejectNonsense) {
    SimGdi gdi;
    const HDC dc = gdi.CreateCompatibleDC(HDC{});
    EXPECT_EQ(gdi.SetROP2(dc, R2_XORPEN), R2_COPYPEN);
    EXPECT_EQ(gdi.SetROP2(dc, 17), 0);
    EXPECT_EQ(gdi.GetROP2(dc), R2_XORPEN);
    EXPECT_EQ(gdi.SetBkMode(dc, TRANSPARENT), OPAQUE);
    EXPECT_EQ(gdi.SetBkMode(dc, 7), 0);
    EXPECT_EQ(gdi.SetBkColor(dc, RGB(1, 2, 3)), RGB(255, 255, 255));
    EXPECT_EQ(gdi.SetTextColor(dc, RGB(4, 5, 6)), RGB(0, 0, 0));
    EXPECT_EQ(gdi.SetTextAlign(dc, TA_RIGHT), TA_LEFT | TA_TOP);
    EXPECT_EQ(gdi.SetStretchBltMode(dc, COLORONCOLOR), BLACKONWHITE);
    EXPECT_EQ(gdi.SetStretchBltMode(dc, 0), 0);
    POINT old{1, 1};
    gdi.MoveToEx(dc, 3, 4, &old);
    EXPECT_EQ(old, (POINT{0, 0}));
    gdi.MoveToEx(dc, 5, 6, &old);
    EXPECT_EQ(old, (POINT{3, 4}));
    gdi.LineTo(dc, 9, 9);
    POINT cp{};
    gdi.GetCurrentPositionEx(dc, &cp);
    EXPECT_EQ(cp, (POINT{9, 9}));
    EXPECT_EQ(gdi.GetROP2(HDC{}), 0);
    EXPECT_EQ(gdi.GetBkColor(HDC{}), CLR_INVALID);
}

TEST(SimGdiObjects, InstancesAreIndependentAndSysColoursStartClassic) {
    SimGdi a, b({800, 600});
    EXPECT_EQ(a.GetSysColor(COLOR_BTNFACE), RGB(212, 208, 200));
    EXPECT_EQ(a.GetSysColor(31), 0u);
    const int idx[] = {COLOR_BTNFACE, 99};
    const COLORREF col[] = {RGB(1, 2, 3), RGB(4, 5, 6)};
    EXPECT_TRUE(a.SetSysColors(idx, col));
    EXPECT_EQ(a.GetSysColor(COLOR_BTNFACE), RGB(1, 2, 3));
    EXPECT_EQ(b.GetSysColor(COLOR_BTNFACE), RGB(212, 208, 200));

    EXPECT_EQ(a.GetDeviceCaps(HDC{}, HORZRES), 1024);
    EXPECT_EQ(a.GetDeviceCaps(HDC{}, VERTRES), 768);
    EXPECT_EQ(b.GetDeviceCaps(HDC{}, HORZRES), 800);
    EXPECT_EQ(b.GetDeviceCaps(HDC{}, LOGPIXELSY), 96);
    EXPECT_EQ(b.GetDeviceCaps(HDC{}, BITSPIXEL), 32);

    // A pen of one instance means nothing to the other.
    const HDC dcA = a.CreateCompatibleDC(HDC{}), dcB = b.CreateCompatibleDC(HDC{});
    const HPEN pen = a.CreatePen(PS_SOLID, 1, RGB(9, 9, 9));
    b.DeleteObject(b.CreatePen(PS_SOLID, 1, 0));
    EXPECT_TRUE(a.SelectObject(dcA, pen));
    EXPECT_NE(b.GetCurrentObject(dcB, OBJ_PEN), pen);
}

TEST(SimGdiObjects, HandlesAreSmallNonzeroAndNeverCollideWithSystemColourBrushes) {
    SimGdi gdi;
    for (int i = 0; i < 200; ++i) {
        const HBRUSH b = gdi.CreateSolidBrush(RGB(0, 0, 0));
        EXPECT_GT(b.value, static_cast<std::uint32_t>(kSysColorCount));
        EXPECT_LT(b.value, 0x10000u);
        if (i % 2) gdi.DeleteObject(b);
    }
}

}  // namespace
}  // namespace korvex::platform
