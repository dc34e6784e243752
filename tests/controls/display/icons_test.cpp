// Icons: the icon a program asks for by set, size and number, and the 38-pixel square (its
// raised edge is the gallery's icons.png).

#include "controls/display/icons.hpp"
#include "foundation/images.hpp"
#include "support/control_fixture.hpp"

namespace korvex::test {
namespace {

class IconsTest : public ControlsTest {
  protected:
    IconsTest() {
        New("Icons", {"I1", 150, 150, 3000, 1500});
        form.SwitchMode(true);
    }
    controls::Icons& Icons() { return Control<controls::Icons>("I1"); }
};

TEST_F(IconsTest, IconChoosesSetAndSizeFromItsArguments) {
    const struct {
        const char *over, *size;
        std::int32_t id;
        int pixels;
    } rows[] = {
        {"1", "32", 105, 32},
        {"0", "16", 5, 16},
        {"2", "24", 205, 16},  // any other size is 16, any other set the down images
        {"-1", "32.0", 205, 32},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.over) + "/" + row.size);
        const auto picture = Icons().Icon(row.over, row.size, 5);
        ASSERT_NE(picture, nullptr);
        EXPECT_EQ(picture->PixelWidth(), row.pixels);
        EXPECT_TRUE(picture->SameContent(*foundation::LoadResImage(row.id, row.pixels, 2)));
    }
    // The last group of the normal set is pOff's, at both sizes; past it there is none.
    for (const char* size : {"16", "32"}) {
        const auto off = Icons().Icon("0", size, 51);
        ASSERT_NE(off, nullptr) << size;
        EXPECT_EQ(off->PixelWidth(), std::stoi(size));
    }
    EXPECT_EQ(Icons().Icon("0", "32", 52), nullptr);  // no such group: Nothing, no error
    EXPECT_EQ(Icons().Icon("1", "16", 51), nullptr);
    EXPECT_EQ(ErrorOf([&] { (void)Icons().Icon("eins", "32", 5); }), kErrTypeMismatch);
    EXPECT_EQ(ErrorOf([&] { (void)Icons().Icon("1", "groß", 5); }), kErrTypeMismatch);
    EXPECT_EQ(ErrorOf([&] { (void)Icons().Icon("2", "16", 2147483600); }), kErrOverflow);
}

TEST_F(IconsTest, StaysA38PixelSquareAndKeepsNothing) {
    EXPECT_EQ(
        Run("get I1.Width\nset I1.Width 6000\nset I1.Height 45\nget I1.Width\nget I1.Height\n"),
        "I1.Width = 570\nI1.Width = 570\nI1.Height = 570\n");
    EXPECT_TRUE(Save("I1").Empty()) << "nothing to persist";
}

}  // namespace
}  // namespace korvex::test
