#include <gtest/gtest.h>

#include <sstream>

#include "controls/display/icons.hpp"
#include "foundation/images.hpp"
#include "driver/script_runner.hpp"
#include "platform/sim/sim_platform.hpp"
#include "support/error_of.hpp"

using namespace korvex;
using korvex::test::ErrorOf;

namespace {

class IconsTest : public ::testing::Test {
protected:
    IconsTest() {
        context.Classes().Register(controls::Icons::Class());
        form.Add("Korvex_Tools.Icons", {"I1", 150, 150, 3000, 1500});
        form.SwitchMode(true);
        form.Show();
    }
    controls::Icons& Icons() { return static_cast<controls::Icons&>(form.Get("I1").GetControl()); }

    platform::sim::SimPlatform platform;
    host::HostContext context{&platform};
    host::Container form{context};
};

TEST_F(IconsTest, IconChoosesSetAndSizeFromItsArguments) {
    const auto expectSame = [&](const std::string& over, const std::string& size, std::int32_t id, int pixels) {
        const auto picture = Icons().Icon(over, size, 5);
        ASSERT_NE(picture, nullptr) << over << "/" << size;
        const auto expected = foundation::LoadResImage(id, pixels, 2);
        EXPECT_EQ(picture->PixelWidth(), pixels);
        EXPECT_TRUE(picture->SameContent(*expected)) << "icon " << id << " at " << pixels;
    };
    expectSame("1", "32", 105, 32);
    expectSame("0", "16", 5, 16);
    expectSame("2", "24", 205, 16);   // any other size is 16, any other set the down images
    expectSame("-1", "32.0", 205, 32);
    EXPECT_EQ(Icons().Icon("0", "32", 51), nullptr);  // no such group: Nothing, no error
    EXPECT_EQ(ErrorOf([&] { (void)Icons().Icon("eins", "32", 5); }), 13);
    EXPECT_EQ(ErrorOf([&] { (void)Icons().Icon("1", "groß", 5); }), 13);
    EXPECT_EQ(ErrorOf([&] { (void)Icons().Icon("2", "16", 2147483600); }), 6);
}

TEST_F(IconsTest, StaysA38PixelRaisedSquare) {
    std::ostringstream out;
    host::ScriptRunner runner(form, platform.driver(), out);
    runner.Run("get I1.Width\nset I1.Width 6000\nset I1.Height 45\nget I1.Width\nget I1.Height\n");
    EXPECT_EQ(out.str(), "I1.Width = 570\nI1.Width = 570\nI1.Height = 570\n");
    EXPECT_TRUE(form.SaveBag(form.Get("I1")).Empty()) << "nothing to persist";

    auto& windows = platform.windows();
    const auto pixels = windows.ComposeWindow(Icons().SurfaceWindow());
    ASSERT_EQ(pixels.size(), 38u * 38u);
    auto at = [&](int x, int y) { return pixels[static_cast<std::size_t>(y * 38 + x)]; };
    auto rgb = [&](int index) {
        const platform::COLORREF c = platform.gdi().GetSysColor(index);
        return (static_cast<std::uint32_t>(platform::GetRValue(c)) << 16) |
               (static_cast<std::uint32_t>(platform::GetGValue(c)) << 8) | platform::GetBValue(c);
    };
    // Raised edge: light then highlight at the top and left, dark shadow then shadow at the bottom
    // and right.
    EXPECT_EQ(at(0, 10), rgb(platform::COLOR_3DLIGHT));
    EXPECT_EQ(at(1, 10), rgb(platform::COLOR_BTNHIGHLIGHT));
    EXPECT_EQ(at(37, 10), rgb(platform::COLOR_3DDKSHADOW));
    EXPECT_EQ(at(36, 10), rgb(platform::COLOR_BTNSHADOW));
    EXPECT_EQ(at(10, 37), rgb(platform::COLOR_3DDKSHADOW));
    EXPECT_EQ(at(19, 19), rgb(platform::COLOR_BTNFACE));
}

TEST_F(IconsTest, MemberTableHasTheAboutBoxThenIcon) {
    const host::ClassInfo& info = controls::Icons::Class();
    EXPECT_EQ(info.FindMember("ShowAboutBox")->dispId, 1);
    const host::MemberInfo* icon = info.FindMember("Icon");
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->dispId, 2);
    ASSERT_EQ(icon->params.size(), 3u);
    EXPECT_EQ(icon->params[0].name, "PicOver");
    EXPECT_EQ(icon->type.code, host::TypeCode::Picture);
    EXPECT_TRUE(info.events.empty());
}

}  // namespace
