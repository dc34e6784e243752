// Win32Windows: painting and composition. A window's client area is painted into a 32-bit DIB
// of ours (erased with the window colour, then the handler's OnPaint through Win32Gdi) and
// copied to the device context that asked: BeginPaint's, WM_PRINTCLIENT's, or a composition's.
//
// Composition does what WM_PRINT with PRF_CHILDREN would, which Wine leaves out: the window's
// frame and client area, then its visible children bottom to top, each clipped by its parents'
// client areas and its own region. It works under Wine's null display, where nothing can be read
// back from the screen, so the driver and the tests get the windows' pixels this way.

#include <algorithm>
#include <vector>

#include "platform/win32/win32_backend.hpp"
// After our headers: see win32_api.hpp.
#include "platform/win32/win32_api.hpp"

namespace korvex::platform::win32 {

namespace {

::HWND H(void* native) {
    return static_cast<::HWND>(native);
}

// A memory device context with a top-down 32-bit DIB selected, freed with the object.
struct Canvas {
    ::HDC dc = nullptr;
    ::HBITMAP bitmap = nullptr;
    ::HGDIOBJ previous = nullptr;
    std::uint32_t* bits = nullptr;

    Canvas(::HDC reference, int width, int height) {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof(info.bmiHeader);
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        void* pixels = nullptr;
        bitmap = ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
        dc = ::CreateCompatibleDC(reference);
        if (bitmap && dc) previous = ::SelectObject(dc, bitmap);
        bits = static_cast<std::uint32_t*>(pixels);
    }
    ~Canvas() {
        if (dc && previous) ::SelectObject(dc, previous);
        if (dc) ::DeleteDC(dc);
        if (bitmap) ::DeleteObject(bitmap);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    [[nodiscard]] bool Ok() const { return dc && bitmap && bits; }
};

}  // namespace

void Win32Windows::PaintClient(std::uint32_t id, void* nativeDC, POINT at) {
    Window* w = Find(id);
    if (!w || !w->native) return;
    ::RECT client;
    ::GetClientRect(H(w->native), &client);
    const std::int32_t width = static_cast<std::int32_t>(client.right);
    const std::int32_t height = static_cast<std::int32_t>(client.bottom);
    if (width <= 0 || height <= 0) return;
    const HDC dc = gdi_.CreateCompatibleDC({});
    const HBITMAP bitmap = gdi_.CreateDIBSection32(width, height);
    if (dc && bitmap) {
        const ScopedSelect select(gdi_, dc, bitmap);
        const RECT area{0, 0, width, height};
        const HBRUSH erase = gdi_.CreateSolidBrush(gdi_.GetSysColor(COLOR_WINDOW));
        gdi_.FillRect(dc, area, erase);
        gdi_.DeleteObject(erase);
        if (w->handler) w->handler->OnPaint(dc, area);
        ::BitBlt(static_cast<::HDC>(nativeDC), at.x, at.y, width, height,
                 reinterpret_cast<::HDC>(gdi_.NativeHandle(dc)), 0, 0, SRCCOPY);
    }
    if (dc) gdi_.DeleteDC(dc);
    if (bitmap) gdi_.DeleteObject(bitmap);
}

// The system's look of a fixed dialog frame: the raised edge, the caption bar drawn by
// DrawCaption and the close box by DrawFrameControl, window coordinates.
void Win32Windows::PaintFrame(std::uint32_t id, void* nativeDC) {
    Window* w = Find(id);
    if (!w || !w->native) return;
    ::HDC dc = static_cast<::HDC>(nativeDC);
    ::RECT window;
    ::GetWindowRect(H(w->native), &window);
    ::RECT all{0, 0, window.right - window.left, window.bottom - window.top};
    ::FillRect(dc, &all, ::GetSysColorBrush(COLOR_BTNFACE));
    ::DrawEdge(dc, &all, EDGE_RAISED, BF_RECT);
    const RECT bar = CaptionRect(w->native);
    ::RECT caption{bar.left, bar.top, bar.right, bar.bottom};
    ::DrawCaption(H(w->native), dc, &caption, DC_ACTIVE | DC_TEXT | DC_GRADIENT);
    const RECT close = CloseBoxRect(w->native);
    ::RECT box{close.left, close.top, close.right, close.bottom};
    ::DrawFrameControl(dc, &box, DFC_CAPTION,
                       DFCS_CAPTIONCLOSE | (w->closePressed && w->closeHot ? DFCS_PUSHED : 0));
}

// The window at origin (target coordinates) with its visible children, clipped by clip (target
// coordinates, none for null), its rectangle and its region. Foreign windows paint themselves
// through WM_PRINT.
void Win32Windows::ComposeInto(void* nativeDC, void* native, POINT origin, void* clip) {
    ::HDC target = static_cast<::HDC>(nativeDC);
    ::HWND hwnd = H(native);
    ::RECT r;
    if (!::GetWindowRect(hwnd, &r)) return;
    const int width = r.right - r.left, height = r.bottom - r.top;
    if (width <= 0 || height <= 0) return;

    ::HRGN own = ::CreateRectRgn(origin.x, origin.y, origin.x + width, origin.y + height);
    if (clip) ::CombineRgn(own, own, static_cast<::HRGN>(clip), RGN_AND);
    ::HRGN shaped = ::CreateRectRgn(0, 0, 0, 0);
    if (::GetWindowRgn(hwnd, shaped) != ERROR) {
        ::OffsetRgn(shaped, origin.x, origin.y);
        ::CombineRgn(own, own, shaped, RGN_AND);
    }
    ::DeleteObject(shaped);
    ::RECT box;
    if (::GetRgnBox(own, &box) == NULLREGION) {
        ::DeleteObject(own);
        return;
    }

    // The client area's corner in window coordinates.
    ::POINT inner{0, 0};
    ::ClientToScreen(hwnd, &inner);
    const POINT offset{static_cast<std::int32_t>(inner.x - r.left),
                       static_cast<std::int32_t>(inner.y - r.top)};
    {
        Canvas canvas(target, width, height);
        if (canvas.Ok()) {
            const std::uint32_t id = FromNative(native).value;
            const Window* w = Find(id);
            if (w && !w->adopted) {
                if (w->caption) PaintFrame(id, canvas.dc);
                PaintClient(id, canvas.dc, offset);
            } else {
                ::SendMessageW(hwnd, WM_PRINT, reinterpret_cast<WPARAM>(canvas.dc),
                               PRF_NONCLIENT | PRF_CLIENT | PRF_ERASEBKGND);
            }
            ::SelectClipRgn(target, own);
            ::BitBlt(target, origin.x, origin.y, width, height, canvas.dc, 0, 0, SRCCOPY);
            ::SelectClipRgn(target, nullptr);
        }
    }

    // The children, inside the client area, bottom to top. Painting may have changed the tree.
    if (::IsWindow(hwnd)) {
        ::RECT client;
        ::GetClientRect(hwnd, &client);
        const POINT at{origin.x + offset.x, origin.y + offset.y};
        ::HRGN area = ::CreateRectRgn(at.x, at.y, at.x + client.right, at.y + client.bottom);
        ::CombineRgn(own, own, area, RGN_AND);
        ::DeleteObject(area);
        std::vector<::HWND> children;
        for (::HWND c = ::GetWindow(hwnd, GW_CHILD); c; c = ::GetWindow(c, GW_HWNDNEXT))
            children.push_back(c);
        for (auto it = children.rbegin(); it != children.rend(); ++it) {
            if (!::IsWindow(*it) || !(::GetWindowLongW(*it, GWL_STYLE) & WS_VISIBLE)) continue;
            ::RECT child;
            ::GetWindowRect(*it, &child);
            ComposeInto(target, *it,
                        {at.x + static_cast<std::int32_t>(child.left - inner.x),
                         at.y + static_cast<std::int32_t>(child.top - inner.y)},
                        own);
        }
    }
    ::DeleteObject(own);
}

bool Win32Windows::Print(HWND window, void* nativeDC, POINT origin) {
    void* native = Native(window);
    if (!native || window.value == kDesktop || !nativeDC) return false;
    ComposeInto(nativeDC, native, origin, nullptr);
    return true;
}

// The desktop colour first; then this platform's shown top-level windows bottom to top and the
// tooltip, or the one window asked for (shown or not).
std::vector<std::uint32_t> Win32Windows::Render(SIZE size, void* native) {
    std::vector<std::uint32_t> pixels;
    if (size.cx <= 0 || size.cy <= 0) return pixels;
    ::HDC screen = ::GetDC(nullptr);
    {
        Canvas canvas(screen, size.cx, size.cy);
        if (canvas.Ok()) {
            ::RECT all{0, 0, size.cx, size.cy};
            ::FillRect(canvas.dc, &all, ::GetSysColorBrush(COLOR_BACKGROUND));
            if (!native) {
                std::vector<::HWND> order;
                for (::HWND h = ::GetTopWindow(nullptr); h; h = ::GetWindow(h, GW_HWNDNEXT))
                    if (ids_.contains(h) && (::GetWindowLongW(h, GWL_STYLE) & WS_VISIBLE))
                        order.push_back(h);
                for (auto it = order.rbegin(); it != order.rend(); ++it) {
                    ::RECT r;
                    ::GetWindowRect(*it, &r);
                    ComposeInto(
                        canvas.dc, *it,
                        {static_cast<std::int32_t>(r.left), static_cast<std::int32_t>(r.top)},
                        nullptr);
                }
                PaintToolTip(canvas.dc);
            } else {
                ComposeInto(canvas.dc, native, {}, nullptr);
            }
            ::GdiFlush();
            pixels.assign(canvas.bits,
                          canvas.bits + static_cast<std::ptrdiff_t>(size.cx) * size.cy);
            for (std::uint32_t& pixel : pixels) pixel &= 0x00FFFFFFu;
        }
    }
    ::ReleaseDC(nullptr, screen);
    return pixels;
}

std::vector<std::uint32_t> Win32Windows::ComposeScreen() {
    return Render(ScreenSize(), nullptr);
}

std::vector<std::uint32_t> Win32Windows::ComposeWindow(HWND window) {
    if (window.value == kDesktop) return ComposeScreen();
    void* native = Native(window);
    ::RECT r;
    if (!native || !::GetWindowRect(H(native), &r)) return {};
    return Render(
        {static_cast<std::int32_t>(r.right - r.left), static_cast<std::int32_t>(r.bottom - r.top)},
        native);
}

}  // namespace korvex::platform::win32
