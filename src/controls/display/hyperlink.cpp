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

// "HoverColor" is read and written with a paler cyan than the one a new link starts with, so a
// new link always saves its hover colour. "FontSize" is a Double read as 8.25 and written
// against 0. "Picture" (the surface's) and "ForeColor" (the caption's colour now, which no
// reading uses) are keys of no property; Url has no key, a link's target is given at run time.
struct Hyperlink::Props {
    using Font_t = std::shared_ptr<StdFont>;
    using Picture_t = std::shared_ptr<StdPicture>;
    static inline const Property<Hyperlink, Font_t> Font{
        .name = "Font", .get = &Hyperlink::Font, .set = &Hyperlink::Font};
    static inline const Property<Hyperlink, std::string> Caption{.name = "Caption",
                                                                 .get = &Hyperlink::Caption,
                                                                 .set = &Hyperlink::Caption,
                                                                 .read = "Hyperlink"};
    static inline const Property<Hyperlink, bool> FontUnderline{.name = "FontUnderline",
                                                                .get = &Hyperlink::FontUnderline,
                                                                .set = &Hyperlink::FontUnderline};
    static inline const Property<Hyperlink, float> FontSize{
        .name = "FontSize",
        .get = &Hyperlink::FontSize,
        .set = &Hyperlink::FontSize,
        .read = 8.25F,
        .write = 0.0F,
        .init = {[](const Hyperlink& c) { return static_cast<float>(c.Ambient().Font->Size()); },
                 "the ambient font's"},
        .bag = BagKind::Double};
    static inline const Property<Hyperlink, Picture_t> Picture{.name = "Picture"};
    static inline const Property<Hyperlink, std::int16_t> Style{.name = "Style",
                                                                .get = &Hyperlink::Style,
                                                                .set = &Hyperlink::Style,
                                                                .read = std::int16_t{1}};
    static inline const Property<Hyperlink, OLE_COLOR> ForeColor{.name = "ForeColor",
                                                                 .read = 0x00FF0000U};
    static inline const Property<Hyperlink, bool> Clicked{
        .name = "Clicked", .get = &Hyperlink::Clicked, .set = &Hyperlink::Clicked, .read = false};
    static inline const Property<Hyperlink, std::string> Url{
        .name = "Url", .get = &Hyperlink::Url, .set = &Hyperlink::Url, .persist = false};
    static inline const Property<Hyperlink, OLE_COLOR> BackColorH{.name = "BackColorH",
                                                                  .get = &Hyperlink::BackColorH,
                                                                  .set = &Hyperlink::BackColorH,
                                                                  .read = 0x8000000FU};
    static inline const Property<Hyperlink, OLE_COLOR> LinkColor{.name = "LinkColor",
                                                                 .get = &Hyperlink::LinkColor,
                                                                 .set = &Hyperlink::LinkColor,
                                                                 .read = 0x00FF0000U};
    static inline const Property<Hyperlink, OLE_COLOR> HoverColor{.name = "HoverColor",
                                                                  .get = &Hyperlink::HoverColor,
                                                                  .set = &Hyperlink::HoverColor,
                                                                  .read = 0x00FFFF80U,
                                                                  .init = 0x00FFFF00U};
    static inline const Property<Hyperlink, OLE_COLOR> ActiveColor{.name = "ActiveColor",
                                                                   .get = &Hyperlink::ActiveColor,
                                                                   .set = &Hyperlink::ActiveColor,
                                                                   .read = 0x000000FFU};
    static inline const Property<Hyperlink, OLE_COLOR> VisitedColor{.name = "VisitedColor",
                                                                    .get = &Hyperlink::VisitedColor,
                                                                    .set = &Hyperlink::VisitedColor,
                                                                    .read = 0x00800080U};
    static inline const Property<Hyperlink, std::int16_t> BorderStyle{
        .name = "BorderStyle", .get = &Hyperlink::BorderStyle, .set = &Hyperlink::BorderStyle};
    static inline const Property<Hyperlink, std::int16_t> Alignment{
        .name = "Alignment", .get = &Hyperlink::Alignment, .set = &Hyperlink::Alignment};
    static inline const Property<Hyperlink, bool> AutoSizeH{.name = "AutoSizeH",
                                                            .get = &Hyperlink::AutoSizeH,
                                                            .set = &Hyperlink::AutoSizeH,
                                                            .read = true};
    static inline const Property<Hyperlink, std::string> ToolTipTxt{.name = "ToolTipTxt",
                                                                    .get = &Hyperlink::ToolTipTxt,
                                                                    .set = &Hyperlink::ToolTipTxt,
                                                                    .read = "ToolTipText"};
    static inline const Property<Hyperlink, Picture_t> MouseIcon{
        .name = "MouseIcon", .get = &Hyperlink::MouseIcon, .set = &Hyperlink::MouseIcon};
    static inline const Property<Hyperlink, hMousePointerConst> MousePointer{
        .name = "MousePointer",
        .get = &Hyperlink::MousePointer,
        .set = &Hyperlink::MousePointer,
        .bag = BagKind::Integer};
    static inline const Property<Hyperlink, MouSymbol> MouseSymbol{.name = "MouseSymbol",
                                                                   .get = &Hyperlink::MouseSymbol,
                                                                   .set = &Hyperlink::MouseSymbol,
                                                                   .read = MouSymbol::lOff};
};

std::shared_ptr<StdPicture> LoadHandCursor(MouSymbol symbol) {
    const char* path =
        symbol == MouSymbol::lHand_NC ? "cursors/hand_nc.png" : "cursors/hand_ie.png";
    const auto bytes = resources::Find(path);
    assert(!bytes.empty() && "the hand cursors are embedded from resources/cursors");
    platform::Image image = platform::DecodePng(bytes);
    for (std::uint32_t& pixel : image.pixels)
        pixel = pixel == kCursorKeyColour ? 0 : (pixel | 0xFF000000u);
    return std::make_shared<StdPicture>(PictureType::Icon, image.width, image.height,
                                        std::move(image.pixels));
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
    Label1.ForeColor(Props::LinkColor.Initial(*this));
    Label1.Caption(Props::Caption.Initial(*this));
    Label2.Visible(false);
    Label2.MouseIcon(LoadHandCursor(MouSymbol::lHand_IE));
    Label2DragIcon = LoadHandCursor(MouSymbol::lHand_NC);
    CentreCaption();

    timer.Interval(static_cast<std::int32_t>(foundation::kHoverPollMs));
    timer.Tick = [this] { OnHoverTick(); };
    Label1.events.Click = [this] { OnCaptionClick(); };
    Label1.events.MouseMove = [this](std::int16_t Button, std::int16_t Shift, float x, float y) {
        RaiseEvent(HyperlinkEvents::Hover, Button, Shift, x, y);
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
            .Property(Props::Font)
            .Property(Props::Caption)
            .Property(Props::FontUnderline)
            .Property(Props::FontSize)
            .Property(Props::Style)
            .Property(Props::MouseIcon)
            .Property(Props::MousePointer)
            .Property(Props::MouseSymbol)
            .Property(Props::ToolTipTxt)
            .Method("Refresh", {}, [](Hyperlink& h, std::span<Variant>) { h.Refresh(); })
            .Property(Props::Clicked)
            .Property(Props::Url)
            .Property(Props::BackColorH)
            .Property(Props::LinkColor)
            .Property(Props::HoverColor)
            .Property(Props::ActiveColor)
            .Property(Props::VisitedColor)
            .Property(Props::BorderStyle)
            .Property(Props::Alignment)
            .Property(Props::AutoSizeH)
            .Method("PlaySound", {Arg("ResourceId", TypeCode::Integer)},
                    [](Hyperlink& h, std::span<Variant> a) { h.PlaySound(a[0].ToInteger()); })
            .Method("EndPlaySound", {}, [](Hyperlink& h, std::span<Variant>) { h.EndPlaySound(); })
            .Events<HyperlinkEvents>({{HyperlinkEvents::Hover, MouseEventArgs()}})
            .Enum<MouSymbol>()
            .Enum<hMousePointerConst>()
            .Build();
    return info;
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void Hyperlink::UserControl_Initialize() {
    LinkColor_ = Props::LinkColor.Initial(*this);
    HoverColor_ = Props::HoverColor.Initial(*this);
    ActiveColor_ = Props::ActiveColor.Initial(*this);
    VisitedColor_ = Props::VisitedColor.Initial(*this);
}

void Hyperlink::UserControl_InitProperties() {
    Clicked_ = Props::Clicked.Initial(*this);
    Url_.clear();
    ToolTipTxt_ = Props::ToolTipTxt.Initial(*this);
    AutoSizeH_ = Props::AutoSizeH.Initial(*this);
    MouseSymbol_ = Props::MouseSymbol.Initial(*this);
}

// "LinkColor" is read twice: first into the caption's colour, later into the field. Font,
// FontUnderline, FontSize, Alignment and MousePointer go straight to Label1, and Clicked,
// AutoSizeH and ToolTipTxt to the fields (the Clicked let would refuse the designer).
void Hyperlink::UserControl_ReadProperties(PropertyBag& PropBag) {
    // A copy, as the let makes; Nothing is refused by the label as Label3D's font is.
    const std::shared_ptr<StdFont> font = Props::Font.Read(*this, PropBag);
    Label1.Font(font ? font->Clone() : font);
    // The caption changes before "AutoSizeH" is read, so a restored link keeps the size its
    // form gives it.
    if (std::string caption = Props::Caption.Read(*this, PropBag); caption != Label1.Caption()) {
        Label1.Caption(std::move(caption));
        CaptionChanged();
    }
    Label1.Font()->Underline(Props::FontUnderline.Read(*this, PropBag));
    Label1.Font()->Size(Props::FontSize.ReadStored(*this, PropBag).ToDouble());
    UserControl.Picture(Props::Picture.Read(*this, PropBag));
    Props::Style.Load(*this, PropBag);
    Label1.ForeColor(Props::LinkColor.Read(*this, PropBag));
    Clicked_ = Props::Clicked.Read(*this, PropBag);
    Props::BackColorH.Load(*this, PropBag);
    LinkColor_ = Props::LinkColor.Read(*this, PropBag);
    HoverColor_ = Props::HoverColor.Read(*this, PropBag);
    ActiveColor_ = Props::ActiveColor.Read(*this, PropBag);
    VisitedColor_ = Props::VisitedColor.Read(*this, PropBag);
    Props::BorderStyle.Load(*this, PropBag);
    Label1.Alignment(Props::Alignment.Read(*this, PropBag));
    AutoSizeH_ = Props::AutoSizeH.Read(*this, PropBag);
    ToolTipTxt_ = Props::ToolTipTxt.Read(*this, PropBag);
    Props::MouseIcon.Load(*this, PropBag);
    Label1.MousePointer(static_cast<std::int16_t>(Props::MousePointer.Read(*this, PropBag)));
    Props::MouseSymbol.Load(*this, PropBag);
}

// The keys of the reading, with "ForeColor" in the first "LinkColor"'s place.
void Hyperlink::UserControl_WriteProperties(PropertyBag& PropBag) {
    Props::Font.Save(*this, PropBag);
    Props::Caption.Save(*this, PropBag);
    Props::FontUnderline.Save(*this, PropBag);
    // The font's own size, not the Single the property hands out.
    Props::FontSize.SaveStored(*this, PropBag, Label1.Font()->Size());
    Props::Picture.SaveValue(*this, PropBag, UserControl.Picture());
    Props::Style.Save(*this, PropBag);
    Props::ForeColor.SaveValue(*this, PropBag, Label1.ForeColor());
    Props::Clicked.Save(*this, PropBag);
    Props::BackColorH.Save(*this, PropBag);
    Props::LinkColor.Save(*this, PropBag);
    Props::HoverColor.Save(*this, PropBag);
    Props::ActiveColor.Save(*this, PropBag);
    Props::VisitedColor.Save(*this, PropBag);
    Props::BorderStyle.Save(*this, PropBag);
    Props::Alignment.Save(*this, PropBag);
    Props::AutoSizeH.Save(*this, PropBag);
    Props::ToolTipTxt.Save(*this, PropBag);
    Props::MouseIcon.Save(*this, PropBag);
    Props::MousePointer.Save(*this, PropBag);
    Props::MouseSymbol.Save(*this, PropBag);
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
    RaiseEvent(HyperlinkEvents::Click);
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
    if (New_Caption != Label1.Caption()) {
        std::string old = Label1.Caption();
        Label1.Caption(std::move(New_Caption));
        try {
            CaptionChanged();
        } catch (const HostError&) {
            // A caption the control cannot grow to is refused whole: caption and size stay.
            Label1.Caption(std::move(old));
            CaptionChanged();
            throw;
        }
    }
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
