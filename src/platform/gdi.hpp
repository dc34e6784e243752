#pragma once
// The drawing seam: the subset of Win32 GDI/USER drawing the controls use, with Win32's names,
// constants and pixel rules. The portable implementation is sim::SimGdi; a Windows backend forwards
// the same calls to the real GDI, which is also how the software rasteriser is checked.
//
// Sections: basic types · constants · records · the Gdi interface · helpers

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace korvex::platform {

// ---------------------------------------------------------------------------------------------
// Basic types

using COLORREF = std::uint32_t;  // 0x00BBGGRR
inline constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;

constexpr COLORREF RGB(std::uint8_t r, std::uint8_t g, std::uint8_t b) {
    return static_cast<COLORREF>(r) | (static_cast<COLORREF>(g) << 8) |
           (static_cast<COLORREF>(b) << 16);
}
constexpr std::uint8_t GetRValue(COLORREF c) {
    return static_cast<std::uint8_t>(c & 0xFF);
}
constexpr std::uint8_t GetGValue(COLORREF c) {
    return static_cast<std::uint8_t>((c >> 8) & 0xFF);
}
constexpr std::uint8_t GetBValue(COLORREF c) {
    return static_cast<std::uint8_t>((c >> 16) & 0xFF);
}

struct POINT {
    std::int32_t x = 0;
    std::int32_t y = 0;
    friend bool operator==(const POINT&, const POINT&) = default;
};

struct SIZE {
    std::int32_t cx = 0;
    std::int32_t cy = 0;
    friend bool operator==(const SIZE&, const SIZE&) = default;
};

// Half-open: covers x in [left, right), y in [top, bottom).
struct RECT {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
    [[nodiscard]] constexpr std::int32_t Width() const { return right - left; }
    [[nodiscard]] constexpr std::int32_t Height() const { return bottom - top; }
    [[nodiscard]] constexpr bool IsEmpty() const { return right <= left || bottom <= top; }
    friend bool operator==(const RECT&, const RECT&) = default;
};

// Opaque handles. Zero means "none"; every value fits the host's 32-bit Long, so controls can
// expose them as properties (hDC, Picture.Handle).
struct HDC {
    std::uint32_t value = 0;
    explicit constexpr operator bool() const { return value != 0; }
    friend bool operator==(const HDC&, const HDC&) = default;
};
struct HGDIOBJ {
    std::uint32_t value = 0;
    explicit constexpr operator bool() const { return value != 0; }
    friend bool operator==(const HGDIOBJ&, const HGDIOBJ&) = default;
};
using HPEN = HGDIOBJ;
using HBRUSH = HGDIOBJ;
using HRGN = HGDIOBJ;
using HFONT = HGDIOBJ;
using HBITMAP = HGDIOBJ;

// ---------------------------------------------------------------------------------------------
// Constants (values as in Win32)

// Pen styles.
inline constexpr int PS_SOLID = 0;
inline constexpr int PS_DASH = 1;
inline constexpr int PS_DOT = 2;
inline constexpr int PS_DASHDOT = 3;
inline constexpr int PS_DASHDOTDOT = 4;
inline constexpr int PS_NULL = 5;
inline constexpr int PS_INSIDEFRAME = 6;

// Stock objects.
inline constexpr int WHITE_BRUSH = 0;
inline constexpr int LTGRAY_BRUSH = 1;
inline constexpr int GRAY_BRUSH = 2;
inline constexpr int DKGRAY_BRUSH = 3;
inline constexpr int BLACK_BRUSH = 4;
inline constexpr int NULL_BRUSH = 5;
inline constexpr int WHITE_PEN = 6;
inline constexpr int BLACK_PEN = 7;
inline constexpr int NULL_PEN = 8;
inline constexpr int SYSTEM_FONT = 13;
inline constexpr int DEFAULT_GUI_FONT = 17;

// Object types for GetCurrentObject.
inline constexpr int OBJ_PEN = 1;
inline constexpr int OBJ_BRUSH = 2;
inline constexpr int OBJ_FONT = 6;
inline constexpr int OBJ_BITMAP = 7;

// Binary raster operations (SetROP2).
inline constexpr int R2_BLACK = 1;
inline constexpr int R2_NOTMERGEPEN = 2;
inline constexpr int R2_MASKNOTPEN = 3;
inline constexpr int R2_NOTCOPYPEN = 4;
inline constexpr int R2_MASKPENNOT = 5;
inline constexpr int R2_NOT = 6;
inline constexpr int R2_XORPEN = 7;
inline constexpr int R2_NOTMASKPEN = 8;
inline constexpr int R2_MASKPEN = 9;
inline constexpr int R2_NOTXORPEN = 10;
inline constexpr int R2_NOP = 11;
inline constexpr int R2_MERGENOTPEN = 12;
inline constexpr int R2_COPYPEN = 13;
inline constexpr int R2_MERGEPENNOT = 14;
inline constexpr int R2_MERGEPEN = 15;
inline constexpr int R2_WHITE = 16;

// Ternary raster operations (BitBlt, StretchBlt, PatBlt).
using DWORD = std::uint32_t;
inline constexpr DWORD SRCCOPY = 0x00CC0020;
inline constexpr DWORD SRCPAINT = 0x00EE0086;
inline constexpr DWORD SRCAND = 0x008800C6;
inline constexpr DWORD SRCINVERT = 0x00660046;
inline constexpr DWORD SRCERASE = 0x00440328;
inline constexpr DWORD NOTSRCCOPY = 0x00330008;
inline constexpr DWORD NOTSRCERASE = 0x001100A6;
inline constexpr DWORD MERGECOPY = 0x00C000CA;
inline constexpr DWORD MERGEPAINT = 0x00BB0226;
inline constexpr DWORD PATCOPY = 0x00F00021;
inline constexpr DWORD PATPAINT = 0x00FB0A09;
inline constexpr DWORD PATINVERT = 0x005A0049;
inline constexpr DWORD DSTINVERT = 0x00550009;
inline constexpr DWORD BLACKNESS = 0x00000042;
inline constexpr DWORD WHITENESS = 0x00FF0062;

// Hatch brush styles (CreateHatchBrush).
inline constexpr int HS_HORIZONTAL = 0;  // -----
inline constexpr int HS_VERTICAL = 1;    // |||||
inline constexpr int HS_FDIAGONAL = 2;   // \\\\\ (down from left to right)
inline constexpr int HS_BDIAGONAL = 3;   // ///// (up from left to right)
inline constexpr int HS_CROSS = 4;       // +++++
inline constexpr int HS_DIAGCROSS = 5;   // xxxxx

// Alpha blending (AlphaBlend's BLENDFUNCTION).
inline constexpr std::uint8_t AC_SRC_OVER = 0x00;
inline constexpr std::uint8_t AC_SRC_ALPHA = 0x01;

// Background modes.
inline constexpr int TRANSPARENT = 1;
inline constexpr int OPAQUE = 2;

// Stretch modes.
inline constexpr int BLACKONWHITE = 1;
inline constexpr int WHITEONBLACK = 2;
inline constexpr int COLORONCOLOR = 3;
inline constexpr int HALFTONE = 4;

// Text alignment.
inline constexpr unsigned TA_LEFT = 0;
inline constexpr unsigned TA_TOP = 0;
inline constexpr unsigned TA_RIGHT = 2;
inline constexpr unsigned TA_CENTER = 6;
inline constexpr unsigned TA_BOTTOM = 8;
inline constexpr unsigned TA_BASELINE = 24;

// Regions.
inline constexpr int RGN_AND = 1;
inline constexpr int RGN_OR = 2;
inline constexpr int RGN_XOR = 3;
inline constexpr int RGN_DIFF = 4;
inline constexpr int RGN_COPY = 5;
inline constexpr int RGN_ERROR = 0;  // Win32's ERROR
inline constexpr int NULLREGION = 1;
inline constexpr int SIMPLEREGION = 2;
inline constexpr int COMPLEXREGION = 3;
inline constexpr int ALTERNATE = 1;
inline constexpr int WINDING = 2;

// DrawEdge.
inline constexpr unsigned BDR_RAISEDOUTER = 0x0001;
inline constexpr unsigned BDR_SUNKENOUTER = 0x0002;
inline constexpr unsigned BDR_RAISEDINNER = 0x0004;
inline constexpr unsigned BDR_SUNKENINNER = 0x0008;
inline constexpr unsigned EDGE_RAISED = BDR_RAISEDOUTER | BDR_RAISEDINNER;
inline constexpr unsigned EDGE_SUNKEN = BDR_SUNKENOUTER | BDR_SUNKENINNER;
inline constexpr unsigned EDGE_ETCHED = BDR_SUNKENOUTER | BDR_RAISEDINNER;
inline constexpr unsigned EDGE_BUMP = BDR_RAISEDOUTER | BDR_SUNKENINNER;
inline constexpr unsigned BF_LEFT = 0x0001;
inline constexpr unsigned BF_TOP = 0x0002;
inline constexpr unsigned BF_RIGHT = 0x0004;
inline constexpr unsigned BF_BOTTOM = 0x0008;
inline constexpr unsigned BF_TOPLEFT = BF_TOP | BF_LEFT;
inline constexpr unsigned BF_BOTTOMRIGHT = BF_BOTTOM | BF_RIGHT;
inline constexpr unsigned BF_RECT = BF_LEFT | BF_TOP | BF_RIGHT | BF_BOTTOM;
inline constexpr unsigned BF_DIAGONAL = 0x0010;
inline constexpr unsigned BF_MIDDLE = 0x0800;
inline constexpr unsigned BF_SOFT = 0x1000;
inline constexpr unsigned BF_ADJUST = 0x2000;
inline constexpr unsigned BF_FLAT = 0x4000;
inline constexpr unsigned BF_MONO = 0x8000;

// System colour indices (GetSysColor).
inline constexpr int COLOR_SCROLLBAR = 0;
inline constexpr int COLOR_BACKGROUND = 1;
inline constexpr int COLOR_ACTIVECAPTION = 2;
inline constexpr int COLOR_INACTIVECAPTION = 3;
inline constexpr int COLOR_MENU = 4;
inline constexpr int COLOR_WINDOW = 5;
inline constexpr int COLOR_WINDOWFRAME = 6;
inline constexpr int COLOR_MENUTEXT = 7;
inline constexpr int COLOR_WINDOWTEXT = 8;
inline constexpr int COLOR_CAPTIONTEXT = 9;
inline constexpr int COLOR_ACTIVEBORDER = 10;
inline constexpr int COLOR_INACTIVEBORDER = 11;
inline constexpr int COLOR_APPWORKSPACE = 12;
inline constexpr int COLOR_HIGHLIGHT = 13;
inline constexpr int COLOR_HIGHLIGHTTEXT = 14;
inline constexpr int COLOR_BTNFACE = 15;
inline constexpr int COLOR_BTNSHADOW = 16;
inline constexpr int COLOR_GRAYTEXT = 17;
inline constexpr int COLOR_BTNTEXT = 18;
inline constexpr int COLOR_INACTIVECAPTIONTEXT = 19;
inline constexpr int COLOR_BTNHIGHLIGHT = 20;
inline constexpr int COLOR_3DDKSHADOW = 21;
inline constexpr int COLOR_3DLIGHT = 22;
inline constexpr int COLOR_INFOTEXT = 23;
inline constexpr int COLOR_INFOBK = 24;
inline constexpr int COLOR_HOTLIGHT = 26;
inline constexpr int COLOR_GRADIENTACTIVECAPTION = 27;
inline constexpr int COLOR_GRADIENTINACTIVECAPTION = 28;
inline constexpr int COLOR_MENUHILIGHT = 29;
inline constexpr int COLOR_MENUBAR = 30;
inline constexpr int kSysColorCount = 31;

// GetDeviceCaps indices.
inline constexpr int HORZRES = 8;
inline constexpr int VERTRES = 10;
inline constexpr int BITSPIXEL = 12;
inline constexpr int LOGPIXELSX = 88;
inline constexpr int LOGPIXELSY = 90;

// Font weights and character sets.
inline constexpr int FW_NORMAL = 400;
inline constexpr int FW_BOLD = 700;
inline constexpr int ANSI_CHARSET = 0;
inline constexpr int DEFAULT_CHARSET = 1;
inline constexpr int SYMBOL_CHARSET = 2;

// ---------------------------------------------------------------------------------------------
// Records

// Font request. lfHeight < 0 asks for that character height in pixels, > 0 for that cell height,
// 0 for the default size, as in Win32.
struct LOGFONT {
    std::int32_t lfHeight = 0;
    std::int32_t lfWidth = 0;
    std::int32_t lfEscapement = 0;
    std::int32_t lfOrientation = 0;
    std::int32_t lfWeight = FW_NORMAL;
    std::uint8_t lfItalic = 0;
    std::uint8_t lfUnderline = 0;
    std::uint8_t lfStrikeOut = 0;
    std::uint8_t lfCharSet = DEFAULT_CHARSET;
    std::string lfFaceName;  // UTF-8
};

struct TEXTMETRIC {
    std::int32_t tmHeight = 0;
    std::int32_t tmAscent = 0;
    std::int32_t tmDescent = 0;
    std::int32_t tmInternalLeading = 0;
    std::int32_t tmExternalLeading = 0;
    std::int32_t tmAveCharWidth = 0;
    std::int32_t tmMaxCharWidth = 0;
    std::int32_t tmWeight = 0;
    std::uint8_t tmItalic = 0;
    std::uint8_t tmUnderlined = 0;
    std::uint8_t tmStruckOut = 0;
    std::uint8_t tmCharSet = 0;
};

// How AlphaBlend mixes: BlendOp is AC_SRC_OVER, BlendFlags 0; SourceConstantAlpha scales the
// whole source; AlphaFormat AC_SRC_ALPHA says the source pixels carry premultiplied alpha in
// their top byte.
struct BLENDFUNCTION {
    std::uint8_t BlendOp = AC_SRC_OVER;
    std::uint8_t BlendFlags = 0;
    std::uint8_t SourceConstantAlpha = 255;
    std::uint8_t AlphaFormat = AC_SRC_ALPHA;
};

// Pixels of a 32-bit top-down bitmap; each pixel is the word 0x00RRGGBB (bytes B, G, R, 0 in
// memory, as a Windows 32-bit DIB section). Row y starts at bits + y * width.
struct PixelView {
    std::uint32_t* bits = nullptr;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

// ---------------------------------------------------------------------------------------------
// The interface. Coordinates are device pixels (MM_TEXT). Failures return what Win32 returns
// (false, zero handle, CLR_INVALID, RGN_ERROR); degenerate calls succeed and paint nothing.

class Gdi {
  public:
    virtual ~Gdi() = default;

    // Device contexts and bitmaps. A new DC has a 1x1 bitmap selected, as in Win32.
    virtual HDC CreateCompatibleDC(HDC reference) = 0;
    virtual bool DeleteDC(HDC dc) = 0;
    // A top-down 32-bit bitmap initialised to zero.
    virtual HBITMAP CreateDIBSection32(std::int32_t width, std::int32_t height) = 0;
    virtual PixelView BitmapPixels(HBITMAP bitmap) = 0;

    // Objects.
    virtual HPEN CreatePen(int style, int width, COLORREF color) = 0;
    virtual HBRUSH CreateSolidBrush(COLORREF color) = 0;
    // An 8x8 hatch (HS_HORIZONTAL .. HS_DIAGCROSS) in `color`, aligned to the brush origin; the
    // pixels between the lines take the DC's background colour when its mode is OPAQUE and are
    // left alone when it is TRANSPARENT, both as the DC stands when it draws (raster codes that
    // ignore the pattern touch every pixel). Any other style fails (zero handle).
    virtual HBRUSH CreateHatchBrush(int style, COLORREF color) = 0;
    virtual HGDIOBJ GetStockObject(int index) = 0;
    virtual HFONT CreateFontIndirect(const LOGFONT& font) = 0;
    virtual HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) = 0;  // regions: selects a clip copy
    virtual HGDIOBJ GetCurrentObject(HDC dc, int objectType) = 0;
    virtual bool DeleteObject(HGDIOBJ object) = 0;

    // DC state.
    virtual int SetROP2(HDC dc, int mode) = 0;
    virtual int GetROP2(HDC dc) = 0;
    virtual int SetBkMode(HDC dc, int mode) = 0;
    virtual int GetBkMode(HDC dc) = 0;
    virtual COLORREF SetBkColor(HDC dc, COLORREF color) = 0;
    virtual COLORREF GetBkColor(HDC dc) = 0;
    virtual COLORREF SetTextColor(HDC dc, COLORREF color) = 0;
    virtual COLORREF GetTextColor(HDC dc) = 0;
    virtual unsigned SetTextAlign(HDC dc, unsigned align) = 0;
    virtual int SetStretchBltMode(HDC dc, int mode) = 0;
    virtual bool MoveToEx(HDC dc, std::int32_t x, std::int32_t y, POINT* previous) = 0;
    virtual bool GetCurrentPositionEx(HDC dc, POINT* position) = 0;
    // Where pattern brushes start: device pixel (x, y) shows pattern pixel
    // ((x - org.x) mod 8, (y - org.y) mod 8). (0, 0) in a new DC.
    virtual bool SetBrushOrgEx(HDC dc, std::int32_t x, std::int32_t y, POINT* previous) = 0;

    // Drawing.
    virtual bool LineTo(HDC dc, std::int32_t x, std::int32_t y) = 0;
    virtual bool Polyline(HDC dc, std::span<const POINT> points) = 0;
    virtual bool Polygon(HDC dc, std::span<const POINT> points) = 0;
    virtual bool Rectangle(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r,
                           std::int32_t b) = 0;
    virtual bool RoundRect(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                           std::int32_t w, std::int32_t h) = 0;
    virtual bool Ellipse(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r,
                         std::int32_t b) = 0;
    virtual int FillRect(HDC dc, const RECT& rect, HBRUSH brush) = 0;
    virtual int FrameRect(HDC dc, const RECT& rect, HBRUSH brush) = 0;
    virtual bool InvertRect(HDC dc, const RECT& rect) = 0;
    virtual bool PatBlt(HDC dc, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                        DWORD rop) = 0;
    virtual COLORREF SetPixel(HDC dc, std::int32_t x, std::int32_t y, COLORREF color) = 0;
    virtual COLORREF GetPixel(HDC dc, std::int32_t x, std::int32_t y) = 0;
    virtual bool BitBlt(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                        HDC src, std::int32_t sx, std::int32_t sy, DWORD rop) = 0;
    virtual bool StretchBlt(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                            HDC src, std::int32_t sx, std::int32_t sy, std::int32_t sw,
                            std::int32_t sh, DWORD rop) = 0;
    virtual bool DrawEdge(HDC dc, RECT* rect, unsigned edge, unsigned flags) = 0;
    // Source rectangle (sx, sy, sw, sh) of src blended over (x, y, w, h) of dst, stretched by
    // picking pixels when the sizes differ. With AC_SRC_ALPHA every source pixel is
    // premultiplied 0xAARRGGBB: each channel becomes s + d * (255 - a) / 255, rounded to nearest;
    // SourceConstantAlpha scales the source first. Fails (false) on a negative size, a source
    // rectangle outside the source bitmap or a source and destination that overlap in one DC.
    virtual bool AlphaBlend(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                            HDC src, std::int32_t sx, std::int32_t sy, std::int32_t sw,
                            std::int32_t sh, BLENDFUNCTION blend) = 0;

    // Regions.
    virtual HRGN CreateRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) = 0;
    virtual HRGN CreateRoundRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                                    std::int32_t w, std::int32_t h) = 0;
    virtual HRGN CreateEllipticRgn(std::int32_t l, std::int32_t t, std::int32_t r,
                                   std::int32_t b) = 0;
    virtual HRGN CreatePolygonRgn(std::span<const POINT> points, int fillMode) = 0;
    virtual int CombineRgn(HRGN dest, HRGN src1, HRGN src2, int mode) = 0;
    virtual int OffsetRgn(HRGN region, std::int32_t dx, std::int32_t dy) = 0;
    virtual bool PtInRegion(HRGN region, std::int32_t x, std::int32_t y) = 0;
    virtual int GetRgnBox(HRGN region, RECT* box) = 0;
    virtual bool FillRgn(HDC dc, HRGN region, HBRUSH brush) = 0;
    virtual bool FrameRgn(HDC dc, HRGN region, HBRUSH brush, std::int32_t w, std::int32_t h) = 0;
    virtual bool PaintRgn(HDC dc, HRGN region) = 0;
    // Copies the region into the DC's clip; a zero handle removes clipping.
    virtual int SelectClipRgn(HDC dc, HRGN region) = 0;

    // Text (UTF-8). TextOut's reference point is the top-left of the cell by default.
    virtual bool TextOut(HDC dc, std::int32_t x, std::int32_t y, std::string_view text) = 0;
    virtual bool GetTextExtentPoint32(HDC dc, std::string_view text, SIZE* size) = 0;
    virtual bool GetTextMetrics(HDC dc, TEXTMETRIC* metrics) = 0;
    virtual std::string GetTextFace(HDC dc) = 0;

    // System colours and device capabilities.
    virtual COLORREF GetSysColor(int index) = 0;
    virtual bool SetSysColors(std::span<const int> indices, std::span<const COLORREF> colors) = 0;
    virtual int GetDeviceCaps(HDC dc, int index) = 0;

    // The device context as the system behind this seam knows it, for a control's hDC
    // property: what a Win32 API call made with that number would need.
    [[nodiscard]] virtual std::uintptr_t NativeHandle(HDC dc) = 0;
};

// ---------------------------------------------------------------------------------------------
// Helpers

// The classic colour scheme, indices 0 to 30, that both the software device and the reference
// runner start from.
const std::array<COLORREF, kSysColorCount>& ClassicSysColors();

// Selects an object for the life of a scope and puts the previous one back.
class ScopedSelect {
  public:
    ScopedSelect(Gdi& gdi, HDC dc, HGDIOBJ object)
        : gdi_(gdi), dc_(dc), previous_(gdi.SelectObject(dc, object)) {}
    ~ScopedSelect() {
        if (previous_) gdi_.SelectObject(dc_, previous_);
    }
    ScopedSelect(const ScopedSelect&) = delete;
    ScopedSelect& operator=(const ScopedSelect&) = delete;

  private:
    Gdi& gdi_;
    HDC dc_;
    HGDIOBJ previous_;
};

}  // namespace korvex::platform
