// What the backend leaves out to spare the window server round trips, checked for what must not
// change: a window invalidated while a paint is pending still paints once, and again after a
// later invalidation; a hidden one paints when shown; numbers of deleted GDI objects are given
// out again while stock and still-selected objects keep theirs. Apart from the other checks
// because <windows.h> comes in here, after our headers.

#include "backend_check.hpp"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace korvex::backend_test {

namespace {

// Counts the paints of one window that the system asks for (WM_PAINT through UpdateWindow).
struct Painted {
    Fixture& f;
    HWND window;
    Recorder& recorder;
    int Update() {
        const int before = recorder.paints;
        ::UpdateWindow(static_cast<::HWND>(f.platform.NativeWindow(window)));
        return recorder.paints - before;
    }
};

}  // namespace

void Invalidation() {
    Fixture f;
    const HWND top = f.Top("top", {0, 0, 100, 60});
    const HWND child = f.Child(top, "child", {10, 10, 60, 40});
    const HWND other = f.Top("other", {200, 0, 300, 60});
    Painted p{f, child, *f.recorders[1]};
    Painted parent{f, top, *f.recorders[0]};
    parent.Update();
    p.Update();  // the paints that showing them asked for

    // Invalidated again and again before it paints: one paint, and none more.
    for (int i = 0; i < 5; ++i) f.windows.InvalidateWindow(child);
    CHECK_EQ(p.Update(), 1);
    CHECK_EQ(p.Update(), 0);
    // After the paint an invalidation asks for the next one.
    f.windows.InvalidateWindow(child);
    CHECK_EQ(p.Update(), 1);

    // Hidden, it has nothing to paint; shown, it paints whole.
    f.windows.ShowWindow(child, false);
    f.windows.InvalidateWindow(child);
    CHECK_EQ(p.Update(), 0);
    f.windows.ShowWindow(child, true);
    CHECK_EQ(p.Update(), 1);
    // Invalidated, then hidden with its parent before it painted: shown again it paints, and so
    // does the next invalidation after that.
    f.windows.InvalidateWindow(child);
    f.windows.ShowWindow(top, false);
    f.windows.ShowWindow(top, true);
    CHECK_EQ(p.Update(), 1);
    f.windows.InvalidateWindow(child);
    CHECK_EQ(p.Update(), 1);
    // Moved to another parent with a paint pending: the next invalidation still paints.
    f.windows.InvalidateWindow(child);
    CHECK_EQ(f.windows.SetParent(child, other), top);
    p.Update();
    f.windows.InvalidateWindow(child);
    CHECK_EQ(p.Update(), 1);

    // A move to where the window is already changes nothing; a real one still moves.
    RECT before, after;
    f.windows.GetWindowRect(child, &before);
    CHECK(f.windows.MoveWindow(child, {10, 10, 60, 40}));
    f.windows.GetWindowRect(child, &after);
    CHECK_EQ(after, before);
    CHECK(f.windows.MoveWindow(child, {12, 10, 62, 45}));
    f.windows.GetWindowRect(child, &after);
    CHECK_EQ(after, (RECT{before.left + 2, before.top, before.right + 2, before.bottom + 5}));
    // Shown or enabled again: the answer says it already was.
    CHECK(f.windows.ShowWindow(child, true));
    CHECK(!f.windows.EnableWindow(child, true));
    CHECK(!f.windows.EnableWindow(child, false));
    CHECK(f.windows.EnableWindow(child, false));
    CHECK(!f.windows.IsWindowEnabled(child));
}

void HandleNumbers() {
    Fixture f;
    Gdi& gdi = f.platform.gdi();
    // A brush for every strip of a gradient: deleted brushes give their numbers out again.
    const platform::HBRUSH first = gdi.CreateSolidBrush(RGB(1, 2, 3));
    CHECK(gdi.DeleteObject(first));
    int same = 0;
    for (int i = 0; i < 1000; ++i) {
        const platform::HBRUSH brush = gdi.CreateSolidBrush(RGB(i & 0xFF, 0, 0));
        same += brush == first;
        gdi.DeleteObject(brush);
    }
    CHECK_EQ(same, 1000);

    const HDC dc = gdi.CreateCompatibleDC({});
    const platform::HBITMAP bitmap = gdi.CreateDIBSection32(4, 4);
    const platform::HGDIOBJ original = gdi.SelectObject(dc, bitmap);
    const auto pixel = [&](int x, int y) {
        return gdi.BitmapPixels(bitmap).bits[y * 4 + x] & 0xFFFFFFu;
    };
    // A stock object keeps its number through DeleteObject, which leaves it alone.
    const platform::HGDIOBJ black = gdi.GetStockObject(BLACK_BRUSH);
    gdi.DeleteObject(black);
    const platform::HBRUSH green = gdi.CreateSolidBrush(RGB(0, 255, 0));
    CHECK(green != black);
    CHECK_EQ(gdi.GetStockObject(BLACK_BRUSH), black);
    gdi.FillRect(dc, {0, 0, 4, 4}, green);
    gdi.FillRect(dc, {0, 0, 1, 1}, black);
    CHECK_EQ(pixel(0, 0), 0u);
    CHECK_EQ(pixel(1, 1), 0x00FF00u);
    gdi.DeleteObject(green);
    // A brush deleted while selected lives on in the DC, and so does its number.
    const platform::HBRUSH red = gdi.CreateSolidBrush(RGB(255, 0, 0));
    const platform::HGDIOBJ brushBefore = gdi.SelectObject(dc, red);
    gdi.DeleteObject(red);
    const platform::HBRUSH blue = gdi.CreateSolidBrush(RGB(0, 0, 255));
    CHECK(blue != red);
    gdi.PatBlt(dc, 0, 0, 2, 2, PATCOPY);
    CHECK_EQ(pixel(1, 1), 0xFF0000u);
    gdi.FillRect(dc, {2, 2, 4, 4}, blue);
    CHECK_EQ(pixel(3, 3), 0x0000FFu);
    gdi.SelectObject(dc, brushBefore);
    gdi.DeleteObject(blue);

    // A bitmap's number given out again reports the new bitmap's pixels.
    const platform::HBITMAP small = gdi.CreateDIBSection32(3, 3);
    gdi.DeleteObject(small);
    const platform::HBITMAP wide = gdi.CreateDIBSection32(5, 7);
    CHECK_EQ(wide, small);
    const platform::PixelView view = gdi.BitmapPixels(wide);
    CHECK(view.bits != nullptr && view.width == 5 && view.height == 7);
    gdi.DeleteObject(wide);
    // So does a deleted DC's.
    gdi.SelectObject(dc, original);
    gdi.DeleteObject(bitmap);
    CHECK(gdi.DeleteDC(dc));
    const HDC next = gdi.CreateCompatibleDC({});
    CHECK_EQ(next, dc);
    gdi.DeleteDC(next);
    // The screen's resolution, asked again and again, is the system's.
    ::HDC screen = ::GetDC(nullptr);
    const int dpi = ::GetDeviceCaps(screen, LOGPIXELSY);
    ::ReleaseDC(nullptr, screen);
    CHECK_EQ(gdi.GetDeviceCaps({}, LOGPIXELSY), dpi);
    CHECK_EQ(gdi.GetDeviceCaps({}, LOGPIXELSY), dpi);
}

}  // namespace korvex::backend_test
