// Win32Platform: the parts over user32, GDI, winmm and the shell, and their driver face.

#include "platform/win32/win32_platform.hpp"

#include <atomic>

#include "platform/forwarding_driver.hpp"
#include "platform/win32/win32_backend.hpp"
// After our headers: see win32_api.hpp.
#include "platform/win32/win32_api.hpp"

namespace korvex::platform::win32 {

namespace {

constexpr wchar_t kMessageClass[] = L"KorvexMessages";

// What the message window's messages reach, filled in once the parts exist.
struct MessageTargets {
    Win32Clock* clock = nullptr;
    Win32EventLoop* loop = nullptr;
};

LRESULT CALLBACK MessageProc(::HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

// The message-only window that carries the system's timers and the wake-up for posted work.
::HWND CreateMessageWindow(void* owner) {
    ::HWND hwnd =
        ::CreateWindowExW(0, kMessageClass, L"", 0, 0, 0, 0, 0, korvex_win32_native::kMessageOnly,
                          nullptr, static_cast<HINSTANCE>(CodeModule()), nullptr);
    if (hwnd) ::SetWindowLongPtrW(hwnd, 0, reinterpret_cast<LONG_PTR>(owner));
    return hwnd;
}

// The classes, registered while any platform lives (see CodeModule). Platforms live on their
// UI threads; the count is shared by all of them.
class ClassUse {
  public:
    ClassUse() {
        if (users_.fetch_add(1) != 0) return;
        RegisterWindowClass(true);
        RegisterToolTipClass(true);
        WNDCLASSEXW wc{};
        wc.cbSize = sizeof(wc);
        wc.lpfnWndProc = MessageProc;
        wc.cbWndExtra = sizeof(void*);
        wc.hInstance = static_cast<HINSTANCE>(CodeModule());
        wc.lpszClassName = kMessageClass;
        ::RegisterClassExW(&wc);
    }
    ~ClassUse() {
        if (users_.fetch_sub(1) != 1) return;
        RegisterWindowClass(false);
        RegisterToolTipClass(false);
        ::UnregisterClassW(kMessageClass, static_cast<HINSTANCE>(CodeModule()));
    }
    ClassUse(const ClassUse&) = delete;
    ClassUse& operator=(const ClassUse&) = delete;

  private:
    static inline std::atomic<int> users_{0};
};

// The driver face: forwarding, but on the system's time, moving time means letting it pass
// with the messages pumped.
class Win32Driver final : public ForwardingDriver<Win32Windows, Win32Clock, Win32EventLoop> {
  public:
    using ForwardingDriver::ForwardingDriver;

    void Advance(std::int64_t ms) override {
        if (clock_.Virtual())
            clock_.Advance(ms);
        else
            loop_.Wait(ms);
    }
};

}  // namespace

struct Win32Platform::Impl {
    // Declaration order is construction order: the message window first, the windows before
    // the loop that routes to them; destruction runs the other way.
    struct MessageWindow {
        ::HWND hwnd;
        explicit MessageWindow(void* owner) : hwnd(CreateMessageWindow(owner)) {}
        ~MessageWindow() {
            if (hwnd) ::DestroyWindow(hwnd);
        }
        MessageWindow(const MessageWindow&) = delete;
        MessageWindow& operator=(const MessageWindow&) = delete;
    };

    explicit Impl(Win32Options options)
        : messages(&targets),
          clock(options.virtualTime, messages.hwnd),
          windows(gdi, clock, options.virtualTime),
          loop(windows, clock, messages.hwnd),
          sound(options.dryRun),
          shell(windows, options.dryRun),
          driver(windows, clock, loop) {
        targets.clock = &clock;
        targets.loop = &loop;
    }
    ~Impl() { targets = {}; }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    ClassUse classes;
    MessageTargets targets;
    MessageWindow messages;
    Win32Gdi gdi;
    Win32Clock clock;
    Win32Windows windows;
    Win32EventLoop loop;
    Win32Sound sound;
    Win32Shell shell;
    Win32Clipboard clipboard;
    Win32Driver driver;
};

namespace {

LRESULT CALLBACK MessageProc(::HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* targets = reinterpret_cast<MessageTargets*>(::GetWindowLongPtrW(hwnd, 0));
    if (targets && targets->clock && message == WM_TIMER) {
        targets->clock->Tick(wParam);
        return 0;
    }
    if (targets && targets->loop && message == WM_APP) {
        targets->loop->RunPostedFromMessage();
        return 0;
    }
    return ::DefWindowProcW(hwnd, message, wParam, lParam);
}

}  // namespace

Win32Platform::Win32Platform(Win32Options options) : impl_(std::make_unique<Impl>(options)) {}
Win32Platform::~Win32Platform() = default;

Gdi& Win32Platform::gdi() {
    return impl_->gdi;
}
Windows& Win32Platform::windows() {
    return impl_->windows;
}
Clock& Win32Platform::clock() {
    return impl_->clock;
}
EventLoop& Win32Platform::loop() {
    return impl_->loop;
}
Sound& Win32Platform::sound() {
    return impl_->sound;
}
Shell& Win32Platform::shell() {
    return impl_->shell;
}
Clipboard& Win32Platform::clipboard() {
    return impl_->clipboard;
}
Driver& Win32Platform::driver() {
    return impl_->driver;
}

HWND Win32Platform::AdoptWindow(void* nativeWindow) {
    return impl_->windows.Adopt(nativeWindow);
}

void* Win32Platform::NativeWindow(HWND window) {
    return impl_->windows.Native(window);
}

HDC Win32Platform::AdoptDC(void* nativeDC) {
    return impl_->gdi.AdoptDC(nativeDC);
}

void Win32Platform::ReleaseAdoptedDC(HDC dc) {
    impl_->gdi.ReleaseAdoptedDC(dc);
}

bool Win32Platform::PrintWindow(HWND window, void* nativeDC, POINT origin) {
    return impl_->windows.Print(window, nativeDC, origin);
}

// The filters first (the form's dialog keys); a key they leave goes on to the focused window
// the usual way, through the host's own dispatching.
bool Win32Platform::TranslateAccelerator(const void* nativeMsg) {
    return nativeMsg && impl_->loop.FilterKeyMessage(nativeMsg);
}

}  // namespace korvex::platform::win32
