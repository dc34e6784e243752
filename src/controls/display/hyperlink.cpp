#include "controls/display/hyperlink.hpp"

#include <cassert>

#include "base/error.hpp"
#include "base/resources.hpp"
#include "host/numeric.hpp"
#include "platform/png.hpp"
#include "platform/sound.hpp"

namespace korvex::controls {

using namespace host;

namespace {

// The cursor pictures keep their transparent pixels in this colour (with alpha 0), which is
// what survives the decoder dropping alpha.
constexpr std::uint32_t kCursorKeyColour = 0x00FF00FF;

}  // namespace

std::shared_ptr<StdPicture> LoadHandCursor(MouSymbol symbol) {
    const char* path = symbol == MouSymbol::lHand_NC ? "cursors/hand_nc.png" : "cursors/hand_ie.png";
    const auto bytes = resources::Find(path);
    assert(!bytes.empty() && "the hand cursors are embedded from resources/cursors");
    platform::Image image = platform::DecodePng(bytes);
    for (std::uint32_t& pixel : image.pixels)
        pixel = pixel == kCursorKeyColour ? 0 : (pixel | 0xFF000000u);
    return std::make_shared<StdPicture>(PictureType::Icon, image.width, image.height, std::move(image.pixels));
}

Hyperlink::Hyperlink(HostContext& context)
    : SurfaceControl(context),
      Label1(UserControl),
      Label2(UserControl),
      timer(UserControl.Platform()),
      sounds_(UserControl.Platform()) {
    // The design data: a transparent, self-sizing caption in the link colour at the left edge,
    // and the hidden carrier of the cursors.
    Label1.AutoSize(true);
    Label1.BackStyle(0);
    Label1.ForeColor(kLinkColor);
    Label1.Caption("Hyperlink");
    Label2.Visible(false);
    Label2.MouseIcon(LoadHandCursor(MouSymbol::lHand_IE));
    Label2DragIcon = LoadHandCursor(MouSymbol::lHand_NC);
    CentreCaption();

    timer.Interval(static_cast<std::int32_t>(foundation::kHoverPollMs));
    timer.Tick = [this] { OnHoverTick(); };
    Label1.events.Click = [this] { OnCaptionClick(); };
    Label1.events.MouseMove = [this](std::int16_t Button, std::int16_t Shift, float x, float y) {
        RaiseEvent(kHover, Button, Shift, x, y);
    };
    UserControl.events.MouseUp = [this](std::int16_t, std::int16_t, float, float) {
        Label1.ForeColor(VisitedColor_);
    };
    UserControl.events.GotFocus = [this] {
        if (Clicked_) Label1.ForeColor(ActiveColor_);
    };
    UserControl.events.LostFocus = [this] {
        if (Clicked_) Label1.ForeColor(VisitedColor_);
    };
}

const ClassInfo& Hyperlink::Class() {
    static const ClassInfo info =
        ClassBuilder<Hyperlink>("Hyperlink", "Korvex_Tools.Hyperlink")
            .Method("ShowAboutBox", {}, [](Hyperlink& h, std::span<Variant>) { h.ShowAboutBox(); })
            .DispId(kDispIdAboutBox)
            .Property(KORVEX_PROPERTY(Font))
            .Property(KORVEX_PROPERTY(Caption))
            .Property(KORVEX_PROPERTY(FontUnderline))
            .Property(KORVEX_PROPERTY(FontSize))
            .Property(KORVEX_PROPERTY(Style))
            .Property(KORVEX_PROPERTY(MouseIcon))
            .Property(KORVEX_PROPERTY(MousePointer), "hMousePointerConst")
            .Property(KORVEX_PROPERTY(MouseSymbol), "MouSymbol")
            .Property(KORVEX_PROPERTY(ToolTipTxt))
            .Method("Refresh", {}, [](Hyperlink& h, std::span<Variant>) { h.Refresh(); })
            .Property(KORVEX_PROPERTY(Clicked))
            .Property(KORVEX_PROPERTY(Url))
            .Property(KORVEX_PROPERTY(BackColorH))
            .Property(KORVEX_PROPERTY(LinkColor))
            .Property(KORVEX_PROPERTY(HoverColor))
            .Property(KORVEX_PROPERTY(ActiveColor))
            .Property(KORVEX_PROPERTY(VisitedColor))
            .Property(KORVEX_PROPERTY(BorderStyle))
            .Property(KORVEX_PROPERTY(Alignment))
            .Property(KORVEX_PROPERTY(AutoSizeH))
            .Method("PlaySound", {Arg("ResourceId", TypeCode::Integer)},
                    [](Hyperlink& h, std::span<Variant> a) { h.PlaySound(a[0].ToInteger()); })
            .Method("EndPlaySound", {}, [](Hyperlink& h, std::span<Variant>) { h.EndPlaySound(); })
            .Event("Hover", MouseEventArgs())
            .Event("Click")
            .Enum("MouSymbol", {{"lOff", 0}, {"lHand_IE", 1}, {"lHand_NC", 2}})
            .Enum("hMousePointerConst", MousePointerMembers("hMouseIcon"))
            .Build();
    return info;
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void Hyperlink::UserControl_Initialize() {
    LinkColor_ = kLinkColor;
    HoverColor_ = kHoverColor;
    ActiveColor_ = kActiveColor;
    VisitedColor_ = kVisitedColor;
}

void Hyperlink::UserControl_InitProperties() {
    Clicked_ = false;
    Url_.clear();
    ToolTipTxt_ = "ToolTipText";
    AutoSizeH_ = true;
    MouseSymbol_ = MouSymbol::lOff;
}

void Hyperlink::UserControl_ReadProperties(PropertyBag& PropBag) {
    Label1.Font(PropBag.ReadProperty("Font", Ambient().Font).ToFont()->Clone());
    // The caption changes before "AutoSizeH" is read, so a restored link keeps the size its
    // form gives it.
    if (std::string caption = PropBag.ReadProperty("Caption", "Hyperlink").ToString(); caption != Label1.Caption()) {
        Label1.Caption(std::move(caption));
        CaptionChanged();
    }
    Label1.Font()->Underline(PropBag.ReadProperty("FontUnderline", std::int16_t{0}).ToBool());
    Label1.Font()->Size(PropBag.ReadProperty("FontSize", 8.25).ToDouble());
    UserControl.Picture(PropBag.ReadProperty("Picture", Variant::Nothing()).ToPicture());
    Style(PropBag.ReadProperty("Style", std::int16_t{1}).ToInteger());
    Label1.ForeColor(static_cast<OLE_COLOR>(PropBag.ReadProperty("LinkColor", kLinkColor).ToLong()));
    Clicked_ = PropBag.ReadProperty("Clicked", false).ToBool();
    BackColorH(static_cast<OLE_COLOR>(PropBag.ReadProperty("BackColorH", OLE_COLOR{0x8000000F}).ToLong()));
    LinkColor_ = static_cast<OLE_COLOR>(PropBag.ReadProperty("LinkColor", kLinkColor).ToLong());
    HoverColor_ = static_cast<OLE_COLOR>(PropBag.ReadProperty("HoverColor", kHoverColorBagDefault).ToLong());
    ActiveColor_ = static_cast<OLE_COLOR>(PropBag.ReadProperty("ActiveColor", kActiveColor).ToLong());
    VisitedColor_ = static_cast<OLE_COLOR>(PropBag.ReadProperty("VisitedColor", kVisitedColor).ToLong());
    BorderStyle(PropBag.ReadProperty("BorderStyle", std::int16_t{0}).ToInteger());
    Label1.Alignment(PropBag.ReadProperty("Alignment", std::int16_t{0}).ToInteger());
    AutoSizeH_ = PropBag.ReadProperty("AutoSizeH", true).ToBool();
    ToolTipTxt_ = PropBag.ReadProperty("ToolTipTxt", "ToolTipText").ToString();
    MouseIcon(PropBag.ReadProperty("MouseIcon", Variant::Nothing()).ToPicture());
    Label1.MousePointer(PropBag.ReadProperty("MousePointer", std::int16_t{0}).ToInteger());
    MouseSymbol(static_cast<MouSymbol>(PropBag.ReadProperty("MouseSymbol", std::int32_t{0}).ToLong()));
}

void Hyperlink::UserControl_WriteProperties(PropertyBag& PropBag) {
    PropBag.WriteProperty("Font", Label1.Font(), Ambient().Font);
    PropBag.WriteProperty("Caption", Label1.Caption(), "Hyperlink");
    PropBag.WriteProperty("FontUnderline", Label1.Font()->Underline(), std::int16_t{0});
    PropBag.WriteProperty("FontSize", Label1.Font()->Size(), 0.0);
    PropBag.WriteProperty("Picture", UserControl.Picture(), Variant::Nothing());
    PropBag.WriteProperty("Style", UserControl.BackStyle(), std::int16_t{1});
    // The caption's colour now, under a key no reading uses; the link colour follows below.
    PropBag.WriteProperty("ForeColor", Label1.ForeColor(), kLinkColor);
    PropBag.WriteProperty("Clicked", Clicked_, false);
    PropBag.WriteProperty("BackColorH", UserControl.BackColor(), OLE_COLOR{0x8000000F});
    PropBag.WriteProperty("LinkColor", LinkColor_, kLinkColor);
    PropBag.WriteProperty("HoverColor", HoverColor_, kHoverColorBagDefault);
    PropBag.WriteProperty("ActiveColor", ActiveColor_, kActiveColor);
    PropBag.WriteProperty("VisitedColor", VisitedColor_, kVisitedColor);
    PropBag.WriteProperty("BorderStyle", UserControl.BorderStyle(), std::int16_t{0});
    PropBag.WriteProperty("Alignment", Label1.Alignment(), std::int16_t{0});
    PropBag.WriteProperty("AutoSizeH", AutoSizeH_, true);
    PropBag.WriteProperty("ToolTipTxt", ToolTipTxt_, "ToolTipText");
    PropBag.WriteProperty("MouseIcon", Label1.MouseIcon(), Variant::Nothing());
    PropBag.WriteProperty("MousePointer", Label1.MousePointer(), std::int16_t{0});
    PropBag.WriteProperty("MouseSymbol", static_cast<std::int32_t>(MouseSymbol_), std::int32_t{0});
}

void Hyperlink::UserControl_Resize() {
    CentreCaption();
}

// ---------------------------------------------------------------------------------------------
// Layout

void Hyperlink::CentreCaption() {
    Label1.Top(UserControl.ScaleHeight() / 2 - Label1.Height() / 2);
}

// A self-sizing link leaves 20 twips round its caption; the new size goes to the host, which
// resizes the control and so centres the caption again.
void Hyperlink::CaptionChanged() {
    if (!AutoSizeH_) return;
    UserControl.Width(Label1.Width() + 20);
    UserControl.Height(Label1.Height() + 20);
}

// ---------------------------------------------------------------------------------------------
// Behaviour

void Hyperlink::OnHoverTick() {
    if (!Ambient().UserMode) return;
    platform::Platform& p = UserControl.Platform();
    // The poll runs even after a click, so that it keeps its last position and a later Refresh
    // starts from where the pointer really is.
    const std::optional<bool> inside = hover_.Tick(p.windows(), UserControl.hWnd());
    if (!inside || Clicked_) return;
    if (*inside) {
        Label1.ForeColor(HoverColor_);
        Label1.ToolTipText(ToolTipTxt_);
    } else {
        Label1.ForeColor(LinkColor_);
    }
}

// Link opening acts only at run time: in the designer a click on the caption raises the event
// and nothing else (assigning Clicked there would be error 387).
void Hyperlink::OnCaptionClick() {
    RaiseEvent(kClick);
    if (!Ambient().UserMode) return;
    // A target the shell cannot open is no error: the link still counts as visited.
    UserControl.Platform().shell().ShellExecuteA(UserControl.hWnd(), std::nullopt, Url_, "", "C:\\",
                                                 platform::SW_SHOWNORMAL);
    Clicked(true);
    Label1.ForeColor(ActiveColor_);
}

// ---------------------------------------------------------------------------------------------
// Properties

void Hyperlink::Font(std::shared_ptr<StdFont> New_Font) {
    if (!New_Font) throw HostError(kErrInvalidPropertyValue, "Font");
    Label1.Font(New_Font->Clone());
    PropertyChanged("Font");
}

void Hyperlink::Caption(std::string New_Caption) {
    const bool changed = New_Caption != Label1.Caption();
    Label1.Caption(std::move(New_Caption));
    if (changed) CaptionChanged();
    PropertyChanged("Caption");
}

void Hyperlink::FontUnderline(bool New_FontUnderline) {
    Label1.Font()->Underline(New_FontUnderline);
    PropertyChanged("FontUnderline");
}

void Hyperlink::FontSize(float New_FontSize) {
    Label1.Font()->Size(New_FontSize);
    PropertyChanged("FontSize");
}

void Hyperlink::Style(std::int16_t New_Style) {
    UserControl.BackStyle(New_Style);
    PropertyChanged("Style");
}

void Hyperlink::MouseIcon(std::shared_ptr<StdPicture> New_MouseIcon) {
    Label1.MouseIcon(std::move(New_MouseIcon));
    PropertyChanged("MouseIcon");
}

void Hyperlink::MousePointer(hMousePointerConst New_MousePointer) {
    Label1.MousePointer(ToInteger(static_cast<double>(New_MousePointer)));
    PropertyChanged("MousePointer");
}

void Hyperlink::MouseSymbol(MouSymbol New_MouseSymbol) {
    MouseSymbol_ = New_MouseSymbol;
    switch (New_MouseSymbol) {
        case MouSymbol::lOff:
            Label1.MousePointer(1);
            break;
        case MouSymbol::lHand_IE:
            Label1.MousePointer(kMousePointerCustom);
            Label1.MouseIcon(Label2.MouseIcon());
            break;
        case MouSymbol::lHand_NC:
            Label1.MousePointer(kMousePointerCustom);
            Label1.MouseIcon(Label2DragIcon);
            break;
    }
    PropertyChanged("MouseSymbol");
}

void Hyperlink::ToolTipTxt(std::string New_ToolTipTxt) {
    ToolTipTxt_ = std::move(New_ToolTipTxt);
    Label1.ToolTipText(ToolTipTxt_);
    PropertyChanged("ToolTipTxt");
}

void Hyperlink::Refresh() {
    Label1.ForeColor(LinkColor_);
    Clicked(false);
}

void Hyperlink::Clicked(bool New_Clicked) {
    if (!Ambient().UserMode) throw HostError(kErrNotPermitted, "Hyperlink");
    Clicked_ = New_Clicked;
    PropertyChanged("Clicked");
}

void Hyperlink::Url(std::string New_Url) {
    Url_ = std::move(New_Url);
    PropertyChanged("Url");
}

void Hyperlink::BackColorH(OLE_COLOR New_BackColorH) {
    UserControl.BackColor(New_BackColorH);
    PropertyChanged("BackColorH");
}

void Hyperlink::LinkColor(OLE_COLOR New_LinkColor) {
    LinkColor_ = New_LinkColor;
    PropertyChanged("LinkColor");
}

void Hyperlink::HoverColor(OLE_COLOR New_HoverColor) {
    HoverColor_ = New_HoverColor;
    PropertyChanged("HoverColor");
}

void Hyperlink::ActiveColor(OLE_COLOR New_ActiveColor) {
    ActiveColor_ = New_ActiveColor;
    PropertyChanged("ActiveColor");
}

void Hyperlink::VisitedColor(OLE_COLOR New_VisitedColor) {
    VisitedColor_ = New_VisitedColor;
    PropertyChanged("VisitedColor");
}

void Hyperlink::BorderStyle(std::int16_t New_BorderStyle) {
    UserControl.BorderStyle(New_BorderStyle);
    PropertyChanged("BorderStyle");
}

void Hyperlink::Alignment(std::int16_t New_Alignment) {
    Label1.Alignment(New_Alignment);
    PropertyChanged("Alignment");
}

void Hyperlink::AutoSizeH(bool New_AutoSizeH) {
    AutoSizeH_ = New_AutoSizeH;
    PropertyChanged("AutoSizeH");
}

void Hyperlink::PlaySound(std::int16_t ResourceId) {
    sounds_.PlaySound(ResourceId);
}

void Hyperlink::EndPlaySound() {
    sounds_.EndPlaySound();
}

}  // namespace korvex::controls
