#pragma once
// A form on the virtual screen holding the display controls, with helpers to create them new
// (dropped in the designer) or restored from a bag, to save them, to run scripts as korvex run
// does, and to read a control's composed pixels.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "controls/display/label3d.hpp"
#include "controls/display/line3d.hpp"
#include "host/container.hpp"
#include "driver/script_runner.hpp"
#include "platform/sim/sim_platform.hpp"

namespace korvex::test {

using host::Variant;

// Records PropertyChanged calls by property name, in order.
class ChangeLog final : public host::EventSink {
  public:
    void OnEvent(host::Site& site, const host::EventInfo& event, std::span<Variant>) override {
        lines.push_back("event " + site.Name() + "." + event.name);
    }
    void OnPropertyChanged(host::Site& site, std::string_view property) override {
        lines.push_back("changed " + site.Name() + "." + std::string(property));
    }
    std::vector<std::string> lines;
};

// The pixels of one window, 0x00RRGGBB.
struct WindowPixels {
    std::vector<std::uint32_t> bits;
    int width = 0, height = 0;
    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return bits[static_cast<std::size_t>(y * width + x)];
    }
    // Rows of characters through a legend; '?' for any other colour.
    [[nodiscard]] std::vector<std::string> Map(const std::map<std::uint32_t, char>& legend) const {
        std::vector<std::string> rows;
        for (int y = 0; y < height; ++y) {
            std::string row;
            for (int x = 0; x < width; ++x) {
                const auto it = legend.find(at(x, y));
                row += it == legend.end() ? '?' : it->second;
            }
            rows.push_back(row);
        }
        return rows;
    }
};

class DisplayTest : public ::testing::Test {
  protected:
    DisplayTest() {
        context.Classes().Register(controls::Line3D::Class());
        context.Classes().Register(controls::Label3D::Class());
        form.Width = 9000;
        form.Height = 6000;
        form.Show();
    }

    host::Site& AddNew(const char* progId, const char* name, std::int32_t left, std::int32_t top,
                       std::int32_t width, std::int32_t height) {
        return form.Add(progId, {name, left, top, width, height});
    }
    host::Site& Restore(const char* progId, const char* name, const host::PropertyBag& bag,
                        std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height) {
        return form.Restore(progId, {name, left, top, width, height}, bag);
    }
    template <class T>
    T& Control(const char* name) {
        return static_cast<T&>(form.Get(name).GetControl());
    }
    host::PropertyBag Save(const char* name) { return form.SaveBag(form.Get(name)); }
    std::int32_t Extent(const char* name, const char* which) {
        return form.GetProperty(form.Get(name), which).ToLong();
    }
    void Let(const char* name, const char* property, const Variant& value) {
        form.LetProperty(form.Get(name), property, value);
    }
    Variant Get(const char* name, const char* property) {
        return form.GetProperty(form.Get(name), property);
    }

    std::string Run(const std::string& script) {
        std::ostringstream out;
        host::ScriptRunner runner(form, platform.driver(), out, std::filesystem::path(KORVEX_BINARY_DIR) / "line3d_label3d");
        runner.Run(script);
        return out.str();
    }

    WindowPixels Pixels(const char* name) {
        const platform::HWND window = form.Get(name).GetControl().SurfaceWindow();
        platform::RECT client;
        platform.windows().GetClientRect(window, &client);
        return {platform.driver().ComposeWindow(window), client.Width(), client.Height()};
    }
    std::uint32_t SysColour(int index) {
        const platform::COLORREF c = platform.gdi().GetSysColor(index);
        return (std::uint32_t{platform::GetRValue(c)} << 16) | (std::uint32_t{platform::GetGValue(c)} << 8) |
               platform::GetBValue(c);
    }

    platform::sim::SimPlatform platform;
    host::HostContext context{&platform};
    host::Container form{context};
};

// Expects a host error with this number from the statement.
#define EXPECT_HOST_ERROR(statement, number)                                      \
    do {                                                                          \
        try {                                                                     \
            statement;                                                            \
            ADD_FAILURE() << #statement " raised no error";                       \
        } catch (const host::HostError& e) {                                     \
            EXPECT_EQ(e.Number(), number) << #statement ": " << e.what();         \
        }                                                                         \
    } while (false)

}  // namespace korvex::test
