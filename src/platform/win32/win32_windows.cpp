// Win32Windows: the window tree over user32, its window procedure, focus and capture.
//
// Sections: class and handles · windows · geometry and z-order · state · focus and capture ·
// the window procedure

#include <algorithm>
#include <utility>

#include "platform/win32/win32_backend.hpp"
// After our headers: see win32_api.hpp.
#include "platform/win32/win32_api.hpp"

namespace korvex::platform::win32 {

namespace {

constexpr wchar_t kWindowClass[] = L"KorvexWindow";

::HWND H(void* native) {
    return static_cast<::HWND>(native);
}

LRESULT CALLBACK WindowProc(::HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<Win32Windows*>(::GetWindowLongPtrW(hwnd, 0));
    if (message == WM_NCCREATE) {
        self = static_cast<Win32Windows*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        ::SetWindowLongPtrW(hwnd, 0, reinterpret_cast<LONG_PTR>(self));
    }
    if (!self) return ::DefWindowProcW(hwnd, message, wParam, lParam);
    const LRESULT result = self->Message(hwnd, message, wParam, lParam);
    if (message == WM_NCDESTROY) ::SetWindowLongPtrW(hwnd, 0, 0);
    return result;
}

DWORD StyleOf(WindowStyle style) {
    if (style.child) return WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;
    DWORD ws = WS_POPUP | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;
    if (style.caption) ws |= WS_CAPTION | WS_SYSMENU;
    return ws;
}

RECT FromWin(const ::RECT& r) {
    return RECT{static_cast<std::int32_t>(r.left), static_cast<std::int32_t>(r.top),
                static_cast<std::int32_t>(r.right), static_cast<std::int32_t>(r.bottom)};
}

// Holds back focus (or capture) notifications for its lifetime.
struct Quiet {
    int& counter;
    explicit Quiet(int& c) : counter(c) { ++counter; }
    ~Quiet() { --counter; }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;
};

}  // namespace

void* CodeModule() {
    HMODULE module = nullptr;
    ::GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&CodeModule), &module);
    return module;
}

void RegisterWindowClass(bool add) {
    if (!add) {
        ::UnregisterClassW(kWindowClass, static_cast<HINSTANCE>(CodeModule()));
        return;
    }
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    // Double clicks arrive as such from real input; the client area is erased by the painting
    // itself (the window colour under OnPaint), so there is no class brush.
    wc.style = CS_DBLCLKS;
    wc.lpfnWndProc = WindowProc;
    wc.cbWndExtra = sizeof(void*);
    wc.hInstance = static_cast<HINSTANCE>(CodeModule());
    wc.hCursor = nullptr;  // WM_SETCURSOR sets the window's own
    wc.lpszClassName = kWindowClass;
    ::RegisterClassExW(&wc);
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

// ---------------------------------------------------------------------------------------------
// Class and handles

Win32Windows::Win32Windows(Win32Gdi& gdi, Win32Clock& clock, bool virtualInput)
    : gdi_(gdi),
      clock_(clock),
      virtualInput_(virtualInput),
      tip_(gdi, &clock,
           {.textOf =
                [this](std::uint32_t window) -> const std::string* {
                    const Window* w = Find(window);
                    return w ? &w->toolTip : nullptr;
                },
            .pointer =
                [this] {
                    POINT pointer;
                    GetCursorPos(&pointer);
                    return pointer;
                },
            .screen = [this] { return ScreenSize(); },
            .changed = [this] { PlaceToolTipWindow(); }}) {
    windows_[kDesktop].native = ::GetDesktopWindow();
    windows_[kDesktop].adopted = true;
}

// Windows still open go quietly: their handlers may be gone already.
Win32Windows::~Win32Windows() {
    if (tipWindow_) ::DestroyWindow(H(tipWindow_));
    for (auto& [id, w] : windows_) w.handler = nullptr;
    Quiet focus(quietFocus_), capture(quietCapture_);
    for (;;) {
        void* doomed = nullptr;
        for (const auto& [id, w] : windows_)
            if (!w.adopted && w.native) {
                doomed = w.native;
                break;
            }
        if (!doomed) break;
        if (!::DestroyWindow(H(doomed))) Forget(doomed);
    }
    for (auto& [id, w] : windows_)
        if (w.customCursor) ::DestroyCursor(static_cast<HCURSOR>(w.customCursor));
}

Win32Windows::Window* Win32Windows::Find(std::uint32_t id) {
    auto it = windows_.find(id);
    return it == windows_.end() ? nullptr : &it->second;
}

void* Win32Windows::Native(HWND window) const {
    auto it = windows_.find(window.value);
    return it == windows_.end() ? nullptr : it->second.native;
}

void* Win32Windows::NativeOrDesktop(HWND window) const {
    return window.value == 0 || window.value == kDesktop ? nullptr : Native(window);
}

HWND Win32Windows::FromNative(void* native) const {
    auto it = ids_.find(native);
    return it == ids_.end() ? HWND{} : HWND{it->second};
}

HWND Win32Windows::Adopt(void* native) {
    if (!native || !::IsWindow(H(native))) return {};
    if (auto it = ids_.find(native); it != ids_.end()) return HWND{it->second};
    const std::uint32_t id = nextId_;
    nextId_ += 4;
    Window& w = windows_[id];
    w.native = native;
    w.adopted = true;
    ids_[native] = id;
    return HWND{id};
}

void Win32Windows::Forget(void* native) {
    auto it = ids_.find(native);
    if (it == ids_.end()) return;
    const std::uint32_t id = it->second;
    tip_.Drop(id);
    clicks_.Forget(id);
    if (Window* w = Find(id); w && w->customCursor)
        ::DestroyCursor(static_cast<HCURSOR>(w->customCursor));
    windows_.erase(id);
    ids_.erase(it);
}

bool Win32Windows::InSubtree(std::uint32_t ancestor, std::uint32_t window) const {
    if (!ancestor || !window) return false;
    if (ancestor == window) return true;
    void* a = Native(HWND{ancestor});
    void* w = Native(HWND{window});
    return a && w && ::IsChild(H(a), H(w));
}

// Enabled itself and along its chain of parents (not owners).
bool Win32Windows::ChainEnabled(void* native) const {
    for (::HWND h = H(native); h;
         h = (::GetWindowLongW(h, GWL_STYLE) & WS_CHILD) ? ::GetParent(h) : nullptr)
        if (!::IsWindowEnabled(h)) return false;
    return true;
}

// ---------------------------------------------------------------------------------------------
// Windows

HWND Win32Windows::CreateWindow(HWND parent, const RECT& position, WindowStyle style,
                                WindowHandler* handler, std::string_view title) {
    ::HWND parentNative = nullptr;
    if (parent.value != 0 && parent.value != kDesktop) {
        parentNative = H(Native(parent));
        if (!parentNative) return {};
    }
    if (style.child && !parentNative) return {};
    // An owner is always a top-level window: a child named as owner stands for its top-level
    // ancestor, as the system has it.
    if (!style.child && parentNative) parentNative = ::GetAncestor(parentNative, GA_ROOT);

    DWORD exStyle = WS_EX_NOPARENTNOTIFY;
    if (!style.child && style.topmost) exStyle |= WS_EX_TOPMOST;
    const std::uint32_t id = nextId_;
    nextId_ += 4;
    Window& w = windows_[id];
    w.handler = handler;
    w.caption = style.caption && !style.child;
    creating_ = id;
    const std::int32_t width = std::max(position.Width(), 0);
    const std::int32_t height = std::max(position.Height(), 0);
    ::HWND native = ::CreateWindowExW(exStyle, kWindowClass, Widen(title).c_str(),
                                      StyleOf({style.child, style.topmost, w.caption}),
                                      position.left, position.top, width, height, parentNative,
                                      nullptr, static_cast<HINSTANCE>(CodeModule()), this);
    creating_ = 0;
    if (!native) {
        windows_.erase(id);
        return {};
    }
    // On top of its siblings (below topmost ones), as the portable platform places it.
    ::SetWindowPos(native, korvex_win32_native::kTop, 0, 0, 0, 0,
                   SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return HWND{id};
}

// Destroys the window, its children and the windows it owns. Their handlers hear nothing more:
// they may be half torn down; focus and capture held among them vanish.
bool Win32Windows::DestroyWindow(HWND window) {
    Window* w = Find(window);
    if (!w || window.value == kDesktop || w->adopted || !w->native) return false;
    ::HWND root = H(w->native);
    const ::HWND focus = ::GetFocus();
    bool focusDoomed = false;
    for (auto& [id, other] : windows_) {
        if (other.adopted || !other.native) continue;
        // ::GetParent walks parents of children and owners of top-level windows alike.
        bool doomed = false;
        for (::HWND h = H(other.native); h; h = ::GetParent(h))
            if (h == root) {
                doomed = true;
                break;
            }
        if (!doomed) continue;
        other.handler = nullptr;
        if (other.native == focus) focusDoomed = true;
        if (::GetCapture() == H(other.native)) implicitCapture_ = false;
    }
    if (focus && ::IsChild(root, focus)) focusDoomed = true;
    Quiet quiet(quietFocus_), quietCapture(quietCapture_);
    ::DestroyWindow(root);
    RestoreFocus(focusDoomed ? nullptr : focus);
    return true;
}

bool Win32Windows::IsWindow(HWND window) {
    const Window* w = Find(window);
    return w && (window.value == kDesktop || (w->native && ::IsWindow(H(w->native))));
}

// As the system's GetParent: the parent of a child window, the owner of an owned one.
HWND Win32Windows::GetParent(HWND window) {
    void* native = NativeOrDesktop(window);
    if (!native) return {};
    return FromNative(::GetParent(H(native)));
}

HWND Win32Windows::SetParent(HWND window, HWND newParent) {
    void* native = NativeOrDesktop(window);
    if (!native) return {};
    ::HWND parentNative = nullptr;
    if (newParent.value != 0 && newParent.value != kDesktop) {
        parentNative = H(Native(newParent));
        if (!parentNative) return {};
        if (parentNative == native || ::IsChild(H(native), parentNative)) return {};
    }
    const HWND previous = GetParent(window);
    LONG style = ::GetWindowLongW(H(native), GWL_STYLE);
    style = parentNative ? ((style & ~static_cast<LONG>(WS_POPUP)) | WS_CHILD)
                         : ((style & ~static_cast<LONG>(WS_CHILD)) | static_cast<LONG>(WS_POPUP));
    ::SetWindowLongW(H(native), GWL_STYLE, style);
    if (parentNative)
        ::SetWindowLongW(H(native), GWL_EXSTYLE,
                         ::GetWindowLongW(H(native), GWL_EXSTYLE) & ~WS_EX_TOPMOST);
    ::SetParent(H(native), parentNative);
    ::SetWindowPos(H(native), korvex_win32_native::kTop, 0, 0, 0, 0,
                   SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    return previous;
}

std::uintptr_t Win32Windows::NativeHandle(HWND window) {
    const Window* w = Find(window);
    return w ? reinterpret_cast<std::uintptr_t>(w->native) : 0;
}

bool Win32Windows::SetWindowText(HWND window, std::string_view text) {
    void* native = NativeOrDesktop(window);
    return native && ::SetWindowTextW(H(native), Widen(text).c_str()) != FALSE;
}

std::string Win32Windows::GetWindowText(HWND window) {
    void* native = Native(window);
    if (!native) return {};
    const int length = ::GetWindowTextLengthW(H(native));
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    const int got = ::GetWindowTextW(H(native), text.data(), length + 1);
    return Narrow(text.data(), got);
}

// ---------------------------------------------------------------------------------------------
// Geometry and z-order

bool Win32Windows::GetWindowRect(HWND window, RECT* screen) {
    void* native = Native(window);
    ::RECT r;
    if (!native || !screen || !::GetWindowRect(H(native), &r)) return false;
    *screen = FromWin(r);
    return true;
}

bool Win32Windows::GetClientRect(HWND window, RECT* client) {
    void* native = Native(window);
    ::RECT r;
    if (!native || !client || !::GetClientRect(H(native), &r)) return false;
    *client = FromWin(r);
    return true;
}

bool Win32Windows::AdjustWindowRect(RECT* rect, WindowStyle style) {
    if (!rect) return false;
    if (!style.caption || style.child) return true;
    ::RECT r{rect->left, rect->top, rect->right, rect->bottom};
    if (!::AdjustWindowRectEx(&r, StyleOf(style), FALSE, 0)) return false;
    *rect = FromWin(r);
    return true;
}

// The caption bar runs between the frame's sides, from the top frame down to the line above
// the client area; the close box sits 2 pixels in from its top and right edges.
RECT Win32Windows::CaptionRect(void* native) const {
    ::RECT window, client;
    ::GetWindowRect(H(native), &window);
    ::GetClientRect(H(native), &client);
    ::POINT origin{0, 0};
    ::ClientToScreen(H(native), &origin);
    const std::int32_t frame = static_cast<std::int32_t>(origin.x - window.left);
    const std::int32_t top = static_cast<std::int32_t>(origin.y - window.top);
    return {frame, frame, static_cast<std::int32_t>(window.right - window.left) - frame, top - 1};
}

RECT Win32Windows::CloseBoxRect(void* native) const {
    const RECT bar = CaptionRect(native);
    const std::int32_t right = bar.right - 2, top = bar.top + 2;
    return {right - (::GetSystemMetrics(SM_CXSIZE) - 2), top, right,
            top + ::GetSystemMetrics(SM_CYSIZE) - 4};
}

bool Win32Windows::GetTitleBarInfo(HWND window, TITLEBARINFO* info) {
    const Window* w = Find(window);
    if (!w || !w->caption || !info || !w->native) return false;
    ::RECT r;
    ::GetWindowRect(H(w->native), &r);
    const auto toScreen = [&r](RECT rect) {
        return RECT{rect.left + r.left, rect.top + r.top, rect.right + r.left, rect.bottom + r.top};
    };
    info->rcTitleBar = toScreen(CaptionRect(w->native));
    info->rcClose = toScreen(CloseBoxRect(w->native));
    info->closePressed = w->closePressed && w->closeHot;
    return true;
}

// A window already at the place asked for stays put: layouts place their windows again after
// every change, and the system's move is a round trip to the window server even when nothing
// moves.
bool Win32Windows::MoveWindow(HWND window, const RECT& position) {
    void* native = NativeOrDesktop(window);
    if (!native) return false;
    const std::int32_t width = std::max(position.Width(), 0);
    const std::int32_t height = std::max(position.Height(), 0);
    ::RECT now;
    if (::GetWindowRect(H(native), &now)) {
        // Parent-relative for a child, the screen's for a top-level window, as MoveWindow takes.
        ::HWND parent =
            (::GetWindowLongW(H(native), GWL_STYLE) & WS_CHILD) ? ::GetParent(H(native)) : nullptr;
        ::MapWindowPoints(nullptr, parent, reinterpret_cast<::POINT*>(&now), 2);
        if (now.left == position.left && now.top == position.top && now.right - now.left == width &&
            now.bottom - now.top == height)
            return true;
    }
    return ::MoveWindow(H(native), position.left, position.top, width, height, TRUE) != FALSE;
}

// The seam's insertAfter values are the system's; a window that is no sibling fails the call
// while the rest still applies. Showing and hiding go through ShowWindow for its focus rules.
bool Win32Windows::SetWindowPos(HWND window, HWND insertAfter, std::int32_t x, std::int32_t y,
                                std::int32_t cx, std::int32_t cy, unsigned flags) {
    void* native = NativeOrDesktop(window);
    if (!native) return false;
    ::HWND after = nullptr;
    bool ok = true;
    switch (insertAfter.value) {
        case 0:
            after = korvex_win32_native::kTop;
            break;
        case 1:
            after = korvex_win32_native::kBottom;
            break;
        case 0xFFFFFFFFu:
            after = korvex_win32_native::kTopmost;
            break;
        case 0xFFFFFFFEu:
            after = korvex_win32_native::kNoTopmost;
            break;
        default:
            after = H(Native(insertAfter));
            if (!after || ::GetAncestor(after, GA_PARENT) != ::GetAncestor(H(native), GA_PARENT)) {
                ok = false;
                after = nullptr;
            }
    }
    // A child is never topmost; the system would make the topmost request an ordinary top.
    if ((::GetWindowLongW(H(native), GWL_STYLE) & WS_CHILD) &&
        after == korvex_win32_native::kTopmost)
        after = korvex_win32_native::kTop;
    UINT nativeFlags = (flags & (SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER)) | SWP_NOACTIVATE;
    if (!ok) nativeFlags |= SWP_NOZORDER;
    ::SetWindowPos(H(native), after, x, y, std::max(cx, 0), std::max(cy, 0), nativeFlags);
    if (flags & SWP_SHOWWINDOW) ShowWindow(window, true);
    if (flags & SWP_HIDEWINDOW) ShowWindow(window, false);
    return ok;
}

POINT Win32Windows::ClientToScreen(HWND window, POINT client) {
    void* native = Native(window);
    if (!native) return client;
    ::POINT p{client.x, client.y};
    ::ClientToScreen(H(native), &p);
    return {static_cast<std::int32_t>(p.x), static_cast<std::int32_t>(p.y)};
}

POINT Win32Windows::ScreenToClient(HWND window, POINT screen) {
    void* native = Native(window);
    if (!native) return screen;
    ::POINT p{screen.x, screen.y};
    ::ScreenToClient(H(native), &p);
    return {static_cast<std::int32_t>(p.x), static_cast<std::int32_t>(p.y)};
}

// The system takes the region over and deletes it with the window or the next region.
bool Win32Windows::SetWindowRgn(HWND window, HRGN region) {
    void* native = NativeOrDesktop(window);
    if (!native) return false;
    return ::SetWindowRgn(H(native), static_cast<::HRGN>(gdi_.NativeObject(region)), TRUE) != 0;
}

// Topmost first. Among top-level windows only those of this platform count (Wine's and other
// programs' windows are no part of the seam's screen).
std::vector<HWND> Win32Windows::ZOrder(HWND parent) {
    std::vector<HWND> order;
    ::HWND first = nullptr;
    if (parent.value == 0 || parent.value == kDesktop) {
        first = ::GetTopWindow(nullptr);
    } else {
        void* native = Native(parent);
        if (!native) return order;
        first = ::GetWindow(H(native), GW_CHILD);
    }
    for (::HWND h = first; h; h = ::GetWindow(h, GW_HWNDNEXT))
        if (HWND id = FromNative(h)) order.push_back(id);
    return order;
}

bool Win32Windows::BringWindowToTop(HWND window) {
    return SetWindowPos(window, HWND{0}, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
}

// ---------------------------------------------------------------------------------------------
// State

// Returns whether the window was shown before. Hiding takes focus and capture from the window
// and its children, telling them; whatever the system then activates keeps the focus where it
// was.
bool Win32Windows::ShowWindow(HWND window, bool visible) {
    Window* w = Find(window);
    if (!w || window.value == kDesktop || !w->native) return false;
    ::HWND native = H(w->native);
    const bool was = (::GetWindowLongW(native, GWL_STYLE) & WS_VISIBLE) != 0;
    // Shown already: the system would do nothing the seam can see, at the cost of a repositioning
    // and a focus check, which are round trips to the window server.
    if (visible && was) return was;
    if (!visible) {
        w->closePressed = false;
        if (tip_.Tool() && InSubtree(window.value, tip_.Tool())) tip_.Drop(tip_.Tool());
        if (InSubtree(window.value, GetFocus().value)) DropFocus(true);
        if (InSubtree(window.value, GetCapture().value)) DropCapture(true);
    }
    if (!visible && !was) return was;
    const Quiet quiet(quietFocus_);
    const ::HWND focus = ::GetFocus();
    ::ShowWindow(native, visible ? SW_SHOWNA : SW_HIDE);
    RestoreFocus(focus);
    return was;
}

bool Win32Windows::IsWindowVisible(HWND window) {
    void* native = Native(window);
    return native && ::IsWindowVisible(H(native));
}

// Returns whether the window was disabled before. A disabled window cannot keep the focus, nor
// can it or its children keep the capture.
bool Win32Windows::EnableWindow(HWND window, bool enabled) {
    void* native = NativeOrDesktop(window);
    if (!native) return false;
    const bool wasDisabled = !::IsWindowEnabled(H(native));
    if (!enabled) {
        if (tip_.Tool() && InSubtree(window.value, tip_.Tool())) tip_.Drop(tip_.Tool());
        if (GetFocus() == window) DropFocus(true);
        if (InSubtree(window.value, GetCapture().value)) DropCapture(true);
    }
    // Unchanged, the system sends nothing and moves no focus: no need to ask where it is.
    if (enabled == wasDisabled) {
        const Quiet quiet(quietFocus_);
        const ::HWND focus = ::GetFocus();
        ::EnableWindow(H(native), enabled);
        RestoreFocus(focus);
    }
    return wasDisabled;
}

// Win32's IsWindowEnabled reads the window's own flag, not its parents'.
bool Win32Windows::IsWindowEnabled(HWND window) {
    void* native = Native(window);
    return native && ::IsWindowEnabled(H(native));
}

// Every property a control sets invalidates its window, and each InvalidateRect is a round trip
// to the window server: a window of ours already waiting for its WM_PAINT is not invalidated
// again, nor is a hidden one, whose invalidation the system drops. Showing a window exposes it,
// so a mark left from before it was hidden goes with the paint that follows.
void Win32Windows::InvalidateWindow(HWND window) {
    void* native = NativeOrDesktop(window);
    if (!native) return;
    Window* w = Find(window);
    if (w && !w->adopted) {
        if (w->paintPending || !::IsWindowVisible(H(native))) return;
        w->paintPending = true;
    }
    ::InvalidateRect(H(native), nullptr, FALSE);
}

SIZE Win32Windows::ScreenSize() {
    return {::GetSystemMetrics(SM_CXSCREEN), ::GetSystemMetrics(SM_CYSCREEN)};
}

// ---------------------------------------------------------------------------------------------
// Focus and capture

// Focus moves only to a shown, enabled window. The system tells the old window before the new
// one, and leaves it alone when the old window's handler moved the focus elsewhere meanwhile.
HWND Win32Windows::SetFocus(HWND window) {
    if (window.value == 0) {
        const HWND old = GetFocus();
        DropFocus(true);
        return old;
    }
    void* native = NativeOrDesktop(window);
    if (!native || !::IsWindowVisible(H(native)) || !ChainEnabled(native)) return {};
    const HWND old = GetFocus();
    if (old == window) return window;
    ::SetFocus(H(native));
    return old;
}

HWND Win32Windows::GetFocus() {
    return FromNative(::GetFocus());
}

void Win32Windows::DropFocus(bool notify) {
    if (!notify) {
        const Quiet quiet(quietFocus_);
        ::SetFocus(nullptr);
        return;
    }
    ::SetFocus(nullptr);
}

// Puts the focus back where it was after the system moved it on its own, without telling.
void Win32Windows::RestoreFocus(void* expected) {
    if (::GetFocus() == H(expected)) return;
    const Quiet quiet(quietFocus_);
    ::SetFocus(H(expected));
}

// A window taking the capture from another tells that one (WM_CAPTURECHANGED); SetCapture(0)
// releases it.
HWND Win32Windows::SetCapture(HWND window) {
    const HWND old = GetCapture();
    if (window.value == 0) {
        ReleaseCapture();
        return old;
    }
    void* native = NativeOrDesktop(window);
    if (!native) return {};
    implicitCapture_ = false;  // an explicit request outlives the button release
    if (old == window) return old;
    ::SetCapture(H(native));
    return old;
}

bool Win32Windows::ReleaseCapture() {
    implicitCapture_ = false;
    const Quiet quiet(quietCapture_);
    ::ReleaseCapture();
    return true;
}

HWND Win32Windows::GetCapture() {
    return FromNative(::GetCapture());
}

void Win32Windows::DropCapture(bool notify) {
    implicitCapture_ = false;
    if (!notify) {
        const Quiet quiet(quietCapture_);
        ::ReleaseCapture();
        return;
    }
    ::ReleaseCapture();
}

void Win32Windows::CaptureLost(std::uint32_t window) {
    Window* w = Find(window);
    if (!w) return;
    w->closePressed = false;
    if (w->handler) w->handler->OnCaptureLost();
}

// ---------------------------------------------------------------------------------------------
// The window procedure

std::intptr_t Win32Windows::Message(void* hwnd, unsigned message, std::uintptr_t wParam,
                                    std::intptr_t lParam) {
    ::HWND native = H(hwnd);
    if (message == WM_NCCREATE && creating_) {
        windows_[creating_].native = hwnd;
        ids_[hwnd] = creating_;
    }
    const std::uint32_t id = FromNative(hwnd).value;
    Window* w = Find(id);
    if (!w) return ::DefWindowProcW(native, message, wParam, lParam);

    switch (message) {
        case WM_NCDESTROY:
            Forget(hwnd);
            return 0;
        case WM_PAINT: {
            w->paintPending = false;
            PAINTSTRUCT ps;
            ::HDC dc = ::BeginPaint(native, &ps);
            if (dc) PaintClient(id, dc, {});
            ::EndPaint(native, &ps);
            return 0;
        }
        case WM_ERASEBKGND:
            return 1;  // the painting erases
        case WM_PRINTCLIENT:
            PaintClient(id, reinterpret_cast<void*>(wParam), {});
            return 0;
        case WM_PRINT:
            if ((lParam & PRF_CHECKVISIBLE) && !::IsWindowVisible(native)) return 0;
            ComposeInto(reinterpret_cast<void*>(wParam), hwnd, {}, nullptr);
            return 0;
        case WM_MOUSEMOVE:
        case WM_LBUTTONDOWN:
        case WM_LBUTTONUP:
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDOWN:
        case WM_RBUTTONUP:
        case WM_RBUTTONDBLCLK:
        case WM_MBUTTONDOWN:
        case WM_MBUTTONUP:
        case WM_MBUTTONDBLCLK:
            MouseMessage(id, message, wParam, lParam);
            return 0;
        case WM_KEYDOWN:
        case WM_KEYUP:
        case WM_CHAR:
        case WM_SYSKEYDOWN:
        case WM_SYSKEYUP:
        case WM_SYSCHAR:
            KeyMessage(id, message, wParam);
            return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            if (!quietFocus_ && w->handler) w->handler->OnFocus(message == WM_SETFOCUS);
            return 0;
        case WM_CAPTURECHANGED:
            if (!quietCapture_) {
                implicitCapture_ = false;
                CaptureLost(id);
            }
            return 0;
        case WM_SETCURSOR:
            if (LOWORD(lParam) == HTCLIENT && SetCursorFor(id)) return TRUE;
            break;
        case WM_MOUSELEAVE:
            // Real input only: off to a window that is not ours, the tip goes as on a move
            // onto no tool.
            if (!virtualInput_ && tip_.Tool() == id) {
                ::POINT p;
                ::GetCursorPos(&p);
                void* hit =
                    HitTest({static_cast<std::int32_t>(p.x), static_cast<std::int32_t>(p.y)});
                if (!hit || !FromNative(hit)) tip_.Track(0);
            }
            return 0;
        case WM_CLOSE:
            if (w->handler) w->handler->OnClose();
            return 0;
        case WM_ACTIVATE:
            return 0;  // activation alone does not move the focus (see the model)
        case WM_GETDLGCODE:
            return DLGC_WANTALLKEYS | DLGC_WANTCHARS | DLGC_WANTARROWS | DLGC_WANTTAB;
        case WM_NCLBUTTONDOWN:
        case WM_NCLBUTTONDBLCLK:
        case WM_NCRBUTTONDOWN:
        case WM_NCMBUTTONDOWN:
            // With the driver's input the frame is tracked here (Deliver): the system's modal
            // tracking loop would wait for a release that only the next script line sends.
            if (virtualInput_) return 0;
            break;
        default:
            break;
    }
    return ::DefWindowProcW(native, message, wParam, lParam);
}

}  // namespace korvex::platform::win32
