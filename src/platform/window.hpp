#pragma once
// The window seam, the face of the platform that controls see: windows with screen rectangles,
// z-order, regions, visibility, enabled state, focus, capture and cursors; the pointer and key
// state; timers; and the event loop with posted work, waits and nested modal loops. Shaped like
// the Win32 window manager the controls were written against; sim::SimWindows is the portable
// implementation, a Windows backend forwards to user32.
//
// What only a test, a script or a tool does to the platform (moving virtual time, feeding input,
// composing the screen into pixels) is the other face, platform/driver.hpp; controls never
// include it.
//
// Coordinates: "screen" = pixels of the virtual screen, origin top-left; "client" = pixels
// relative to the top-left corner of a window's client area (inside the frame of a captioned
// window, the window's own corner otherwise). Every field says which.
//
// Sections: handles and events · window handler · the Windows interface · helpers

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdi.hpp"

namespace korvex::platform {

// ---------------------------------------------------------------------------------------------
// Handles and events

struct HWND {
    std::uint32_t value = 0;
    explicit constexpr operator bool() const { return value != 0; }
    friend bool operator==(const HWND&, const HWND&) = default;
};

// Mouse buttons and shift state, valued as the host's event arguments are.
inline constexpr int kButtonLeft = 1;
inline constexpr int kButtonRight = 2;
inline constexpr int kButtonMiddle = 4;
inline constexpr int kShiftMask = 1;
inline constexpr int kCtrlMask = 2;
inline constexpr int kAltMask = 4;

// Virtual key codes used by the library.
inline constexpr int VK_LBUTTON = 0x01;
inline constexpr int VK_RBUTTON = 0x02;
inline constexpr int VK_MBUTTON = 0x04;
inline constexpr int VK_TAB = 0x09;
inline constexpr int VK_RETURN = 0x0D;
inline constexpr int VK_SHIFT = 0x10;
inline constexpr int VK_CONTROL = 0x11;
inline constexpr int VK_MENU = 0x12;
inline constexpr int VK_ESCAPE = 0x1B;
inline constexpr int VK_SPACE = 0x20;
inline constexpr int VK_PRIOR = 0x21;
inline constexpr int VK_NEXT = 0x22;
inline constexpr int VK_END = 0x23;
inline constexpr int VK_HOME = 0x24;
inline constexpr int VK_LEFT = 0x25;
inline constexpr int VK_UP = 0x26;
inline constexpr int VK_RIGHT = 0x27;
inline constexpr int VK_DOWN = 0x28;
inline constexpr int VK_INSERT = 0x2D;
inline constexpr int VK_DELETE = 0x2E;

// How long a scroll bar waits before a held arrow or page area repeats, and between repeats, as
// the system's scroll bars do.
inline constexpr int kScrollFirstDelayMs = 200;
inline constexpr int kScrollRepeatDelayMs = 50;

struct MouseEvent {
    enum class Kind { Move, Down, Up, DoubleClick };
    Kind kind = Kind::Move;
    int button = 0;  // the button that went down or up; for Move the buttons held
    int shift = 0;
    POINT client;  // relative to the receiving window
    POINT screen;
    std::int64_t time = 0;  // virtual milliseconds
};

struct KeyEvent {
    enum class Kind { Down, Up, Press };
    Kind kind = Kind::Down;
    int keyCode = 0;  // virtual key for Down/Up, character code for Press
    int shift = 0;
    std::int64_t time = 0;
};

// Standard cursor shapes, numbered as the host's MousePointer values 0 to 15; 99 is a custom
// cursor made from a picture.
inline constexpr int kCursorDefault = 0;
inline constexpr int kCursorArrow = 1;
inline constexpr int kCursorCustom = 99;

// ---------------------------------------------------------------------------------------------
// Window handler: what a window's owner (a form, a control surface, a picture box) receives.
// All calls arrive on the UI thread from the event loop.

class WindowHandler {
  public:
    virtual ~WindowHandler() = default;
    virtual void OnMouse(const MouseEvent& event) { (void)event; }
    virtual void OnKey(const KeyEvent& event) { (void)event; }
    virtual void OnFocus(bool gained) { (void)gained; }
    // Capture ended without a button release reaching the window (another window took it).
    virtual void OnCaptureLost() {}
    // The user asked the window to close (its close box). Whether it closes is the handler's
    // decision, as WM_CLOSE leaves it to the window procedure.
    virtual void OnClose() {}
    // The window's pixels are needed (for the screen or a snapshot): draw the client area, client
    // size, into dc; the platform draws the frame and caption bar of a captioned window itself.
    // Windows with a persistent bitmap just copy it.
    virtual void OnPaint(HDC dc, const RECT& client) {
        (void)dc;
        (void)client;
    }
};

// ---------------------------------------------------------------------------------------------
// The Windows interface

struct WindowStyle {
    bool child = false;  // child windows are positioned relative to their parent's client area
    bool topmost = false;
    // A top-level window with the platform's frame around it: a fixed 3D border, a caption bar
    // showing the window text, and a close box whose click reaches the handler as OnClose. The
    // frame is non-client area: the client area, its coordinates and the children are inside it.
    bool caption = false;
};

// Where the platform draws a captioned window's title bar, screen coordinates (Win32's
// GetTitleBarInfoEx, with the close button named).
struct TITLEBARINFO {
    RECT rcTitleBar;
    RECT rcClose;
    bool closePressed = false;  // the close box shows pressed now
};

// SetWindowPos flags.
inline constexpr unsigned SWP_NOSIZE = 0x0001;
inline constexpr unsigned SWP_NOMOVE = 0x0002;
inline constexpr unsigned SWP_NOZORDER = 0x0004;
inline constexpr unsigned SWP_NOACTIVATE = 0x0010;
inline constexpr unsigned SWP_SHOWWINDOW = 0x0040;
inline constexpr unsigned SWP_HIDEWINDOW = 0x0080;
inline const HWND HWND_TOP{0};
inline const HWND HWND_BOTTOM{1};
inline const HWND HWND_TOPMOST{0xFFFFFFFF};
inline const HWND HWND_NOTOPMOST{0xFFFFFFFE};

class Windows {
  public:
    virtual ~Windows() = default;

    // Windows. A new window is hidden and enabled, on top of its siblings (below topmost ones).
    // Position is relative to the parent's client area for child windows, screen otherwise.
    virtual HWND CreateWindow(HWND parent, const RECT& position, WindowStyle style,
                              WindowHandler* handler, std::string_view title = {}) = 0;
    virtual bool DestroyWindow(HWND window) = 0;  // destroys its children too
    virtual bool IsWindow(HWND window) = 0;
    virtual HWND GetParent(HWND window) = 0;
    // Makes the window a child of newParent (keeping its parent-relative position) and returns
    // the old parent; refuses a parent inside the window itself.
    virtual HWND SetParent(HWND window, HWND newParent) = 0;
    virtual HWND GetDesktopWindow() = 0;
    // The window as the system behind this seam knows it, for a control's hWnd property.
    [[nodiscard]] virtual std::uintptr_t NativeHandle(HWND window) = 0;
    virtual bool SetWindowText(HWND window, std::string_view text) = 0;
    virtual std::string GetWindowText(HWND window) = 0;

    // Geometry.
    virtual bool GetWindowRect(HWND window, RECT* screen) = 0;
    virtual bool GetClientRect(HWND window, RECT* client) = 0;  // {0, 0, w, h}
    // Grows a client rectangle to the window rectangle a window of that style needs.
    virtual bool AdjustWindowRect(RECT* rect, WindowStyle style) = 0;
    // False for a window without a caption bar.
    virtual bool GetTitleBarInfo(HWND window, TITLEBARINFO* info) = 0;
    virtual bool MoveWindow(HWND window, const RECT& position) = 0;  // parent-relative for children
    virtual bool SetWindowPos(HWND window, HWND insertAfter, std::int32_t x, std::int32_t y,
                              std::int32_t cx, std::int32_t cy, unsigned flags) = 0;
    virtual POINT ClientToScreen(HWND window, POINT client) = 0;
    virtual POINT ScreenToClient(HWND window, POINT screen) = 0;
    // Takes ownership of the region (as Win32 does); a zero handle removes the region.
    virtual bool SetWindowRgn(HWND window, HRGN region) = 0;
    // Children of a parent (or the top-level windows for a zero parent), topmost first.
    virtual std::vector<HWND> ZOrder(HWND parent) = 0;
    virtual bool BringWindowToTop(HWND window) = 0;

    // State.
    virtual bool ShowWindow(HWND window, bool visible) = 0;
    virtual bool IsWindowVisible(HWND window) = 0;  // itself and all its ancestors shown
    virtual bool EnableWindow(HWND window, bool enabled) = 0;
    virtual bool IsWindowEnabled(HWND window) = 0;
    // Marks the window's pixels as stale; the screen is recomposed lazily.
    virtual void InvalidateWindow(HWND window) = 0;

    // Focus and capture. SetFocus returns the window that had focus; focus changes notify the
    // old window (OnFocus(false)) before the new one (OnFocus(true)).
    virtual HWND SetFocus(HWND window) = 0;
    virtual HWND GetFocus() = 0;
    virtual HWND SetCapture(HWND window) = 0;
    virtual bool ReleaseCapture() = 0;
    virtual HWND GetCapture() = 0;

    // Pointer, keys and cursors. SetCursorPos moves the pointer without generating input; the
    // event loop's input funnel is what delivers moves.
    virtual bool GetCursorPos(POINT* screen) = 0;
    virtual bool SetCursorPos(std::int32_t x, std::int32_t y) = 0;
    // Bit 15 set while the key (or mouse button VK_LBUTTON ...) is down.
    virtual std::int16_t GetAsyncKeyState(int virtualKey) = 0;
    // The cursor a window shows: a standard shape 0 to 15, or kCursorCustom with a picture.
    virtual void SetWindowCursor(
        HWND window, int shape, std::shared_ptr<const std::vector<std::uint32_t>> customPixels = {},
        SIZE customSize = {}) = 0;
    // The shape shown at the pointer now (the window under it, or the capture window).
    virtual int CurrentCursor() = 0;

    // The window under a screen point: the deepest visible, enabled window whose rectangle
    // (and region) contains it; the desktop when none.
    virtual HWND WindowFromPoint(POINT screen) = 0;

    // Tooltips, as a tooltip control that watches the window's mouse input shows them: once
    // the pointer has rested on the window for the hover delay, the platform shows the text in
    // its tooltip look below the pointer, and hides it after a while, when the pointer leaves
    // the window or a mouse button goes down. Setting the text while it shows changes it in
    // place; "" takes the tooltip away. A window that shows several objects sets the text of
    // the one under the pointer as the pointer moves.
    virtual void SetToolTip(HWND window, std::string_view text) = 0;
    [[nodiscard]] virtual std::string GetToolTip(HWND window) = 0;

    // Screen. Its resolution is a device capability of the drawing seam (LOGPIXELSX/Y); see
    // TwipsPerPixelX below.
    virtual SIZE ScreenSize() = 0;
};

// Timers and the time they run on. How time passes is the platform's business: the portable
// platform's clock is virtual and moves only when its driver or a Wait moves it.
class Clock {
  public:
    using TimerId = std::uint32_t;
    virtual ~Clock() = default;
    [[nodiscard]] virtual std::int64_t Now() = 0;  // milliseconds since start
    // Periodic timer; intervals below the platform minimum are raised to it, as Win32 does.
    virtual TimerId SetTimer(std::uint32_t intervalMs, std::function<void()> tick) = 0;
    virtual bool KillTimer(TimerId id) = 0;
};

// The event loop: posted work, waits that let events run, and nested modal loops.
class EventLoop {
  public:
    virtual ~EventLoop() = default;

    // Runs pending work (posted tasks); returns the number of modal loops open.
    virtual int DoEvents() = 0;
    virtual void Post(std::function<void()> task) = 0;
    // Lets ms pass while pending work, input and timers go on being handled, as a control's
    // busy wait around DoEvents does. The platform decides how time passes (a message pump on
    // a real desktop, the virtual clock moving on the portable platform).
    virtual void Wait(std::int64_t ms) = 0;

    // Runs a nested loop until stillOpen() turns false, handling whatever arrives meanwhile.
    // Raises the host's error when nothing left could end the loop, instead of hanging.
    virtual void RunModal(const std::function<bool()>& stillOpen, std::string_view what) = 0;

    // Keys pass the filters, newest first, before they reach the focused window, as a dialog
    // manager sees Tab before the control does. A filter that returns true consumes the key.
    using KeyFilter = std::function<bool(const KeyEvent& event, HWND focus)>;
    virtual std::uint32_t AddKeyFilter(KeyFilter filter) = 0;
    virtual void RemoveKeyFilter(std::uint32_t id) = 0;
};

class Sound;
class Shell;
class Clipboard;

// Everything a host needs from the platform, owned per UI thread.
class Platform {
  public:
    virtual ~Platform() = default;
    virtual Gdi& gdi() = 0;
    virtual Windows& windows() = 0;
    virtual Clock& clock() = 0;
    virtual EventLoop& loop() = 0;
    virtual Sound& sound() = 0;
    virtual Shell& shell() = 0;
    virtual Clipboard& clipboard() = 0;
};

// Twips per screen pixel, from the screen's pixels per inch (1440 twips to the inch).
inline constexpr int kTwipsPerInch = 1440;
// The resolution a host without a screen measures with.
inline constexpr int kDefaultPixelsPerInch = 96;
inline int TwipsPerPixelX(Platform& platform) {
    return kTwipsPerInch / platform.gdi().GetDeviceCaps(HDC{}, LOGPIXELSX);
}
inline int TwipsPerPixelY(Platform& platform) {
    return kTwipsPerInch / platform.gdi().GetDeviceCaps(HDC{}, LOGPIXELSY);
}

}  // namespace korvex::platform
