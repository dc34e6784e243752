#pragma once
// A small test control on the portable platform: a top-level "form" window painted in one
// colour, a control surface on it holding a shape, an image and a label (bottom to top), and
// helpers to read composed pixels and to log the events the objects raise.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "base/error.hpp"
#include "forms/image.hpp"
#include "forms/label.hpp"
#include "forms/picture_box.hpp"
#include "forms/shape.hpp"
#include "forms/timer.hpp"
#include "forms/user_control.hpp"
#include "platform/sim/sim_platform.hpp"

namespace korvex::forms::testing {

using namespace platform;
using Log = std::vector<std::string>;

constexpr std::uint32_t ToPixel(COLORREF c) {
    return (std::uint32_t{GetRValue(c)} << 16) | (std::uint32_t{GetGValue(c)} << 8) | GetBValue(c);
}

inline constexpr COLORREF kRed = RGB(255, 0, 0);
inline constexpr COLORREF kGreen = RGB(0, 255, 0);
inline constexpr COLORREF kBlue = RGB(0, 0, 255);
inline constexpr COLORREF kYellow = RGB(255, 255, 0);
inline constexpr COLORREF kFormColour = RGB(10, 20, 30);

// The pixels of a window or the screen, addressed by x, y.
struct Pixels {
    std::vector<std::uint32_t> bits;
    SIZE size;
    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return bits[static_cast<std::size_t>(y * size.cx + x)];
    }
    [[nodiscard]] bool is(int x, int y, COLORREF c) const { return at(x, y) == ToPixel(c); }
    // The pixels of colour c inside r as a set of window coordinates.
    [[nodiscard]] std::vector<POINT> Find(COLORREF c, const RECT& r) const {
        std::vector<POINT> found;
        for (int y = r.top; y < r.bottom; ++y)
            for (int x = r.left; x < r.right; ++x)
                if (is(x, y, c)) found.push_back({x, y});
        return found;
    }
    // Rows of characters through a legend ('?' for anything else), for maps in hex-row style.
    [[nodiscard]] std::vector<std::string> Map(const RECT& r,
                                               const std::map<COLORREF, char>& legend) const {
        std::vector<std::string> rows;
        for (int y = r.top; y < r.bottom; ++y) {
            std::string row;
            for (int x = r.left; x < r.right; ++x) {
                char ch = '?';
                for (const auto& [colour, c] : legend)
                    if (is(x, y, colour)) ch = c;
                row += ch;
            }
            rows.push_back(row);
        }
        return rows;
    }
};

inline std::string Picture(const std::vector<std::string>& rows) {
    std::ostringstream out;
    for (const auto& r : rows) out << "  " << r << "\n";
    return out.str();
}

inline ::testing::AssertionResult SameRows(const std::vector<std::string>& got,
                                           const std::vector<std::string>& want) {
    for (std::size_t y = 0; y < std::max(got.size(), want.size()); ++y) {
        const std::string g = y < got.size() ? got[y] : "", w = y < want.size() ? want[y] : "";
        if (g != w) {
            std::size_t x = 0;
            while (x < g.size() && x < w.size() && g[x] == w[x]) ++x;
            return ::testing::AssertionFailure()
                   << "first difference at (" << x << "," << y << ")\ngot:\n"
                   << Picture(got) << "want:\n"
                   << Picture(want);
        }
    }
    return ::testing::AssertionSuccess();
}

// Paints the form's client area in one colour.
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

inline std::string Format(float v) {
    std::ostringstream out;
    out << v;
    return out.str();
}

// Appends "name Event args" lines for every mouse event of a set of handlers.
inline void Record(MouseEvents& events, const std::string& name, Log& log) {
    auto mouse = [&log, name](const char* what) {
        return [&log, name, what](std::int16_t button, std::int16_t shift, float x, float y) {
            log.push_back(name + " " + what + " " + std::to_string(button) + " " +
                          std::to_string(shift) + " " + Format(x) + "," + Format(y));
        };
    };
    events.MouseDown = mouse("MouseDown");
    events.MouseUp = mouse("MouseUp");
    events.Click = [&log, name] { log.push_back(name + " Click"); };
    events.DblClick = [&log, name] { log.push_back(name + " DblClick"); };
}

class FormTest : public ::testing::Test {
  protected:
    static constexpr SIZE kScreen{200, 150};
    // The surface's rectangle on the form (and screen), in pixels.
    static constexpr RECT kSurface{20, 10, 140, 70};

    FormTest() {
        windows.ShowWindow(form, true);
        const int tx = platform::TwipsPerPixelX(platform), ty = platform::TwipsPerPixelY(platform);
        surface.Move(static_cast<float>(kSurface.left * tx), static_cast<float>(kSurface.top * ty),
                     static_cast<float>(kSurface.Width() * tx),
                     static_cast<float>(kSurface.Height() * ty));
        windows.ShowWindow(surface.hWnd(), true);
    }

    // Twips of a pixel count, from the platform's factor.
    float Tx(int pixels) { return static_cast<float>(pixels * platform::TwipsPerPixelX(platform)); }
    float Ty(int pixels) { return static_cast<float>(pixels * platform::TwipsPerPixelY(platform)); }

    [[nodiscard]] Pixels Surface() {
        return {windows.ComposeWindow(surface.hWnd()), {kSurface.Width(), kSurface.Height()}};
    }
    [[nodiscard]] Pixels Screen() { return {windows.ComposeScreen(), kScreen}; }

    // Input at a point of the surface's client area.
    void MoveTo(POINT client) {
        loop.MouseMove({kSurface.left + client.x, kSurface.top + client.y});
    }
    // A press a second after the last input, too late to make a double click.
    void Press(POINT client, int button = kButtonLeft) {
        platform.driver().Advance(1000);
        MoveTo(client);
        loop.MouseDown(button, 0);
    }
    // A press straight after the last input.
    void PressQuickly(POINT client) {
        MoveTo(client);
        loop.MouseDown(kButtonLeft, 0);
    }
    void Release(POINT client, int button = kButtonLeft) {
        MoveTo(client);
        loop.MouseUp(button, 0);
    }
    void Click(POINT client) {
        Press(client);
        Release(client);
    }
    Log TakeLog() { return std::exchange(log, {}); }

    sim::SimPlatform platform{kScreen};
    sim::SimGdi& gdi = platform.gdi();
    sim::SimWindows& windows = platform.windows();
    sim::SimEventLoop& loop = platform.loop();
    FormWindow formWindow{gdi};
    HWND form = windows.CreateWindow({}, RECT{0, 0, kScreen.cx, kScreen.cy}, {}, &formWindow);
    UserControlSurface surface{platform, form};
    Log log;
};

}  // namespace korvex::forms::testing
