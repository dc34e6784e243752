// korvex-gdi-win --bench-lines PASSES: the short-line workload drawn with the real GDI on a
// 1920 x 1080 DIB section, one warm-up pass and then PASSES timed passes. Prints the seconds of
// each pass on one line, so the benchmark on the other side can take them as its iterations.

#include <windows.h>

#include <cstdio>
#include <vector>

#include "short_lines.hpp"

namespace korvex::platform::win32 {

int BenchLines(int passes) {
    using korvex::bench::kCanvasHeight;
    using korvex::bench::kCanvasWidth;
    const korvex::bench::ShortLines set = korvex::bench::MakeShortLines();

    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = kCanvasWidth;
    info.bmiHeader.biHeight = -kCanvasHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    HDC dc = ::CreateCompatibleDC(nullptr);
    HBITMAP bitmap = ::CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!dc || !bitmap) {
        std::fprintf(stderr, "korvex-gdi-win: no 1920 x 1080 DIB section\n");
        return 1;
    }
    HGDIOBJ oldBitmap = ::SelectObject(dc, bitmap);
    HPEN pen = ::CreatePen(PS_SOLID, 1, RGB(0, 0, 0xFF));
    HGDIOBJ oldPen = ::SelectObject(dc, pen);

    const auto pass = [&] {
        for (const auto& l : set.lines) {
            ::MoveToEx(dc, l.x0, l.y0, nullptr);
            ::LineTo(dc, l.x1, l.y1);
        }
        ::GdiFlush();
    };
    LARGE_INTEGER frequency, start, end;
    ::QueryPerformanceFrequency(&frequency);
    pass();
    std::vector<double> seconds;
    for (int i = 0; i < passes; ++i) {
        ::QueryPerformanceCounter(&start);
        pass();
        ::QueryPerformanceCounter(&end);
        seconds.push_back(static_cast<double>(end.QuadPart - start.QuadPart) /
                          static_cast<double>(frequency.QuadPart));
    }
    std::printf("pixels %lld seconds", static_cast<long long>(set.pixels));
    for (const double s : seconds) std::printf(" %.9f", s);
    std::printf("\n");

    ::SelectObject(dc, oldPen);
    ::SelectObject(dc, oldBitmap);
    ::DeleteObject(pen);
    ::DeleteObject(bitmap);
    ::DeleteDC(dc);
    return 0;
}

}  // namespace korvex::platform::win32
