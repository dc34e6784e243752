// The about box on the virtual screen: opened modally by a control's ShowAboutBox in a scripted
// session, its link (colours on moves, the shell request a click makes, the hourglass meanwhile),
// its close box ending the modal loop, and its caption bar in the composed pixels.

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "base/error.hpp"
#include "dialog/about_box.hpp"
#include "forms/form.hpp"
#include "forms/frame.hpp"
#include "forms/surface_control.hpp"
#include "driver/script_runner.hpp"
#include "platform/sim/sim_platform.hpp"

using namespace korvex;
using namespace korvex::host;
using platform::POINT;
using platform::RECT;

namespace {

// The smallest control with an about box.
class Knob final : public forms::SurfaceControl {
public:
    explicit Knob(HostContext& context) : SurfaceControl(context) {}
    static const ClassInfo& Class() {
        static const ClassInfo info = ClassBuilder<Knob>("Knob", "Korvex_Tools.Knob")
                                          .Method("ShowAboutBox", {}, [](Knob& k, std::span<Variant>) { k.OpenAboutBox(); })
                                          .DispId(kDispIdAboutBox)
                                          .Build();
        return info;
    }
    const ClassInfo& TypeInfo() const override { return Class(); }
};

// Screen points of the about box's parts, as laid out on a fresh screen of the default size.
struct Layout {
    POINT link, text, product, closeBox, caption;
};

POINT Centre(const RECT& r) { return {(r.left + r.right) / 2, (r.top + r.bottom) / 2}; }

Layout Measure() {
    platform::sim::SimPlatform platform;
    dialog::frmAbout about(platform);
    about.Me.Show(false);
    auto& windows = platform.windows();
    const auto onFrame = [&](const forms::Label& label) {
        const RECT r = label.PixelRect();
        const POINT c = windows.ClientToScreen(about.Frame1.hWnd(), Centre(r));
        return c;
    };
    RECT form;
    windows.GetWindowRect(about.Me.hWnd(), &form);
    const POINT close = Centre(about.Me.CloseBoxRect());
    const POINT caption = Centre(about.Me.CaptionRect());
    return {onFrame(about.lblButton), onFrame(about.lbl1), onFrame(about.lblProductName),
            {form.left + close.x, form.top + close.y}, {form.left + caption.x, form.top + caption.y}};
}

std::string Point(POINT p) { return std::to_string(p.x) + " " + std::to_string(p.y); }

class AboutSession : public ::testing::Test {
protected:
    AboutSession() {
        context.Classes().Register(Knob::Class());
        context.SetAboutBox([this] { dialog::ShowAboutBox(context); });
        form.Add("Korvex_Tools.Knob", {"Knob1", 300, 300, 1500, 750});
        form.SwitchMode(true);
        form.Show();
    }
    std::string Run(const std::string& script) {
        std::ostringstream out;
        ScriptRunner runner(form, platform.driver(), out, dir);
        runner.Run(script);
        return out.str();
    }

    platform::sim::SimPlatform platform;
    HostContext context{&platform};
    Container form{context};
    std::filesystem::path dir = std::filesystem::path(KORVEX_BINARY_DIR) / "about_test";
    Layout at = Measure();
};

}  // namespace

TEST_F(AboutSession, ShowAboutBoxIsModalUntilTheCloseBoxIsClicked) {
    std::filesystem::create_directories(dir);
    const std::string out = Run("call Knob1.ShowAboutBox\n"
                                "snapshot about.png top\n"
                                "move " + Point(at.link) + "\n"
                                "click\n"
                                "move " + Point(at.closeBox) + "\n"
                                "click\n"
                                "get Knob1.Left\n");
    EXPECT_EQ(out.find("error"), std::string::npos) << out;
    EXPECT_NE(out.find("Knob1.Left = 300"), std::string::npos) << "the script went on after the box closed:\n" << out;
    EXPECT_TRUE(std::filesystem::exists(dir / "about.png"));

    // The click on the link asked the shell to open the information page, maximised.
    const auto& shell = platform.shell().Requests();
    ASSERT_EQ(shell.size(), 1u);
    EXPECT_EQ(shell[0].verb, "Open");
    EXPECT_EQ(shell[0].file, "http://www.korvex-tools.de/info");
    EXPECT_EQ(shell[0].parameters, "");
    EXPECT_EQ(shell[0].directory, "");
    EXPECT_EQ(shell[0].showCommand, 3);
    EXPECT_TRUE(shell[0].owner);
    EXPECT_NE(shell[0].owner, form.FormWindow()) << "the about box's own window owns the browser";

    // Unloaded: only the host's form is left, and it takes input again.
    const auto top = platform.windows().ZOrder(platform::HWND{});
    ASSERT_EQ(top.size(), 1u);
    EXPECT_EQ(top[0], form.FormWindow());
    EXPECT_TRUE(platform.windows().IsWindowEnabled(form.FormWindow()));
}

TEST_F(AboutSession, TheHostsFormIsDisabledWhileTheBoxIsOpen) {
    // A click on the control under the modal box's owner-less window is dropped: the form
    // below is disabled until the box is closed.
    const std::string out = Run("call Knob1.ShowAboutBox\n"
                                "move 30 30\n"
                                "click\n"
                                "move " + Point(at.closeBox) + "\n"
                                "down\n"
                                "move " + Point(at.caption) + "\n"
                                "up\n"
                                "move " + Point(at.closeBox) + "\n"
                                "click\n");
    EXPECT_EQ(out.find("error"), std::string::npos) << out;
    EXPECT_TRUE(platform.shell().Requests().empty());
    EXPECT_TRUE(platform.windows().IsWindowEnabled(form.FormWindow()));
}

TEST_F(AboutSession, AModalLoopNothingClosesEndsWithTheHostsError) {
    const std::string out = Run("call Knob1.ShowAboutBox\n");
    EXPECT_NE(out.find("error 32000"), std::string::npos) << out;
    EXPECT_EQ(platform.windows().ZOrder(platform::HWND{}).size(), 1u) << "the box was unloaded all the same";
}

// ---------------------------------------------------------------------------------------------
// The form itself, shown without a modal loop so the test can look at it between steps.

namespace {

// A platform that notes the pointer shape the screen shows while the shell opens something.
class WatchingShell final : public platform::Shell {
public:
    explicit WatchingShell(platform::Windows& w) : windows(w) {}
    std::intptr_t ShellExecuteA(platform::HWND owner, std::optional<std::string_view> verb, std::string_view file,
                                std::string_view, std::string_view, int show) override {
        cursors.push_back(windows.CurrentCursor());
        files.emplace_back(file);
        owners.push_back(owner);
        verbs.emplace_back(verb.value_or("<none>"));
        shows.push_back(show);
        return answer;
    }
    std::string GetSystemDirectoryA() override { return "C:\\WINDOWS\\system32"; }
    std::string GetTempPathA() override { return "C:\\TEMP\\"; }

    platform::Windows& windows;
    std::vector<int> cursors;
    std::vector<std::string> files, verbs;
    std::vector<platform::HWND> owners;
    std::vector<int> shows;
    std::intptr_t answer = 42;
};

class WatchingPlatform final : public platform::Platform {
public:
    platform::Gdi& gdi() override { return sim.gdi(); }
    platform::Windows& windows() override { return sim.windows(); }
    platform::Clock& clock() override { return sim.clock(); }
    platform::EventLoop& loop() override { return sim.loop(); }
    platform::Sound& sound() override { return sim.sound(); }
    platform::Shell& shell() override { return watcher; }
    platform::Driver& driver() { return sim.driver(); }

    platform::sim::SimPlatform sim;
    WatchingShell watcher{sim.windows()};
};

class AboutForm : public ::testing::Test {
protected:
    AboutForm() { about.Me.Show(false); }
    void Click(POINT p) {
        platform.driver().MouseMove(p);
        platform.driver().MouseDown(platform::kButtonLeft, 0);
        platform.driver().MouseUp(platform::kButtonLeft, 0);
    }

    WatchingPlatform platform;
    dialog::frmAbout about{platform};
    Layout at = Measure();
};

}  // namespace

TEST_F(AboutForm, TextsAndFonts) {
    EXPECT_EQ(about.Me.Caption(), "Programminformation");
    EXPECT_EQ(about.lblProductName.Caption(), "Korvex-Tools");
    EXPECT_EQ(about.lblProductName.Font()->Name(), "Arial");
    EXPECT_EQ(about.Label2.Caption(), "Version  0.06.09");
    EXPECT_EQ(about.Label2.Font()->Name(), "Arial");
    EXPECT_EQ(about.lbl1.Font()->Name(), "Arial");
    EXPECT_FALSE(about.lbl1.Caption().empty());
    EXPECT_EQ(about.lblButton.Font()->Name(), "Tahoma");
    EXPECT_EQ(about.lblButton.Caption(), "http://www.korvex-tools.de/info");
    EXPECT_EQ(about.lblButton.ForeColor(), 0x00800000u);
    // Centred on the screen.
    RECT r;
    platform.windows().GetWindowRect(about.Me.hWnd(), &r);
    const auto screen = platform.windows().ScreenSize();
    EXPECT_LE(std::abs(r.left - (screen.cx - r.right)), 1);
    EXPECT_LE(std::abs(r.top - (screen.cy - r.bottom)), 1);
    // Every label fits inside the frame, and the text inside the form.
    for (const forms::Label* label : {&about.lblProductName, &about.Label2, &about.lbl1, &about.Label1, &about.lblButton}) {
        const RECT p = label->PixelRect();
        EXPECT_GE(p.left, 2);
        EXPECT_LE(p.right, static_cast<std::int32_t>(about.Frame1.ScaleWidth() / 15) - 2) << label->Caption();
        EXPECT_LE(p.bottom, static_cast<std::int32_t>(about.Frame1.ScaleHeight() / 15) - 2) << label->Caption();
    }
}

TEST_F(AboutForm, TheLinkTurnsLightBlueUnderThePointerAndBackOverTheText) {
    platform.driver().MouseMove(at.link);
    EXPECT_EQ(about.lblButton.ForeColor(), 0x00FF0000u);
    platform.driver().MouseMove(at.product);
    EXPECT_EQ(about.lblButton.ForeColor(), 0x00FF0000u) << "elsewhere the light blue stays";
    platform.driver().MouseMove(at.caption);
    EXPECT_EQ(about.lblButton.ForeColor(), 0x00FF0000u);
    platform.driver().MouseMove(at.text);
    EXPECT_EQ(about.lblButton.ForeColor(), 0x00800000u);
}

TEST_F(AboutForm, AClickOnTheLinkOpensItUnderTheHourglass) {
    Click(at.link);
    auto& w = platform.watcher;
    ASSERT_EQ(w.files.size(), 1u);
    EXPECT_EQ(w.files[0], "http://www.korvex-tools.de/info");
    EXPECT_EQ(w.verbs[0], "Open");
    EXPECT_EQ(w.shows[0], 3);
    EXPECT_EQ(w.owners[0], about.Me.hWnd());
    EXPECT_EQ(w.cursors[0], 11) << "the hourglass while the shell works";
    EXPECT_EQ(platform.windows().CurrentCursor(), platform::kCursorArrow) << "and the default arrow after";
    EXPECT_EQ(about.Me.ScreenMousePointer(), 0);
    EXPECT_EQ(about.LastDllError(), 0);
}

TEST_F(AboutForm, OnlyTheExactPrefixCountsAsAnAddress) {
    auto& w = platform.watcher;
    about.OpenLink(about.Me.hWnd(), "http://example.org/a");
    about.OpenLink(about.Me.hWnd(), "https://example.org/b");
    about.OpenLink(about.Me.hWnd(), "www.example.org");
    about.OpenLink(about.Me.hWnd(), "HTTP://example.org");
    about.OpenLink(about.Me.hWnd(), "http:/");
    ASSERT_EQ(w.files.size(), 5u);
    EXPECT_EQ(w.files[0], "http://example.org/a");
    EXPECT_EQ(w.files[1], "http://https://example.org/b");
    EXPECT_EQ(w.files[2], "http://www.example.org");
    EXPECT_EQ(w.files[3], "http://HTTP://example.org");
    EXPECT_EQ(w.files[4], "http://http:/");
}

TEST_F(AboutForm, AFailingShellIsNotReportedAndThePointerComesBack) {
    platform.watcher.answer = 2;  // file not found
    EXPECT_NO_THROW(about.OpenLink(about.Me.hWnd(), "nowhere"));
    EXPECT_EQ(about.LastDllError(), 2);
    EXPECT_EQ(about.Me.ScreenMousePointer(), 0);
}

TEST_F(AboutForm, TheCloseBoxClosesOnlyWhenReleasedOverIt) {
    platform.driver().MouseMove(at.closeBox);
    platform.driver().MouseDown(platform::kButtonLeft, 0);
    EXPECT_TRUE(about.Me.CloseBoxPressed());
    platform.driver().MouseMove(at.caption);
    EXPECT_FALSE(about.Me.CloseBoxPressed()) << "pops up when the pointer leaves it";
    platform.driver().MouseUp(platform::kButtonLeft, 0);
    EXPECT_TRUE(about.Me.Visible());

    int unloads = 0;
    about.Me.OnUnload = [&unloads] { ++unloads; };
    Click(at.closeBox);
    EXPECT_FALSE(about.Me.Visible());
    EXPECT_FALSE(about.Me.Loaded());
    EXPECT_EQ(unloads, 1);
}

TEST_F(AboutForm, AModalShowOfAShownFormIsError400) {
    try {
        about.Me.Show(true);
        FAIL();
    } catch (const HostError& e) {
        EXPECT_EQ(e.Number(), 400);
    }
}

TEST(AboutBox, NeedsAScreen) {
    HostContext context;
    try {
        dialog::ShowAboutBox(context);
        FAIL();
    } catch (const HostError& e) {
        EXPECT_EQ(e.Number(), 5);
    }
}

// The caption bar in the composed pixels: 3 px of frame, then 18 rows running from the active
// caption colour at the left to the gradient colour at the right, white caption text in the left
// part, and the close box with its black cross at the right.
TEST_F(AboutForm, TheCaptionBarInThePixels) {
    auto& w = platform.windows();
    const std::vector<std::uint32_t> px = platform.driver().ComposeWindow(about.Me.hWnd());
    RECT r;
    w.GetWindowRect(about.Me.hWnd(), &r);
    const std::int32_t width = r.right - r.left;
    const auto at_ = [&](std::int32_t x, std::int32_t y) { return px[static_cast<std::size_t>(y * width + x)] & 0xFFFFFF; };
    const auto rgb = [](platform::COLORREF c) { return (c & 0xFF) << 16 | (c & 0xFF00) | (c >> 16 & 0xFF); };
    const std::uint32_t from = rgb(platform.gdi().GetSysColor(platform::COLOR_ACTIVECAPTION));
    const std::uint32_t to = rgb(platform.gdi().GetSysColor(platform::COLOR_GRADIENTACTIVECAPTION));
    const std::uint32_t face = rgb(platform.gdi().GetSysColor(platform::COLOR_BTNFACE));
    const std::uint32_t white = 0xFFFFFF;

    // Bar rows 3..20; the row above is frame, the row below the face-coloured separator.
    for (std::int32_t y = 3; y < 21; ++y) EXPECT_EQ(at_(3, y), from) << y;
    EXPECT_NE(at_(3, 2), from);
    EXPECT_EQ(at_(3, 21), face);
    EXPECT_EQ(at_(width - 4, 4), to) << "the gradient ends at its own colour";
    // Colour moves monotonically towards the gradient colour along a row above the text.
    int blue = 0;
    for (std::int32_t x = 3; x < width - 3; x += 20) {
        const int b = static_cast<int>(at_(x, 3) & 0xFF);
        EXPECT_GE(b, blue) << x;
        blue = b;
    }
    // Caption text: white pixels in the bar's left part, none outside the bar.
    int text = 0;
    for (std::int32_t y = 3; y < 21; ++y)
        for (std::int32_t x = 3; x < 160; ++x) text += at_(x, y) == white;
    EXPECT_GT(text, 60);
    // The close box: its face, and the cross's ends in black at the corners of an 8 x 7 box.
    const RECT box = about.Me.CloseBoxRect();
    EXPECT_EQ(box.right, width - 5);
    EXPECT_EQ(box.top, 5);
    EXPECT_EQ(at_(box.left + 2, box.top + 2), face);
    const std::int32_t x0 = box.left + 4, y0 = box.top + 3;
    for (const POINT p : {POINT{x0, y0}, POINT{x0 + 7, y0}, POINT{x0 + 3, y0 + 3}, POINT{x0, y0 + 6}, POINT{x0 + 7, y0 + 6}})
        EXPECT_EQ(at_(p.x, p.y), 0u) << p.x << "," << p.y;
    EXPECT_EQ(at_(x0 + 3, y0), face) << "between the arms";
}

// The group box on the about box's form: the etched line (shadow over highlight) runs at
// BorderTop, broken by the caption, which starts 8 pixels in.
TEST(FrameObject, EtchedBorderBrokenByTheCaption) {
    platform::sim::SimPlatform platform;
    forms::Form form(platform);
    forms::Frame frame(form.Client());
    frame.Move(150, 150, 3000, 1500);  // 10,10 .. 210,110 in client pixels
    frame.Caption("Gruppe");
    form.Show(false);
    auto& w = platform.windows();
    const std::vector<std::uint32_t> px = w.ComposeWindow(frame.hWnd());
    const auto at = [&](std::int32_t x, std::int32_t y) { return px[static_cast<std::size_t>(y * 200 + x)] & 0xFFFFFF; };
    const std::int32_t top = frame.BorderTop();
    EXPECT_GT(top, 2);
    EXPECT_EQ(at(2, top), 0x808080u) << "shadow line";
    EXPECT_EQ(at(2, top + 1), 0xFFFFFFu) << "highlight below it";
    EXPECT_EQ(at(190, top), 0x808080u);
    EXPECT_EQ(at(0, 60), 0x808080u);
    EXPECT_EQ(at(1, 60), 0xFFFFFFu);
    EXPECT_EQ(at(199, 60), 0xFFFFFFu);
    EXPECT_EQ(at(10, 99), 0xFFFFFFu);
    EXPECT_EQ(at(10, 98), 0x808080u);
    // The caption's run of the top line is face colour apart from the glyphs; nothing dark
    // lies left of x = 8 on the caption's rows except the left border.
    int dark = 0;
    for (std::int32_t y = 0; y < 2 * top; ++y)
        for (std::int32_t x = 8; x < 50; ++x) dark += at(x, y) == 0;
    EXPECT_GT(dark, 20) << "caption text drawn";
    const std::uint32_t face = at(100, 50);
    for (std::int32_t y = 0; y < top; ++y)
        for (std::int32_t x = 0; x < 8; ++x) EXPECT_EQ(at(x, y), face) << x << "," << y;
    EXPECT_NE(at(20, top), 0x808080u) << "the line is broken under the caption";
    EXPECT_EQ(frame.Left(), 150);
    EXPECT_EQ(frame.Width(), 3000);
}
