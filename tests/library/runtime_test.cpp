// What the form runtime does with the library's controls: the focus a form gives when it shows.

#include <string>
#include <vector>

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
  protected:
    RuntimeTest() : HostBench({}) {
        RegisterLibrary(context);
        form.Hide();
        form.SetSink(&log);
    }

    struct Placed {
        const char* cls;
        Extender at;
        std::vector<std::pair<const char*, Variant>> properties = {};
    };
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
        {"nothing to focus", {{"Line3D", At("Line", 0)}}, "", {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Open(row.controls);
        EXPECT_EQ(Focused(), row.focused);
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

}  // namespace
}  // namespace korvex::test
