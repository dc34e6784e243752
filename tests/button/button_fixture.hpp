#pragma once
// A run-mode form on the virtual screen with buttons placed on it, driven by scripts as
// korvex run drives it, with the pixels of a button's window at hand.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "controls/button/button.hpp"
#include "host/container.hpp"
#include "driver/script_runner.hpp"
#include "platform/sim/sim_platform.hpp"

namespace korvex::test {

using controls::Button;
using host::Variant;

// 0x00RRGGBB of a COLORREF, as composed pixels are.
constexpr std::uint32_t Pixel(platform::COLORREF c) {
    return (std::uint32_t{platform::GetRValue(c)} << 16) | (std::uint32_t{platform::GetGValue(c)} << 8) |
           platform::GetBValue(c);
}

struct Shot {
    std::vector<std::uint32_t> bits;
    int width = 0, height = 0;
    [[nodiscard]] std::uint32_t at(int x, int y) const { return bits[static_cast<std::size_t>(y * width + x)]; }
};

class ButtonTest : public ::testing::Test {
  protected:
    explicit ButtonTest(bool runMode = true) {
        context.Classes().Register(Button::Class());
        form.Width = 9000;
        form.Height = 6000;
        if (runMode) form.SwitchMode(true);
        form.Show();
    }

    // A 120 x 40 pixel button at (20, 20) pixels of the form.
    Button& Add(const char* name = "B", std::int32_t left = 300, std::int32_t top = 300, std::int32_t width = 1800,
                std::int32_t height = 600) {
        return static_cast<Button&>(form.Add("Korvex_Tools.Button", {name, left, top, width, height}).GetControl());
    }
    Button& Get(const char* name = "B") { return static_cast<Button&>(form.Get(name).GetControl()); }
    void Let(const char* name, const char* property, const Variant& value) {
        form.LetProperty(form.Get(name), property, value);
    }
    Variant Read(const char* name, const char* property) { return form.GetProperty(form.Get(name), property); }

    std::string Run(const std::string& script) {
        std::ostringstream out;
        host::ScriptRunner runner(form, platform.driver(), out);
        runner.Run(script);
        return out.str();
    }

    Shot Pixels(const char* name = "B") {
        const platform::HWND window = Get(name).SurfaceWindow();
        platform::RECT r;
        platform.windows().GetWindowRect(window, &r);
        return {platform.driver().ComposeWindow(window), r.Width(), r.Height()};
    }

    platform::sim::SimPlatform platform;
    host::HostContext context{&platform};
    host::Container form{context};
};

}  // namespace korvex::test
