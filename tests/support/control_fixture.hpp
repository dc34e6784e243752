#pragma once
// A shown 600 x 400 pixel form on the virtual screen with every class of the library registered:
// controls are dropped on it new or restored from a bag, driven late bound or by scripts as
// korvex run drives them, and read back as composed pixels.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "driver/script_runner.hpp"
#include "forms/graphics.hpp"
#include "host/container.hpp"
#include "library/library.hpp"
#include "platform/sim/sim_platform.hpp"
#include "support/error_of.hpp"

namespace korvex::test {

using namespace korvex::host;

// Records PropertyChanged calls by property name, in order.
class ChangeLog final : public EventSink {
  public:
    void OnEvent(Site&, const EventInfo&, std::span<Variant>) override {}
    void OnPropertyChanged(Site& site, std::string_view property) override {
        lines.push_back(site.Name() + "." + std::string(property));
    }
    std::vector<std::string> lines;
};

// A window's composed pixels, 0x00RRGGBB.
struct Shot {
    std::vector<std::uint32_t> bits;
    int width = 0, height = 0;
    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return bits[static_cast<std::size_t>(y * width + x)];
    }
    [[nodiscard]] int Count(std::uint32_t pixel) const {
        return static_cast<int>(std::count(bits.begin(), bits.end(), pixel));
    }
};

class ControlsTest : public ::testing::Test {
  protected:
    explicit ControlsTest(bool runMode = false) {
        RegisterLibrary(context);
        RegisterPrivateControls(context);
        form.Width = 9000;
        form.Height = 6000;
        if (runMode) form.SwitchMode(true);
        form.Show();
    }

    static std::string Prog(std::string_view cls) { return "Korvex_Tools." + std::string(cls); }
    Site& New(std::string_view cls, const Extender& at) { return form.Add(Prog(cls), at); }
    Site& Restore(std::string_view cls, const Extender& at, const JsonPropertyBag& bag) {
        return form.Restore(Prog(cls), at, bag);
    }
    template <class T>
    T& Control(const char* name) {
        return dynamic_cast<T&>(form.Get(name).GetControl());
    }
    JsonPropertyBag Save(const char* name) { return form.SaveBag(form.Get(name)); }
    void Let(const char* name, const char* property, const Variant& value) {
        form.LetProperty(form.Get(name), property, value);
    }
    Variant Get(const char* name, const char* property) {
        return form.GetProperty(form.Get(name), property);
    }
    std::int32_t Long(const char* name, const char* property) {
        return Get(name, property).ToLong();
    }

    std::string Run(const std::string& script) {
        std::ostringstream out;
        ScriptRunner runner(form, platform.driver(), out,
                            std::filesystem::path(KORVEX_BINARY_DIR) / "controls_test");
        runner.Run(script);
        return out.str();
    }
    // A script's output on one line: "event " and the control's name dropped, lines joined by
    // "; " ("MouseDown(1, 0, 4, 4); changed Value; Click()").
    std::string Brief(const std::string& script, const std::string& name) {
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

    Shot Pixels(const char* name) {
        const platform::HWND window = form.Get(name).GetControl().SurfaceWindow();
        platform::RECT r;
        platform.windows().GetWindowRect(window, &r);
        return {platform.driver().ComposeWindow(window), r.Width(), r.Height()};
    }
    std::uint32_t Sys(int index) {
        const platform::COLORREF c = platform.gdi().GetSysColor(index);
        return (std::uint32_t{platform::GetRValue(c)} << 16) |
               (std::uint32_t{platform::GetGValue(c)} << 8) | platform::GetBValue(c);
    }

    // Width and line height of a text in the form's font (the ambient MS Sans Serif 8.25).
    platform::SIZE TextSize(std::string_view text) {
        platform::Gdi& gdi = platform.gdi();
        const platform::HDC dc = gdi.CreateCompatibleDC({});
        const forms::GdiObject font = forms::MakeFont(gdi, *context.DefaultFont());
        const platform::HGDIOBJ old = gdi.SelectObject(dc, font.get());
        platform::SIZE size;
        gdi.GetTextExtentPoint32(dc, text, &size);
        platform::TEXTMETRIC tm;
        gdi.GetTextMetrics(dc, &tm);
        gdi.SelectObject(dc, old);
        gdi.DeleteDC(dc);
        return {size.cx, tm.tmHeight};
    }

    platform::sim::SimPlatform platform;
    HostContext context{&platform};
    Container form{context};
};

}  // namespace korvex::test
