// Button: member table, persistence, and the event sequences of push, switch and group buttons
// driven by scripts, with the hover poll, the keyboard and the sounds.

#include "button_fixture.hpp"

#include "support/error_of.hpp"

namespace korvex::test {
namespace {

using controls::EnumSwitched;

TEST_F(ButtonTest, MemberTableIsInSlotOrder) {
    const host::ClassInfo& info = Button::Class();
    EXPECT_EQ(info.progId, "Korvex_Tools.Button");
    std::vector<std::string> names;
    for (const host::MemberInfo& m : info.members) names.push_back(m.name);
    EXPECT_EQ(names, (std::vector<std::string>{
                         "ShowAboutBox", "NotFrmFocus", "DrawRectB", "Refresh", "PlaySound", "EndPlaySound",
                         "PictureUp", "PictureDown", "PictureOver", "EnabledB", "OptionMode", "Value", "IconSize",
                         "BorderStyle", "Gradient", "ButtonShow", "TextAlignment", "BackColorB", "ButtonColor",
                         "Caption", "Font3D", "FontColor", "FontShadowColor", "ToolTip", "ToolTipText", "FocusRect",
                         "Font", "MouseIcon", "MousePointer", "Switched", "HDC", "hwnd", "HasDC"}));
    for (const char* readOnly : {"Switched", "HDC", "hwnd", "HasDC"})
        EXPECT_TRUE(info.FindMember(readOnly)->ReadOnly()) << readOnly;
    std::vector<std::string> events;
    for (const host::EventInfo& e : info.events) events.push_back(std::to_string(e.id) + e.name);
    EXPECT_EQ(events, (std::vector<std::string>{"1Click", "2MouseDown", "3MouseMove", "4MouseUp", "5KeyDown",
                                                "6KeyPress", "7KeyUp", "8Group"}));
    const host::EnumInfo* images = info.FindEnum("EnumButton");
    ASSERT_NE(images, nullptr);
    ASSERT_EQ(images->members.size(), 52u);
    EXPECT_EQ(images->members[21], (std::pair<std::string, std::int32_t>{"btnOK", 21}));
    EXPECT_EQ(images->members[42], (std::pair<std::string, std::int32_t>{"CheckBox", 42}));
    EXPECT_EQ(images->members[51], (std::pair<std::string, std::int32_t>{"pOff", 51}));
}

// A new button stores nothing; one restored from an empty bag is the same button; every
// property survives a save and restore.
TEST_F(ButtonTest, PersistsInOrderAndRoundTrips) {
    Add();
    EXPECT_TRUE(form.SaveBag(form.Get("B")).Empty());
    EXPECT_EQ(Read("B", "Caption").ToString(), "Caption");
    EXPECT_EQ(Read("B", "ButtonShow").ToLong(), 21);
    EXPECT_EQ(Read("B", "BorderStyle").ToLong(), 2);
    EXPECT_EQ(Read("B", "ToolTipText").ToString(), "Quick-Info");

    const std::vector<std::pair<const char*, Variant>> changes = {
        {"OptionMode", 2},          {"IconSize", true},        {"BorderStyle", 5},         {"Gradient", false},
        {"ButtonShow", 24},         {"TextAlignment", 3},      {"BackColorB", 0x00102030}, {"ButtonColor", 0x00C0FFEE},
        {"Caption", "Drucken"},     {"Font3D", 3},             {"FontColor", 0x000000FF},  {"FontShadowColor", 0x00FF0000},
        {"ToolTip", false},         {"ToolTipText", "Drucken"}, {"FocusRect", true},       {"MousePointer", 11},
        {"EnabledB", false}};
    for (const auto& [name, value] : changes) Let("B", name, value);
    const host::JsonPropertyBag bag = form.SaveBag(form.Get("B"));
    std::vector<std::string> keys;
    for (const auto& [key, value] : bag.Entries()) keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<std::string>{"EnabledB", "OptionMode", "IconSize", "BorderStyle", "Gradient",
                                              "ButtonShow", "TextAlignment", "BackColorB", "ButtonColor", "Caption",
                                              "Font3D", "FontColor", "FontShadowColor", "ToolTip", "ToolTipText",
                                              "FocusRect", "MousePointer"}));

    form.Restore("Korvex_Tools.Button", {"R", 300, 1200, 1800, 600}, bag);
    for (const auto& [name, value] : changes) {
        // IconSize is read after EnabledB, and a disabled button does not take a new size.
        const Variant expected = std::string(name) == "IconSize" ? Variant(false) : value;
        EXPECT_EQ(host::DisplayText(Read("R", name)), host::DisplayText(expected)) << name;
    }
    form.Restore("Korvex_Tools.Button", {"E", 300, 2100, 1800, 600}, host::JsonPropertyBag{});
    EXPECT_TRUE(form.SaveBag(form.Get("E")).Empty());
}

TEST_F(ButtonTest, PushButtonClickRaisesDownClickUpAndLeavesValueTrue) {
    Add();
    EXPECT_EQ(Run("move B 5 5\nclick\nget B.Value\n"),
              "event B.MouseMove(0, 0, 4, 4)\n"
              "event B.MouseDown(1, 0, 4, 4)\n"
              "changed B.Value\n"
              "event B.Click()\n"
              "event B.MouseUp(1, 0, 4, 4)\n"
              "B.Value = True\n");
    // Setting Value on a push button only stores it.
    EXPECT_EQ(Run("set B.Value False\nget B.Value\n"), "changed B.Value\nB.Value = False\n");
    EXPECT_EQ(static_cast<int>(Get().State().frame), 2) << "released under the pointer: the hover look";
}

TEST_F(ButtonTest, SwitchLatchesOnFirstClickAndComesOutOnSecond) {
    Add();
    Let("B", "OptionMode", 1);
    EXPECT_EQ(Run("move B 5 5\nclick\nget B.Value\nget B.Switched\n"),
              "event B.MouseMove(0, 0, 4, 4)\n"
              "event B.MouseDown(1, 0, 4, 4)\n"
              "changed B.Value\n"
              "event B.Click()\n"
              "B.Value = True\n"
              "B.Switched = 1\n");
    EXPECT_EQ(static_cast<int>(Get().State().frame), 3);
    EXPECT_EQ(Run("wait 600\nclick\nget B.Value\nget B.Switched\n"),
              "event B.MouseDown(1, 0, 4, 4)\n"
              "changed B.Value\n"
              "event B.Click()\n"
              "event B.MouseUp(1, 0, 4, 4)\n"
              "B.Value = False\n"
              "B.Switched = 0\n");
    EXPECT_EQ(static_cast<int>(Get().State().frame), 2);
}

TEST_F(ButtonTest, RightButtonLatchesASwitchAsRight) {
    Add();
    Let("B", "OptionMode", 1);
    EXPECT_EQ(Run("move B 5 5\nclick right\nget B.Switched\nget B.Value\n"),
              "event B.MouseMove(0, 0, 4, 4)\n"
              "event B.MouseDown(2, 0, 4, 4)\n"
              "changed B.Value\n"
              "event B.Click()\n"
              "B.Switched = 2\n"
              "B.Value = True\n");
    // A latched button keeps the side that latched it whatever presses it next.
    Run("wait 600\ndown left\n");
    EXPECT_EQ(Get().Switched(), EnumSwitched::bRight);
}

TEST_F(ButtonTest, GroupButtonReportsOnceWhileLatched) {
    Add();
    Let("B", "OptionMode", 2);
    EXPECT_EQ(Run("move B 5 5\nclick\n"),
              "event B.MouseMove(0, 0, 4, 4)\n"
              "event B.Group()\n"
              "event B.MouseDown(1, 0, 4, 4)\n"
              "changed B.Value\n"
              "event B.Click()\n");
    // Further clicks: only MouseDown, no Click, no MouseUp, no second Group.
    EXPECT_EQ(Run("wait 600\nclick\nwait 600\nclick\nget B.Value\n"),
              "event B.MouseDown(1, 0, 4, 4)\nevent B.MouseDown(1, 0, 4, 4)\nB.Value = True\n");
    // The host releases it; the next click latches it again and reports again.
    EXPECT_EQ(Run("set B.Value False\nwait 600\nclick\n"),
              "changed B.Value\n"
              "event B.Group()\n"
              "event B.MouseDown(1, 0, 4, 4)\n"
              "changed B.Value\n"
              "event B.Click()\n");
}

TEST_F(ButtonTest, ValueDrivesLatchingWithoutEventsExceptGroup) {
    Add("S");
    Add("G", 300, 1200);
    Let("S", "OptionMode", 1);
    Let("G", "OptionMode", 2);
    EXPECT_EQ(Run("set S.Value True\nset G.Value True\n"), "changed S.Value\nchanged G.Value\nevent G.Group()\n");
    EXPECT_EQ(static_cast<int>(Get("S").State().frame), 3);
    EXPECT_EQ(static_cast<int>(Get("S").State().image), 3);

    // Value False on a latched switch raises nothing and shows the hover look; the hover poll
    // runs again and takes it back to normal once the pointer is seen elsewhere.
    Run("click right\n");  // nowhere near the buttons: Switched of S stays as the setter left it
    EXPECT_EQ(Run("set S.Value False\nget S.Switched\n"), "changed S.Value\nS.Switched = 0\n");
    EXPECT_EQ(static_cast<int>(Get("S").State().frame), 2);
    EXPECT_EQ(static_cast<int>(Get("S").State().image), 2);
    Run("move 600 500\nwait 100\n");
    EXPECT_EQ(static_cast<int>(Get("S").State().frame), 1);

    // A disabled switch stores Value without latching.
    Let("S", "EnabledB", false);
    Run("set S.Value True\n");
    EXPECT_EQ(static_cast<int>(Get("S").State().frame), 1);
    EXPECT_TRUE(Read("S", "Value").ToBool());
}

TEST_F(ButtonTest, HoverPollShowsAndLeavesTheHoverLook) {
    Add();
    Let("B", "BorderStyle", 5);
    Run("move B\nwait 100\n");
    EXPECT_EQ(static_cast<int>(Get().State().frame), 2);
    EXPECT_EQ(static_cast<int>(Get().State().image), 2);
    // The hot XPStyle frame: orange inside the blue outline.
    const Shot hot = Pixels();
    EXPECT_EQ(hot.at(1, 20), 0xF8B230u);
    Run("move 5 5\nwait 100\n");
    EXPECT_EQ(static_cast<int>(Get().State().frame), 1);
    EXPECT_EQ(static_cast<int>(Get().State().image), 1);
    EXPECT_NE(Pixels().at(1, 20), 0xF8B230u);

    // Cool and XPcool rest without a frame.
    Let("B", "BorderStyle", 6);
    Run("move B\nwait 100\nmove 5 5\nwait 100\n");
    EXPECT_EQ(static_cast<int>(Get().State().frame), 0);
}

// Entering during a press shows the normal XPStyle frame, not the hot one.
TEST_F(ButtonTest, PointerEnteringDuringAPressIsNotHot) {
    Add();
    Let("B", "BorderStyle", 5);
    Let("B", "OptionMode", 1);
    Run("set B.Value True\nmove B\nwait 100\nset B.Value False\n");
    EXPECT_EQ(static_cast<int>(Get().State().frame), 2);
    EXPECT_NE(Pixels().at(1, 20), 0xF8B230u);
}

class DesignModeButtonTest : public ButtonTest {
  protected:
    DesignModeButtonTest() : ButtonTest(false) {}
};

TEST_F(DesignModeButtonTest, HoverPollChangesNothing) {
    Add();
    const Shot before = Pixels();
    Run("move B\nwait 200\nmove 5 5\nwait 200\nmove B\nwait 200\n");
    EXPECT_EQ(static_cast<int>(Get().State().frame), 1);
    EXPECT_EQ(Pixels().bits, before.bits);
}

TEST_F(ButtonTest, EnterPressesOnlyWithFocusRect) {
    Add();
    Add("Other", 300, 1200);
    EXPECT_EQ(Run("focus B\nkey down enter\nkey up enter\nkey down space\nkey up space\n"),
              "event B.KeyDown(13, 0)\nevent B.KeyUp(13, 0)\nevent B.KeyDown(32, 0)\nevent B.KeyUp(32, 0)\n");
    Let("B", "FocusRect", true);
    EXPECT_EQ(Run("focus Other\nfocus B\nkey down enter\nkey up enter\n"),
              "event B.MouseDown(1, 0, 0, 0)\n"
              "event B.KeyDown(13, 0)\n"
              "changed B.Value\n"
              "event B.Click()\n"
              "event B.MouseUp(1, 0, 0, 0)\n"
              "event B.KeyUp(13, 0)\n");
}

TEST_F(ButtonTest, SoundsPlayFromMemoryAndUnknownNumbersAreSilent) {
    Button& b = Add();
    b.PlaySound(102);
    b.PlaySound(100);
    b.PlaySound(107);
    b.EndPlaySound();
    const auto& requests = platform.sound().Requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].flags, 7u);
    EXPECT_EQ(requests[0].image.size(), 17132u) << "the only 16-bit sound, handed over whole";
    EXPECT_FALSE(requests[1].name.has_value());
    EXPECT_TRUE(requests[1].image.empty());
    EXPECT_EQ(requests[1].flags, 0u);

    // Going away, a button stops only a sound of its own, which may still be read from its buffers.
    Add("Quiet", 300, 1200);
    form.Remove("Quiet");
    EXPECT_EQ(requests.size(), 2u);
    b.PlaySound(101);
    form.Remove("B");
    ASSERT_EQ(requests.size(), 4u);
    EXPECT_TRUE(requests[3].image.empty() && !requests[3].name && requests[3].flags == 0) << "stopped";
}

TEST_F(ButtonTest, BadPointerIsRejectedAndKeepsTheOldOne) {
    Add();
    Let("B", "MousePointer", 11);
    EXPECT_EQ(ErrorOf([&] { Let("B", "MousePointer", 50); }), 380);
    EXPECT_EQ(Read("B", "MousePointer").ToLong(), 11);
}

}  // namespace
}  // namespace korvex::test
