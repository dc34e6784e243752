// Button: the event sessions of push, switch and group buttons on the virtual clock, and what
// the gallery's button sheets do not show: looks after leaving, clamped colours, the focus
// going, images of latched switches, the layout's minimum size, small designer's pictures and
// sounds.

#include <cmath>

#include "controls/button/button.hpp"
#include "controls/button/button_painter.hpp"
#include "foundation/images.hpp"
#include "platform/sim/sim_gdi.hpp"
#include "support/control_fixture.hpp"

namespace korvex::test {
namespace {

using controls::Button;
using Props = std::vector<std::pair<const char*, Variant>>;

class ButtonsTest : public ControlsTest {
  protected:
    ButtonsTest() : ControlsTest(true) {}
    // A 120 x 40 pixel button at (20, 20) pixels of the form.
    Button& Add(const char* name = "B", std::int32_t top = 300, std::int32_t width = 1800,
                std::int32_t height = 600) {
        New("Button", {name, 300, top, width, height});
        return Control<Button>(name);
    }
};

// ---------------------------------------------------------------------------------------------
// Event sessions: each row sets B up, then runs its scripts in turn on the virtual clock.

struct Session {
    const char* name;
    Props setup;
    std::vector<std::pair<const char*, const char*>> steps;  // script, what it prints (Brief)
};

// clang-format off
const std::vector<Session> kSessions = {
    {"push button: down, Click, up; Value stays True and setting it only stores it", {},
     {{"move B 5 5\nclick\nget B.Value\n",
       "MouseMove(0, 0, 4, 4); MouseDown(1, 0, 4, 4); changed Value; Click(); MouseUp(1, 0, 4, 4); Value = True"},
      {"set B.Value False\nget B.Value\n", "changed Value; Value = False"}}},
    {"double click: the second press is a press at the last position", {},
     {{"move B 5 5\ndblclick\n", "MouseMove(0, 0, 4, 4); MouseDown(1, 0, 4, 4); changed Value; Click(); "
       "MouseUp(1, 0, 4, 4); MouseDown(1, 0, 4, 4); changed Value; Click(); MouseUp(1, 0, 4, 4)"}}},
    {"switch: latches without MouseUp, comes out with it", {{"OptionMode", 1}},
     {{"move B 5 5\nclick\nget B.Value\nget B.Switched\n",
       "MouseMove(0, 0, 4, 4); MouseDown(1, 0, 4, 4); changed Value; Click(); Value = True; Switched = 1"},
      {"wait 600\nclick\nget B.Value\nget B.Switched\n",
       "MouseDown(1, 0, 4, 4); changed Value; Click(); MouseUp(1, 0, 4, 4); Value = False; Switched = 0"}}},
    {"switch latched by the right button keeps that side", {{"OptionMode", 1}},
     {{"move B 5 5\nclick right\nget B.Switched\n",
       "MouseMove(0, 0, 4, 4); MouseDown(2, 0, 4, 4); changed Value; Click(); Switched = 2"},
      {"wait 600\ndown left\nget B.Switched\n", "MouseDown(1, 0, 4, 4); Switched = 2"}}},
    {"group button: Group first, reports once while latched, again after a release", {{"OptionMode", 2}},
     {{"move B 5 5\nclick\n", "MouseMove(0, 0, 4, 4); Group(); MouseDown(1, 0, 4, 4); changed Value; Click()"},
      {"wait 600\nclick\nwait 600\nclick\nget B.Value\n",
       "MouseDown(1, 0, 4, 4); MouseDown(1, 0, 4, 4); Value = True"},
      {"set B.Value False\nwait 600\nclick\n",
       "changed Value; Group(); MouseDown(1, 0, 4, 4); changed Value; Click()"}}},
    {"Value latches a switch silently and releases it to bFalse", {{"OptionMode", 1}},
     {{"click right\nset B.Value True\n", "changed Value"},
      {"set B.Value False\nget B.Switched\n", "changed Value; Switched = 0"}}},
    {"Value on a group button: Group on latching; a second True while latched releases it", {{"OptionMode", 2}},
     {{"set B.Value True\nset B.Value True\nset B.Value True\n",
       "changed Value; Group(); changed Value; changed Value; Group()"}}},
    {"disabled: Value stored without latching, the face takes no input", {{"OptionMode", 2}, {"EnabledB", false}},
     {{"set B.Value True\nmove B\nclick\nget B.Value\n", "changed Value; Value = True"}}},
    {"Enter and space do not press without FocusRect", {},
     {{"focus B\nkey down enter\nkey up enter\nkey down space\nkey up space\n",
       "KeyDown(13, 0); KeyUp(13, 0); KeyDown(32, 0); KeyUp(32, 0)"}}},
    {"Enter presses with FocusRect, around the key events", {{"FocusRect", true}},
     {{"focus B\nkey down enter\nkey press 13\nkey up enter\n", "MouseDown(1, 0, 0, 0); KeyDown(13, 0); "
       "KeyPress(13); changed Value; Click(); MouseUp(1, 0, 0, 0); KeyUp(13, 0)"}}},
    {"MousePointer takes only its constants", {},
     {{"set B.MousePointer 50\nget B.MousePointer\n", "error 380: Invalid property value; MousePointer = 0"}}},
};
// clang-format on

TEST_F(ButtonsTest, EventSessions) {
    for (const Session& session : kSessions) {
        SCOPED_TRACE(session.name);
        Add();
        Add("Other", 1200);
        for (const auto& [name, value] : session.setup) Let("B", name, value);
        for (const auto& [script, expected] : session.steps)
            EXPECT_EQ(Brief(script, "B"), expected) << script;
        form.Remove("B");
        form.Remove("Other");
        Run("up\nup right\nmove 5 5\nwait 600\n");
    }
}

// ---------------------------------------------------------------------------------------------
// Looks. A grey plain button (no image, no caption) on green: face 0x80, light +40, dark -100.

class ButtonLookTest : public ButtonsTest {
  protected:
    Button& AddPlain(int style) {
        Button& b = Add();
        for (const auto& [name, value] : Props{{"ButtonShow", 51},
                                               {"TextAlignment", 0},
                                               {"BorderStyle", style},
                                               {"ButtonColor", 0x00808080},
                                               {"BackColorB", 0x0000FF00}})
            Let("B", name, value);
        return b;
    }
};

constexpr std::uint32_t kGreen = 0x00FF00, kLight = 0xA8A8A8;

// What a look leaves behind once the pointer or the latch goes, and the light and dark of a
// white face, clamped.
TEST_F(ButtonLookTest, FramesAfterTheLookAndClampedColours) {
    const struct {
        int style;
        Props setup;
        const char* script;
        int x, y;
        std::uint32_t expected;
    } rows[] = {
        {2, {{"ButtonColor", 0x00FFFFFF}}, "", 0, 20, 0xFFFFFF},
        {2, {{"ButtonColor", 0x00FFFFFF}}, "", 119, 20, 0x9B9B9B},
        {1, {}, "move B\nwait 100\nmove 5 5\nwait 100\n", 0, 20, kGreen},
        {6, {}, "move B\nwait 100\nmove 5 5\nwait 100\n", 0, 20, kGreen},
        {5, {}, "move B\nwait 100\nmove 5 5\nwait 100\n", 1, 20, kLight},
        {5,
         {{"OptionMode", 1}},
         "set B.Value True\nmove B\nwait 100\nset B.Value False\n",
         1,
         20,
         kLight},
        {7, {{"OptionMode", 1}}, "move B\nclick\n", 0, 0, kGreen},  // XPflat: never a frame
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "style " << row.style << " after \"" << row.script
                                          << "\" at " << row.x << "," << row.y);
        AddPlain(row.style);
        for (const auto& [name, value] : row.setup) Let("B", name, value);
        Run(row.script);
        EXPECT_EQ(Pixels("B").at(row.x, row.y), row.expected);
        form.Remove("B");
        Run("up\nmove 5 5\nwait 600\n");
    }
}

TEST_F(ButtonLookTest, GradientWithoutRowsOrDirectionPaintsNothing) {
    platform::sim::SimGdi gdi;
    const platform::HDC dc = gdi.CreateCompatibleDC({});
    gdi.SelectObject(dc, gdi.CreateDIBSection32(4, 4));
    controls::FillGradient(gdi, dc, {0, 0, 4, 0}, 0x00FFFFFF, 0, 1);  // no rows
    controls::FillGradient(gdi, dc, {0, 0, 4, 4}, 0x00FFFFFF, 0, 3);  // no such direction
    for (int y = 0; y < 4; ++y) EXPECT_EQ(gdi.GetPixel(dc, 1, y), 0u) << y;
}

// The dotted rectangle goes again with the focus or with NotFrmFocus.
TEST_F(ButtonLookTest, FocusRectangleGoesWithTheFocusOrNotFrmFocus) {
    AddPlain(2);
    Add("Other", 1200);
    Let("B", "FocusRect", true);
    const Shot before = Pixels("B");
    Run("focus B\nwait 20\n");
    EXPECT_NE(Pixels("B").bits, before.bits);
    Run("focus Other\n");
    EXPECT_EQ(Pixels("B").bits, before.bits);
    Run("focus B\nwait 20\ncall B.NotFrmFocus True\n");
    EXPECT_EQ(Pixels("B").bits, before.bits);
}

// A check box shows the side its switch was latched with, an LED lights when latched, and
// ButtonShow 51 shows no image in any look.
TEST_F(ButtonsTest, ImageOfALatchedSwitchAndNone) {
    Button& b = Add();
    struct Step {
        const char* script;
        std::int32_t group, size;  // group 0: no image shown
    };
    // clang-format off
    const std::vector<Step> steps = {
        {"set B.ButtonShow 42\nset B.OptionMode 1\nmove B\nclick right\n", 242, 14},  // checked, right
        {"wait 600\nclick\nwait 600\nclick\n", 142, 14},                             // checked, left
        {"set B.ButtonShow 44\nwait 600\nclick\nwait 100\n", 44, 11},
        {"wait 600\nclick\n", 244, 11},
        {"set B.ButtonShow 51\n", 0, 0}, {"wait 600\nclick\n", 0, 0}, {"move 5 5\nwait 100\n", 0, 0}};
    // clang-format on
    for (const Step& step : steps) {
        Run(step.script);
        if (step.group == 0) {
            EXPECT_FALSE(b.FaceImage().Visible()) << step.script;
            continue;
        }
        const auto expected = foundation::LoadResImage(step.group, step.size, foundation::LR_COLOR);
        const auto shown = b.FaceImage().Picture();
        EXPECT_TRUE(b.FaceImage().Visible() && shown && expected && shown->SameContent(*expected))
            << step.script << " should show " << step.group << " at " << step.size;
    }
}

TEST_F(ButtonsTest, LayoutKeepsTheMinimumSizeAndCentresTheRow) {
    Button& b = Add("B", 300, 150, 150);
    // tRight with a 16-pixel image: caption width + 16 + 3 wide, 16 + 2 high at least.
    const float caption = b.CaptionLabel().Width();
    EXPECT_EQ(Long("B", "Width"), static_cast<std::int32_t>(std::ceil(caption + 19) * 15));
    EXPECT_EQ(Long("B", "Height"), 18 * 15);
    // On a wide face image and caption form one centred row; the shadow copy sits up-left.
    Run("set B.Width 3000\nset B.Height 600\n");
    EXPECT_NEAR(b.FaceImage().Left() + 8 + caption / 2, b.Face().ScaleWidth() / 2, 0.01);
    EXPECT_NEAR(b.CaptionLabel().Left(), b.FaceImage().Left() + 16, 0.01);
    EXPECT_NEAR(b.CaptionCopy().Left(), b.CaptionLabel().Left() - 1, 0.01);
    // Pressed, a Flat button's caption moves one pixel right and down; the image stays.
    const float left = b.CaptionLabel().Left(), image = b.FaceImage().Left();
    Run("move B\ndown\n");
    EXPECT_NEAR(b.CaptionLabel().Left(), left + 1, 0.01);
    EXPECT_NEAR(b.FaceImage().Left(), image, 0.01);
    // A bottom caption needs image + caption + 3 rows, and then gets 10 more.
    Run("up\nset B.TextAlignment 3\nset B.Height 300\n");
    EXPECT_EQ(Long("B", "Height"),
              static_cast<std::int32_t>(std::lround((b.CaptionLabel().Height() + 16 + 13) * 15)));
}

std::shared_ptr<StdPicture> Solid(int width, int height, std::uint32_t rgb) {
    return std::make_shared<StdPicture>(
        PictureType::Bitmap, width, height,
        std::vector<std::uint32_t>(static_cast<std::size_t>(width * height), 0xFF000000u | rgb));
}

// Small designer's pictures show per look; a large one becomes the face (the gallery's
// buttons-bigpicture.png) until a built-in image is chosen.
TEST_F(ButtonsTest, DesignerPicturesSmallAndLarge) {
    Button& b = Add();
    Let("B", "ButtonShow", 0);
    Let("B", "PictureOver", Solid(16, 16, 0x00FF00));
    Let("B", "PictureUp", Solid(16, 16, 0xFF0000));
    EXPECT_EQ(b.FaceImage().Picture(), b.PictureUp());
    Run("move B\nwait 100\n");
    EXPECT_EQ(b.FaceImage().Picture(), b.PictureOver());
    Run("move 5 5\nwait 100\n");

    Let("B", "PictureUp", Solid(33, 16, 0x0000FF));
    EXPECT_FALSE(b.FaceImage().Visible());
    EXPECT_EQ(Pixels("B").at(1, 1), 0x0000FFu);
    Let("B", "ButtonShow", 21);
    EXPECT_TRUE(b.FaceImage().Visible());
    EXPECT_NE(Pixels("B").at(1, 1), 0x0000FFu);
}

TEST_F(ButtonsTest, SoundsPlayFromMemoryAndStopOnlyTheirOwn) {
    Button& b = Add();
    for (std::int16_t id : {102, 100, 107}) b.PlaySound(id);
    b.EndPlaySound();
    const auto& requests = platform.sound().Requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].flags, 7u);
    EXPECT_EQ(requests[0].image.size(), 17132u) << "the only 16-bit sound, handed over whole";
    EXPECT_TRUE(!requests[1].name && requests[1].image.empty() && requests[1].flags == 0)
        << "stopped";
    // Going away, a button stops only a sound of its own, which may still be read from its buffers.
    Add("Quiet", 1200);
    form.Remove("Quiet");
    EXPECT_EQ(requests.size(), 2u);
    b.PlaySound(101);
    form.Remove("B");
    ASSERT_EQ(requests.size(), 4u);
    EXPECT_TRUE(!requests[3].name && requests[3].image.empty() && requests[3].flags == 0)
        << "stopped";
}

}  // namespace
}  // namespace korvex::test
