#pragma once
// The test bench every suite builds on: one portable platform, and on top of it a host context
// with a form (a Container) that controls are placed on. Composing pixels, moving the virtual
// clock and feeding input are the platform's driver side; the bench is the one place tests reach
// it, so a change there is followed here only.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <span>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "driver/script_runner.hpp"
#include "host/container.hpp"
#include "platform/sim/sim_platform.hpp"
#include "support/shot.hpp"

namespace korvex::test {

using Log = std::vector<std::string>;

// Records what a form's controls raise and report, in the lines the script runner prints; a
// handler may answer an event (by-reference arguments) through onEvent.
class EventLog final : public host::EventSink {
  public:
    void OnEvent(host::Site& site, const host::EventInfo& event,
                 std::span<host::Variant> args) override {
        std::string line = "event " + site.Name() + "." + event.name + "(";
        for (std::size_t i = 0; i < args.size(); ++i)
            line += (i ? ", " : "") + host::DisplayText(args[i]);
        lines.push_back(line + ")");
        if (onEvent) onEvent(event, args);
    }
    void OnPropertyChanged(host::Site& site, std::string_view property) override {
        lines.push_back("changed " + site.Name() + "." + std::string(property));
    }
    Log Take() { return std::exchange(lines, {}); }

    Log lines;
    std::function<void(const host::EventInfo&, std::span<host::Variant>)> onEvent;
};

// The portable platform behind the Platform interface, for a test that replaces one service by
// overriding its accessor (a shell that fails or watches, say).
class ForwardingPlatform : public platform::Platform {
  public:
    platform::Gdi& gdi() override { return sim.gdi(); }
    platform::Windows& windows() override { return sim.windows(); }
    platform::Clock& clock() override { return sim.clock(); }
    platform::EventLoop& loop() override { return sim.loop(); }
    platform::Sound& sound() override { return sim.sound(); }
    platform::Shell& shell() override { return sim.shell(); }
    platform::Clipboard& clipboard() override { return sim.clipboard(); }

    platform::sim::SimPlatform sim;
};

// The simulated platform with its shell replaced by a test's own, one that watches the calls or
// fails them.
template <class ReplacementShell>
class ShellPlatform final : public ForwardingPlatform {
  public:
    platform::Shell& shell() override { return replacement; }
    ReplacementShell replacement;
};

// The platform alone, with its driver side: pixels, clock and input in screen pixels.
class SimBench {
  public:
    explicit SimBench(platform::SIZE screen = {1024, 768}) : platform(screen) {}

    [[nodiscard]] Shot ShotOf(platform::HWND window) {
        platform::RECT r;
        windows.GetWindowRect(window, &r);
        return {platform.driver().ComposeWindow(window), r.Width(), r.Height()};
    }
    [[nodiscard]] Shot Screen() {
        const std::int32_t w = gdi.GetDeviceCaps({}, platform::HORZRES),
                           h = gdi.GetDeviceCaps({}, platform::VERTRES);
        return {platform.driver().ComposeScreen(), w, h};
    }
    [[nodiscard]] std::uint32_t SysPixel(int index) { return ToPixel(gdi.GetSysColor(index)); }

    void Advance(std::int64_t ms) { platform.driver().Advance(ms); }
    void MoveTo(platform::POINT screen) { platform.driver().MouseMove(screen); }
    // A press a second after the last input, too late to make a double click.
    void Press(platform::POINT screen, int button = platform::kButtonLeft) {
        Advance(1000);
        PressNow(screen, button);
    }
    // A press straight after the last input.
    void PressNow(platform::POINT screen, int button = platform::kButtonLeft) {
        MoveTo(screen);
        platform.driver().MouseDown(button, 0);
    }
    void Release(platform::POINT screen, int button = platform::kButtonLeft) {
        MoveTo(screen);
        platform.driver().MouseUp(button, 0);
    }
    void Click(platform::POINT screen, int button = platform::kButtonLeft) {
        Press(screen, button);
        Release(screen, button);
    }
    void Key(int code, int shift = 0) {
        platform.driver().KeyDown(code, shift);
        platform.driver().KeyPress(code);
        platform.driver().KeyUp(code, shift);
    }

    platform::sim::SimPlatform platform;
    platform::sim::SimGdi& gdi = platform.gdi();
    platform::sim::SimWindows& windows = platform.windows();
};

// A form on the virtual screen, 9000 x 6000 twips, holding controls of the registered classes.
class HostBench : public SimBench {
  public:
    explicit HostBench(std::initializer_list<std::reference_wrapper<const host::ClassInfo>> classes,
                       bool runMode = false) {
        for (const host::ClassInfo& c : classes) context.Classes().Register(c);
        form.Width = 9000;
        form.Height = 6000;
        if (runMode) form.SwitchMode(true);
        form.Show();
    }

    host::Site& Add(const std::string& progId, const host::Extender& at) {
        return form.Add(progId, at);
    }
    template <class T>
    T& Control(const std::string& name) {
        return static_cast<T&>(form.Get(name).GetControl());
    }
    void Let(const std::string& name, const std::string& property, const host::Variant& value) {
        form.LetProperty(form.Get(name), property, value);
    }
    host::Variant Get(const std::string& name, const std::string& property) {
        return form.GetProperty(form.Get(name), property);
    }
    host::Site& Restore(const std::string& progId, const host::Extender& at,
                        const host::JsonPropertyBag& bag) {
        return form.Restore(progId, at, bag);
    }
    host::JsonPropertyBag Save(const std::string& name) { return form.SaveBag(form.Get(name)); }
    // A control's window as composed on the screen.
    [[nodiscard]] Shot ShotOf(const std::string& name) {
        return SimBench::ShotOf(form.Get(name).GetControl().SurfaceWindow());
    }

    // Runs a script as korvex run does (input, waits and property steps on the virtual clock)
    // and returns what it printed: the event log of the run.
    std::string Run(const std::string& script, const std::filesystem::path& outDir = ".") {
        std::ostringstream out;
        host::ScriptRunner runner(form, platform.driver(), out, outDir);
        runner.Run(script);
        return out.str();
    }

    host::HostContext context{&platform};
    host::Container form{context};
};

}  // namespace korvex::test
