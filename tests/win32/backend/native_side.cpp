// The backend as a container host meets it: our windows inside its window, its device context
// drawn on, its keyboard messages offered; and the system's own PrintWindow reaching our
// painting. Apart from the other checks because <windows.h> comes in here, after our headers.

#include "backend_check.hpp"
#include "platform/sound.hpp"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// The A/W selector would rename the platform's member.
#undef TranslateAccelerator

namespace korvex::backend_test {

namespace {

// A 32-bit DIB selected into a memory DC of the system's, for the native checks.
struct NativeCanvas {
    ::HDC dc = ::CreateCompatibleDC(nullptr);
    std::uint32_t* bits = nullptr;
    ::HBITMAP bitmap = nullptr;
    int width;
    NativeCanvas(int w, int h) : width(w) {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof(info.bmiHeader);
        info.bmiHeader.biWidth = w;
        info.bmiHeader.biHeight = -h;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* pixels = nullptr;
        bitmap = ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
        bits = static_cast<std::uint32_t*>(pixels);
        ::SelectObject(dc, bitmap);
    }
    ~NativeCanvas() {
        ::DeleteDC(dc);
        ::DeleteObject(bitmap);
    }
    NativeCanvas(const NativeCanvas&) = delete;
    NativeCanvas& operator=(const NativeCanvas&) = delete;
    std::uint32_t At(int x, int y) {
        ::GdiFlush();
        return bits[y * width + x] & 0xFFFFFFu;
    }
};

}  // namespace

// What a container host does with the platform.
void NativeSide() {
    Fixture f;
    ::HWND host = ::CreateWindowExW(0, L"STATIC", L"host", WS_POPUP | WS_VISIBLE, 0, 0, 200, 100,
                                    nullptr, nullptr, ::GetModuleHandleW(nullptr), nullptr);
    CHECK(host != nullptr);
    const HWND adopted = f.platform.AdoptWindow(host);
    CHECK(static_cast<bool>(adopted));
    CHECK_EQ(f.platform.AdoptWindow(host), adopted);
    CHECK_EQ(f.platform.NativeWindow(adopted), static_cast<void*>(host));
    const HWND control = f.Child(adopted, "control", {10, 10, 50, 30});
    CHECK_EQ(f.windows.GetParent(control), adopted);
    CHECK_EQ(::GetParent(static_cast<::HWND>(f.platform.NativeWindow(control))), host);
    CHECK_EQ(f.windows.NativeHandle(control),
             reinterpret_cast<std::uintptr_t>(f.platform.NativeWindow(control)));
    CHECK(!f.windows.DestroyWindow(adopted));  // never ours to destroy
    f.recorders.back()->fill = RGB(0, 255, 0);

    // PrintWindow through the platform, at an offset, and through the system (WM_PRINT).
    NativeCanvas canvas(60, 40);
    CHECK(f.platform.PrintWindow(control, canvas.dc, {5, 5}));
    CHECK_EQ(canvas.At(6, 6), 0x00FF00u);
    CHECK(canvas.At(4, 4) != 0x00FF00u);
    NativeCanvas system(40, 20);
    CHECK(::PrintWindow(static_cast<::HWND>(f.platform.NativeWindow(control)), system.dc, 0));
    CHECK_EQ(system.At(1, 1), 0x00FF00u);

    // A host's DC drawn through the drawing seam for one call.
    const HDC dc = f.platform.AdoptDC(canvas.dc);
    Gdi& gdi = f.platform.gdi();
    const platform::HBRUSH brush = gdi.CreateSolidBrush(RGB(0, 0, 255));
    gdi.FillRect(dc, {0, 0, 2, 2}, brush);
    gdi.DeleteObject(brush);
    f.platform.ReleaseAdoptedDC(dc);
    CHECK_EQ(canvas.At(1, 1), 0x0000FFu);
    // A DC adopted for every call of a host's takes the released number again.
    const HDC again = f.platform.AdoptDC(system.dc);
    CHECK_EQ(again, dc);
    f.platform.ReleaseAdoptedDC(again);

    // A keystroke offered by the host: taken only when a filter takes it.
    MSG msg{};
    msg.hwnd = static_cast<::HWND>(f.platform.NativeWindow(control));
    msg.message = WM_KEYDOWN;
    msg.wParam = VK_TAB;
    CHECK(!f.platform.TranslateAccelerator(&msg));
    const auto filter =
        f.platform.loop().AddKeyFilter([](const KeyEvent& e, HWND) { return e.keyCode == VK_TAB; });
    CHECK(f.platform.TranslateAccelerator(&msg));
    f.platform.loop().RemoveKeyFilter(filter);

    // The shell and the sound device in a dry run: nothing opened, nothing played.
    platform::Shell& shell = f.platform.shell();
    CHECK(shell.ShellExecuteA({}, "open", "http://example.invalid/", "", "", SW_SHOWNORMAL) > 32);
    CHECK(!shell.GetSystemDirectoryA().empty());
    const std::string temp = shell.GetTempPathA();
    CHECK(!temp.empty() && temp.back() == '\\');
    const std::uint8_t wave[44] = {'R', 'I', 'F', 'F', 36, 0, 0, 0, 'W', 'A', 'V', 'E'};
    platform::Sound& sound = f.platform.sound();
    CHECK(sound.sndPlaySoundA(std::span<const std::uint8_t>(wave),
                              platform::SND_ASYNC | platform::SND_NODEFAULT));
    CHECK(!sound.sndPlaySoundA(std::span<const std::uint8_t>(wave + 4, 8), platform::SND_ASYNC));
    ::DestroyWindow(host);
}

namespace {

// The log without the times, which the system's clock makes different on every run.
std::string Untimed(const std::string& log) {
    std::string out;
    std::size_t start = 0;
    while (start < log.size()) {
        std::size_t end = log.find('\n', start);
        if (end == std::string::npos) end = log.size();
        std::string line = log.substr(start, end - start);
        if (const std::size_t t = line.rfind(" t"); t != std::string::npos) line.erase(t);
        out += line + "\n";
        start = end + 1;
    }
    return out;
}

// A host's own message loop, as a container runs it.
void HostPump() {
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
}

}  // namespace

// On the system's time, inside a host: posted work runs from the host's own loop, timers tick
// while a wait pumps, and queued input reaches the handlers with the implicit capture.
void SystemTime() {
    Fixture f(false);
    platform::EventLoop& loop = f.platform.loop();
    int ran = 0;
    loop.Post([&] { ++ran; });
    HostPump();
    CHECK_EQ(ran, 1);
    int ticks = 0;
    const auto timer = f.platform.clock().SetTimer(10, [&] { ++ticks; });
    const std::int64_t before = f.platform.clock().Now();
    loop.Wait(200);
    CHECK(f.platform.clock().Now() - before >= 200);
    CHECK(ticks >= 1);
    f.platform.clock().KillTimer(timer);
    // A modal loop ends when posted work closes it.
    bool open = true;
    loop.Post([&] { open = false; });
    loop.RunModal([&] { return open; }, "test box");
    CHECK(!open);

    const HWND top = f.Top("top", {0, 0, 200, 100});
    const HWND a = f.Child(top, "a", {10, 10, 110, 60});
    f.windows.SetFocus(a);
    f.Take();
    ::HWND native = static_cast<::HWND>(f.platform.NativeWindow(a));
    ::PostMessageW(native, WM_MOUSEMOVE, 0, MAKELPARAM(5, 6));
    ::PostMessageW(native, WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT, MAKELPARAM(5, 6));
    HostPump();
    CHECK_EQ(f.windows.GetCapture(), a);  // the press captured the pointer
    ::PostMessageW(native, WM_LBUTTONUP, 0, MAKELPARAM(7, 8));
    ::PostMessageW(native, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(7, 8));
    ::PostMessageW(native, WM_LBUTTONUP, 0, MAKELPARAM(7, 8));
    HostPump();
    CHECK(!f.windows.GetCapture());
    // The system adds moves of its own where the real pointer is (over "top", as capture ends);
    // a's are the ones posted.
    std::string mouse;
    for (const std::string& line : f.log)
        if (line.starts_with("a ")) mouse += line + "\n";
    f.log.clear();
    CHECK_EQ(Untimed(mouse),
             "a move 0 0 5,6 15,16\n"
             "a down 1 1 5,6 15,16\n"
             "a up 1 0 7,8 17,18\n"
             "a dbl 1 0 7,8 17,18\n"
             "a up 1 0 7,8 17,18\n");
    // Queued keys pass the filters in the event loop's pump.
    const auto filter =
        loop.AddKeyFilter([](const KeyEvent& e, HWND) { return e.keyCode == VK_ESCAPE; });
    ::PostMessageW(native, WM_KEYDOWN, VK_ESCAPE, 1);
    ::PostMessageW(native, WM_KEYDOWN, 'A', 1);
    loop.DoEvents();
    loop.RemoveKeyFilter(filter);
    // The pump translates the key it let through into its character, as a host's loop does.
    CHECK_EQ(Untimed(f.Take()), "a keydown 65 0\na press 97 0\n");
}

}  // namespace korvex::backend_test
