#pragma once
// A control surface on a top-level form window painted in one colour, on the shared bench; input
// is given in the surface's client pixels, and a log collects the mouse events objects raise.

#include <sstream>
#include <string>

#include "base/error.hpp"
#include "forms/image.hpp"
#include "forms/label.hpp"
#include "forms/picture_box.hpp"
#include "forms/shape.hpp"
#include "forms/timer.hpp"
#include "forms/user_control.hpp"
#include "support/bench.hpp"

namespace korvex::forms::testing {

using namespace platform;
using test::Log;
using test::Rows;
using test::SameRows;
using test::Shot;

inline constexpr COLORREF kRed = RGB(255, 0, 0), kGreen = RGB(0, 255, 0), kBlue = RGB(0, 0, 255),
                          kYellow = RGB(255, 255, 0), kFormColour = RGB(10, 20, 30);

class FormWindow : public WindowHandler {
  public:
    explicit FormWindow(Gdi& gdi) : gdi_(gdi) {}
    void OnPaint(HDC dc, const RECT& client) override {
        const HBRUSH brush = gdi_.CreateSolidBrush(kFormColour);
        gdi_.FillRect(dc, client, brush);
        gdi_.DeleteObject(brush);
    }

  private:
    Gdi& gdi_;
};

// Appends "name Event button shift x,y" lines for the mouse events of a set of handlers.
inline void Record(MouseEvents& events, const std::string& name, Log& log) {
    auto mouse = [&log, name](const char* what) {
        return [&log, name, what](std::int16_t button, std::int16_t shift, float x, float y) {
            std::ostringstream line;
            line << name << " " << what << " " << button << " " << shift << " " << x << "," << y;
            log.push_back(line.str());
        };
    };
    events.MouseDown = mouse("MouseDown");
    events.MouseUp = mouse("MouseUp");
    events.Click = [&log, name] { log.push_back(name + " Click"); };
    events.DblClick = [&log, name] { log.push_back(name + " DblClick"); };
}

class FormTest : public ::testing::Test, public test::SimBench {
  protected:
    // The surface's rectangle on the 200 x 150 screen, in pixels.
    static constexpr RECT kSurface{20, 10, 140, 70};

    FormTest() : SimBench({200, 150}) {
        windows.ShowWindow(form, true);
        surface.Move(Tx(kSurface.left), Ty(kSurface.top), Tx(kSurface.Width()),
                     Ty(kSurface.Height()));
        windows.ShowWindow(surface.hWnd(), true);
    }

    // Twips of a pixel count, from the platform's factor.
    float Tx(int pixels) { return static_cast<float>(pixels * platform::TwipsPerPixelX(platform)); }
    float Ty(int pixels) { return static_cast<float>(pixels * platform::TwipsPerPixelY(platform)); }
    [[nodiscard]] Shot Surface() { return ShotOf(surface.hWnd()); }
    [[nodiscard]] Rows Map(const RECT& r, test::Legend legend) {
        legend.emplace(gdi.GetSysColor(COLOR_BTNFACE), '.');
        return Surface().Map(legend, r);
    }

    // Input at a point of the surface's client area.
    static POINT At(POINT client) { return {kSurface.left + client.x, kSurface.top + client.y}; }
    void MoveTo(POINT client) { SimBench::MoveTo(At(client)); }
    void Press(POINT client, int button = kButtonLeft) { SimBench::Press(At(client), button); }
    void PressQuickly(POINT client) { SimBench::PressNow(At(client)); }
    void Release(POINT client, int button = kButtonLeft) { SimBench::Release(At(client), button); }
    void Click(POINT client) { SimBench::Click(At(client)); }
    Log TakeLog() { return std::exchange(log, {}); }

    FormWindow formWindow{gdi};
    HWND form = windows.CreateWindow({}, RECT{0, 0, 200, 150}, {}, &formWindow);
    UserControlSurface surface{platform, form};
    Log log;
};

}  // namespace korvex::forms::testing
