// The script runner: what a user of korvex run writes and reads back. Modal loops inside a
// script are the about box's tests' (tests/dialog); what real controls print, the controls'.

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "driver/script_runner.hpp"
#include "forms/surface_control.hpp"
#include "host/form_file.hpp"
#include "host/probe_control.hpp"
#include "platform/png.hpp"
#include "platform/sim/sim_platform.hpp"

namespace korvex::test {
namespace {

// A windowed control that reports its focus and keys, and notes where its window stood while
// the control was still being built.
class Pad final : public forms::SurfaceControl {
  public:
    explicit Pad(HostContext& context) : SurfaceControl(context) {
        UserControl.events.GotFocus = [this] { RaiseEvent(1); };
        UserControl.events.LostFocus = [this] { RaiseEvent(2); };
        UserControl.events.KeyPress = [this](std::int16_t& KeyAscii) { RaiseEvent(3, KeyAscii); };
        bornIn = UserControl.Platform().windows().GetParent(UserControl.hWnd());
    }
    static const ClassInfo& Class() {
        static const ClassInfo info = ClassBuilder<Pad>("Pad", "Korvex_Tools.Pad")
                                          .Property(KORVEX_PROPERTY(BackColor))
                                          .Event("GotFocus")
                                          .Event("LostFocus")
                                          .Event("KeyPress", {Arg("KeyAscii")})
                                          .Build();
        return info;
    }
    const ClassInfo& TypeInfo() const override { return Class(); }
    [[nodiscard]] OLE_COLOR BackColor() const { return UserControl.BackColor(); }
    void BackColor(OLE_COLOR New_BackColor) { UserControl.BackColor(New_BackColor); }

    platform::HWND bornIn;
};

// The form is 320 x 240 pixels at the screen's corner. Pad A covers x 20..119, y 20..69; B,
// added later and so on top, x 80..179; the probe P1 has no window.
class ScriptRunnerTest : public ::testing::Test {
  protected:
    ScriptRunnerTest() {
        for (HostContext* c : {&context, &other}) {
            c->Classes().Register(Probe::Class());
            c->Classes().Register(Pad::Class());
        }
        form.Add("Korvex_Tools.Probe", {"P1", 150, 150, 1500, 450});
        form.Add("Korvex_Tools.Pad", {"A", 300, 300, 1500, 750});
        form.Add("Korvex_Tools.Pad", {"B", 1200, 300, 1500, 750});
        form.SwitchMode(true);
        form.Show();
        std::filesystem::create_directories(dir);
    }
    std::string Run(const std::string& script) {
        std::ostringstream out;
        ScriptRunner(form, platform.driver(), out, dir).Run(script);
        return out.str();
    }

    platform::sim::SimPlatform platform, elsewhere;
    HostContext context{&platform}, other{&elsewhere};
    Container form{context};
    std::filesystem::path dir = std::filesystem::path(KORVEX_BINARY_DIR) / "script_runner_test";
};

TEST_F(ScriptRunnerTest, PropertyOperationsPrintInOrder) {
    EXPECT_EQ(Run("set P1.Caption \"Say \"\"hi\"\"\"\n"
                  "get P1.Caption\n"
                  "set P1.BackColorP &H8000000F&\n"
                  "get P1.BackColorP\n"
                  "call P1.Bump 3 2   # 7 + 3 * 2\n"
                  "get p1.value\n"),
              "changed P1.Caption\n"
              "P1.Caption = \"Say \"\"hi\"\"\"\n"
              "changed P1.BackColorP\n"
              "P1.BackColorP = -2147483633\n"
              "changed P1.Value\n"
              "P1.Bump = 13\n"
              "P1.value = 13\n");
    // Host errors are reported, and the script goes on.
    EXPECT_EQ(Run("set P1.Value 99999\n"
                  "get P1.Nonsense\n"
                  "get Ghost.Caption\n"
                  "call P1.Bump\n"
                  "get P1.Value\n"),
              "error 6: Overflow\n"
              "error 438: Object doesn't support this property or method\n"
              "error 424: Object required: there is no control named Ghost\n"
              "error 449: Argument not optional\n"
              "P1.Value = 13\n");
}

// The whole script is read first: a malformed line names its number and nothing runs.
TEST_F(ScriptRunnerTest, MalformedLineStopsBeforeAnythingRuns) {
    const struct {
        const char* script;
        int line;
    } cases[] = {
        {"set P1.Value 1\nmove 10\nkey jump 13\n", 3},  // "move 10" is a control name
        {"set P1.Value 1\n\n# note\nget P1\n", 4},
        {"set P1.Caption \"open\n", 1},
        {"set P1.Value 1\nwait -5\n", 2},
        // Waits longer than an hour, one of them beyond 64 bits.
        {"wait 10\nwait 3600001\n", 2},
        {"wait 9223372036854775808\n", 1},
        {"wait 100000000000000000000000\n", 1},
        {"key down a\nkey alt\n", 2},  // a letter names its key; Alt needs one
        {"key alt e\nkey alt ab\n", 2},
        {"key alt e shift=1\n", 1},
        // Numbers beyond their field's range are malformed, not wrapped or thrown past the runner.
        {"move 99999999999 5\n", 1},
        {"set P1.Value 1\nmove P1 1 -2147483649\n", 2},
        {"key press 4294967296\n", 1},
        {"key down 13 shift=99999999999\n", 1},
        {"click shift=-99999999999\n", 1},
        {"wait 99999999999999999999\n", 1},
    };
    for (const auto& c : cases) {
        int line = 0;
        try {
            Run(c.script);
        } catch (const ScriptError& e) {
            line = e.Line();
        }
        EXPECT_EQ(line, c.line) << c.script;
    }
    EXPECT_EQ(static_cast<Probe&>(form.Get("P1").GetControl()).Value(), 7);
}

// Offsets at the ends of the int range move the pointer off the screen's far edges; adding them
// to the control's corner must not overflow (the sanitizer build checks).
TEST_F(ScriptRunnerTest, PointerOffsetsAtTheIntLimits) {
    EXPECT_EQ(Run("move P1 2147483647 2147483647\nmove P1 -2147483648 -2147483648\n"
                  "move 2147483647 -2147483648\nclick\nget P1.Value\n"),
              "P1.Value = 7\n");
}

TEST_F(ScriptRunnerTest, ModeSwitchAndSaveKeepWhatWasSet) {
    EXPECT_EQ(Run("set P1.Value 42\ndesign\nget P1.Value\nrunmode\nset P1.Caption "
                  "Gespeichert\nsave saved.json\n"),
              "changed P1.Value\nchanged P1.Caption\nP1.Value = 42\nchanged P1.Caption\nchanged "
              "P1.Caption\n");
    EXPECT_TRUE(form.UserMode());
    // A control's window is a child of the form's from the moment it exists, in either mode.
    EXPECT_EQ(static_cast<Pad&>(form.Get("A").GetControl()).bornIn, form.FormWindow());
    Container copy(other);
    LoadFormFile(copy, (dir / "saved.json").string());
    EXPECT_EQ(copy.GetProperty(copy.Get("P1"), "Value"), Variant(std::int16_t{42}));
    EXPECT_EQ(copy.GetProperty(copy.Get("P1"), "Caption"), Variant("Gespeichert"));
}

TEST(ScriptValues, ParseAsTheHostWritesThem) {
    const struct {
        const char* text;
        Variant value;
    } cases[] = {{"-2.5", Variant(-2.5)},
                 {"2147483663", Variant(0x8000000Fu)},
                 {"true", Variant(true)},
                 {"word", Variant("word")}};
    for (const auto& c : cases) EXPECT_EQ(ScriptRunner::ParseValue(c.text), c.value) << c.text;
    EXPECT_TRUE(ScriptRunner::ParseValue("Nothing").IsObject());
    EXPECT_EQ(SplitScriptLine("  set X.Y \"a # b\"  # comment", 1),
              (std::vector<std::string>{"set", "X.Y", "\"a # b\""}));
}

TEST_F(ScriptRunnerTest, FocusKeysAndTabInTabIndexOrder) {
    form.Add("Korvex_Tools.Pad", {"C", 300, 1500, 600, 300, true, true, 2});  // between A and B
    form.LetProperty(form.Get("B"), "TabIndex", 3);
    // A, the first tab stop, took the focus when the form showed, so focusing it again raises
    // nothing. Tab is the form's: the focused control sees none of its key strokes.
    EXPECT_EQ(
        Run("focus A\ntype a\nkey down tab\nkey press 9\nkey up tab\nkey down tab\nkey down tab\n"
            "key down tab shift=1\nset C.TabStop False\nkey down tab\n"),
        "event A.KeyPress(97)\nevent A.LostFocus()\nevent C.GotFocus()\n"
        "event C.LostFocus()\nevent B.GotFocus()\nevent B.LostFocus()\nevent A.GotFocus()\n"
        "event A.LostFocus()\nevent B.GotFocus()\nevent B.LostFocus()\nevent A.GotFocus()\n");
}

// The screen, or one control's window alone at its own size.
TEST_F(ScriptRunnerTest, SnapshotsOfTheScreenAndOfOneWindow) {
    Run("set A.BackColor &HFF&\nsnapshot screen.png\nsnapshot a.png A\n");
    const platform::Image shot = platform::ReadPng((dir / "screen.png").string());
    ASSERT_EQ((std::pair{shot.width, shot.height}), (std::pair{1024, 768}));
    const auto at = [&](int x, int y) {
        return shot.pixels[static_cast<std::size_t>(y * 1024 + x)];
    };
    EXPECT_EQ(at(20, 20), 0xFF0000u);
    EXPECT_EQ(at(119, 69), 0xD4D0C8u) << "B, on top, in the button face";
    EXPECT_EQ(at(320, 240), 0x3A6EA5u) << "the desktop beyond the form";
    const platform::Image one = platform::ReadPng((dir / "a.png").string());
    ASSERT_EQ((std::pair{one.width, one.height}), (std::pair{100, 50}));
    EXPECT_EQ(one.pixels.back(), 0xFF0000u) << "not covered by B here";
}

}  // namespace
}  // namespace korvex::test
