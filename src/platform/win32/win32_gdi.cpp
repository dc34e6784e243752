// gdi.hpp must be read before <windows.h>: afterwards RGB, TRANSPARENT, PS_*, R2_*, COLOR_* ...
// are macros. From here on Win32 things are spelled with :: and Win32's own macros, and none of
// gdi.hpp's constants is named.
#include "platform/win32/win32_gdi.hpp"

#include <cwchar>
#include <string>
#include <unordered_map>
#include <vector>

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

// The A/W selector macros would rename our members.
#undef TextOut
#undef GetTextExtentPoint32
#undef GetTextMetrics
#undef GetTextFace
#undef CreateFontIndirect

namespace korvex::platform::win32 {

struct Win32Gdi::Handles {
    // Small values pass through unchanged: zero, the COLOR_x + 1 system brushes of FillRect, and
    // the region type that SelectObject returns for a region.
    static constexpr std::uint32_t kFirstId = 0x100;

    // A deleted object's number is given out again: a host that paints a gradient strip by
    // strip makes a brush for every strip, and the tables stay as small as what lives at once.
    std::vector<void*> objects;
    std::unordered_map<void*, std::uint32_t> objectIds;
    std::vector<std::uint32_t> freeObjects;
    std::vector<::HDC> dcs;
    std::unordered_map<::HDC, std::uint32_t> dcIds;
    std::vector<std::uint32_t> freeDcs;
    struct Dib {
        void* bits = nullptr;
        std::int32_t width = 0;
        std::int32_t height = 0;
    };
    std::unordered_map<std::uint32_t, Dib> dibs;

    HGDIOBJ Wrap(void* handle) {
        const auto raw = reinterpret_cast<std::uintptr_t>(handle);
        if (raw < kFirstId) return HGDIOBJ{static_cast<std::uint32_t>(raw)};
        if (auto it = objectIds.find(handle); it != objectIds.end()) return HGDIOBJ{it->second};
        std::uint32_t id;
        if (!freeObjects.empty()) {
            id = freeObjects.back();
            freeObjects.pop_back();
            objects[id - kFirstId] = handle;
        } else {
            id = static_cast<std::uint32_t>(kFirstId + objects.size());
            objects.push_back(handle);
        }
        objectIds.emplace(handle, id);
        return HGDIOBJ{id};
    }
    // After the system deleted the object; stock objects, which DeleteObject leaves alone, and
    // objects still selected into a DC (deleted when deselected) keep their numbers.
    void ForgetObject(HGDIOBJ object) {
        if (object.value < kFirstId) return;
        const std::size_t index = object.value - kFirstId;
        if (index >= objects.size() || !objects[index]) return;
        if (::GetObjectType(static_cast<::HGDIOBJ>(objects[index])) != 0) return;
        objectIds.erase(objects[index]);
        objects[index] = nullptr;
        dibs.erase(object.value);
        freeObjects.push_back(object.value);
    }
    ::HGDIOBJ Unwrap(HGDIOBJ object) const {
        if (object.value < kFirstId)
            return reinterpret_cast<::HGDIOBJ>(static_cast<std::uintptr_t>(object.value));
        const std::size_t index = object.value - kFirstId;
        return index < objects.size() ? static_cast<::HGDIOBJ>(objects[index]) : nullptr;
    }
    HDC WrapDc(::HDC dc) {
        if (dc == nullptr) return HDC{};
        if (auto it = dcIds.find(dc); it != dcIds.end()) return HDC{it->second};
        std::uint32_t id;
        if (!freeDcs.empty()) {
            id = freeDcs.back();
            freeDcs.pop_back();
            dcs[id - 1] = dc;
        } else {
            id = static_cast<std::uint32_t>(dcs.size() + 1);
            dcs.push_back(dc);
        }
        dcIds.emplace(dc, id);
        return HDC{id};
    }
    // A host adopts a DC for every drawing call, and surfaces make and delete memory DCs as
    // they resize: a number is given out again, so the table stays as small as the number of
    // DCs alive at once.
    void ForgetDc(HDC dc) {
        if (dc.value < 1 || dc.value > dcs.size() || !dcs[dc.value - 1]) return;
        dcIds.erase(dcs[dc.value - 1]);
        dcs[dc.value - 1] = nullptr;
        freeDcs.push_back(dc.value);
    }
    ::HDC Dc(HDC dc) const {
        return dc.value >= 1 && dc.value <= dcs.size() ? dcs[dc.value - 1] : nullptr;
    }
};

namespace {

::RECT ToWin(const RECT& r) {
    return ::RECT{r.left, r.top, r.right, r.bottom};
}
RECT FromWin(const ::RECT& r) {
    return RECT{static_cast<std::int32_t>(r.left), static_cast<std::int32_t>(r.top),
                static_cast<std::int32_t>(r.right), static_cast<std::int32_t>(r.bottom)};
}
std::vector<::POINT> ToWin(std::span<const POINT> points) {
    std::vector<::POINT> out;
    out.reserve(points.size());
    for (const POINT& p : points) out.push_back(::POINT{p.x, p.y});
    return out;
}

std::wstring Widen(std::string_view text) {
    if (text.empty()) return {};
    const int size =
        ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                          size);
    return wide;
}

std::string Narrow(const wchar_t* text, int length) {
    if (length <= 0) return {};
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text, length, narrow.data(), size, nullptr, nullptr);
    return narrow;
}

template <typename T>
T As(::HGDIOBJ object) {
    return static_cast<T>(object);
}

}  // namespace

Win32Gdi::Win32Gdi() : handles_(std::make_unique<Handles>()) {}
Win32Gdi::~Win32Gdi() = default;

// Device contexts and bitmaps ------------------------------------------------------------------

HDC Win32Gdi::CreateCompatibleDC(HDC reference) {
    return handles_->WrapDc(::CreateCompatibleDC(handles_->Dc(reference)));
}

bool Win32Gdi::DeleteDC(HDC dc) {
    if (::DeleteDC(handles_->Dc(dc)) == FALSE) return false;
    handles_->ForgetDc(dc);
    return true;
}

HBITMAP Win32Gdi::CreateDIBSection32(std::int32_t width, std::int32_t height) {
    ::BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;  // top-down, like PixelView
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    ::HBITMAP bitmap = ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap == nullptr) return HBITMAP{};
    const HBITMAP id = handles_->Wrap(bitmap);
    handles_->dibs[id.value] = Handles::Dib{bits, width, height};
    return id;
}

PixelView Win32Gdi::BitmapPixels(HBITMAP bitmap) {
    auto it = handles_->dibs.find(bitmap.value);
    if (it == handles_->dibs.end()) return PixelView{};
    ::GdiFlush();  // batched calls must reach the bits before anyone reads them
    return PixelView{static_cast<std::uint32_t*>(it->second.bits), it->second.width,
                     it->second.height};
}

// Objects --------------------------------------------------------------------------------------

HPEN Win32Gdi::CreatePen(int style, int width, COLORREF color) {
    return handles_->Wrap(::CreatePen(style, width, color));
}

HBRUSH Win32Gdi::CreateSolidBrush(COLORREF color) {
    return handles_->Wrap(::CreateSolidBrush(color));
}

HBRUSH Win32Gdi::CreateHatchBrush(int style, COLORREF color) {
    return handles_->Wrap(::CreateHatchBrush(style, color));
}

HGDIOBJ Win32Gdi::GetStockObject(int index) {
    return handles_->Wrap(::GetStockObject(index));
}

HFONT Win32Gdi::CreateFontIndirect(const LOGFONT& font) {
    ::LOGFONTW lf{};
    lf.lfHeight = font.lfHeight;
    lf.lfWidth = font.lfWidth;
    lf.lfEscapement = font.lfEscapement;
    lf.lfOrientation = font.lfOrientation;
    lf.lfWeight = font.lfWeight;
    lf.lfItalic = font.lfItalic;
    lf.lfUnderline = font.lfUnderline;
    lf.lfStrikeOut = font.lfStrikeOut;
    lf.lfCharSet = font.lfCharSet;
    const std::wstring face = Widen(font.lfFaceName);
    face.copy(lf.lfFaceName, LF_FACESIZE - 1);
    return handles_->Wrap(::CreateFontIndirectW(&lf));
}

HGDIOBJ Win32Gdi::SelectObject(HDC dc, HGDIOBJ object) {
    return handles_->Wrap(::SelectObject(handles_->Dc(dc), handles_->Unwrap(object)));
}

HGDIOBJ Win32Gdi::GetCurrentObject(HDC dc, int objectType) {
    return handles_->Wrap(::GetCurrentObject(handles_->Dc(dc), static_cast<UINT>(objectType)));
}

bool Win32Gdi::DeleteObject(HGDIOBJ object) {
    if (::DeleteObject(handles_->Unwrap(object)) == FALSE) return false;
    handles_->ForgetObject(object);
    return true;
}

// DC state -------------------------------------------------------------------------------------

int Win32Gdi::SetROP2(HDC dc, int mode) {
    return ::SetROP2(handles_->Dc(dc), mode);
}
int Win32Gdi::GetROP2(HDC dc) {
    return ::GetROP2(handles_->Dc(dc));
}
int Win32Gdi::SetBkMode(HDC dc, int mode) {
    return ::SetBkMode(handles_->Dc(dc), mode);
}
int Win32Gdi::GetBkMode(HDC dc) {
    return ::GetBkMode(handles_->Dc(dc));
}
COLORREF Win32Gdi::SetBkColor(HDC dc, COLORREF color) {
    return ::SetBkColor(handles_->Dc(dc), color);
}
COLORREF Win32Gdi::GetBkColor(HDC dc) {
    return ::GetBkColor(handles_->Dc(dc));
}
COLORREF Win32Gdi::SetTextColor(HDC dc, COLORREF color) {
    return ::SetTextColor(handles_->Dc(dc), color);
}
COLORREF Win32Gdi::GetTextColor(HDC dc) {
    return ::GetTextColor(handles_->Dc(dc));
}
unsigned Win32Gdi::SetTextAlign(HDC dc, unsigned align) {
    return ::SetTextAlign(handles_->Dc(dc), align);
}
int Win32Gdi::SetStretchBltMode(HDC dc, int mode) {
    return ::SetStretchBltMode(handles_->Dc(dc), mode);
}

bool Win32Gdi::MoveToEx(HDC dc, std::int32_t x, std::int32_t y, POINT* previous) {
    ::POINT old{};
    const bool ok = ::MoveToEx(handles_->Dc(dc), x, y, &old) != FALSE;
    if (ok && previous != nullptr)
        *previous = POINT{static_cast<std::int32_t>(old.x), static_cast<std::int32_t>(old.y)};
    return ok;
}

bool Win32Gdi::GetCurrentPositionEx(HDC dc, POINT* position) {
    ::POINT p{};
    const bool ok = ::GetCurrentPositionEx(handles_->Dc(dc), &p) != FALSE;
    if (ok && position != nullptr)
        *position = POINT{static_cast<std::int32_t>(p.x), static_cast<std::int32_t>(p.y)};
    return ok;
}

bool Win32Gdi::SetBrushOrgEx(HDC dc, std::int32_t x, std::int32_t y, POINT* previous) {
    ::POINT p{};
    const bool ok = ::SetBrushOrgEx(handles_->Dc(dc), x, y, &p) != FALSE;
    if (ok && previous != nullptr)
        *previous = POINT{static_cast<std::int32_t>(p.x), static_cast<std::int32_t>(p.y)};
    return ok;
}

// Drawing --------------------------------------------------------------------------------------

bool Win32Gdi::LineTo(HDC dc, std::int32_t x, std::int32_t y) {
    return ::LineTo(handles_->Dc(dc), x, y) != FALSE;
}

bool Win32Gdi::Polyline(HDC dc, std::span<const POINT> points) {
    const std::vector<::POINT> p = ToWin(points);
    return ::Polyline(handles_->Dc(dc), p.data(), static_cast<int>(p.size())) != FALSE;
}

bool Win32Gdi::Polygon(HDC dc, std::span<const POINT> points) {
    const std::vector<::POINT> p = ToWin(points);
    return ::Polygon(handles_->Dc(dc), p.data(), static_cast<int>(p.size())) != FALSE;
}

bool Win32Gdi::Rectangle(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) {
    return ::Rectangle(handles_->Dc(dc), l, t, r, b) != FALSE;
}

bool Win32Gdi::RoundRect(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                         std::int32_t w, std::int32_t h) {
    return ::RoundRect(handles_->Dc(dc), l, t, r, b, w, h) != FALSE;
}

bool Win32Gdi::Ellipse(HDC dc, std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) {
    return ::Ellipse(handles_->Dc(dc), l, t, r, b) != FALSE;
}

int Win32Gdi::FillRect(HDC dc, const RECT& rect, HBRUSH brush) {
    const ::RECT r = ToWin(rect);
    return ::FillRect(handles_->Dc(dc), &r, As<::HBRUSH>(handles_->Unwrap(brush)));
}

int Win32Gdi::FrameRect(HDC dc, const RECT& rect, HBRUSH brush) {
    const ::RECT r = ToWin(rect);
    return ::FrameRect(handles_->Dc(dc), &r, As<::HBRUSH>(handles_->Unwrap(brush)));
}

bool Win32Gdi::InvertRect(HDC dc, const RECT& rect) {
    const ::RECT r = ToWin(rect);
    return ::InvertRect(handles_->Dc(dc), &r) != FALSE;
}

bool Win32Gdi::PatBlt(HDC dc, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                      DWORD rop) {
    return ::PatBlt(handles_->Dc(dc), x, y, w, h, rop) != FALSE;
}

COLORREF Win32Gdi::SetPixel(HDC dc, std::int32_t x, std::int32_t y, COLORREF color) {
    return ::SetPixel(handles_->Dc(dc), x, y, color);
}

COLORREF Win32Gdi::GetPixel(HDC dc, std::int32_t x, std::int32_t y) {
    return ::GetPixel(handles_->Dc(dc), x, y);
}

bool Win32Gdi::BitBlt(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                      HDC src, std::int32_t sx, std::int32_t sy, DWORD rop) {
    return ::BitBlt(handles_->Dc(dst), x, y, w, h, handles_->Dc(src), sx, sy, rop) != FALSE;
}

bool Win32Gdi::StretchBlt(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                          HDC src, std::int32_t sx, std::int32_t sy, std::int32_t sw,
                          std::int32_t sh, DWORD rop) {
    return ::StretchBlt(handles_->Dc(dst), x, y, w, h, handles_->Dc(src), sx, sy, sw, sh, rop) !=
           FALSE;
}

bool Win32Gdi::DrawEdge(HDC dc, RECT* rect, unsigned edge, unsigned flags) {
    ::RECT r = ToWin(*rect);
    const bool ok = ::DrawEdge(handles_->Dc(dc), &r, edge, flags) != FALSE;
    *rect = FromWin(r);
    return ok;
}

bool Win32Gdi::AlphaBlend(HDC dst, std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                          HDC src, std::int32_t sx, std::int32_t sy, std::int32_t sw,
                          std::int32_t sh, platform::BLENDFUNCTION blend) {
    const ::BLENDFUNCTION function{blend.BlendOp, blend.BlendFlags, blend.SourceConstantAlpha,
                                   blend.AlphaFormat};
    return ::GdiAlphaBlend(handles_->Dc(dst), x, y, w, h, handles_->Dc(src), sx, sy, sw, sh,
                           function) != FALSE;
}

// Regions --------------------------------------------------------------------------------------

HRGN Win32Gdi::CreateRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) {
    return handles_->Wrap(::CreateRectRgn(l, t, r, b));
}

HRGN Win32Gdi::CreateRoundRectRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b,
                                  std::int32_t w, std::int32_t h) {
    return handles_->Wrap(::CreateRoundRectRgn(l, t, r, b, w, h));
}

HRGN Win32Gdi::CreateEllipticRgn(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) {
    return handles_->Wrap(::CreateEllipticRgn(l, t, r, b));
}

HRGN Win32Gdi::CreatePolygonRgn(std::span<const POINT> points, int fillMode) {
    const std::vector<::POINT> p = ToWin(points);
    return handles_->Wrap(::CreatePolygonRgn(p.data(), static_cast<int>(p.size()), fillMode));
}

int Win32Gdi::CombineRgn(HRGN dest, HRGN src1, HRGN src2, int mode) {
    return ::CombineRgn(As<::HRGN>(handles_->Unwrap(dest)), As<::HRGN>(handles_->Unwrap(src1)),
                        As<::HRGN>(handles_->Unwrap(src2)), mode);
}

int Win32Gdi::OffsetRgn(HRGN region, std::int32_t dx, std::int32_t dy) {
    return ::OffsetRgn(As<::HRGN>(handles_->Unwrap(region)), dx, dy);
}

bool Win32Gdi::PtInRegion(HRGN region, std::int32_t x, std::int32_t y) {
    return ::PtInRegion(As<::HRGN>(handles_->Unwrap(region)), x, y) != FALSE;
}

int Win32Gdi::GetRgnBox(HRGN region, RECT* box) {
    ::RECT r{};
    const int kind = ::GetRgnBox(As<::HRGN>(handles_->Unwrap(region)), &r);
    if (box != nullptr) *box = FromWin(r);
    return kind;
}

bool Win32Gdi::FillRgn(HDC dc, HRGN region, HBRUSH brush) {
    return ::FillRgn(handles_->Dc(dc), As<::HRGN>(handles_->Unwrap(region)),
                     As<::HBRUSH>(handles_->Unwrap(brush))) != FALSE;
}

bool Win32Gdi::FrameRgn(HDC dc, HRGN region, HBRUSH brush, std::int32_t w, std::int32_t h) {
    return ::FrameRgn(handles_->Dc(dc), As<::HRGN>(handles_->Unwrap(region)),
                      As<::HBRUSH>(handles_->Unwrap(brush)), w, h) != FALSE;
}

bool Win32Gdi::PaintRgn(HDC dc, HRGN region) {
    return ::PaintRgn(handles_->Dc(dc), As<::HRGN>(handles_->Unwrap(region))) != FALSE;
}

int Win32Gdi::SelectClipRgn(HDC dc, HRGN region) {
    return ::SelectClipRgn(handles_->Dc(dc), As<::HRGN>(handles_->Unwrap(region)));
}

// Text -----------------------------------------------------------------------------------------

bool Win32Gdi::TextOut(HDC dc, std::int32_t x, std::int32_t y, std::string_view text) {
    const std::wstring wide = Widen(text);
    return ::TextOutW(handles_->Dc(dc), x, y, wide.c_str(), static_cast<int>(wide.size())) != FALSE;
}

bool Win32Gdi::GetTextExtentPoint32(HDC dc, std::string_view text, SIZE* size) {
    const std::wstring wide = Widen(text);
    ::SIZE s{};
    const bool ok = ::GetTextExtentPoint32W(handles_->Dc(dc), wide.c_str(),
                                            static_cast<int>(wide.size()), &s) != FALSE;
    if (ok && size != nullptr)
        *size = SIZE{static_cast<std::int32_t>(s.cx), static_cast<std::int32_t>(s.cy)};
    return ok;
}

bool Win32Gdi::GetTextMetrics(HDC dc, TEXTMETRIC* metrics) {
    ::TEXTMETRICW tm{};
    if (::GetTextMetricsW(handles_->Dc(dc), &tm) == FALSE) return false;
    if (metrics != nullptr) {
        metrics->tmHeight = tm.tmHeight;
        metrics->tmAscent = tm.tmAscent;
        metrics->tmDescent = tm.tmDescent;
        metrics->tmInternalLeading = tm.tmInternalLeading;
        metrics->tmExternalLeading = tm.tmExternalLeading;
        metrics->tmAveCharWidth = tm.tmAveCharWidth;
        metrics->tmMaxCharWidth = tm.tmMaxCharWidth;
        metrics->tmWeight = tm.tmWeight;
        metrics->tmItalic = tm.tmItalic;
        metrics->tmUnderlined = tm.tmUnderlined;
        metrics->tmStruckOut = tm.tmStruckOut;
        metrics->tmCharSet = tm.tmCharSet;
    }
    return true;
}

std::string Win32Gdi::GetTextFace(HDC dc) {
    wchar_t face[LF_FACESIZE] = {};
    if (::GetTextFaceW(handles_->Dc(dc), LF_FACESIZE, face) <= 0) return {};
    // Systems disagree on whether the returned count includes the null, so measure.
    return Narrow(face, static_cast<int>(::wcsnlen(face, LF_FACESIZE)));
}

// System colours and device capabilities -------------------------------------------------------

COLORREF Win32Gdi::GetSysColor(int index) {
    return ::GetSysColor(index);
}

bool Win32Gdi::SetSysColors(std::span<const int> indices, std::span<const COLORREF> colors) {
    if (indices.size() != colors.size()) return false;
    const std::vector<INT> i(indices.begin(), indices.end());
    const std::vector<::COLORREF> c(colors.begin(), colors.end());
    return ::SetSysColors(static_cast<int>(i.size()), i.data(), c.data()) != FALSE;
}

// No device context asks about the screen, as the controls do for its resolution.
int Win32Gdi::GetDeviceCaps(HDC dc, int index) {
    if (!dc) {
        ::HDC screen = ::GetDC(nullptr);
        const int value = ::GetDeviceCaps(screen, index);
        ::ReleaseDC(nullptr, screen);
        return value;
    }
    return ::GetDeviceCaps(handles_->Dc(dc), index);
}

std::uintptr_t Win32Gdi::NativeHandle(HDC dc) {
    return reinterpret_cast<std::uintptr_t>(handles_->Dc(dc));
}

HDC Win32Gdi::AdoptDC(void* nativeDC) {
    return handles_->WrapDc(static_cast<::HDC>(nativeDC));
}

void Win32Gdi::ReleaseAdoptedDC(HDC dc) {
    handles_->ForgetDc(dc);
}

void* Win32Gdi::NativeObject(HGDIOBJ object) const {
    return handles_->Unwrap(object);
}

}  // namespace korvex::platform::win32
