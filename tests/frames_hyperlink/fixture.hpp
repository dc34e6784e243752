#pragma once
// A form on the virtual screen with the frame and link classes registered, driven by scripts as
// korvex run drives it, and helpers to read a control's composed pixels and its properties.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "controls/display/frames.hpp"
#include "controls/display/hyperlink.hpp"
#include "host/container.hpp"
#include "driver/script_runner.hpp"
#include "platform/sim/sim_platform.hpp"

namespace korvex::test {

using namespace korvex::host;

constexpr std::uint32_t ToPixel(platform::COLORREF c) {
    return (std::uint32_t{platform::GetRValue(c)} << 16) | (std::uint32_t{platform::GetGValue(c)} << 8) |
           platform::GetBValue(c);
}

// A window's composed pixels, addressed by x, y.
struct Shot {
    std::vector<std::uint32_t> bits;
    int width = 0;
    int height = 0;
    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return bits[static_cast<std::size_t>(y * width + x)];
    }
    [[nodiscard]] int Count(std::uint32_t pixel) const {
        int n = 0;
        for (std::uint32_t b : bits) n += b == pixel ? 1 : 0;
        return n;
    }
    // Rows through a legend ('.' for anything else), for small maps in the tests.
    [[nodiscard]] std::string Row(int y, int x0, int x1, const std::map<std::uint32_t, char>& legend) const {
        std::string row;
        for (int x = x0; x < x1; ++x) {
            auto it = legend.find(at(x, y));
            row += it == legend.end() ? '.' : it->second;
        }
        return row;
    }
};

class FormFixture : public ::testing::Test {
protected:
    FormFixture() {
        context.Classes().Register(controls::Frames::Class());
        context.Classes().Register(controls::Hyperlink::Class());
    }

    std::string Run(const std::string& script) {
        std::ostringstream out;
        ScriptRunner runner(form, platform.driver(), out, dir);
        runner.Run(script);
        return out.str();
    }

    Shot Pixels(const Site& site) {
        const platform::HWND window = site.GetControl().SurfaceWindow();
        platform::RECT r;
        platform.windows().GetWindowRect(window, &r);
        return {platform.driver().ComposeWindow(window), r.Width(), r.Height()};
    }

    std::uint32_t SysPixel(int index) { return ToPixel(platform.gdi().GetSysColor(index)); }

    // Every readable property of a control by name, handles left out (they differ per instance).
    std::vector<std::pair<std::string, Variant>> Properties(Site& site) {
        std::vector<std::pair<std::string, Variant>> values;
        for (const MemberInfo& m : site.Class().members) {
            if (m.kind != MemberInfo::Kind::Property || m.name == "HDC" || m.name == "hwnd") continue;
            values.emplace_back(m.name, m.get(site.GetControl()));
        }
        return values;
    }

    // The properties whose values differ between two controls of one class.
    std::vector<std::string> Differences(Site& a, Site& b) {
        std::vector<std::string> names;
        const auto va = Properties(a), vb = Properties(b);
        for (std::size_t i = 0; i < va.size(); ++i)
            if (!SameValue(va[i].second, vb[i].second))
                names.push_back(va[i].first + ": " + DisplayText(va[i].second) + " vs " + DisplayText(vb[i].second));
        return names;
    }

    static std::vector<std::string> Keys(const PropertyBag& bag) {
        std::vector<std::string> keys;
        for (const auto& [key, value] : bag.Entries()) keys.push_back(key);
        return keys;
    }

    platform::sim::SimPlatform platform;
    HostContext context{&platform};
    Container form{context};
    std::filesystem::path dir = std::filesystem::path(KORVEX_BINARY_DIR) / "frames_hyperlink_test";
};

}  // namespace korvex::test
