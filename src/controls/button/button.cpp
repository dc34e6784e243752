// Button: the property declarations, member table, construction, persistence and the property
// setters. Setters store into the model, then run the painting steps the change needs.

#include "controls/button/button.hpp"

#include <span>

#include "foundation/sounds.hpp"
#include "host/type_info.hpp"
#include "platform/sound.hpp"

namespace korvex::controls {

using host::Arg;
using host::ClassBuilder;
using host::ClassInfo;
using host::OLE_COLOR;
using host::PropertyBag;
using host::TypeCode;
using host::Variant;

static_assert(static_cast<int>(EnumButton::btnOK) == 21 &&
              static_cast<int>(EnumButton::pOff) == 51);

namespace {
constexpr OLE_COLOR kButtonFace = 0x8000000F;
}  // namespace

// Every key is read and written with the value a new control starts with.
struct Button::Props {
    using Picture = std::shared_ptr<host::StdPicture>;
    template <class V>
    using P = host::Property<Button, V>;
    static inline const P<Picture> PictureUp{
        .name = "PictureUp", .get = &Button::PictureUp, .set = &Button::PictureUp};
    static inline const P<Picture> PictureDown{
        .name = "PictureDown", .get = &Button::PictureDown, .set = &Button::PictureDown};
    static inline const P<Picture> PictureOver{
        .name = "PictureOver", .get = &Button::PictureOver, .set = &Button::PictureOver};
    static inline const P<bool> EnabledB{
        .name = "EnabledB", .get = &Button::EnabledB, .set = &Button::EnabledB, .read = true};
    static inline const P<EnumMode> OptionMode{.name = "OptionMode",
                                               .get = &Button::OptionMode,
                                               .set = &Button::OptionMode,
                                               .read = EnumMode::optButton};
    static inline const P<bool> Value{
        .name = "Value", .get = &Button::Value, .set = &Button::Value, .read = false};
    static inline const P<bool> IconSize{
        .name = "IconSize", .get = &Button::IconSize, .set = &Button::IconSize, .read = false};
    static inline const P<EnumStyle> BorderStyle{.name = "BorderStyle",
                                                 .get = &Button::BorderStyle,
                                                 .set = &Button::BorderStyle,
                                                 .read = EnumStyle::Flat};
    static inline const P<bool> Gradient{
        .name = "Gradient", .get = &Button::Gradient, .set = &Button::Gradient, .read = true};
    static inline const P<EnumButton> ButtonShow{.name = "ButtonShow",
                                                 .get = &Button::ButtonShow,
                                                 .set = &Button::ButtonShow,
                                                 .read = EnumButton::btnOK};
    static inline const P<EnumTextAlignment> TextAlignment{.name = "TextAlignment",
                                                           .get = &Button::TextAlignment,
                                                           .set = &Button::TextAlignment,
                                                           .read = EnumTextAlignment::tRight};
    static inline const P<OLE_COLOR> BackColorB{.name = "BackColorB",
                                                .get = &Button::BackColorB,
                                                .set = &Button::BackColorB,
                                                .read = kButtonFace};
    static inline const P<OLE_COLOR> ButtonColor{.name = "ButtonColor",
                                                 .get = &Button::ButtonColor,
                                                 .set = &Button::ButtonColor,
                                                 .read = kButtonFace};
    static inline const P<std::string> Caption{
        .name = "Caption", .get = &Button::Caption, .set = &Button::Caption, .read = "Caption"};
    static inline const P<Enum3D> Font3D{
        .name = "Font3D", .get = &Button::Font3D, .set = &Button::Font3D, .read = Enum3D::pTop};
    static inline const P<OLE_COLOR> FontColor{.name = "FontColor",
                                               .get = &Button::FontColor,
                                               .set = &Button::FontColor,
                                               .read = OLE_COLOR{0}};
    static inline const P<OLE_COLOR> FontShadowColor{.name = "FontShadowColor",
                                                     .get = &Button::FontShadowColor,
                                                     .set = &Button::FontShadowColor,
                                                     .read = OLE_COLOR{0x00FFFFFF}};
    static inline const P<bool> ToolTip{
        .name = "ToolTip", .get = &Button::ToolTip, .set = &Button::ToolTip, .read = true};
    static inline const P<std::string> ToolTipText{.name = "ToolTipText",
                                                   .get = &Button::ToolTipText,
                                                   .set = &Button::ToolTipText,
                                                   .read = "Quick-Info"};
    static inline const P<bool> FocusRect{
        .name = "FocusRect", .get = &Button::FocusRect, .set = &Button::FocusRect, .read = false};
    // The ambient font.
    static inline const P<std::shared_ptr<host::StdFont>> Font{
        .name = "Font", .get = &Button::Font, .set = &Button::Font};
    static inline const P<Picture> MouseIcon{
        .name = "MouseIcon", .get = &Button::MouseIcon, .set = &Button::MouseIcon};
    static inline const P<MousePointerConst> MousePointer{.name = "MousePointer",
                                                          .get = &Button::MousePointer,
                                                          .set = &Button::MousePointer,
                                                          .bag = host::BagKind::Integer};
};

const ClassInfo& Button::Class() {
    static const ClassInfo info =
        ClassBuilder<Button>("Button", "Korvex_Tools.Button")
            .Method("ShowAboutBox", {}, [](Button& b, std::span<Variant>) { b.ShowAboutBox(); })
            .Method("NotFrmFocus", {Arg("cFocus", TypeCode::Variant)},
                    [](Button& b, std::span<Variant> a) { b.NotFrmFocus(a[0]); })
            .Method("DrawRectB", {Arg("RECT", TypeCode::Boolean)},
                    [](Button& b, std::span<Variant> a) { b.DrawRectB(a[0].ToBool()); })
            .Method("Refresh", {}, [](Button& b, std::span<Variant>) { b.Refresh(); })
            .Method("PlaySound", {Arg("ResourceId", TypeCode::Integer)},
                    [](Button& b, std::span<Variant> a) { b.PlaySound(a[0].ToInteger()); })
            .Method("EndPlaySound", {}, [](Button& b, std::span<Variant>) { b.EndPlaySound(); })
            .Property(Props::PictureUp)
            .Property(Props::PictureDown)
            .Property(Props::PictureOver)
            .Property(Props::EnabledB)
            .Property(Props::OptionMode)
            .Property(Props::Value)
            .Property(Props::IconSize)
            .Property(Props::BorderStyle)
            .Property(Props::Gradient)
            .Property(Props::ButtonShow)
            .Property(Props::TextAlignment)
            .Property(Props::BackColorB)
            .Property(Props::ButtonColor)
            .Property(Props::Caption)
            .Property(Props::Font3D)
            .Property(Props::FontColor)
            .Property(Props::FontShadowColor)
            .Property(Props::ToolTip)
            .Property(Props::ToolTipText)
            .Property(Props::FocusRect)
            .Property(Props::Font)
            .Property(Props::MouseIcon)
            .Property(Props::MousePointer)
            .ReadOnly(KORVEX_READONLY(Switched), "EnumSwitched")
            .ReadOnly(KORVEX_READONLY(HDC))
            .ReadOnly(KORVEX_READONLY(hwnd))
            .ReadOnly(KORVEX_READONLY(HasDC))
            .Events<ButtonEvents>({{ButtonEvents::MouseDown, host::MouseEventArgs()},
                                   {ButtonEvents::MouseMove, host::MouseEventArgs()},
                                   {ButtonEvents::MouseUp, host::MouseEventArgs()},
                                   {ButtonEvents::KeyDown, host::KeyEventArgs()},
                                   {ButtonEvents::KeyPress, {Arg("KeyAscii", TypeCode::Integer)}},
                                   {ButtonEvents::KeyUp, host::KeyEventArgs()}})
            .Enum<EnumMode>()
            .Enum<EnumSwitched>()
            .Enum<EnumStyle>()
            .Enum<Enum3D>()
            .Enum<EnumTextAlignment>()
            .Enum<EnumButton>()
            .Enum<MousePointerConst>()
            .Build();
    return info;
}

// ---------------------------------------------------------------------------------------------
// Construction and lifecycle

namespace {

// The arrow glyph beside the image of an Arrow button: a small triangle pointing right, five
// pixels wide and ten high, in `colour` (0x00RRGGBB) on transparent pixels.
std::shared_ptr<host::StdPicture> ArrowGlyph(std::uint32_t colour) {
    constexpr int kWidth = 5, kHeight = 10;
    std::vector<std::uint32_t> pixels(kWidth * kHeight, 0);
    for (int x = 0; x < kWidth; ++x)
        for (int y = x; y <= 8 - x; ++y)
            pixels[static_cast<std::size_t>(y * kWidth + x)] = 0xFF000000u | colour;
    return std::make_shared<host::StdPicture>(host::PictureType::Bitmap, kWidth, kHeight,
                                              std::move(pixels));
}

}  // namespace

Button::Button(host::HostContext& context)
    : SurfaceControl(context),
      PicBild1(UserControl),
      imgBild(PicBild1),
      lbl1(PicBild1),
      lbl2(PicBild1),
      pfl(PicBild1),
      pfle(PicBild1),
      timer(UserControl.Platform()),
      tmrRect(UserControl.Platform()),
      painter_(ButtonParts{UserControl, PicBild1, imgBild, lbl1, lbl2, pfl, pfle}, look_, state_) {
    StartValues();
    // The design data: everything measured in pixels, a borderless face, self-sizing transparent
    // captions, the hidden arrow glyphs.
    UserControl.ScaleMode(forms::ScaleModeConstants::vbPixels);
    PicBild1.BorderStyle(0);
    PicBild1.ScaleMode(forms::ScaleModeConstants::vbPixels);
    for (forms::Label* label : {&lbl1, &lbl2}) {
        label->AutoSize(true);
        label->BackStyle(0);
    }
    pfl.Picture(ArrowGlyph(0x000000));
    pfle.Picture(ArrowGlyph(0x808080));
    pfl.Visible(false);
    pfle.Visible(false);
    WireInput();
}

Button::~Button() {
    // A sound playing from this control's buffers must not outlive them.
    if (soundStarted_) EndPlaySound();
}

// The values a new control has, stored without running any setter.
void Button::StartValues() {
    look_.pictures = {Props::PictureUp.Initial(*this), Props::PictureOver.Initial(*this),
                      Props::PictureDown.Initial(*this)};
    look_.enabled = Props::EnabledB.Initial(*this);
    OptionMode_ = Props::OptionMode.Initial(*this);
    Value_ = Props::Value.Initial(*this);
    look_.iconSize = Props::IconSize.Initial(*this);
    look_.style = Props::BorderStyle.Initial(*this);
    look_.gradient = Props::Gradient.Initial(*this);
    look_.show = Props::ButtonShow.Initial(*this);
    look_.textAlignment = Props::TextAlignment.Initial(*this);
    look_.buttonColor = Props::ButtonColor.Initial(*this);
    look_.caption = Props::Caption.Initial(*this);
    look_.font3D = Props::Font3D.Initial(*this);
    look_.fontColor = Props::FontColor.Initial(*this);
    look_.fontShadowColor = Props::FontShadowColor.Initial(*this);
    ToolTip_ = Props::ToolTip.Initial(*this);
    ToolTipText_ = Props::ToolTipText.Initial(*this);
    FocusRect_ = Props::FocusRect.Initial(*this);
}

void Button::UserControl_Initialize() {
    EnabledB(Props::EnabledB.Initial(*this));
    ButtonColor(Props::ButtonColor.Initial(*this));
    painter_.ComputeColours();
    BorderStyle(Props::BorderStyle.Initial(*this));
    Layout();
    for (std::int32_t id = foundation::kFirstWaveResource; id <= foundation::kLastWaveResource;
         ++id)
        mWave[static_cast<std::size_t>(id - foundation::kFirstWaveResource)] =
            foundation::LoadResData(id, "WAVE");
}

// Stored directly, except ButtonShow and Font, which go through their setters.
void Button::UserControl_InitProperties() {
    StartValues();
    UserControl.BackColor(Props::BackColorB.Initial(*this));
    UserControl.MousePointer(static_cast<std::int16_t>(Props::MousePointer.Initial(*this)));
    state_.frame = FrameLook::Normal;
    ButtonShow(Props::ButtonShow.Initial(*this));
    Font(Props::Font.Initial(*this));
}

void Button::UserControl_ReadProperties(PropertyBag& PropBag) {
    Props::PictureUp.Load(*this, PropBag);
    Props::PictureDown.Load(*this, PropBag);
    Props::PictureOver.Load(*this, PropBag);
    Props::EnabledB.Load(*this, PropBag);
    Props::OptionMode.Load(*this, PropBag);
    Props::Value.Load(*this, PropBag);
    // Read after EnabledB, and a disabled button keeps its size: a disabled control loads False.
    Props::IconSize.Load(*this, PropBag);
    Props::BorderStyle.Load(*this, PropBag);
    Props::Gradient.Load(*this, PropBag);
    Props::ButtonShow.Load(*this, PropBag);
    Props::TextAlignment.Load(*this, PropBag);
    Props::BackColorB.Load(*this, PropBag);
    Props::ButtonColor.Load(*this, PropBag);
    Props::Caption.Load(*this, PropBag);
    Props::Font3D.Load(*this, PropBag);
    Props::FontColor.Load(*this, PropBag);
    Props::FontShadowColor.Load(*this, PropBag);
    Props::ToolTip.Load(*this, PropBag);
    Props::ToolTipText.Load(*this, PropBag);
    Props::FocusRect.Load(*this, PropBag);
    Props::Font.Load(*this, PropBag);
    Props::MouseIcon.Load(*this, PropBag);
    // Last, so that the pointer shows with its icon already in place.
    Props::MousePointer.Load(*this, PropBag);
}

void Button::UserControl_WriteProperties(PropertyBag& PropBag) {
    Props::PictureUp.Save(*this, PropBag);
    Props::PictureDown.Save(*this, PropBag);
    Props::PictureOver.Save(*this, PropBag);
    Props::EnabledB.Save(*this, PropBag);
    Props::OptionMode.Save(*this, PropBag);
    Props::Value.Save(*this, PropBag);
    Props::IconSize.Save(*this, PropBag);
    Props::BorderStyle.Save(*this, PropBag);
    Props::Gradient.Save(*this, PropBag);
    Props::ButtonShow.Save(*this, PropBag);
    Props::TextAlignment.Save(*this, PropBag);
    Props::BackColorB.Save(*this, PropBag);
    Props::ButtonColor.Save(*this, PropBag);
    Props::Caption.Save(*this, PropBag);
    Props::Font3D.Save(*this, PropBag);
    Props::FontColor.Save(*this, PropBag);
    Props::FontShadowColor.Save(*this, PropBag);
    Props::ToolTip.Save(*this, PropBag);
    Props::ToolTipText.Save(*this, PropBag);
    Props::FocusRect.Save(*this, PropBag);
    Props::Font.Save(*this, PropBag);
    Props::MouseIcon.Save(*this, PropBag);
    Props::MousePointer.Save(*this, PropBag);
}

// ---------------------------------------------------------------------------------------------
// Properties

namespace {
// The image that goes with a frame: the frameless rest shows the normal one.
ImageLook ImageOf(FrameLook frame) {
    return frame == FrameLook::Plain ? ImageLook::Normal : static_cast<ImageLook>(frame);
}
}  // namespace

// A picture wider or higher than the built-in images switches the face to showing it whole.
void Button::SetPicture(std::size_t index, std::shared_ptr<host::StdPicture> picture) {
    if (picture && (picture->PixelWidth() > 32 || picture->PixelHeight() > 32))
        state_.bigPicture = true;
    look_.pictures[index] = std::move(picture);
}

void Button::PictureUp(std::shared_ptr<host::StdPicture> New_PictureUp) {
    SetPicture(0, std::move(New_PictureUp));
    if (look_.show == EnumButton::Benutzerdefiniert) ShowImage(ImageOf(state_.frame));
    PropertyChanged("PictureUp");
}

void Button::PictureDown(std::shared_ptr<host::StdPicture> New_PictureDown) {
    SetPicture(2, std::move(New_PictureDown));
    PropertyChanged("PictureDown");
}

void Button::PictureOver(std::shared_ptr<host::StdPicture> New_PictureOver) {
    SetPicture(1, std::move(New_PictureOver));
    PropertyChanged("PictureOver");
}

void Button::EnabledB(bool New_EnabledB) {
    look_.enabled = New_EnabledB;
    ShowFrame(FrameLook::Normal);
    painter_.CaptionColours();
    ShowImage(ImageLook::Normal);
    if (look_.style == EnumStyle::XPStyle && look_.enabled) painter_.Gradient(GradientLook::Normal);
    Layout();
    if (look_.enabled) timer.Enabled(true);
    PropertyChanged("EnabledB");
}

void Button::OptionMode(EnumMode New_OptionMode) {
    OptionMode_ = New_OptionMode;
    PropertyChanged("OptionMode");
}

void Button::IconSize(bool New_IconSize) {
    // A disabled button shows the embossed image at its current size; the size waits.
    if (!look_.enabled) return;
    look_.iconSize = New_IconSize;
    ShowImage(ImageOf(state_.frame));
    Layout();
    ShowFrame(state_.frame);
    painter_.Gradient(GradientLook::Normal);
    PropertyChanged("IconSize");
}

void Button::BorderStyle(EnumStyle New_BorderStyle) {
    look_.style = New_BorderStyle;
    Layout();
    ShowImage(ImageLook::Normal);
    PropertyChanged("BorderStyle");
}

void Button::Gradient(bool New_Gradient) {
    look_.gradient = New_Gradient;
    if (look_.style != EnumStyle::XPflat && look_.style != EnumStyle::Cool)
        painter_.Gradient(GradientLook::Normal);
    PropertyChanged("Gradient");
}

void Button::ButtonShow(EnumButton New_ButtonShow) {
    look_.show = New_ButtonShow;
    if (look_.show != EnumButton::Benutzerdefiniert) state_.bigPicture = false;
    ShowImage(ImageLook::Normal);
    PropertyChanged("ButtonShow");
}

void Button::TextAlignment(EnumTextAlignment New_TextAlignment) {
    look_.textAlignment = New_TextAlignment;
    painter_.CaptionColours();
    Layout();
    ShowFrame(state_.frame);
    painter_.Gradient(GradientLook::Normal);
    PropertyChanged("TextAlignment");
}

void Button::BackColorB(OLE_COLOR New_BackColorB) {
    UserControl.BackColor(New_BackColorB);
    ShowFrame(state_.frame);
    PropertyChanged("BackColorB");
}

void Button::ButtonColor(OLE_COLOR New_ButtonColor) {
    look_.buttonColor = New_ButtonColor;
    painter_.TakeButtonColour();
    ShowFrame(state_.frame);
    if (state_.Latched() && look_.IsXP()) {
        painter_.Gradient(GradientLook::Turned);
    } else if (!look_.RestsPlain()) {
        painter_.Gradient(GradientLook::Normal);
    }
    PropertyChanged("ButtonColor");
}

void Button::Caption(std::string New_Caption) {
    look_.caption = std::move(New_Caption);
    painter_.CaptionColours();
    Layout();
    PropertyChanged("Caption");
}

void Button::Font3D(Enum3D New_Font3D) {
    look_.font3D = New_Font3D;
    Layout();
    PropertyChanged("Font3D");
}

void Button::FontColor(OLE_COLOR New_FontColor) {
    look_.fontColor = New_FontColor;
    painter_.CaptionColours();
    PropertyChanged("FontColor");
}

void Button::FontShadowColor(OLE_COLOR New_FontShadowColor) {
    look_.fontShadowColor = New_FontShadowColor;
    painter_.CaptionColours();
    PropertyChanged("FontShadowColor");
}

// The face, the image and the caption carry one text, so the tip is the same wherever on the
// button the pointer rests.
void Button::SetToolTips() {
    const std::string text = ToolTip_ ? ToolTipText_ : std::string();
    PicBild1.ToolTipText(text);
    imgBild.ToolTipText(text);
    lbl2.ToolTipText(text);
}

void Button::ToolTip(bool New_ToolTip) {
    ToolTip_ = New_ToolTip;
    SetToolTips();
    PropertyChanged("ToolTip");
}

void Button::ToolTipText(std::string New_ToolTipText) {
    ToolTipText_ = std::move(New_ToolTipText);
    if (ToolTip_) SetToolTips();
    PropertyChanged("ToolTipText");
}

void Button::FocusRect(bool New_FocusRect) {
    FocusRect_ = New_FocusRect;
    PropertyChanged("FocusRect");
}

void Button::Font(std::shared_ptr<host::StdFont> New_Font) {
    look_.font = std::move(New_Font);
    painter_.CaptionColours();
    Layout();
    PropertyChanged("Font");
}

void Button::MouseIcon(std::shared_ptr<host::StdPicture> New_MouseIcon) {
    UserControl.MouseIcon(New_MouseIcon);
    PicBild1.MouseIcon(std::move(New_MouseIcon));
    PropertyChanged("MouseIcon");
}

// Error 380 for a value that names no pointer; the face shows the same pointer as the control.
void Button::MousePointer(MousePointerConst New_MousePointer) {
    const auto pointer =
        host::CheckMousePointer(Variant(static_cast<std::int32_t>(New_MousePointer)));
    UserControl.MousePointer(pointer);
    PicBild1.MousePointer(pointer);
    PropertyChanged("MousePointer");
}

// ---------------------------------------------------------------------------------------------
// Methods

void Button::NotFrmFocus(const Variant& cFocus) {
    if (!FocusRect_) return;
    const bool suppress = cFocus.ToBool();
    if (suppress == state_.noFrmFocus) return;
    state_.noFrmFocus = suppress;
    ShowFocus();
}

void Button::DrawRectB(bool RECT) {
    if (FocusRect_) tmrRect.Enabled(RECT);
}

void Button::Refresh() {
    Layout();
    ShowImage(state_.image);
    if (state_.hasFocus && FocusRect_) ShowFocus();
}

void Button::PlaySound(std::int16_t ResourceId) {
    if (ResourceId < foundation::kFirstWaveResource || ResourceId > foundation::kLastWaveResource)
        return;
    const auto& wave = mWave[static_cast<std::size_t>(ResourceId - foundation::kFirstWaveResource)];
    if (wave.empty()) return;
    soundStarted_ = Platform().sound().sndPlaySoundA(std::span<const std::uint8_t>(wave),
                                                     foundation::kResourceSoundFlags) ||
                    soundStarted_;
}

void Button::EndPlaySound() {
    (void)Platform().sound().sndPlaySoundA(std::optional<std::string_view>{}, 0);
    soundStarted_ = false;
}

}  // namespace korvex::controls
