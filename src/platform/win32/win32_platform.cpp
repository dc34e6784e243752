// Win32Platform: the parts over user32, GDI, winmm and the shell, and their driver face.

#include "platform/win32/win32_platform.hpp"

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
    static const bool registered = [] {
        WNDCLASSEXW wc{};
        wc.cbSize = sizeof(wc);
        wc.lpfnWndProc = MessageProc;
        wc.cbWndExtra = sizeof(void*);
        wc.hInstance = CodeModule();
        wc.lpszClassName = kMessageClass;
        return ::RegisterClassExW(&wc) != 0;
    }();
    (void)registered;
    ::HWND hwnd =
        ::CreateWindowExW(0, kMessageClass, L"", 0, 0, 0, 0, 0, korvex_win32_native::kMessageOnly,
                          nullptr, CodeModule(), nullptr);
    if (hwnd) ::SetWindowLongPtrW(hwnd, 0, reinterpret_cast<LONG_PTR>(owner));
    return hwnd;
}

// The driver face: each operation forwards to the part that owns it.
class Win32Driver final : public Driver {
  public:
    Win32Driver(Win32Windows& windows, Win32Clock& clock, Win32EventLoop& loop)
        : windows_(windows), clock_(clock), loop_(loop) {}

    // On the system's time, moving time means letting it pass with the messages pumped.
    void Advance(std::int64_t ms) override {
        if (clock_.Virtual())
            clock_.Advance(ms);
        else
            loop_.Wait(ms);
    }
    [[nodiscard]] std::int64_t NextDue() override { return clock_.NextDue(); }
    void MouseMove(POINT screen) override { loop_.MouseMove(screen); }
    void MouseDown(int button, int shift) override { loop_.MouseDown(button, shift); }
    void MouseUp(int button, int shift) override { loop_.MouseUp(button, shift); }
    void KeyDown(int keyCode, int shift) override { loop_.KeyDown(keyCode, shift); }
    void KeyUp(int keyCode, int shift) override { loop_.KeyUp(keyCode, shift); }
    void KeyPress(int character) override { loop_.KeyPress(character); }
    void SetInputSource(InputSource* source) override { loop_.SetInputSource(source); }
    std::vector<std::uint32_t> ComposeScreen() override { return windows_.ComposeScreen(); }
    std::vector<std::uint32_t> ComposeWindow(HWND window) override {
        return windows_.ComposeWindow(window);
    }
    ShownToolTip ToolTip() override { return windows_.ToolTipOnScreen(); }

  private:
    Win32Windows& windows_;
    Win32Clock& clock_;
    Win32EventLoop& loop_;
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

    MessageTargets targets;
    MessageWindow messages;
    Win32Gdi gdi;
    Win32Clock clock;
    Win32Windows windows;
    Win32EventLoop loop;
    Win32Sound sound;
    Win32Shell shell;
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
