// What the form runtime does with the library's controls: the focus a form gives when it shows,
// the access keys Alt reaches its controls by, and the tooltips the platform shows for them.

#include <string>
#include <vector>

#include "controls/button/button.hpp"
#include "library/library.hpp"
#include "support/bench.hpp"

namespace korvex::test {
namespace {

using host::Extender;
using host::Site;
using host::Variant;

// A hidden form: controls are placed on it at design time, then it switches to run mode and
// shows, as korvex run opens a form file. What the controls raise is in `log`.
class RuntimeTest : public ::testing::Test, public HostBench {
  public:
    struct Placed {
        const char* cls;
        Extender at;
        std::vector<std::pair<const char*, Variant>> properties = {};
    };

  protected:
    RuntimeTest() : HostBench({}) {
        RegisterLibrary(context);
        form.Hide();
        form.SetSink(&log);
    }

    void Open(const std::vector<Placed>& controls) {
        for (const Placed& c : controls) {
            Add(std::string("Korvex_Tools.") + c.cls, c.at);
            for (const auto& [name, value] : c.properties) Let(c.at.Name, name, value);
        }
        form.SwitchMode(true);
        log.Take();
        form.Show();
    }
    // The control holding the focus (a button's face counts as the button), or "".
    std::string Focused() {
        for (platform::HWND w = windows.GetFocus(); w; w = windows.GetParent(w)) {
            for (Site* site : form.Sites())
                if (site->GetControl().SurfaceWindow() == w) return site->Name();
        }
        return "";
    }

    EventLog log;
};

// Extenders: name, left, top, width, height, visible, enabled, TabIndex, TabStop.
Extender At(const char* name, std::int16_t tabIndex, bool visible = true, bool enabled = true,
            bool tabStop = true) {
    const std::int32_t top = 150 + tabIndex * 450;
    return {name, 150, top, 1800, 400, visible, enabled, tabIndex, tabStop};
}

TEST_F(RuntimeTest, ShowingTheFormFocusesItsFirstTabStop) {
    struct Row {
        const char* what;
        std::vector<Placed> controls;
        const char* focused;
        Log events;
    };
    const std::vector<Row> rows{
        {"the lowest TabIndex, not the first placed",
         {{"Frames", At("F2", 2)}, {"Frames", At("F1", 1)}},
         "F1",
         {"event F1.Focus(True)"}},
        {"lines, icons and plain labels take no focus",
         {{"Line3D", At("Line", 0)},
          {"Label3D", At("Label", 1)},
          {"Icons", At("Icon", 2)},
          {"Hyperlink", At("Link", 3)}},
         "Link",
         {}},
        {"hidden, disabled and TabStop-less controls are passed over",
         {{"Frames", At("Hidden", 0, false)},
          {"Frames", At("Off", 1, true, false)},
          {"Frames", At("NoStop", 2, true, true, false)},
          {"Label3D", At("Label", 3), {{"FocusRect", true}}}},
         "Label",
         {}},
        {"a button takes it on its face",
         {{"Button", At("B", 0)}, {"Frames", At("F", 1)}},
         "B",
         {}},
        {"nothing to focus: the form takes it", {{"Line3D", At("Line", 0)}}, "", {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Open(row.controls);
        EXPECT_EQ(Focused(), row.focused);
        if (*row.focused == 0) {
            EXPECT_EQ(windows.GetFocus(), form.FormWindow());
        }
        EXPECT_EQ(log.Take(), row.events);
        form.Hide();
        form.Clear();
        form.SwitchMode(false);
    }
}

// Showing again keeps the focus where the user left it.
TEST_F(RuntimeTest, ShowingAgainLeavesTheFocusAlone) {
    Open({{"Frames", At("F1", 1)}, {"Frames", At("F2", 2)}});
    EXPECT_EQ(log.Take(), Log{"event F1.Focus(True)"});
    EXPECT_EQ(HostBench::Run("key down tab\n"), "event F1.Focus(False)\nevent F2.Focus(True)\n");
    form.Show();
    EXPECT_EQ(Focused(), "F2");
    EXPECT_EQ(log.Take(), Log{});
}

// ---------------------------------------------------------------------------------------------
// Access keys

// A frame (the first stop, focused at the show), a plain label and a focusable one, a push
// button, a switch, a link and a disabled button, each with an "&" letter in its caption.
const std::vector<RuntimeTest::Placed> kAccessForm{
    {"Frames", At("F", 0), {{"Caption", "&Daten"}}},
    {"Label3D", At("L", 1), {{"Caption", "&Name"}}},
    {"Button", At("B", 2), {{"Caption", "&Senden"}}},
    {"Button", At("S", 3), {{"Caption", "S&chalter"}, {"OptionMode", 1}}},
    {"Hyperlink", At("H", 4), {{"Caption", "&Link"}, {"Url", "x"}}},
    {"Label3D", At("K", 5), {{"Caption", "&Klick"}, {"FocusRect", true}}},
    {"Button", At("X", 6, true, false), {{"Caption", "&Xaus"}}},
};

// Alt goes to the focused control as any key does; the access key itself (down and up) is the
// form's, and the control it reaches sees the rest.
TEST_F(RuntimeTest, AltAndAnAccessLetterReachTheControlItBelongsTo) {
    struct Session {
        const char* what;
        const char* script;
        const char* expected;
        const char* focused;
    };
    const std::vector<Session> sessions{
        {"a label's letter focuses the next tab stop after it", "key alt n\n",
         "event F.KeyDown(18, 4)\nevent F.Focus(False)\nevent B.KeyUp(18, 0)\n", "B"},
        {"a frame's letter too, from wherever the focus is; plain labels are no stops",
         "focus K\nkey alt d\n",
         "event F.Focus(False)\nevent K.KeyDown(18, 4)\nevent B.KeyUp(18, 0)\n", "B"},
        {"a button's letter focuses and clicks it, in either case", "key alt S\nget B.Value\n",
         "event F.KeyDown(18, 4)\nevent F.Focus(False)\nevent B.MouseDown(1, 0, 0, 0)\n"
         "changed B.Value\nevent B.Click()\nevent B.MouseUp(1, 0, 0, 0)\nevent B.KeyUp(18, 0)\n"
         "B.Value = True\n",
         "B"},
        {"a switch latches on the first and comes out on the second",
         "key alt c\nwait 700\nkey alt c\n",
         "event F.KeyDown(18, 4)\nevent F.Focus(False)\nevent S.MouseDown(1, 0, 0, 0)\n"
         "changed S.Value\nevent S.Click()\nevent S.KeyUp(18, 0)\nevent S.KeyDown(18, 4)\n"
         "event S.MouseDown(1, 0, 0, 0)\nchanged S.Value\nevent S.Click()\n"
         "event S.MouseUp(1, 0, 0, 0)\nevent S.KeyUp(18, 0)\n",
         "S"},
        {"a link's letter follows the link", "key alt l\n",
         "event F.KeyDown(18, 4)\nevent F.Focus(False)\nevent H.Click()\nchanged H.Clicked\n", "H"},
        {"a label with FocusRect is a button: focused and clicked", "key alt k\n",
         "event F.KeyDown(18, 4)\nevent F.Focus(False)\nevent K.Click()\nevent K.KeyUp(18, 0)\n",
         "K"},
        {"a disabled control's letter and nobody's are plain keys", "key alt x\nkey alt q\n",
         "event F.KeyDown(18, 4)\nevent F.KeyDown(88, 4)\nevent F.KeyUp(88, 4)\n"
         "event F.KeyUp(18, 0)\nevent F.KeyDown(18, 4)\nevent F.KeyDown(81, 4)\n"
         "event F.KeyUp(81, 4)\nevent F.KeyUp(18, 0)\n",
         "F"},
        {"without Alt a letter is a plain key", "key down s\nkey up s\n",
         "event F.KeyDown(83, 0)\nevent F.KeyUp(83, 0)\n", "F"},
    };
    for (const Session& session : sessions) {
        SCOPED_TRACE(session.what);
        Open(kAccessForm);
        EXPECT_EQ(HostBench::Run(session.script), session.expected);
        EXPECT_EQ(Focused(), session.focused);
        form.Hide();
        form.Clear();
        form.SwitchMode(false);
    }
}

// Two controls with one letter: each press goes to the next of them after the focused control.
TEST_F(RuntimeTest, ASharedAccessLetterTakesTurns) {
    Open({{"Button", At("A", 0), {{"Caption", "&Eins"}}},
          {"Button", At("B", 1), {{"Caption", "&Elf"}}},
          {"Frames", At("F", 2), {{"Caption", "Rahmen"}}}});
    HostBench::Run("focus F\n");
    const std::vector<const char*> turns{"A", "B", "A"};
    for (const char* expected : turns) {
        HostBench::Run("key alt e\n");
        EXPECT_EQ(Focused(), expected);
    }
}

// ---------------------------------------------------------------------------------------------
// Tooltips

// A button's text is on its face, its image and its caption alike, so the tip shows wherever
// the pointer rests on it; ToolTip False takes it off all three. The labels of Label3D and
// Hyperlink keep theirs: Label3D's text covers the control, a link's tip is set by its hover
// poll once the pointer is over it.
TEST_F(RuntimeTest, ControlsSetTheirTooltipsOnThePlatform) {
    Open({{"Button", At("B", 0), {{"Caption", "Senden"}, {"ToolTipText", "Abschicken"}}},
          {"Label3D", At("L", 1), {{"ToolTipText", "Beschriftung"}}},
          {"Hyperlink", At("H", 2), {{"ToolTipTxt", "Zur Seite"}}}});
    platform::RECT b;
    windows.GetWindowRect(form.Get("B").GetControl().SurfaceWindow(), &b);
    const auto& button = Control<controls::Button>("B");
    // A point of the face's client area in screen pixels: the face sits 1 pixel in (Flat).
    const auto onFace = [&](const platform::RECT& r) {
        return platform::POINT{b.left + 1 + (r.left + r.right) / 2,
                               b.top + 1 + (r.top + r.bottom) / 2};
    };
    const std::vector<std::pair<const char*, platform::POINT>> buttonParts{
        {"face", {b.left + 3, b.top + 3}},
        {"image", onFace(button.FaceImage().PixelRect())},
        {"caption", onFace(button.CaptionLabel().PixelRect())},
    };
    const auto restAt = [&](platform::POINT p) {
        MoveTo({900, 700});  // off the form: every tip goes
        Advance(100);
        MoveTo(p);
        Advance(100);  // a hover poll sets its tip now
        MoveTo({p.x + 1, p.y});
        Advance(600);
        return platform.driver().ToolTip().text;
    };
    for (const auto& [part, at] : buttonParts) EXPECT_EQ(restAt(at), "Abschicken") << part;
    Let("B", "ToolTip", false);
    for (const auto& [part, at] : buttonParts) EXPECT_EQ(restAt(at), "") << part;

    platform::RECT r;
    windows.GetWindowRect(form.Get("L").GetControl().SurfaceWindow(), &r);
    EXPECT_EQ(restAt({r.left + 5, r.top + 5}), "Beschriftung");
    windows.GetWindowRect(form.Get("H").GetControl().SurfaceWindow(), &r);
    EXPECT_EQ(restAt({r.left + 10, (r.top + r.bottom) / 2}), "Zur Seite");
}

}  // namespace
}  // namespace korvex::test
