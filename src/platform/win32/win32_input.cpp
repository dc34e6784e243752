// Win32Windows: the pointer, keys, cursors, hit-testing, input routing and tooltips.
//
// Input comes two ways. The driver's (a script, a test) enters through Route*, which keeps the
// portable platform's rules (implicit capture, double clicks, the close box) and sends the
// window the message the system would have queued. Real input arrives queued and dispatched;
// the window procedure hands both to the handler the same way (MouseMessage, KeyMessage).
//
// Sections: pointer, keys and cursors · hit-testing · routing · messages · tooltips

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "platform/win32/win32_backend.hpp"
// After our headers: see win32_api.hpp.
#include "platform/win32/win32_api.hpp"

namespace korvex::platform::win32 {

namespace {

::HWND H(void* native) {
    return static_cast<::HWND>(native);
}

bool Inside(const RECT& r, POINT p) {
    return p.x >= r.left && p.x < r.right && p.y >= r.top && p.y < r.bottom;
}

bool IsChildStyle(::HWND h) {
    return (::GetWindowLongW(h, GWL_STYLE) & WS_CHILD) != 0;
}

constexpr wchar_t kToolTipClass[] = L"KorvexToolTip";

LRESULT CALLBACK ToolTipProc(::HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<Win32Windows*>(::GetWindowLongPtrW(hwnd, 0));
    if (!self) return ::DefWindowProcW(hwnd, message, wParam, lParam);
    return self->ToolTipMessage(hwnd, message, wParam, lParam);
}

}  // namespace

void RegisterToolTipClass(bool add) {
    if (!add) {
        ::UnregisterClassW(kToolTipClass, static_cast<HINSTANCE>(CodeModule()));
        return;
    }
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    wc.lpfnWndProc = ToolTipProc;
    wc.cbWndExtra = sizeof(void*);
    wc.hInstance = static_cast<HINSTANCE>(CodeModule());
    wc.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    wc.lpszClassName = kToolTipClass;
    ::RegisterClassExW(&wc);
}

namespace {

struct Quiet {
    int& counter;
    explicit Quiet(int& c) : counter(c) { ++counter; }
    ~Quiet() { --counter; }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;
};

}  // namespace

// ---------------------------------------------------------------------------------------------
// Pointer, keys and cursors

bool Win32Windows::GetCursorPos(POINT* screen) {
    if (!screen) return false;
    if (!virtualInput_) {
        ::POINT p;
        if (!::GetCursorPos(&p)) return false;
        cursor_ = {static_cast<std::int32_t>(p.x), static_cast<std::int32_t>(p.y)};
    }
    *screen = cursor_;
    return true;
}

// The pointer never leaves the screen.
bool Win32Windows::SetCursorPos(std::int32_t x, std::int32_t y) {
    const SIZE screen = ScreenSize();
    cursor_ = {std::clamp(x, 0, std::max(screen.cx - 1, 0)),
               std::clamp(y, 0, std::max(screen.cy - 1, 0))};
    if (!virtualInput_) ::SetCursorPos(cursor_.x, cursor_.y);
    return true;
}

std::int16_t Win32Windows::GetAsyncKeyState(int virtualKey) {
    bool down = held_.Down(virtualKey);
    if (!virtualInput_ && ::GetAsyncKeyState(virtualKey) < 0) down = true;
    return down ? std::numeric_limits<std::int16_t>::min() : std::int16_t{0};  // bit 15
}

int Win32Windows::ShiftState() const {
    return held_.ShiftState();
}

void Win32Windows::SetWindowCursor(HWND window, int shape,
                                   std::shared_ptr<const std::vector<std::uint32_t>> customPixels,
                                   SIZE customSize) {
    Window* w = Find(window);
    if (!w) return;
    w->cursor = shape;
    w->cursorPixels = std::move(customPixels);
    w->cursorSize = customSize;
    if (w->customCursor) ::DestroyCursor(static_cast<HCURSOR>(w->customCursor));
    w->customCursor = nullptr;
    if (shape != kCursorCustom || !w->cursorPixels || customSize.cx <= 0 || customSize.cy <= 0 ||
        w->cursorPixels->size() <
            static_cast<std::size_t>(customSize.cx) * static_cast<std::size_t>(customSize.cy))
        return;
    // A 32-bit colour bitmap with its alpha, and an empty mask; the hot spot in the middle, as
    // an icon used as a pointer has it.
    BITMAPV5HEADER header{};
    header.bV5Size = sizeof(header);
    header.bV5Width = customSize.cx;
    header.bV5Height = -customSize.cy;
    header.bV5Planes = 1;
    header.bV5BitCount = 32;
    header.bV5Compression = BI_BITFIELDS;
    header.bV5RedMask = 0x00FF0000;
    header.bV5GreenMask = 0x0000FF00;
    header.bV5BlueMask = 0x000000FF;
    header.bV5AlphaMask = 0xFF000000;
    void* bits = nullptr;
    ::HDC screen = ::GetDC(nullptr);
    ::HBITMAP colour = ::CreateDIBSection(screen, reinterpret_cast<BITMAPINFO*>(&header),
                                          DIB_RGB_COLORS, &bits, nullptr, 0);
    ::ReleaseDC(nullptr, screen);
    ::HBITMAP mask = ::CreateBitmap(customSize.cx, customSize.cy, 1, 1, nullptr);
    if (colour && bits && mask) {
        std::copy(
            w->cursorPixels->begin(),
            w->cursorPixels->begin() + static_cast<std::ptrdiff_t>(customSize.cx) * customSize.cy,
            static_cast<std::uint32_t*>(bits));
        ICONINFO info{};
        info.fIcon = FALSE;
        info.xHotspot = static_cast<DWORD>(customSize.cx / 2);
        info.yHotspot = static_cast<DWORD>(customSize.cy / 2);
        info.hbmMask = mask;
        info.hbmColor = colour;
        w->customCursor = ::CreateIconIndirect(&info);
    }
    if (colour) ::DeleteObject(colour);
    if (mask) ::DeleteObject(mask);
}

// The capture window's cursor, else the one of the window under the pointer; a window left at
// the default shows its parent's, and the arrow is what remains at the top.
int Win32Windows::CurrentCursor() {
    POINT pointer;
    GetCursorPos(&pointer);
    std::uint32_t start = GetCapture().value;
    if (!start)
        if (void* hit = HitTest(pointer)) start = FromNative(hit).value;
    for (::HWND h = H(Native(HWND{start})); h; h = IsChildStyle(h) ? ::GetParent(h) : nullptr)
        if (const Window* w = Find(FromNative(h).value); w && w->cursor != kCursorDefault)
            return w->cursor;
    return kCursorArrow;
}

// The host's pointer numbers 0 to 15 as the system's shapes.
void* Win32Windows::CursorHandle(std::uint32_t id) {
    int shape = kCursorArrow;
    void* custom = nullptr;
    for (::HWND h = H(Native(HWND{id})); h; h = IsChildStyle(h) ? ::GetParent(h) : nullptr)
        if (const Window* w = Find(FromNative(h).value); w && w->cursor != kCursorDefault) {
            shape = w->cursor;
            custom = w->customCursor;
            break;
        }
    if (shape == kCursorCustom) return custom ? custom : ::LoadCursorW(nullptr, IDC_ARROW);
    static const LPCWSTR kShapes[] = {IDC_ARROW,    IDC_ARROW,       IDC_CROSS,    IDC_IBEAM,
                                      IDC_ARROW,    IDC_SIZEALL,     IDC_SIZENESW, IDC_SIZENS,
                                      IDC_SIZENWSE, IDC_SIZEWE,      IDC_UPARROW,  IDC_WAIT,
                                      IDC_NO,       IDC_APPSTARTING, IDC_HELP,     IDC_SIZEALL};
    const LPCWSTR name = shape >= 0 && shape < 16 ? kShapes[shape] : IDC_ARROW;
    return ::LoadCursorW(nullptr, name);
}

bool Win32Windows::SetCursorFor(std::uint32_t id) {
    void* cursor = CursorHandle(id);
    if (!cursor) return false;
    ::SetCursor(static_cast<HCURSOR>(cursor));
    return true;
}

// ---------------------------------------------------------------------------------------------
// Hit-testing

bool Win32Windows::Contains(void* native, POINT screen) const {
    ::RECT r;
    if (!::GetWindowRect(H(native), &r)) return false;
    if (screen.x < r.left || screen.y < r.top || screen.x >= r.right || screen.y >= r.bottom)
        return false;
    ::HRGN region = ::CreateRectRgn(0, 0, 0, 0);
    bool inside = true;
    if (::GetWindowRgn(H(native), region) != ERROR)
        inside = ::PtInRegion(region, screen.x - r.left, screen.y - r.top) != FALSE;
    ::DeleteObject(region);
    return inside;
}

// Walks down the z-order, topmost first, into the visible window containing the point; a child
// is only reached through its parent's client area. A disabled window ends the walk. At the top
// only this platform's windows count.
void* Win32Windows::HitTest(POINT screen) const {
    ::HWND found = nullptr;
    ::HWND level = nullptr;
    for (;;) {
        ::HWND next = nullptr;
        for (::HWND h = level ? ::GetWindow(level, GW_CHILD) : ::GetTopWindow(nullptr); h;
             h = ::GetWindow(h, GW_HWNDNEXT)) {
            if (!level && !ids_.contains(h)) continue;
            if ((::GetWindowLongW(h, GWL_STYLE) & WS_VISIBLE) && Contains(h, screen)) {
                next = h;
                break;
            }
        }
        if (!next) return found;
        found = next;
        level = next;
        if (!::IsWindowEnabled(next)) return found;
        ::RECT client;
        ::GetClientRect(next, &client);
        ::POINT p{screen.x, screen.y};
        ::ScreenToClient(next, &p);
        if (p.x < 0 || p.y < 0 || p.x >= client.right || p.y >= client.bottom) return found;
    }
}

// A disabled child stands for nothing, so its parent is reported; a disabled top-level window
// still covers the desktop and is reported itself.
HWND Win32Windows::WindowFromPoint(POINT screen) {
    ::HWND hit = H(HitTest(screen));
    if (!hit) return HWND{kDesktop};
    if (!::IsWindowEnabled(hit) && IsChildStyle(hit)) hit = ::GetParent(hit);
    for (::HWND h = hit; h; h = ::GetParent(h))
        if (HWND id = FromNative(h)) return id;
    return HWND{kDesktop};
}

std::uint32_t Win32Windows::MouseTarget() {
    if (HWND capture = GetCapture()) return capture.value;
    void* hit = HitTest(cursor_);
    return hit && ChainEnabled(hit) ? FromNative(hit).value : 0;
}

// ---------------------------------------------------------------------------------------------
// Routing (the driver's input)

namespace {

UINT ButtonMessage(MouseEvent::Kind kind, int button) {
    const int index = button == kButtonRight ? 1 : button == kButtonMiddle ? 2 : 0;
    static const UINT kDown[] = {WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN};
    static const UINT kUp[] = {WM_LBUTTONUP, WM_RBUTTONUP, WM_MBUTTONUP};
    static const UINT kDouble[] = {WM_LBUTTONDBLCLK, WM_RBUTTONDBLCLK, WM_MBUTTONDBLCLK};
    switch (kind) {
        case MouseEvent::Kind::Down:
            return kDown[index];
        case MouseEvent::Kind::Up:
            return kUp[index];
        case MouseEvent::Kind::DoubleClick:
            return kDouble[index];
        case MouseEvent::Kind::Move:
            break;
    }
    return WM_MOUSEMOVE;
}

WPARAM MouseKeys(int buttons, int shift) {
    WPARAM keys = 0;
    if (buttons & kButtonLeft) keys |= MK_LBUTTON;
    if (buttons & kButtonRight) keys |= MK_RBUTTON;
    if (buttons & kButtonMiddle) keys |= MK_MBUTTON;
    if (shift & kShiftMask) keys |= MK_SHIFT;
    if (shift & kCtrlMask) keys |= MK_CONTROL;
    return keys;
}

}  // namespace

// Input on the frame of a captioned window (or while its close box is held) is the window
// manager's own; the window gets the client area's as the message the system would queue.
void Win32Windows::Deliver(std::uint32_t window, MouseEvent event) {
    Window* w = Find(window);
    if (!w || !w->native) return;
    ::RECT r;
    ::GetWindowRect(H(w->native), &r);
    const POINT inWindow{event.screen.x - static_cast<std::int32_t>(r.left),
                         event.screen.y - static_cast<std::int32_t>(r.top)};
    const POINT client = ScreenToClient(HWND{window}, event.screen);
    ::RECT area;
    ::GetClientRect(H(w->native), &area);
    const bool inClient =
        client.x >= 0 && client.y >= 0 && client.x < area.right && client.y < area.bottom;
    if (w->caption && (w->closePressed || !inClient)) {
        NonClientMouse(*w, event, inWindow);
        return;
    }
    if (!w->handler) return;
    const int held = event.kind == MouseEvent::Kind::Move ? event.button : held_.Buttons();
    injectedShift_ = event.shift;
    ::SendMessageW(H(w->native), ButtonMessage(event.kind, event.button),
                   MouseKeys(held, event.shift),
                   MAKELPARAM(static_cast<WORD>(client.x), static_cast<WORD>(client.y)));
    injectedShift_.reset();
}

// Only the close box takes input: pressed while the left button is down over it, released over
// it asks the window to close (WM_CLOSE), released elsewhere does nothing.
void Win32Windows::NonClientMouse(Window& w, const MouseEvent& event, POINT inWindow) {
    const bool inside = Inside(CloseBoxRect(w.native), inWindow);
    if (CloseBoxInput(w.closePressed, w.closeHot, event, inside))
        ::SendMessageW(H(w.native), WM_CLOSE, 0, 0);
}

// The tooltip follows the move once the window has seen it, so a window that sets the text of
// the object under the pointer has set it by then.
void Win32Windows::RouteMouseMove(POINT screen, std::int64_t time) {
    SetCursorPos(screen.x, screen.y);
    const std::uint32_t target = MouseTarget();
    if (target) {
        Deliver(target, MoveEvent(held_.Buttons(), ShiftState(), cursor_, time));
        if (Find(target)) SetCursorFor(target);
    }
    tip_.Track(Find(target) ? target : 0);
}

// As the portable platform: a press goes to the capture window or the window hit, which takes
// the capture until the last release; a second press of the same button on the same window
// within the double-click time and rectangle is a double click (and starts no further one).
void Win32Windows::RouteMouseButton(bool down, int button, int shift, std::int64_t time) {
    if (down) tip_.Press();
    held_.Button(down, button);
    const std::uint32_t target = MouseTarget();
    if (!target) {
        if (down) clicks_.Reset();
        return;
    }
    const MouseEvent event = clicks_.ButtonEvent(down, target, button, shift, cursor_, time);
    if (down) {
        if (!GetCapture()) {
            const Quiet quiet(quietCapture_);
            ::SetCapture(H(Native(HWND{target})));
            implicitCapture_ = true;
        }
        Deliver(target, event);
    } else {
        Deliver(target, event);
        if (implicitCapture_ && GetCapture().value == target && held_.Buttons() == 0)
            ReleaseCapture();
    }
}

void Win32Windows::TrackKey(KeyEvent::Kind kind, int keyCode) {
    held_.Key(kind, keyCode);
}

void Win32Windows::RouteKey(KeyEvent::Kind kind, int keyCode, int shift, std::int64_t) {
    TrackKey(kind, keyCode);
    const Window* w = Find(GetFocus().value);
    if (!w || !w->handler || !w->native) return;
    const UINT message = kind == KeyEvent::Kind::Down ? WM_KEYDOWN
                         : kind == KeyEvent::Kind::Up ? WM_KEYUP
                                                      : WM_CHAR;
    // Repeat count 1; a release has the previous-state and transition bits.
    const LPARAM lParam = kind == KeyEvent::Kind::Up ? static_cast<LPARAM>(0xC0000001u) : 1;
    injectedShift_ = shift;
    ::SendMessageW(H(w->native), message, static_cast<WPARAM>(keyCode), lParam);
    injectedShift_.reset();
}

// ---------------------------------------------------------------------------------------------
// Messages

void Win32Windows::MouseMessage(std::uint32_t id, unsigned message, std::uintptr_t wParam,
                                std::intptr_t lParam) {
    const bool injected = injectedShift_.has_value();
    MouseEvent event;
    switch (message) {
        case WM_MOUSEMOVE:
            event.kind = MouseEvent::Kind::Move;
            break;
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN:
        case WM_MBUTTONDOWN:
            event.kind = MouseEvent::Kind::Down;
            break;
        case WM_LBUTTONUP:
        case WM_RBUTTONUP:
        case WM_MBUTTONUP:
            event.kind = MouseEvent::Kind::Up;
            break;
        default:
            event.kind = MouseEvent::Kind::DoubleClick;
    }
    int held = 0;
    if (wParam & MK_LBUTTON) held |= kButtonLeft;
    if (wParam & MK_RBUTTON) held |= kButtonRight;
    if (wParam & MK_MBUTTON) held |= kButtonMiddle;
    switch (message) {
        case WM_MOUSEMOVE:
            event.button = held;
            break;
        case WM_RBUTTONDOWN:
        case WM_RBUTTONUP:
        case WM_RBUTTONDBLCLK:
            event.button = kButtonRight;
            break;
        case WM_MBUTTONDOWN:
        case WM_MBUTTONUP:
        case WM_MBUTTONDBLCLK:
            event.button = kButtonMiddle;
            break;
        default:
            event.button = kButtonLeft;
    }
    event.shift = injected ? *injectedShift_
                           : ((wParam & MK_SHIFT) ? kShiftMask : 0) |
                                 ((wParam & MK_CONTROL) ? kCtrlMask : 0) |
                                 (::GetKeyState(VK_MENU) < 0 ? kAltMask : 0);
    event.client = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    event.screen = ClientToScreen(HWND{id}, event.client);
    event.time = clock_.Now();

    Window* w = Find(id);
    if (!w) return;
    if (injected) {
        if (w->handler) w->handler->OnMouse(event);
        return;
    }
    // Real input: the implicit capture and the tooltip as the driver's input has them.
    ::HWND native = H(w->native);
    if (event.kind == MouseEvent::Kind::Down || event.kind == MouseEvent::Kind::DoubleClick) {
        tip_.Press();
        if (!::GetCapture()) {
            const Quiet quiet(quietCapture_);
            ::SetCapture(native);
            implicitCapture_ = true;
        }
    }
    if (w->handler) w->handler->OnMouse(event);
    if (event.kind == MouseEvent::Kind::Move) {
        cursor_ = event.screen;
        tip_.Track(Find(id) ? id : 0);
        // WM_MOUSELEAVE then tells when the pointer left for a window not of ours.
        TRACKMOUSEEVENT track{sizeof(track), TME_LEAVE, native, 0};
        ::TrackMouseEvent(&track);
    } else if (event.kind == MouseEvent::Kind::Up && implicitCapture_ && ::GetCapture() == native &&
               held == 0) {
        ReleaseCapture();
    }
}

void Win32Windows::KeyMessage(std::uint32_t id, unsigned message, std::uintptr_t wParam) {
    KeyEvent event;
    switch (message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            event.kind = KeyEvent::Kind::Down;
            break;
        case WM_KEYUP:
        case WM_SYSKEYUP:
            event.kind = KeyEvent::Kind::Up;
            break;
        default:
            event.kind = KeyEvent::Kind::Press;
    }
    event.keyCode = static_cast<int>(wParam);
    event.shift = injectedShift_ ? *injectedShift_
                                 : (::GetKeyState(VK_SHIFT) < 0 ? kShiftMask : 0) |
                                       (::GetKeyState(VK_CONTROL) < 0 ? kCtrlMask : 0) |
                                       (::GetKeyState(VK_MENU) < 0 ? kAltMask : 0);
    event.time = clock_.Now();
    if (const Window* w = Find(id); w && w->handler) w->handler->OnKey(event);
}

// ---------------------------------------------------------------------------------------------
// Tooltips: ToolTipState keeps the tip with the portable platform's steps and timing; here the
// text lives with its window, and a shown tip gets a window of its own on the real screen.

void Win32Windows::SetToolTip(HWND window, std::string_view text) {
    Window* w = Find(window);
    if (!w || window.value == kDesktop || w->toolTip == text) return;
    w->toolTip = std::string(text);
    tip_.TextChanged(window.value, text);
}

std::string Win32Windows::GetToolTip(HWND window) {
    const Window* w = Find(window);
    return w ? w->toolTip : std::string();
}

// Made when a tip first shows; never activated, never in the way of the pointer, and no part
// of this platform's windows (hit-testing, z-order and composition leave it out: the composed
// screen paints the tip itself).
void Win32Windows::PlaceToolTipWindow() {
    if (!tip_.Shown()) {
        if (tipWindow_) ::ShowWindow(H(tipWindow_), SW_HIDE);
        return;
    }
    if (!tipWindow_) {
        tipWindow_ = ::CreateWindowExW(
            WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE | WS_EX_TRANSPARENT, kToolTipClass,
            L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, static_cast<HINSTANCE>(CodeModule()),
            nullptr);
        if (!tipWindow_) return;
        ::SetWindowLongPtrW(H(tipWindow_), 0, reinterpret_cast<LONG_PTR>(this));
    }
    const RECT& r = tip_.Screen();
    ::SetWindowPos(H(tipWindow_), korvex_win32_native::kTopmost, r.left, r.top, r.Width(),
                   r.Height(), SWP_NOACTIVATE | SWP_SHOWWINDOW);
    ::InvalidateRect(H(tipWindow_), nullptr, FALSE);
}

std::intptr_t Win32Windows::ToolTipMessage(void* hwnd, unsigned message, std::uintptr_t wParam,
                                           std::intptr_t lParam) {
    switch (message) {
        case WM_NCHITTEST:
            return HTTRANSPARENT;
        case WM_MOUSEACTIVATE:
            return MA_NOACTIVATE;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT: {
            PAINTSTRUCT ps;
            ::HDC dc = ::BeginPaint(H(hwnd), &ps);
            if (dc && tip_.Shown()) {
                // The tip paints in screen coordinates.
                ::SetViewportOrgEx(dc, -tip_.Screen().left, -tip_.Screen().top, nullptr);
                PaintToolTip(dc);
            }
            ::EndPaint(H(hwnd), &ps);
            return 0;
        }
        default:
            return ::DefWindowProcW(H(hwnd), message, wParam, lParam);
    }
}

void Win32Windows::PaintToolTip(void* nativeDC) {
    if (!tip_.Shown()) return;
    const HDC dc = gdi_.AdoptDC(nativeDC);
    tip_.Paint(dc);
    gdi_.ReleaseAdoptedDC(dc);
}

}  // namespace korvex::platform::win32
