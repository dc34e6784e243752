#pragma once
// SimWindows: the portable window manager. It keeps the window tree (parents, z-order, owned
// top-level windows), the pointer and key state, focus and capture, routes the input that the
// event loop's funnel hands it, and composes the screen through the drawing seam.
//
// Model, as the Win32 window manager has it:
// - The desktop is a window of its own; top-level windows are its children. A top-level window
//   created with a parent but without the child style is owned by that window: it stays above
//   its owner, is destroyed with it, and is positioned in screen coordinates.
// - Only a captioned top-level window (WindowStyle::caption) has a non-client area: the classic
//   fixed frame, caption bar and close box, which SimWindows draws and whose close box it
//   tracks, telling the handler OnClose when it is clicked. Every other window's client area is
//   its whole rectangle.
// - Visibility and enabled state follow the chain of parents (not owners), so a modal form
//   stays usable while its disabled owner does not.
// - Mouse input goes to the capture window or to the window hit under the pointer. Hit-testing
//   walks the z-order topmost first, respects window regions and stops at a disabled window;
//   input that ends on a disabled window (or one below a disabled parent) is dropped.
// - Tooltips follow the mouse input a window gets, as a tooltip control subclassing it does
//   (platform/tooltip_state.hpp): shown on the composed screen, above every window, never in one window's
//   own picture.
//
// Sections: construction · Windows interface · input routing (for SimEventLoop) · internals

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/driver.hpp"
#include "platform/gdi.hpp"
#include "platform/pointer_rules.hpp"
#include "platform/tooltip_state.hpp"
#include "platform/window.hpp"

namespace korvex::platform::sim {

class SimWindows final : public Windows {
  public:
    // Classic metrics of a captioned window, in pixels (SM_CXFIXEDFRAME, SM_CYCAPTION less its
    // separator line, the caption buttons' size). Window layout, W x H its outer size:
    //   frame        3 px on every side (raised 3D edge, then one pixel of face colour)
    //   caption bar  (3, 3) to (W - 3, 21): 18 px high
    //   separator    row 21 in face colour
    //   client       (3, 22) to (W - 3, H - 3)
    //   close box    16 x 14 px, 2 px in from the caption bar's top and right edges
    static constexpr std::int32_t kFrameWidth = 3;
    static constexpr std::int32_t kCaptionHeight = 18;
    static constexpr std::int32_t kCloseBoxWidth = 16;
    static constexpr std::int32_t kCloseBoxHeight = 14;

    // Draws through gdi (whose regions SetWindowRgn takes over); gdi must outlive this object.
    // Tooltips run on clock's timers; without a clock they never show.
    SimWindows(Gdi& gdi, SIZE screen = {1024, 768}, Clock* clock = nullptr);
    ~SimWindows() override;
    SimWindows(const SimWindows&) = delete;
    SimWindows& operator=(const SimWindows&) = delete;

    HWND CreateWindow(HWND parent, const RECT& position, WindowStyle style, WindowHandler* handler,
                      std::string_view title = {}) override;
    bool DestroyWindow(HWND window) override;
    bool IsWindow(HWND window) override;
    HWND GetParent(HWND window) override;
    HWND SetParent(HWND window, HWND newParent) override;
    HWND GetDesktopWindow() override { return HWND{kDesktop}; }
    // The portable window manager's handles are its own.
    [[nodiscard]] std::uintptr_t NativeHandle(HWND window) override { return window.value; }
    bool SetWindowText(HWND window, std::string_view text) override;
    std::string GetWindowText(HWND window) override;

    bool GetWindowRect(HWND window, RECT* screen) override;
    bool GetClientRect(HWND window, RECT* client) override;
    bool AdjustWindowRect(RECT* rect, WindowStyle style) override;
    bool GetTitleBarInfo(HWND window, TITLEBARINFO* info) override;
    bool MoveWindow(HWND window, const RECT& position) override;
    bool SetWindowPos(HWND window, HWND insertAfter, std::int32_t x, std::int32_t y,
                      std::int32_t cx, std::int32_t cy, unsigned flags) override;
    POINT ClientToScreen(HWND window, POINT client) override;
    POINT ScreenToClient(HWND window, POINT screen) override;
    bool SetWindowRgn(HWND window, HRGN region) override;
    std::vector<HWND> ZOrder(HWND parent) override;
    bool BringWindowToTop(HWND window) override;

    bool ShowWindow(HWND window, bool visible) override;
    bool IsWindowVisible(HWND window) override;
    bool EnableWindow(HWND window, bool enabled) override;
    bool IsWindowEnabled(HWND window) override;
    void InvalidateWindow(HWND window) override;

    HWND SetFocus(HWND window) override;
    HWND GetFocus() override { return HWND{focus_}; }
    HWND SetCapture(HWND window) override;
    bool ReleaseCapture() override;
    HWND GetCapture() override { return HWND{capture_}; }

    bool GetCursorPos(POINT* screen) override;
    bool SetCursorPos(std::int32_t x, std::int32_t y) override;
    std::int16_t GetAsyncKeyState(int virtualKey) override;
    void SetWindowCursor(HWND window, int shape,
                         std::shared_ptr<const std::vector<std::uint32_t>> customPixels = {},
                         SIZE customSize = {}) override;
    int CurrentCursor() override;

    HWND WindowFromPoint(POINT screen) override;

    void SetToolTip(HWND window, std::string_view text) override;
    std::string GetToolTip(HWND window) override;
    // The driver's view of the tooltip shown now.
    [[nodiscard]] Driver::ShownToolTip ToolTipOnScreen() const { return tip_.OnScreen(); }

    SIZE ScreenSize() override { return screen_; }

    // The driver's pixels (see platform/driver.hpp).
    std::vector<std::uint32_t> ComposeScreen();
    std::vector<std::uint32_t> ComposeWindow(HWND window);

    // Input routing, fed by SimEventLoop with the virtual time of each event.
    void RouteMouseMove(POINT screen, std::int64_t time);
    void RouteMouseButton(bool down, int button, int shift, std::int64_t time);
    // Key state only (GetAsyncKeyState), for keys a filter consumed.
    void TrackKey(KeyEvent::Kind kind, int keyCode);
    void RouteKey(KeyEvent::Kind kind, int keyCode, int shift, std::int64_t time);
    // The shift mask (kShiftMask, kCtrlMask, kAltMask) from the keys held now.
    [[nodiscard]] int ShiftState() const;

  private:
    static constexpr std::uint32_t kDesktop = 0x00010010;

    struct Window {
        std::uint32_t parent = 0;  // the chain that positions and clips; kDesktop for top-level
        std::uint32_t owner = 0;   // top-level windows only: the window this one stays above
        bool child = false;
        bool topmost = false;
        bool caption = false;
        bool closePressed = false;  // the left button went down on the close box and is held
        bool closeHot = false;      // ... and the pointer is over it now
        bool visible = false;
        bool enabled = true;
        RECT rect;  // parent's client coordinates for children, screen for top-level windows
        WindowHandler* handler = nullptr;
        std::string title;
        HRGN region;  // window coordinates, owned
        int cursor = kCursorDefault;
        std::shared_ptr<const std::vector<std::uint32_t>> cursorPixels;
        SIZE cursorSize;
        std::string toolTip;
        // Topmost first. A deque, so a new window goes on top in constant time and a form of n
        // controls is built in linear time.
        std::deque<std::uint32_t> children;
    };


    Window* Find(std::uint32_t handle);
    Window* Find(HWND window) { return Find(window.value); }
    // Zero for the desktop, which CreateWindow and ZOrder also accept for "no parent".
    std::uint32_t Normalize(HWND window) const {
        return window.value == kDesktop ? 0 : window.value;
    }
    bool IsSelfOrDescendant(std::uint32_t ancestor, std::uint32_t window);
    bool ChainVisible(std::uint32_t window);
    bool ChainEnabled(std::uint32_t window);
    POINT Origin(std::uint32_t window);        // top-left corner in screen coordinates
    POINT ClientOrigin(std::uint32_t window);  // the client area's top-left corner, screen
    // The client area in window coordinates.
    static RECT ClientArea(const Window& w);

    // The non-client area of a captioned window (sim_frame.cpp): its parts in window
    // coordinates, the close box's push-button behaviour, and the drawing.
    static RECT CaptionRect(const Window& w);
    static RECT CloseBoxRect(const Window& w);
    void NonClientMouse(Window& w, const MouseEvent& event, POINT inWindow);
    void PaintFrame(HDC dc, const Window& w);
    void PaintCaption(HDC dc, const Window& w, const RECT& bar);
    void PaintCloseBox(HDC dc, const Window& w);
    // Capture left the window without the release reaching it.
    void CaptureLost(std::uint32_t window);

    // Z-order among siblings; see SetWindowPos for the rules of each insertAfter value.
    bool Restack(std::uint32_t window, HWND insertAfter);
    void LiftOwned(std::uint32_t owner);

    // Hit-testing: the deepest visible window containing the point, stopping at a disabled one.
    bool Contains(std::uint32_t window, POINT screen);
    std::uint32_t HitTest(POINT screen);
    std::uint32_t MouseTarget();
    void Deliver(std::uint32_t window, MouseEvent event);

    // Focus and capture lost because their window went away (silently) or became unusable.
    void DropFocus(bool notify);
    void DropCapture(bool notify);

    // Composition: paints window (at origin in target's coordinates) and its visible children,
    // clipped by clip (target coordinates, zero for none), the window rectangle and its region.
    void ComposeInto(HDC target, std::uint32_t window, POINT origin, HRGN clip);
    void PaintClient(HDC dc, WindowHandler* handler, const RECT& client);
    std::vector<std::uint32_t> Render(SIZE size, std::uint32_t window, POINT origin);

    Gdi& gdi_;
    SIZE screen_;
    Clock* clock_;
    ToolTipState tip_;
    std::map<std::uint32_t, Window> windows_;  // includes the desktop
    std::uint32_t nextHandle_ = kDesktop + 4;
    std::uint32_t focus_ = 0;
    std::uint32_t capture_ = 0;
    bool implicitCapture_ = false;  // taken by a press, ends with the last release
    POINT cursor_;
    HeldInput held_;
    DoubleClickTracker clicks_;
};

}  // namespace korvex::platform::sim
