#include "controls/button/button.hpp"

#include <span>

#include "base/error.hpp"
#include "foundation/hover.hpp"
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

static_assert(static_cast<int>(EnumButton::btnOK) == 21 && static_cast<int>(EnumButton::pOff) == 51);

namespace {

constexpr std::int16_t kKeyReturn = 13;
constexpr std::int16_t kLeftButton = 1;
constexpr std::int16_t kRightButton = 2;
constexpr std::uint32_t kFocusDelayMs = 10;
constexpr OLE_COLOR kButtonFace = 0x8000000F;

template <class E>
std::int32_t AsLong(E value) {
    return static_cast<std::int32_t>(value);
}

template <class E>
E ReadEnum(PropertyBag& bag, const char* key, E absent) {
    return static_cast<E>(bag.ReadProperty(key, AsLong(absent)).ToLong());
}

}  // namespace

const std::vector<std::pair<std::string, std::int32_t>>& ButtonImageNames() {
    static const std::vector<std::pair<std::string, std::int32_t>> names = [] {
        const char* const list[] = {
            "Benutzerdefiniert", "btnCancel", "btnConvert", "btnColor", "btnCopy", "btnComputer", "btnCut",
            "btnCDRom", "btnDVD", "btnDelete", "btnDesktop", "btnEdit", "btnFavorites", "btnFill", "btnHelp",
            "btnHome", "btnIE", "btnInfo", "btnMail", "btnMusic", "btnNew", "btnOK", "btnOpen", "btnPaste",
            "btnPrinter", "btnProperties", "btnRedo", "btnSave", "btnSave2", "btnScan", "btnSearch",
            "btnSecurity", "btnSpeaker", "btnStop", "btnTextEditor", "btnTools", "btnUndo", "btnRefresh",
            "btnUser", "btnView", "btnClock", "btnX", "CheckBox", "LEDred", "LEDgreen", "LEDyellow", "LEDblue",
            "btnIcon", "btnSmallIcon", "btnList", "btnReport", "pOff"};
        std::vector<std::pair<std::string, std::int32_t>> out;
        for (std::int32_t i = 0; i < static_cast<std::int32_t>(std::size(list)); ++i) out.emplace_back(list[i], i);
        return out;
    }();
    return names;
}

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
            .Property(KORVEX_PROPERTY(PictureUp))
            .Property(KORVEX_PROPERTY(PictureDown))
            .Property(KORVEX_PROPERTY(PictureOver))
            .Property(KORVEX_PROPERTY(EnabledB))
            .Property(KORVEX_PROPERTY(OptionMode), "EnumMode")
            .Property(KORVEX_PROPERTY(Value))
            .Property(KORVEX_PROPERTY(IconSize))
            .Property(KORVEX_PROPERTY(BorderStyle), "EnumStyle")
            .Property(KORVEX_PROPERTY(Gradient))
            .Property(KORVEX_PROPERTY(ButtonShow), "EnumButton")
            .Property(KORVEX_PROPERTY(TextAlignment), "EnumTextAlignment")
            .Property(KORVEX_PROPERTY(BackColorB))
            .Property(KORVEX_PROPERTY(ButtonColor))
            .Property(KORVEX_PROPERTY(Caption))
            .Property(KORVEX_PROPERTY(Font3D), "Enum3D")
            .Property(KORVEX_PROPERTY(FontColor))
            .Property(KORVEX_PROPERTY(FontShadowColor))
            .Property(KORVEX_PROPERTY(ToolTip))
            .Property(KORVEX_PROPERTY(ToolTipText))
            .Property(KORVEX_PROPERTY(FocusRect))
            .Property(KORVEX_PROPERTY(Font))
            .Property(KORVEX_PROPERTY(MouseIcon))
            .Property(KORVEX_PROPERTY(MousePointer), "MousePointerConst")
            .ReadOnly(KORVEX_READONLY(Switched), "EnumSwitched")
            .ReadOnly(KORVEX_READONLY(HDC))
            .ReadOnly(KORVEX_READONLY(hwnd))
            .ReadOnly(KORVEX_READONLY(HasDC))
            .Event("Click")
            .Event("MouseDown", host::MouseEventArgs())
            .Event("MouseMove", host::MouseEventArgs())
            .Event("MouseUp", host::MouseEventArgs())
            .Event("KeyDown", host::KeyEventArgs())
            .Event("KeyPress", {Arg("KeyAscii", TypeCode::Integer)})
            .Event("KeyUp", host::KeyEventArgs())
            .Event("Group")
            .Enum("EnumMode", {{"optButton", 0}, {"optSwitch", 1}, {"optGroup", 2}})
            .Enum("EnumSwitched", {{"bFalse", 0}, {"bLeft", 1}, {"bRight", 2}})
            .Enum("EnumStyle", {{"nOff", 0},
                                {"Cool", 1},
                                {"Flat", 2},
                                {"nStandard", 3},
                                {"extra", 4},
                                {"XPStyle", 5},
                                {"XPcool", 6},
                                {"XPflat", 7}})
            .Enum("Enum3D", {{"pTop", 0}, {"pTopOver", 1}, {"pDown", 2}, {"pDownOver", 3}, {"pStandard", 4}})
            .Enum("EnumTextAlignment", {{"tOff", 0}, {"Arrow", 1}, {"tRight", 2}, {"tBottom", 3}})
            .Enum("EnumButton", ButtonImageNames())
            .Enum("MousePointerConst", host::MousePointerMembers("bMouseIcon"))
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
        for (int y = x; y <= 8 - x; ++y) pixels[static_cast<std::size_t>(y * kWidth + x)] = 0xFF000000u | colour;
    return std::make_shared<host::StdPicture>(host::PictureType::Bitmap, kWidth, kHeight, std::move(pixels));
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
      tmrRect(UserControl.Platform()) {
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

    timer.Interval(static_cast<std::int32_t>(foundation::kHoverPollMs));
    timer.Tick = [this] { OnHoverTick(); };
    tmrRect.Interval(kFocusDelayMs);
    tmrRect.Enabled(false);
    tmrRect.Tick = [this] {
        DrawFocusRect();
        tmrRect.Enabled(false);
    };

    ForwardInput(PicBild1.events);
    for (forms::InputLightweight* element : std::initializer_list<forms::InputLightweight*>{&imgBild, &lbl1, &lbl2, &pfl})
        ForwardInput(element->events);

    forms::SurfaceEvents& face = PicBild1.events;
    face.KeyDown = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        if (KeyCode == kKeyReturn && FocusRect_) Press(kLeftButton, 0, 0, 0);
        RaiseEvent(kKeyDown, KeyCode, Shift);
    };
    face.KeyUp = [this](std::int16_t& KeyCode, std::int16_t Shift) {
        if (KeyCode == kKeyReturn && FocusRect_) {
            Release(kLeftButton, 0, 0, 0);
            mRecheck = true;
            DrawFocusRect();
        }
        RaiseEvent(kKeyUp, KeyCode, Shift);
    };
    face.KeyPress = [this](std::int16_t& KeyAscii) { RaiseEvent(kKeyPress, KeyAscii); };
    face.GotFocus = [this] {
        if (!FocusRect_) return;
        mHasFocus = true;
        // Focus that came with a press shows once the pointer moves on.
        if (!mPressed) tmrRect.Enabled(true);
    };
    face.LostFocus = [this] {
        if (!FocusRect_) return;
        mHasFocus = false;
        DrawFocusRect();
    };
    // The host gives the focus to the control; the face is what takes keys.
    UserControl.events.GotFocus = [this] {
        if (PicBild1.Enabled()) PicBild1.SetFocus();
    };
}

Button::~Button() {
    // A sound playing from this control's buffers must not outlive them.
    if (soundStarted_) EndPlaySound();
}

void Button::ForwardInput(forms::MouseEvents& events) {
    events.MouseDown = [this](std::int16_t MouseButton, std::int16_t Shift, float x, float y) {
        Press(MouseButton, Shift, x, y);
        if (PicBild1.Enabled()) PicBild1.SetFocus();
    };
    events.MouseMove = [this](std::int16_t MouseButton, std::int16_t Shift, float x, float y) {
        lastX_ = x;
        lastY_ = y;
        RaiseEvent(kMouseMove, MouseButton, Shift, x, y);
    };
    events.MouseUp = [this](std::int16_t MouseButton, std::int16_t Shift, float x, float y) {
        lastX_ = x;
        lastY_ = y;
        Release(MouseButton, Shift, x, y);
    };
    // The second press of a double click arrives as DblClick; it presses the button as any
    // other press does.
    events.DblClick = [this] {
        Press(kLeftButton, 0, lastX_, lastY_);
    };
}

void Button::UserControl_Initialize() {
    EnabledB(true);
    ButtonColor(kButtonFace);
    ComputeColours();
    BorderStyle(EnumStyle::Flat);
    LayoutPass();
    for (std::int32_t id = foundation::kFirstWaveResource; id <= foundation::kLastWaveResource; ++id)
        mWave[static_cast<std::size_t>(id - foundation::kFirstWaveResource)] = foundation::LoadResData(id, "WAVE");
}

void Button::UserControl_InitProperties() {
    Bild1[0] = Bild1[1] = Bild1[2] = nullptr;
    EnabledB_ = true;
    OptionMode_ = EnumMode::optButton;
    Value_ = false;
    IconSize_ = false;
    BorderStyle_ = EnumStyle::Flat;
    Gradient_ = true;
    TextAlignment_ = EnumTextAlignment::tRight;
    UserControl.BackColor(kButtonFace);
    ButtonColor_ = kButtonFace;
    Caption_ = "Caption";
    Font3D_ = Enum3D::pTop;
    FontColor_ = 0;
    FontShadowColor_ = 0x00FFFFFF;
    ToolTip_ = true;
    ToolTipText_ = "Quick-Info";
    FocusRect_ = false;
    UserControl.MousePointer(0);
    mFrameState = 1;
    ButtonShow(EnumButton::btnOK);
    Font(Ambient().Font);
}

void Button::UserControl_ReadProperties(PropertyBag& PropBag) {
    PictureUp(PropBag.ReadProperty("PictureUp", Variant::Nothing()).ToPicture());
    PictureDown(PropBag.ReadProperty("PictureDown", Variant::Nothing()).ToPicture());
    PictureOver(PropBag.ReadProperty("PictureOver", Variant::Nothing()).ToPicture());
    EnabledB(PropBag.ReadProperty("EnabledB", true).ToBool());
    OptionMode(ReadEnum(PropBag, "OptionMode", EnumMode::optButton));
    Value(PropBag.ReadProperty("Value", false).ToBool());
    IconSize(PropBag.ReadProperty("IconSize", false).ToBool());
    BorderStyle(ReadEnum(PropBag, "BorderStyle", EnumStyle::Flat));
    Gradient(PropBag.ReadProperty("Gradient", true).ToBool());
    ButtonShow(ReadEnum(PropBag, "ButtonShow", EnumButton::btnOK));
    TextAlignment(ReadEnum(PropBag, "TextAlignment", EnumTextAlignment::tRight));
    BackColorB(static_cast<OLE_COLOR>(PropBag.ReadProperty("BackColorB", kButtonFace).ToLong()));
    ButtonColor(static_cast<OLE_COLOR>(PropBag.ReadProperty("ButtonColor", kButtonFace).ToLong()));
    Caption(PropBag.ReadProperty("Caption", "Caption").ToString());
    Font3D(ReadEnum(PropBag, "Font3D", Enum3D::pTop));
    FontColor(static_cast<OLE_COLOR>(PropBag.ReadProperty("FontColor", OLE_COLOR{0}).ToLong()));
    FontShadowColor(static_cast<OLE_COLOR>(PropBag.ReadProperty("FontShadowColor", OLE_COLOR{0x00FFFFFF}).ToLong()));
    ToolTip(PropBag.ReadProperty("ToolTip", true).ToBool());
    ToolTipText(PropBag.ReadProperty("ToolTipText", "Quick-Info").ToString());
    FocusRect(PropBag.ReadProperty("FocusRect", false).ToBool());
    Font(PropBag.ReadProperty("Font", Ambient().Font).ToFont());
    MouseIcon(PropBag.ReadProperty("MouseIcon", Variant::Nothing()).ToPicture());
    // Last, so that the pointer shows with its icon already in place.
    MousePointer(static_cast<MousePointerConst>(PropBag.ReadProperty("MousePointer", std::int16_t{0}).ToInteger()));
}

void Button::UserControl_WriteProperties(PropertyBag& PropBag) {
    PropBag.WriteProperty("PictureUp", Bild1[0], Variant::Nothing());
    PropBag.WriteProperty("PictureDown", Bild1[2], Variant::Nothing());
    PropBag.WriteProperty("PictureOver", Bild1[1], Variant::Nothing());
    PropBag.WriteProperty("EnabledB", EnabledB_, true);
    PropBag.WriteProperty("OptionMode", AsLong(OptionMode_), std::int32_t{0});
    PropBag.WriteProperty("Value", Value_, false);
    PropBag.WriteProperty("IconSize", IconSize_, false);
    PropBag.WriteProperty("BorderStyle", AsLong(BorderStyle_), std::int32_t{2});
    PropBag.WriteProperty("Gradient", Gradient_, true);
    PropBag.WriteProperty("ButtonShow", AsLong(ButtonShow_), std::int32_t{21});
    PropBag.WriteProperty("TextAlignment", AsLong(TextAlignment_), std::int32_t{2});
    PropBag.WriteProperty("BackColorB", UserControl.BackColor(), kButtonFace);
    PropBag.WriteProperty("ButtonColor", ButtonColor_, kButtonFace);
    PropBag.WriteProperty("Caption", Caption_, "Caption");
    PropBag.WriteProperty("Font3D", AsLong(Font3D_), std::int32_t{0});
    PropBag.WriteProperty("FontColor", FontColor_, OLE_COLOR{0});
    PropBag.WriteProperty("FontShadowColor", FontShadowColor_, OLE_COLOR{0x00FFFFFF});
    PropBag.WriteProperty("ToolTip", ToolTip_, true);
    PropBag.WriteProperty("ToolTipText", ToolTipText_, "Quick-Info");
    PropBag.WriteProperty("FocusRect", FocusRect_, false);
    PropBag.WriteProperty("Font", Font_, Ambient().Font);
    PropBag.WriteProperty("MouseIcon", UserControl.MouseIcon(), Variant::Nothing());
    PropBag.WriteProperty("MousePointer", UserControl.MousePointer(), std::int16_t{0});
}

// ---------------------------------------------------------------------------------------------
// Properties

// A picture wider or higher than the built-in images switches the face to showing it whole.
void Button::SetPicture(int index, std::shared_ptr<host::StdPicture> picture) {
    if (picture && (picture->PixelWidth() > 32 || picture->PixelHeight() > 32)) mBigPicture = true;
    Bild1[static_cast<std::size_t>(index)] = std::move(picture);
}

void Button::PictureUp(std::shared_ptr<host::StdPicture> New_PictureUp) {
    SetPicture(0, std::move(New_PictureUp));
    if (ButtonShow_ == EnumButton::Benutzerdefiniert) ImageState(mFrameState);
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
    EnabledB_ = New_EnabledB;
    FrameState(1);
    CaptionColours();
    ImageState(1);
    if (BorderStyle_ == EnumStyle::XPStyle && EnabledB_) GradientState(1);
    LayoutPass();
    if (EnabledB_) timer.Enabled(true);
    PropertyChanged("EnabledB");
}

void Button::OptionMode(EnumMode New_OptionMode) {
    OptionMode_ = New_OptionMode;
    PropertyChanged("OptionMode");
}

void Button::IconSize(bool New_IconSize) {
    // A disabled button shows the embossed image at its current size; the size waits.
    if (!EnabledB_) return;
    IconSize_ = New_IconSize;
    ImageState(mFrameState);
    LayoutPass();
    FrameState(mFrameState);
    GradientState(1);
    PropertyChanged("IconSize");
}

void Button::BorderStyle(EnumStyle New_BorderStyle) {
    BorderStyle_ = New_BorderStyle;
    LayoutPass();
    ImageState(1);
    PropertyChanged("BorderStyle");
}

void Button::Gradient(bool New_Gradient) {
    Gradient_ = New_Gradient;
    if (BorderStyle_ != EnumStyle::XPflat && BorderStyle_ != EnumStyle::Cool) GradientState(1);
    PropertyChanged("Gradient");
}

void Button::ButtonShow(EnumButton New_ButtonShow) {
    ButtonShow_ = New_ButtonShow;
    if (ButtonShow_ != EnumButton::Benutzerdefiniert) mBigPicture = false;
    ImageState(1);
    PropertyChanged("ButtonShow");
}

void Button::TextAlignment(EnumTextAlignment New_TextAlignment) {
    TextAlignment_ = New_TextAlignment;
    CaptionColours();
    LayoutPass();
    FrameState(mFrameState);
    GradientState(1);
    PropertyChanged("TextAlignment");
}

void Button::BackColorB(OLE_COLOR New_BackColorB) {
    UserControl.BackColor(New_BackColorB);
    FrameState(mFrameState);
    PropertyChanged("BackColorB");
}

void Button::ButtonColor(OLE_COLOR New_ButtonColor) {
    ButtonColor_ = New_ButtonColor;
    SetFaceBack(New_ButtonColor);
    if (BorderStyle_ == EnumStyle::XPflat) SetFaceBack(kXPflatFace);
    ComputeColours();
    FrameState(mFrameState);
    if (mLatched && IsXP()) {
        GradientState(2);
    } else if (BorderStyle_ != EnumStyle::Cool && BorderStyle_ != EnumStyle::XPcool) {
        GradientState(1);
    }
    PropertyChanged("ButtonColor");
}

void Button::Caption(std::string New_Caption) {
    Caption_ = std::move(New_Caption);
    CaptionColours();
    LayoutPass();
    PropertyChanged("Caption");
}

void Button::Font3D(Enum3D New_Font3D) {
    Font3D_ = New_Font3D;
    LayoutPass();
    PropertyChanged("Font3D");
}

void Button::FontColor(OLE_COLOR New_FontColor) {
    FontColor_ = New_FontColor;
    CaptionColours();
    PropertyChanged("FontColor");
}

void Button::FontShadowColor(OLE_COLOR New_FontShadowColor) {
    FontShadowColor_ = New_FontShadowColor;
    CaptionColours();
    PropertyChanged("FontShadowColor");
}

void Button::SetToolTips() {
    // Only the caption shows a tip here; the face and the image keep theirs with it.
    lbl2.ToolTipText(ToolTip_ ? ToolTipText_ : std::string());
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
    Font_ = std::move(New_Font);
    CaptionColours();
    LayoutPass();
    PropertyChanged("Font");
}

void Button::MouseIcon(std::shared_ptr<host::StdPicture> New_MouseIcon) {
    UserControl.MouseIcon(New_MouseIcon);
    PicBild1.MouseIcon(std::move(New_MouseIcon));
    PropertyChanged("MouseIcon");
}

// Error 380 for a value that names no pointer; the face shows the same pointer as the control.
void Button::MousePointer(MousePointerConst New_MousePointer) {
    const auto pointer = host::CheckMousePointer(Variant(static_cast<std::int32_t>(New_MousePointer)));
    UserControl.MousePointer(pointer);
    PicBild1.MousePointer(pointer);
    PropertyChanged("MousePointer");
}

// ---------------------------------------------------------------------------------------------
// The state machine

void Button::Press(std::int16_t MouseButton, std::int16_t Shift, float x, float y) {
    mPressed = true;
    if (!mLatched) {
        if (MouseButton == kLeftButton) Switched_ = EnumSwitched::bLeft;
        if (MouseButton == kRightButton) Switched_ = EnumSwitched::bRight;
    }
    mHotEntry = false;
    if (OptionMode_ == EnumMode::optButton) {
        mHover = true;
        mLatched = false;
        mDown = true;
        mGroupClicked = false;
        LayoutPass();
        ImageState(3);
        FrameState(3);
        if (IsXP()) GradientState(2);
    } else if (mLatched) {
        // A switch comes out at the release; a latched group button stays in.
        if (OptionMode_ == EnumMode::optSwitch) {
            mGroupClicked = false;
            mLatched = false;
        }
    } else {
        mLatched = true;
        timer.Enabled(false);
        LayoutPass();
        ImageState(3);
        FrameState(3);
        if (IsXP()) GradientState(2);
        if (OptionMode_ == EnumMode::optGroup) RaiseEvent(kGroup);
    }
    RaiseEvent(kMouseDown, MouseButton, Shift, x, y);
}

void Button::Release(std::int16_t MouseButton, std::int16_t Shift, float x, float y) {
    mPressed = false;
    if (mLatched) {
        if (OptionMode_ == EnumMode::optGroup) {
            if (mGroupClicked) return;
            mGroupClicked = true;
        }
        Value(true);
        RaiseEvent(kClick);
        return;
    }
    mHover = true;
    mDown = false;
    timer.Enabled(true);
    LayoutPass();
    mHotEntry = false;
    ImageState(2);
    FrameState(2);
    if (IsXP()) GradientState(1);
    if (OptionMode_ == EnumMode::optSwitch) {
        Value(false);
        Switched_ = EnumSwitched::bFalse;
    } else {
        Value(true);
    }
    RaiseEvent(kClick);
    RaiseEvent(kMouseUp, MouseButton, Shift, x, y);
}

void Button::Value(bool New_Value) {
    Value_ = New_Value;
    PropertyChanged("Value");
    if (!EnabledB_ || OptionMode_ == EnumMode::optButton) return;
    if (New_Value && !mPressed) {
        mPressed = true;
        mHotEntry = false;
        if (mLatched) return;
        mLatched = true;
        timer.Enabled(false);
        LayoutPass();
        FrameState(3);
        ImageState(3);
        if (IsXP()) GradientState(2);
        if (OptionMode_ == EnumMode::optGroup) RaiseEvent(kGroup);
    } else if (mLatched) {
        mPressed = false;
        mHover = true;
        mDown = false;
        timer.Enabled(true);
        mHotEntry = false;
        LayoutPass();
        FrameState(2);
        ImageState(2);
        if (IsXP()) GradientState(1);
        mLatched = false;
        mGroupClicked = false;
        Switched_ = EnumSwitched::bFalse;
    }
}

void Button::OnHoverTick() {
    platform::Windows& windows = Platform().windows();
    platform::POINT cursor;
    windows.GetCursorPos(&cursor);
    if (cursor == mLastCursor && !mRecheck) return;
    if (!mDown) {
        const bool inside = foundation::IsMouseInto(windows, UserControl.hWnd());
        if (inside != mHover) {
            // At design time the look stays; the position is not recorded, so the next tick
            // asks again.
            if (!Ambient().UserMode) return;
            if (!inside) {
                mHotEntry = false;
                LayoutPass();
                ImageState(1);
                const bool flatNormal = BorderStyle_ == EnumStyle::Cool || BorderStyle_ == EnumStyle::XPcool;
                FrameState(flatNormal ? 0 : 1);
                mHover = false;
            } else {
                mHover = true;
                if (!mPressed) mHotEntry = true;
                LayoutPass();
                if (BorderStyle_ == EnumStyle::XPcool) GradientState(1);
                ImageState(2);
                FrameState(2);
                if (ToolTip_) SetToolTips();
            }
            if (FocusRect_) DrawFocusRect();
        }
    }
    mRecheck = false;
    mLastCursor = cursor;
}

// ---------------------------------------------------------------------------------------------
// Methods

void Button::NotFrmFocus(const Variant& cFocus) {
    if (!FocusRect_) return;
    const bool suppress = cFocus.ToBool();
    if (suppress == mNoFrmFocus) return;
    mNoFrmFocus = suppress;
    DrawFocusRect();
}

void Button::DrawRectB(bool RECT) {
    if (FocusRect_) tmrRect.Enabled(RECT);
}

void Button::Refresh() {
    LayoutPass();
    ImageState(mImageState);
    if (mHasFocus && FocusRect_) DrawFocusRect();
}

void Button::PlaySound(std::int16_t ResourceId) {
    if (ResourceId < foundation::kFirstWaveResource || ResourceId > foundation::kLastWaveResource) return;
    const auto& wave = mWave[static_cast<std::size_t>(ResourceId - foundation::kFirstWaveResource)];
    if (wave.empty()) return;
    soundStarted_ = Platform().sound().sndPlaySoundA(std::span<const std::uint8_t>(wave),
                                                     foundation::kResourceSoundFlags) || soundStarted_;
}

void Button::EndPlaySound() {
    (void)Platform().sound().sndPlaySoundA(std::optional<std::string_view>{}, 0);
    soundStarted_ = false;
}

}  // namespace korvex::controls
