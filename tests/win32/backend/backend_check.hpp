#pragma once
// The backend checks' tiny runner and fixture: Check counts and names failures (GoogleTest is not
// cross-built); Fixture is a Win32Platform on virtual time whose windows record what they hear.

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/win32/win32_platform.hpp"

namespace korvex::backend_test {

extern int checks;
extern int failures;
void Check(bool ok, const std::string& what, int line);
#define CHECK(condition) ::korvex::backend_test::Check((condition), #condition, __LINE__)
#define CHECK_EQ(a, b) ::korvex::backend_test::Check((a) == (b), #a " == " #b, __LINE__)

using platform::COLORREF;
using platform::Gdi;
using platform::HDC;
using platform::HWND;
using platform::KeyEvent;
using platform::MouseEvent;
using platform::RECT;
using platform::WindowHandler;
using platform::WindowStyle;
using platform::win32::Win32Options;
using platform::win32::Win32Platform;

// Records what a window hears, one line each.
struct Recorder final : WindowHandler {
    std::string name;
    std::vector<std::string>* log = nullptr;
    COLORREF fill = platform::CLR_INVALID;  // painted over the client area when set
    int paints = 0;
    Gdi* gdi = nullptr;
    std::function<void(const MouseEvent&)> onMouse;

    void Add(const std::string& line) {
        if (log) log->push_back(name + " " + line);
    }
    void OnMouse(const MouseEvent& e) override {
        static const char* kinds[] = {"move", "down", "up", "dbl"};
        Add(std::string(kinds[static_cast<int>(e.kind)]) + " " + std::to_string(e.button) + " " +
            std::to_string(e.shift) + " " + std::to_string(e.client.x) + "," +
            std::to_string(e.client.y) + " " + std::to_string(e.screen.x) + "," +
            std::to_string(e.screen.y) + " t" + std::to_string(e.time));
        if (onMouse) onMouse(e);
    }
    void OnKey(const KeyEvent& e) override {
        static const char* kinds[] = {"keydown", "keyup", "press"};
        Add(std::string(kinds[static_cast<int>(e.kind)]) + " " + std::to_string(e.keyCode) + " " +
            std::to_string(e.shift));
    }
    void OnFocus(bool gained) override { Add(gained ? "focus" : "blur"); }
    void OnCaptureLost() override { Add("capturelost"); }
    void OnClose() override { Add("close"); }
    void OnPaint(HDC dc, const RECT& client) override {
        ++paints;
        if (!gdi || fill == platform::CLR_INVALID) return;
        const platform::HBRUSH brush = gdi->CreateSolidBrush(fill);
        // The left half only: the right half keeps the window colour the platform erased with.
        gdi->FillRect(dc, {0, 0, client.right / 2, client.bottom}, brush);
        gdi->DeleteObject(brush);
    }
};

struct Fixture {
    // A dry run always: nothing is opened or played on the machine.
    explicit Fixture(bool virtualTime = true) : platform(Win32Options{virtualTime, true}) {}
    Win32Platform platform;
    platform::Windows& windows = platform.windows();
    platform::Driver& driver = platform.driver();
    std::vector<std::string> log;
    std::vector<std::unique_ptr<Recorder>> recorders;

    Recorder* Make(const std::string& name) {
        recorders.push_back(std::make_unique<Recorder>());
        recorders.back()->name = name;
        recorders.back()->log = &log;
        recorders.back()->gdi = &platform.gdi();
        return recorders.back().get();
    }
    HWND Top(const std::string& name, RECT r, bool caption = false) {
        WindowStyle style;
        style.caption = caption;
        const HWND w = windows.CreateWindow({}, r, style, Make(name), name);
        windows.ShowWindow(w, true);
        return w;
    }
    HWND Child(HWND parent, const std::string& name, RECT r) {
        WindowStyle style;
        style.child = true;
        const HWND w = windows.CreateWindow(parent, r, style, Make(name));
        windows.ShowWindow(w, true);
        return w;
    }
    std::string Take() {
        std::string all;
        for (const std::string& line : log) all += line + "\n";
        log.clear();
        return all;
    }
};

// The checks that reach the system's side directly (native_side.cpp): a container host's view,
// and the system's own time and queued input, as inside a real host.
void NativeSide();
void SystemTime();
// What the backend leaves out to spare round trips to the window server (round_trips.cpp).
void Invalidation();
void HandleNumbers();

}  // namespace korvex::backend_test
