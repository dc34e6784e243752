#pragma once
// Buttons on a form on the virtual screen, driven by scripts as korvex run drives them, with
// the composed pixels of a control's window at hand.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "controls/button/button.hpp"
#include "controls/button/flat_button.hpp"
#include "host/container.hpp"
#include "driver/script_runner.hpp"
#include "platform/sim/sim_platform.hpp"

namespace korvex::test {

using host::Variant;

// Composed pixels, 0x00RRGGBB.
struct Shot {
    std::vector<std::uint32_t> bits;
    int width = 0, height = 0;
    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return bits[static_cast<std::size_t>(y * width + x)];
    }
    [[nodiscard]] int Count(std::uint32_t colour) const {
        return static_cast<int>(std::count(bits.begin(), bits.end(), colour));
    }
    // Bounding box (left, top, right, bottom) of one colour two pixels in from the edges;
    // {-1, ...} when it does not occur.
    [[nodiscard]] std::vector<int> Box(std::uint32_t colour) const {
        std::vector<int> box{-1, -1, -1, -1};
        for (int y = 2; y < height - 2; ++y)
            for (int x = 2; x < width - 2; ++x) {
                if (at(x, y) != colour) continue;
                if (box[0] < 0) box = {x, y, x, y};
                box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x),
                       std::max(box[3], y)};
            }
        return box;
    }
    // Rows 0, 1, 2, h-3, h-2, h-1, each as columns 0..3, a blank and w-4..w-1, through a legend
    // ('?' for other colours).
    [[nodiscard]] std::vector<std::string> Corners(
        const std::map<std::uint32_t, char>& legend) const {
        std::vector<std::string> rows;
        for (int y : {0, 1, 2, height - 3, height - 2, height - 1}) {
            std::string row;
            for (int x : {0, 1, 2, 3, -1, width - 4, width - 3, width - 2, width - 1}) {
                const auto it = legend.find(x < 0 ? 0xFFFFFFFFu : at(x, y));
                row += x < 0 ? ' ' : it == legend.end() ? '?' : it->second;
            }
            rows.push_back(row);
        }
        return rows;
    }
};

// A member table in slot order ("Caption Font hwnd(ro) sFocus ") and its events ("1Click ").
inline std::string Members(const host::ClassInfo& info) {
    std::string out;
    for (const host::MemberInfo& m : info.members) out += m.name + (m.ReadOnly() ? "(ro) " : " ");
    return out;
}
inline std::string Events(const host::ClassInfo& info) {
    std::string out;
    for (const host::EventInfo& e : info.events) out += std::to_string(e.id) + e.name + " ";
    return out;
}

class ButtonsTest : public ::testing::Test {
  protected:
    explicit ButtonsTest(bool runMode = true) {
        context.Classes().Register(controls::Button::Class());
        context.Classes().Register(controls::FlatButton::Class());
        form.Width = 9000;
        form.Height = 6000;
        if (runMode) form.SwitchMode(true);
        form.Show();
    }

    // A 120 x 40 pixel button at (20, 20) pixels of the form.
    controls::Button& Add(const char* name = "B", std::int32_t left = 300, std::int32_t top = 300,
                          std::int32_t width = 1800, std::int32_t height = 600) {
        return static_cast<controls::Button&>(
            form.Add("Korvex_Tools.Button", {name, left, top, width, height}).GetControl());
    }
    template <class T = controls::Button>
    T& Get(const char* name = "B") {
        return dynamic_cast<T&>(form.Get(name).GetControl());
    }
    void Let(const char* name, const char* property, const Variant& value) {
        form.LetProperty(form.Get(name), property, value);
    }
    Variant Read(const char* name, const char* property) {
        return form.GetProperty(form.Get(name), property);
    }
    // The saved keys in order, each with the kind it is stored as: "Caption String".
    std::vector<std::string> Keys(const char* name) {
        const host::JsonPropertyBag bag = form.SaveBag(form.Get(name));
        std::vector<std::string> keys;
        for (const auto& [key, value] : bag.Entries())
            keys.push_back(key + " " + std::string(host::KindName(value.Kind())));
        return keys;
    }

    std::string Run(const std::string& script) {
        std::ostringstream out;
        host::ScriptRunner runner(form, platform.driver(), out);
        runner.Run(script);
        return out.str();
    }

    // A script's output on one line: "event " and the control's name dropped, lines joined by
    // "; " ("MouseDown(1, 0, 4, 4); changed Value; Click()").
    std::string Brief(const std::string& script, const std::string& name = "B") {
        std::istringstream lines(Run(script));
        std::string out, line;
        for (std::string sep; std::getline(lines, line); sep = "; ") {
            if (line.starts_with("event ")) line.erase(0, 6);
            for (auto at = line.find(name + "."); at != std::string::npos;
                 at = line.find(name + "."))
                line.erase(at, name.size() + 1);
            out += sep + line;
        }
        return out;
    }

    Shot Pixels(const char* name = "B") {
        const platform::HWND window = form.Get(name).GetControl().SurfaceWindow();
        platform::RECT r;
        platform.windows().GetWindowRect(window, &r);
        return {platform.driver().ComposeWindow(window), r.Width(), r.Height()};
    }

    platform::sim::SimPlatform platform;
    host::HostContext context{&platform};
    host::Container form{context};
};

}  // namespace korvex::test
