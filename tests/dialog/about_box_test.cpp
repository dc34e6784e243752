// The about box: opened modally by a control's ShowAboutBox in a scripted session, its link
// (colours on moves, the shell request a click makes under the hourglass), its close box ending
// the modal loop. Its look is pinned by the gallery's about.png.

#include <gtest/gtest.h>

#include <sstream>

#include "dialog/about_box.hpp"
#include "driver/script_runner.hpp"
#include "host/probe_control.hpp"
#include "platform/sim/sim_platform.hpp"
#include "support/bench.hpp"
#include "support/error_of.hpp"

namespace korvex::test {
namespace {

using platform::HWND;
using platform::POINT;
using platform::RECT;

// A shell that notes each request's owner, and the rest of it with the pointer shape and the
// host form's state meanwhile in a line.
class WatchingShell final : public platform::Shell {
  public:
    std::intptr_t ShellExecuteA(HWND owner, std::optional<std::string_view> verb,
                                std::string_view file, std::string_view parameters,
                                std::string_view directory, int show) override {
        owners.push_back(owner);
        requests.push_back(std::string(verb.value_or("<none>")) + " " + std::string(file) + " [" +
                           std::string(parameters) + "|" + std::string(directory) + "] show " +
                           std::to_string(show) + " cursor " +
                           std::to_string(windows->CurrentCursor()) +
                           (windows->IsWindowEnabled(host) ? "" : " host disabled"));
        return answer;
    }
    std::string GetSystemDirectoryA() override { return "C:\\WINDOWS\\system32"; }
    std::string GetTempPathA() override { return "C:\\TEMP\\"; }

    platform::Windows* windows;
    std::vector<HWND> owners;
    std::vector<std::string> requests;
    std::intptr_t answer = 42;
    HWND host;
};

// A form with a control whose ShowAboutBox opens the box, and in front of it an about box of
// its own, shown without a modal loop so a test can look at it between steps.
class AboutBox : public ::testing::Test {
  protected:
    AboutBox() {
        context.Classes().Register(Probe::Class());
        context.SetAboutBox([this] { dialog::ShowAboutBox(context); });
        form.Add("Korvex_Tools.Probe", {"P1", 300, 300, 1500, 750});
        form.SwitchMode(true);
        form.Show();
        platform.replacement.windows = &platform.windows();
        platform.replacement.host = form.FormWindow();
        about.Me.Show(false);
    }
    // The screen point at the middle of a label; every about box lies where this one does.
    POINT At(const forms::Label& label) {
        const RECT r = label.PixelRect();
        return platform.windows().ClientToScreen(about.Frame1.hWnd(),
                                                 {(r.left + r.right) / 2, (r.top + r.bottom) / 2});
    }
    std::string MoveToTheLink() {
        const POINT p = At(about.lblButton);
        return "move " + std::to_string(p.x) + " " + std::to_string(p.y) + "\n";
    }
    std::string Run(const std::string& script) {
        about.Me.Unload();
        std::ostringstream out;
        host::ScriptRunner(form, platform.sim.driver(), out, KORVEX_BINARY_DIR).Run(script);
        return out.str();
    }
    // The top-level windows on the screen.
    std::vector<HWND> Shown() {
        std::vector<HWND> shown = platform.windows().ZOrder(HWND{});
        std::erase_if(shown, [&](HWND w) { return !platform.windows().IsWindowVisible(w); });
        return shown;
    }

    ShellPlatform<WatchingShell> platform;
    host::HostContext context{&platform};
    host::Container form{context};
    dialog::frmAbout about{platform};
};

TEST_F(AboutBox, ShowAboutBoxIsModalUntilTheCloseBoxIsClicked) {
    EXPECT_EQ(Run("call P1.ShowAboutBox\n" + MoveToTheLink() +
                  "click\nmove top -11 11\nclick\nget P1.Left\n"),
              "P1.Left = 300\n");
    // The click on the link asked the shell to open the information page, maximised, owned by
    // the box's window, under the hourglass, while the host's form was disabled.
    ASSERT_EQ(platform.replacement.requests,
              std::vector<std::string>{
                  "Open http://www.korvex-tools.de/info [|] show 3 cursor 11 host disabled"});
    EXPECT_TRUE(platform.replacement.owners[0]);
    EXPECT_NE(platform.replacement.owners[0], form.FormWindow());
    // Unloaded: only the host's form is left, and it takes input again with the arrow.
    EXPECT_EQ(Shown(), std::vector<HWND>{form.FormWindow()});
    EXPECT_TRUE(platform.windows().IsWindowEnabled(form.FormWindow()));
    EXPECT_EQ(platform.windows().CurrentCursor(), platform::kCursorArrow);
}

// One about box per thread: asked for while it is open, the host's error 400; closed, it opens
// again.
TEST_F(AboutBox, AskedForWhileOpenIsError400) {
    EXPECT_EQ(Run("call P1.ShowAboutBox\ncall P1.ShowAboutBox\nmove top -11 11\nclick\n"
                  "call P1.ShowAboutBox\nmove top -11 11\nclick\nget P1.Left\n"),
              "error 400: Form already displayed; can't show modally\nP1.Left = 300\n");
    EXPECT_EQ(Shown(), std::vector<HWND>{form.FormWindow()});
}

// A press on the close box released beside it closes nothing, so nothing left in the script
// can close the box: the host's error, and the box unloaded all the same.
TEST_F(AboutBox, AModalLoopNothingClosesEndsWithTheHostsError) {
    const std::string out =
        Run("call P1.ShowAboutBox\nmove top -11 11\ndown\nmove top 60 10\nup\n");
    EXPECT_EQ(out.rfind("error 32000", 0), 0u) << out;
    EXPECT_EQ(Shown(), std::vector<HWND>{form.FormWindow()});
    host::HostContext screenless;
    EXPECT_EQ(ErrorOf([&] { dialog::ShowAboutBox(screenless); }), host::kErrInvalidCall);
}

TEST_F(AboutBox, TheLinkTurnsLightBlueUnderThePointerAndBackOverTheText) {
    const struct {
        POINT at;
        host::OLE_COLOR color;
    } steps[] = {{At(about.lblButton), 0x00FF0000},
                 {At(about.lblProductName), 0x00FF0000},
                 {At(about.Label2), 0x00FF0000},
                 {At(about.lbl1), 0x00800000}};
    for (const auto& step : steps) {
        platform.sim.driver().MouseMove(step.at);
        EXPECT_EQ(about.lblButton.ForeColor(), step.color) << step.at.x << "," << step.at.y;
    }
    // Centred on the screen, where the session's points lie too.
    RECT r;
    platform.windows().GetWindowRect(about.Me.hWnd(), &r);
    EXPECT_LE(std::abs(r.left + r.right - platform.windows().ScreenSize().cx), 1);
    EXPECT_LE(std::abs(r.top + r.bottom - platform.windows().ScreenSize().cy), 1);
    EXPECT_EQ(ErrorOf([&] { about.Me.Show(true); }), 400) << "a modal show of a shown form";
}

// Only the exact prefix counts as an address; a failing shell is not reported but remembered,
// and the pointer comes back either way.
TEST_F(AboutBox, OpenLinkPrefixesAndRemembersFailures) {
    const struct {
        const char* address;
        std::intptr_t answer;
        const char* opened;
        std::int32_t lastDllError;
    } cases[] = {
        {"http://example.org/a", 42, "http://example.org/a", 0},
        {"https://example.org/b", 33, "http://https://example.org/b", 0},
        {"HTTP://example.org", 42, "http://HTTP://example.org", 0},
        {"http:/", 32, "http://http:/", 32},
        {"nowhere", 2, "http://nowhere", 2},
    };
    for (const auto& c : cases) {
        platform.replacement.answer = c.answer;
        about.OpenLink(about.Me.hWnd(), c.address);
        const std::string& request = platform.replacement.requests.back();
        EXPECT_EQ(request.substr(0, request.find(" cursor")),
                  "Open " + std::string(c.opened) + " [|] show 3");
        EXPECT_EQ(platform.replacement.owners.back(), about.Me.hWnd());
        EXPECT_EQ(about.LastDllError(), c.lastDllError) << c.address;
        EXPECT_EQ(about.Me.ScreenMousePointer(), 0);
    }
}

}  // namespace
}  // namespace korvex::test
