#pragma once
// platform::Gdi forwarded to the real Windows GDI. Used by the reference script runner that checks
// the software rasteriser, and the start of the Win32 backend. This header stays free of
// <windows.h>, whose macros would clash with gdi.hpp's names.

#include <memory>

#include "platform/gdi.hpp"

namespace korvex::platform::win32 {

class Win32Gdi final : public Gdi {
  public:
    Win32Gdi();
    ~Win32Gdi() override;
    Win32Gdi(const Win32Gdi&) = delete;
    Win32Gdi& operator=(const Win32Gdi&) = delete;

    HDC CreateCompatibleDC(HDC reference) override;
    bool DeleteDC(HDC dc) override;
    HBITMAP CreateDIBSection32(std::int32_t width, std::int32_t height) override;
    PixelView BitmapPixels(HBITMAP bitmap) override;

    HPEN CreatePen(int style, int width, COLORREF color) override;
    HBRUSH CreateSolidBrush(COLORREF color) override;
    HBRUSH CreateHatchBrush(int style, COLORREF color) override;
    HGDIOBJ GetStockObject(int index) override;
    HFONT CreateFontIndirect(const LOGFONT& font) override;
    HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) override;
    HGDIOBJ GetCurrentObject(HDC dc, int objectType) override;
    bool DeleteObject(HGDIOBJ object) override;

    int SetROP2(HDC dc, int mode) override;
    int GetROP2(HDC dc) override;
    int SetBkMode(HDC dc, int mode) override;
    int GetBkMode(HDC dc) override;
    COLORREF SetBkColor(HDC dc, COLORREF color) override;
    COLORREF GetBkColor(HDC dc) override;
    COLORREF SetTextColor(HDC dc, COLORREF color) override;
    COLORREF GetTextColor(HDC dc) override;
    unsigned SetTextAlign(HDC dc, unsigned align) override;
    int SetStretchBltMode(HDC dc, int mode) override;
    bool MoveToEx(HDC dc, std::int32_t x, std::int32_t y, POINT* previous) override;
    bool GetCurrentPositionEx(HDC dc, POINT* position) override;
    bool SetBrushOrgEx(HDC dc, std::int32_t x, std::int32_t y, POINT* previous) override;

    bool LineTo(HDC dc, std::int32_t x, std::int32_t y) override;
    bool Polyline(HDC dc, std::span<const POINT> points) override;
    bool Polygon(HDC dc, std::span<const POINT> points) override;
    bool Rectangle(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) override;
    bool RoundRect(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                   std::int32_t w, std::int32_t h) override;
    bool Ellipse(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) override;
    int FillRect(HDC dc, const RECT& rect, HBRUSH brush) override;
    int FrameRect(HDC dc, const RECT& rect, HBRUSH brush) override;
    bool InvertRect(HDC dc, const RECT& rect) override;
    bool PatBlt(HDC dc, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                DWORD rop) override;
    COLORREF SetPixel(HDC dc, std::int32_t x, std::int32_t y, COLORREF color) override;
    COLORREF GetPixel(HDC dc, std::int32_t x, std::int32_t y) override;
    bool BitBlt(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h, HDC src,
                std::int32_t sx, std::int32_t sy, DWORD rop) override;
    bool StretchBlt(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                    HDC src, std::int32_t sx, std::int32_t sy, std::int32_t sw, std::int32_t sh,
                    DWORD rop) override;
    bool DrawEdge(HDC dc, RECT* rect, unsigned edge, unsigned flags) override;
    bool AlphaBlend(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                    HDC src, std::int32_t sx, std::int32_t sy, std::int32_t sw, std::int32_t sh,
                    platform::BLENDFUNCTION blend) override;

    HRGN CreateRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) override;
    HRGN CreateRoundRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                            std::int32_t w, std::int32_t h) override;
    HRGN CreateEllipticRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) override;
    HRGN CreatePolygonRgn(std::span<const POINT> points, int fillMode) override;
    int CombineRgn(HRGN dest, HRGN src1, HRGN src2, int mode) override;
    int OffsetRgn(HRGN region, std::int32_t dx, std::int32_t dy) override;
    bool PtInRegion(HRGN region, std::int32_t x, std::int32_t y) override;
    int GetRgnBox(HRGN region, RECT* box) override;
    bool FillRgn(HDC dc, HRGN region, HBRUSH brush) override;
    bool FrameRgn(HDC dc, HRGN region, HBRUSH brush, std::int32_t w, std::int32_t h) override;
    bool PaintRgn(HDC dc, HRGN region) override;
    int SelectClipRgn(HDC dc, HRGN region) override;

    bool TextOut(HDC dc, std::int32_t x, std::int32_t y, std::string_view text) override;
    bool GetTextExtentPoint32(HDC dc, std::string_view text, SIZE* size) override;
    bool GetTextMetrics(HDC dc, TEXTMETRIC* metrics) override;
    std::string GetTextFace(HDC dc) override;

    COLORREF GetSysColor(int index) override;
    bool SetSysColors(std::span<const int> indices, std::span<const COLORREF> colors) override;
    int GetDeviceCaps(HDC dc, int index) override;
    [[nodiscard]] std::uintptr_t NativeHandle(HDC dc) override;

    // The window backend's side: a device context made elsewhere (BeginPaint's, a host's) as a
    // handle of ours until released, which forgets it without deleting it; and the system's
    // object behind one of our handles (SetWindowRgn hands a region over).
    HDC AdoptDC(void* nativeDC);
    void ReleaseAdoptedDC(HDC dc);
    [[nodiscard]] void* NativeObject(HGDIOBJ object) const;

  private:
    // Win32 handles are pointers; ours are 32-bit numbers, so both directions go through tables.
    struct Handles;
    std::unique_ptr<Handles> handles_;
};

}  // namespace korvex::platform::win32
