// Win32Clock and Win32EventLoop: timers on the system's or a virtual clock, posted work, message
// pumping waits and nested modal loops.

#include <utility>

#include "platform/win32/win32_backend.hpp"
// After our headers: see win32_api.hpp.
#include "platform/win32/win32_api.hpp"

namespace korvex::platform::win32 {

// ---------------------------------------------------------------------------------------------
// Clock

Win32Clock::Win32Clock(bool virtualTime, void* messageWindow)
    : virtual_(virtualTime), messageWindow_(messageWindow), start_(::GetTickCount64()) {}

Win32Clock::~Win32Clock() {
    if (!virtual_)
        for (const TimerId id : timers_.Ids()) ::KillTimer(static_cast<::HWND>(messageWindow_), id);
}

std::int64_t Win32Clock::Now() {
    if (virtual_) return now_;
    return static_cast<std::int64_t>(::GetTickCount64() - start_);
}

Clock::TimerId Win32Clock::SetTimer(std::uint32_t intervalMs, std::function<void()> tick) {
    std::uint32_t interval = 0;
    const TimerId id = timers_.Add(Now(), intervalMs, std::move(tick), &interval);
    if (!virtual_) ::SetTimer(static_cast<::HWND>(messageWindow_), id, interval, nullptr);
    return id;
}

bool Win32Clock::KillTimer(TimerId id) {
    if (!timers_.Remove(id)) return false;
    if (!virtual_) ::KillTimer(static_cast<::HWND>(messageWindow_), id);
    return true;
}

void Win32Clock::Advance(std::int64_t ms) {
    if (virtual_) timers_.Advance(now_, ms);
}

void Win32Clock::Tick(std::uintptr_t id) {
    timers_.Fire(static_cast<TimerId>(id), Now());
}

// ---------------------------------------------------------------------------------------------
// Event loop

Win32EventLoop::Win32EventLoop(Win32Windows& windows, Win32Clock& clock, void* messageWindow)
    : DrivenEventLoop(windows, clock), messageWindow_(messageWindow) {}

bool Win32EventLoop::FilterKeyMessage(const void* nativeMsg) {
    const MSG& msg = *static_cast<const MSG*>(nativeMsg);
    KeyEvent event;
    switch (msg.message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            event.kind = KeyEvent::Kind::Down;
            break;
        case WM_KEYUP:
        case WM_SYSKEYUP:
            event.kind = KeyEvent::Kind::Up;
            break;
        case WM_CHAR:
        case WM_SYSCHAR:
            event.kind = KeyEvent::Kind::Press;
            break;
        default:
            return false;
    }
    event.keyCode = static_cast<int>(msg.wParam);
    event.shift = (::GetKeyState(VK_SHIFT) < 0 ? kShiftMask : 0) |
                  (::GetKeyState(VK_CONTROL) < 0 ? kCtrlMask : 0) |
                  (::GetKeyState(VK_MENU) < 0 ? kAltMask : 0);
    event.time = clock_.Now();
    return FilterKey(event, [this] { return windows_.GetFocus(); });
}

// Virtual time runs posted work only at the loop's own points (DoEvents, Wait, RunModal), as the
// portable loop does; on the system's time a message wakes the thread's own loop, whoever runs
// it (a host's).
void Win32EventLoop::Post(std::function<void()> task) {
    LoopRules::Post(std::move(task));
    if (!clock_.Virtual()) ::PostMessageW(static_cast<::HWND>(messageWindow_), WM_APP, 0, 0);
}

void Win32EventLoop::RunPostedFromMessage() {
    if (!clock_.Virtual()) RunPosted();
}

void Win32EventLoop::Pump() {
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        if (msg.message == WM_QUIT) {
            ::PostQuitMessage(static_cast<int>(msg.wParam));
            return;
        }
        const bool input = (msg.message >= WM_MOUSEFIRST && msg.message <= WM_MOUSELAST) ||
                           (msg.message >= WM_KEYFIRST && msg.message <= WM_KEYLAST) ||
                           (msg.message >= WM_NCMOUSEMOVE && msg.message <= WM_NCMBUTTONDBLCLK) ||
                           msg.message == WM_MOUSEHOVER || msg.message == WM_MOUSELEAVE;
        if (input && windows_.VirtualInput()) continue;
        if (FilterKeyMessage(&msg)) continue;
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
}

int Win32EventLoop::DoEvents() {
    RunPosted();
    Pump();
    return ModalDepth();
}

void Win32EventLoop::Wait(std::int64_t ms) {
    const std::int64_t start = clock_.Now();
    for (;;) {
        RunPosted();
        Pump();
        const std::int64_t passed = clock_.Now() - start;
        if (passed >= ms) return;
        if (clock_.Virtual()) {
            clock_.Advance(1);
        } else {
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(ms - passed),
                                        QS_ALLINPUT);
        }
    }
}

// The shared rounds, with the queue pumped after the posted work. On the system's time the
// loop sleeps until a message comes, as a modal loop in a host does.
void Win32EventLoop::RunModal(const std::function<bool()>& stillOpen, std::string_view what) {
    ModalRounds(
        stillOpen, what, [this] { Pump(); },
        [this] {
            if (clock_.Virtual()) return false;
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, INFINITE, QS_ALLINPUT);
            return true;
        });
}

}  // namespace korvex::platform::win32
