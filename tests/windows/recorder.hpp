#pragma once
// The window tests speak the platform's names unqualified. A window handler that writes what it
// receives into a shared log, one line per call, so a test can assert the exact order across
// windows: "A down 1 (10,20)", "B focus+"; and the few steps every window test takes: show a
// window, click, read a composed pixel.

#include <functional>
#include <string>
#include <vector>

#include "platform/sim/sim_platform.hpp"

namespace korvex::test {

using namespace platform;

class Recorder : public platform::WindowHandler {
  public:
    Recorder(std::string name, std::vector<std::string>& log) : name_(std::move(name)), log_(log) {}

    void OnMouse(const MouseEvent& e) override {
        static constexpr const char* kKinds[] = {"move", "down", "up", "dbl"};
        log_.push_back(name_ + " " + kKinds[static_cast<int>(e.kind)] + " " +
                       std::to_string(e.button) + " (" + std::to_string(e.client.x) + "," +
                       std::to_string(e.client.y) + ")");
        last = e;
    }
    void OnKey(const KeyEvent& e) override {
        static constexpr const char* kKinds[] = {"keydown", "keyup", "press"};
        log_.push_back(name_ + " " + kKinds[static_cast<int>(e.kind)] + " " +
                       std::to_string(e.keyCode) + " shift " + std::to_string(e.shift));
    }
    void OnFocus(bool gained) override {
        log_.push_back(name_ + (gained ? " focus+" : " focus-"));
        if (onFocus) onFocus(gained);
    }
    void OnCaptureLost() override { log_.push_back(name_ + " capture-lost"); }

    MouseEvent last;
    std::function<void(bool)> onFocus;

  private:
    std::string name_;
    std::vector<std::string>& log_;
};

// Paints its whole client area in one colour.
class Solid : public platform::WindowHandler {
  public:
    Solid(platform::Gdi& gdi, platform::COLORREF color) : gdi_(gdi), color_(color) {}
    void OnPaint(HDC dc, const RECT& client) override {
        const platform::HBRUSH brush = gdi_.CreateSolidBrush(color_);
        gdi_.FillRect(dc, client, brush);
        gdi_.DeleteObject(brush);
    }

  private:
    platform::Gdi& gdi_;
    platform::COLORREF color_;
};

// A composed pixel (0x00RRGGBB) of a COLORREF (0x00BBGGRR).
constexpr std::uint32_t ToPixel(platform::COLORREF c) {
    return std::uint32_t{platform::GetRValue(c)} << 16 |
           std::uint32_t{platform::GetGValue(c)} << 8 | platform::GetBValue(c);
}

inline HWND Shown(platform::Windows& win, HWND parent, const RECT& r, platform::WindowHandler* h,
                  platform::WindowStyle style = {}) {
    const HWND w = win.CreateWindow(parent, r, style, h);
    win.ShowWindow(w, true);
    return w;
}

inline void Click(platform::Driver& driver, POINT p, int button = platform::kButtonLeft) {
    driver.MouseMove(p);
    driver.MouseDown(button, 0);
    driver.MouseUp(button, 0);
}

}  // namespace korvex::test
