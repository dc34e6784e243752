#pragma once
// The parts of Win32Platform, private to src/platform/win32. Like the public face it stays free
// of <windows.h>: native handles are void* here, and the .cpp files include win32_api.hpp after
// this header.
//
// Model, where it differs from the system's own behaviour (so that a scripted run gives the
// same event log as on the portable platform, sim::SimWindows):
// - Handles are small numbers mapped to the native windows, as Win32Gdi maps its objects.
// - Focus changes only through SetFocus and the drops the portable platform makes (hiding,
//   disabling, destroying). What the system does on its own around activation (focusing a
//   top-level window it activates) is undone without telling the handlers.
// - A press captures the pointer for its window until the last release (the implicit capture),
//   without a notification when it ends; ReleaseCapture tells nobody either.
// - With virtual input (the driver's), the pointer and the key state are the driver's, and
//   input the system queues by itself (a pointer that a window appeared under) is dropped.
// - The close box of a captioned window is tracked here, not by DefWindowProc's modal loop, so
//   that a press and a release arriving from a script work.

#include <array>
#include <cmath>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/driven_loop.hpp"
#include "platform/clipboard.hpp"
#include "platform/driver.hpp"
#include "platform/pointer_rules.hpp"
#include "platform/shell_font.hpp"
#include "platform/sound.hpp"
#include "platform/tooltip_state.hpp"
#include "platform/virtual_timers.hpp"
#include "platform/win32/win32_gdi.hpp"
#include "platform/window.hpp"

namespace korvex::platform::win32 {

// Milliseconds and timers: the system's (SetTimer on the message window, GetTickCount64 since
// start), or virtual ones that only the driver moves, with the portable clock's rules: due
// order, ties in creation order, a timer as often as it is due, 10 ms at least.
class Win32Clock final : public Clock {
  public:
    static constexpr std::uint32_t kMinimumInterval = VirtualTimers::kMinimumInterval;
    static constexpr std::uint32_t kMaximumInterval = VirtualTimers::kMaximumInterval;

    Win32Clock(bool virtualTime, void* messageWindow);
    ~Win32Clock() override;
    Win32Clock(const Win32Clock&) = delete;
    Win32Clock& operator=(const Win32Clock&) = delete;

    [[nodiscard]] std::int64_t Now() override;
    TimerId SetTimer(std::uint32_t intervalMs, std::function<void()> tick) override;
    bool KillTimer(TimerId id) override;

    [[nodiscard]] bool Virtual() const { return virtual_; }
    // Virtual time: moves forward, firing due timers in order. System time: nothing (the
    // event loop's Wait lets real time pass).
    void Advance(std::int64_t ms);
    [[nodiscard]] std::int64_t NextDue() { return timers_.NextDue(); }
    // WM_TIMER on the message window, system time only.
    void Tick(std::uintptr_t id);

  private:
    bool virtual_;
    void* messageWindow_;
    // On the system's time too: the system's timer only says when, the tick is kept here.
    VirtualTimers timers_;
    std::int64_t now_ = 0;     // virtual time
    std::uint64_t start_ = 0;  // GetTickCount64 at construction
};

class Win32Windows final : public Windows {
  public:
    Win32Windows(Win32Gdi& gdi, Win32Clock& clock, bool virtualInput);
    ~Win32Windows() override;
    Win32Windows(const Win32Windows&) = delete;
    Win32Windows& operator=(const Win32Windows&) = delete;

    HWND CreateWindow(HWND parent, const RECT& position, WindowStyle style, WindowHandler* handler,
                      std::string_view title = {}) override;
    bool DestroyWindow(HWND window) override;
    bool IsWindow(HWND window) override;
    HWND GetParent(HWND window) override;
    HWND SetParent(HWND window, HWND newParent) override;
    HWND GetDesktopWindow() override { return HWND{kDesktop}; }
    [[nodiscard]] std::uintptr_t NativeHandle(HWND window) override;
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
    HWND GetFocus() override;
    HWND SetCapture(HWND window) override;
    bool ReleaseCapture() override;
    HWND GetCapture() override;

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
    [[nodiscard]] Driver::ShownToolTip ToolTipOnScreen() const { return tip_.OnScreen(); }

    SIZE ScreenSize() override;

    // Foreign windows and the native side.
    HWND Adopt(void* native);
    [[nodiscard]] void* Native(HWND window) const;
    // Our handle for a native window; zero for one this platform neither made nor adopted.
    [[nodiscard]] HWND FromNative(void* native) const;

    // Pixels: a window with its children into a native device context, window coordinates at
    // origin; the whole screen or one window as 0x00RRGGBB.
    bool Print(HWND window, void* nativeDC, POINT origin);
    std::vector<std::uint32_t> ComposeScreen();
    std::vector<std::uint32_t> ComposeWindow(HWND window);

    // Input routing, fed by the event loop's funnel with the time of each event.
    void RouteMouseMove(POINT screen, std::int64_t time);
    void RouteMouseButton(bool down, int button, int shift, std::int64_t time);
    void TrackKey(KeyEvent::Kind kind, int keyCode);
    void RouteKey(KeyEvent::Kind kind, int keyCode, int shift, std::int64_t time);
    [[nodiscard]] int ShiftState() const;
    [[nodiscard]] bool VirtualInput() const { return virtualInput_; }

    // The window procedures' bodies; public for the static trampolines.
    std::intptr_t Message(void* hwnd, unsigned message, std::uintptr_t wParam,
                          std::intptr_t lParam);
    std::intptr_t ToolTipMessage(void* hwnd, unsigned message, std::uintptr_t wParam,
                                 std::intptr_t lParam);

  private:
    static constexpr std::uint32_t kDesktop = 0x00010010;

    struct Window {
        void* native = nullptr;
        WindowHandler* handler = nullptr;
        bool adopted = false;
        bool caption = false;
        bool closePressed = false;
        bool closeHot = false;
        // Invalidated and not painted since: another invalidation would change nothing.
        bool paintPending = false;
        int cursor = kCursorDefault;
        std::shared_ptr<const std::vector<std::uint32_t>> cursorPixels;
        SIZE cursorSize;
        void* customCursor = nullptr;  // HCURSOR made from cursorPixels
        std::string toolTip;
    };

    Window* Find(std::uint32_t id);
    Window* Find(HWND window) { return Find(window.value); }
    void* NativeOrDesktop(HWND window) const;
    bool InSubtree(std::uint32_t ancestor, std::uint32_t window) const;
    bool ChainEnabled(void* native) const;
    void Forget(void* native);

    // Focus kept as the portable platform keeps it (see the model above).
    void DropFocus(bool notify);
    void DropCapture(bool notify);
    void CaptureLost(std::uint32_t window);
    void RestoreFocus(void* expected);

    // Hit-testing over the native tree.
    bool Contains(void* native, POINT screen) const;
    void* HitTest(POINT screen) const;
    std::uint32_t MouseTarget();
    void Deliver(std::uint32_t window, MouseEvent event);
    void NonClientMouse(Window& w, const MouseEvent& event, POINT inWindow);
    RECT CloseBoxRect(void* native) const;  // window coordinates
    RECT CaptionRect(void* native) const;

    // Window procedure parts.
    void MouseMessage(std::uint32_t id, unsigned message, std::uintptr_t wParam,
                      std::intptr_t lParam);
    void KeyMessage(std::uint32_t id, unsigned message, std::uintptr_t wParam);
    bool SetCursorFor(std::uint32_t id);
    void* CursorHandle(std::uint32_t id);

    // Tooltips (win32_input.cpp): the shared state's look into a native device context.
    void PaintToolTip(void* nativeDC);
    // The tip on a real screen: a topmost popup that the pointer passes through.
    void PlaceToolTipWindow();

    // Painting (win32_compose.cpp).
    void PaintClient(std::uint32_t id, void* nativeDC, POINT at);
    void PaintFrame(std::uint32_t id, void* nativeDC);
    void ComposeInto(void* nativeDC, void* native, POINT origin, void* clip);
    std::vector<std::uint32_t> Render(SIZE size, void* native);

    Win32Gdi& gdi_;
    Win32Clock& clock_;
    bool virtualInput_;
    std::map<std::uint32_t, Window> windows_;
    std::unordered_map<void*, std::uint32_t> ids_;
    std::uint32_t nextId_ = kDesktop + 4;
    std::uint32_t creating_ = 0;  // the id CreateWindowEx is making, for WM_NCCREATE
    // Focus notifications are held back while this is above zero (see the model above).
    int quietFocus_ = 0;
    int quietCapture_ = 0;
    bool implicitCapture_ = false;
    // The shift state of the input the driver is sending now (mouse messages carry no Alt).
    std::optional<int> injectedShift_;
    POINT cursor_;
    HeldInput held_;
    DoubleClickTracker clicks_;
    ToolTipState tip_;
    void* tipWindow_ = nullptr;
};

class Win32EventLoop final : public DrivenEventLoop<Win32Windows, Win32Clock> {
  public:
    Win32EventLoop(Win32Windows& windows, Win32Clock& clock, void* messageWindow);

    int DoEvents() override;
    void Post(std::function<void()> task) override;
    void Wait(std::int64_t ms) override;
    void RunModal(const std::function<bool()>& stillOpen, std::string_view what) override;

    // A queued keyboard message (MSG*) offered to the filters; true when one consumed it.
    bool FilterKeyMessage(const void* nativeMsg);
    // WM_APP on the message window: posted work, system time only.
    void RunPostedFromMessage();

  private:
    // Dispatches what the queue holds; with virtual input, queued input is dropped.
    void Pump();

    void* messageWindow_;
};

// winmm's sounds; with dryRun nothing is played and a well-formed request answers true.
class Win32Sound final : public Sound {
  public:
    explicit Win32Sound(bool dryRun) : dryRun_(dryRun) {}
    bool PlaySoundA(std::optional<std::string_view> name, std::uint32_t flags) override;
    bool sndPlaySoundA(std::span<const std::uint8_t> image, std::uint32_t flags) override;
    bool sndPlaySoundA(std::optional<std::string_view> name, std::uint32_t flags) override;
    bool MessageBeep(std::uint32_t type) override;

  private:
    bool dryRun_;
};

// The system clipboard's Unicode text.
class Win32Clipboard final : public Clipboard {
  public:
    [[nodiscard]] std::optional<std::string> GetText() override;
    bool SetText(std::string_view text) override;
};

// The shell; with dryRun nothing is opened and the answer is the shell's "done" (above 32).
class Win32Shell final : public Shell {
  public:
    Win32Shell(Win32Windows& windows, bool dryRun) : windows_(windows), dryRun_(dryRun) {}
    std::intptr_t ShellExecuteA(HWND owner, std::optional<std::string_view> verb,
                                std::string_view file, std::string_view parameters,
                                std::string_view directory, int showCommand) override;
    std::string GetSystemDirectoryA() override;
    std::string GetTempPathA() override;

  private:
    Win32Windows& windows_;
    bool dryRun_;
};

// The module this code is linked into (korvex.exe, or a DLL inside its host): the window classes
// belong to it. They are registered while a platform lives and unregistered with the last one,
// so that a DLL unloaded afterwards leaves no class behind whose procedure points into it.
void* CodeModule();
void RegisterWindowClass(bool add);   // win32_windows.cpp
void RegisterToolTipClass(bool add);  // win32_input.cpp

// UTF-8 and the system's UTF-16.
std::wstring Widen(std::string_view text);
std::string Narrow(const wchar_t* text, int length);

}  // namespace korvex::platform::win32
