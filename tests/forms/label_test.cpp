// Labels on a control surface: where the caption's ink lands, the back style, alignment, the
// disabled look, access letters, word wrapping and auto-sizing, z-order with a shape. Expected
// pixels come from predicates or from a second rendering that must match exactly (for example
// "Wrap here" wrapped must look like "Wrap" and "here" on two lines).

#include "form_fixture.hpp"

namespace korvex::forms::testing {
namespace {

class LabelTest : public FormTest {
  protected:
    // The label's box in surface pixels.
    static constexpr RECT kBox{10, 8, 90, 28};

    LabelTest() {
        label.Move(Tx(kBox.left), Ty(kBox.top), Tx(kBox.Width()), Ty(kBox.Height()));
        label.ForeColor(kRed);
        label.BackColor(kGreen);
    }

    // The caption's ink (fore-coloured pixels) over the whole surface.
    std::vector<POINT> Ink(COLORREF colour = kRed) { return Surface().Find(colour); }
    static std::vector<POINT> Shifted(std::vector<POINT> points, int dx, int dy) {
        for (POINT& p : points) p = {p.x + dx, p.y + dy};
        return points;
    }
    int TextPixels(const std::string& text) {
        return static_cast<int>(surface.TextWidth(text)) / platform::TwipsPerPixelX(platform);
    }

    Label label{surface};
};

TEST_F(LabelTest, CaptionInkLiesInsideTheBoxOverItsBackColourOrTheSurfaceDrawing) {
    surface.Line(0, 0, surface.ScaleWidth(), surface.ScaleHeight(), kBlue, LineBox::BF);
    label.Caption("Hello");
    const std::size_t area = static_cast<std::size_t>(kBox.Width() * kBox.Height());
    const Shot px = Surface();
    EXPECT_EQ(px.Count(kRed, kBox) + px.Count(kGreen, kBox), area) << "ink over back colour";
    EXPECT_EQ(px.Count(kBlue), static_cast<std::size_t>(px.width * px.height) - area)
        << "the surface everywhere else";
    const std::vector<POINT> ink = px.Find(kRed);
    RECT bounds{kSurface.Width(), kSurface.Height(), 0, 0};
    for (const POINT p : ink)
        bounds = {std::min(bounds.left, p.x), std::min(bounds.top, p.y),
                  std::max(bounds.right, p.x + 1), std::max(bounds.bottom, p.y + 1)};
    EXPECT_GT(ink.size(), 30u);
    // Left-aligned and top-aligned: the ink starts at the box's corner (a side bearing at most).
    EXPECT_LE(bounds.left - kBox.left, 2);
    EXPECT_LE(bounds.top - kBox.top, 4);
    EXPECT_LE(bounds.right - kBox.left, TextPixels("Hello") + 1);

    label.BackStyle(0);
    const Shot transparent = Surface();
    EXPECT_EQ(transparent.Find(kRed), ink);
    EXPECT_EQ(transparent.Count(kGreen), 0u);
    EXPECT_EQ(transparent.Count(kBlue, kBox) + ink.size(), area);
}

TEST_F(LabelTest, AlignmentShiftsEachLineByTheSpareWidth) {
    label.Caption("Hello");
    const std::vector<POINT> left = Ink();
    const int spare = kBox.Width() - TextPixels("Hello");
    label.Alignment(1);
    EXPECT_EQ(Ink(), Shifted(left, spare, 0));
    label.Alignment(2);
    EXPECT_EQ(Ink(), Shifted(left, spare / 2, 0));
    EXPECT_THROW(label.Alignment(3), host::HostError);
}

TEST_F(LabelTest, DisabledTextIsShadowOverHighlightOffsetByOnePixel) {
    label.BackColor(kBlue);  // neither of the classic greys
    label.Caption("Grey");
    const std::vector<POINT> enabled = Ink();
    ASSERT_FALSE(enabled.empty());

    label.Enabled(false);
    const COLORREF shadow = gdi.GetSysColor(COLOR_BTNSHADOW),
                   highlight = gdi.GetSysColor(COLOR_BTNHIGHLIGHT);
    EXPECT_TRUE(Ink().empty());
    // The shadow pass is exactly the enabled text; the highlight shows where the copy one pixel
    // down and right is not covered by it (clipped to the box).
    EXPECT_EQ(Ink(shadow), enabled);
    std::vector<POINT> expected;
    for (const POINT p : Shifted(enabled, 1, 1))
        if (p.x < kBox.right && p.y < kBox.bottom &&
            std::find(enabled.begin(), enabled.end(), p) == enabled.end())
            expected.push_back(p);
    std::sort(expected.begin(), expected.end(),
              [](POINT a, POINT b) { return a.y != b.y ? a.y < b.y : a.x < b.x; });
    EXPECT_EQ(Ink(highlight), expected);
}

TEST_F(LabelTest, AccessLettersAreUnderlined) {
    label.UseMnemonic(false);
    label.Caption("Yes");
    const std::vector<POINT> plain = Ink();
    label.UseMnemonic(true);
    label.Caption("&Yes");
    EXPECT_EQ(label.AccessKey(), U'Y');
    // The marked text differs from the plain one only by an underline under the "Y": one row,
    // starting at the letter and ending before the "e".
    const std::vector<POINT> marked = Ink();
    std::vector<POINT> underline;
    for (const POINT p : marked)
        if (std::find(plain.begin(), plain.end(), p) == plain.end()) underline.push_back(p);
    ASSERT_FALSE(underline.empty());
    for (const POINT p : underline) EXPECT_EQ(p.y, underline.front().y);
    EXPECT_EQ(underline.front().y, plain.back().y + 2) << "one row below the baseline of \"Yes\"";
    EXPECT_EQ(underline.front().x, kBox.left);
    EXPECT_EQ(underline.back().x, kBox.left + TextPixels("Y") - 2);
    for (const POINT p : plain)
        EXPECT_TRUE(std::find(marked.begin(), marked.end(), p) != marked.end());
}

TEST_F(LabelTest, WordWrapBreaksAtTheSpaceAndAutoSizeFitsTheText) {
    // Wrapped at the space in a box only wide enough for the first word, the caption looks like
    // the same words on two explicit lines.
    label.Move(Tx(kBox.left), Ty(kBox.top), Tx(TextPixels("Wrap") + 4), Ty(40));
    label.Caption("Wrap here");
    const std::vector<POINT> wrapped = Ink();
    label.Width(Tx(kSurface.Width() - kBox.left));
    EXPECT_NE(Ink(), wrapped);
    label.Caption("Wrap\r\nhere");
    EXPECT_EQ(Ink(), wrapped);

    // AutoSize without WordWrap: one line per paragraph, as wide as the widest.
    label.Caption("Wrap here");
    label.AutoSize(true);
    EXPECT_EQ(label.Width(), surface.TextWidth("Wrap here"));
    const float oneLine = label.Height();
    label.Caption("Wrap\nhere");
    EXPECT_EQ(label.Width(), std::max(surface.TextWidth("Wrap"), surface.TextWidth("here")));
    EXPECT_EQ(label.Height(), 2 * oneLine);

    // With WordWrap the width stays and the height grows to the wrapped lines.
    label.Caption("Wrap here");
    label.WordWrap(true);
    label.Width(Tx(TextPixels("Wrap") + 4));
    EXPECT_EQ(label.Width(), Tx(TextPixels("Wrap") + 4));
    EXPECT_EQ(label.Height(), 2 * oneLine);

    // A shared font's change re-fits the label.
    auto font = std::make_shared<host::StdFont>("Arial", 8.25);
    label.WordWrap(false);
    label.Font(font);
    const float small = label.Width();
    font->Size(16);
    EXPECT_GT(label.Width(), small * 1.5f);
}

TEST_F(LabelTest, ZOrderDecidesWhoCoversWhom) {
    Shape shape{surface};
    shape.BackStyle(1);
    shape.BorderStyle(0);
    shape.BackColor(kBlue);
    shape.Move(Tx(kBox.left), Ty(kBox.top), Tx(kBox.Width()), Ty(kBox.Height()));
    label.Caption("Hi");
    // Created later, the shape is in front and hides the label.
    EXPECT_EQ(Surface().Count(kBlue, kBox), static_cast<std::size_t>(kBox.Width() * kBox.Height()));
    label.ZOrder(ZOrderConstants::vbBringToFront);
    EXPECT_FALSE(Ink().empty());
    EXPECT_TRUE(Surface().Find(kBlue, kBox).empty());
    label.ZOrder(ZOrderConstants::vbSendToBack);
    EXPECT_TRUE(Ink().empty());
    label.Visible(false);
    shape.Visible(false);
    EXPECT_TRUE(Surface().Find(kGreen, kBox).empty());
}

}  // namespace
}  // namespace korvex::forms::testing
