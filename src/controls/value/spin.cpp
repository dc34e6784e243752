#include "controls/value/spin.hpp"

#include <algorithm>
#include <cmath>
#include <span>
#include <tuple>

#include "base/error.hpp"
#include "host/numeric.hpp"
#include "platform/sound.hpp"

namespace korvex::controls {

using namespace host;

namespace {

// What the host raises when procedures call each other without end.
constexpr std::int32_t kErrOutOfStackSpace = 28;

// Runs one step of a sequence whose failing steps are skipped.
template <class F>
void Skippable(F&& step) {
    try {
        step();
    } catch (const HostError&) {
    }
}

// The decimal text of a value, as the field shows it.
std::string Decimal(std::int16_t value) {
    return std::to_string(value);
}

// A number with the format "0" and "00": rounded half away from zero, padded to the digits.
std::string Padded(double value, int digits) {
    const double rounded = std::round(value);
    if (!std::isfinite(rounded) || std::fabs(rounded) > 1e15)
        throw HostError(kErrOverflow, "Format");
    std::string text = std::to_string(static_cast<long long>(std::fabs(rounded)));
    if (static_cast<int>(text.size()) < digits)
        text.insert(0, static_cast<std::size_t>(digits) - text.size(), '0');
    return rounded < 0 ? "-" + text : text;
}

// The number a field of the time text holds; error 13 when it is not one.
float TimeField(std::string_view text) {
    const std::optional<double> number = ParseNumber(text);
    if (!number) throw HostError(kErrTypeMismatch, "Spin");
    return ToSingle(*number);
}

}  // namespace

// "BackColorS" and "ForeColor" are read against the field's colours as they stand and written
// against white and black; "FontSize" is a Double read as 8.25 and written against 0. Results
// are Singles with 16-bit defaults. "CurrTimeH" is read against the text "00".
struct Spin::Props {
    using Font_t = std::shared_ptr<StdFont>;
    using Picture_t = std::shared_ptr<StdPicture>;
    static void ToolTipToField(Spin& c, std::string text) { c.Text1.ToolTipText(std::move(text)); }
    static void FontToField(Spin& c, Font_t font) {
        if (!font) throw HostError(kErrInvalidPropertyValue, "Font");
        c.Text1.Font(font->Clone());
    }
    static void PointerToField(Spin& c, sMousePointerConst pointer) {
        c.Text1.MousePointer(ToInteger(static_cast<double>(pointer)));
    }
    static void AlignmentToField(Spin& c, sAlignmentConst alignment) {
        c.Text1.Alignment(ToInteger(static_cast<double>(alignment)));
    }
    static void EnabledToField(Spin& c, bool enabled) { c.Text1.Enabled(enabled); }

    static inline const Property<Spin, EnStyle> BorderStyle{.name = "BorderStyle",
                                                            .get = &Spin::BorderStyle,
                                                            .set = &Spin::BorderStyle,
                                                            .read = EnStyle::sFlat};
    static inline const Property<Spin, std::string> ToolTipText{.name = "ToolTipText",
                                                                .get = &Spin::ToolTipText,
                                                                .set = &Spin::ToolTipText,
                                                                .restore = ToolTipToField};
    static inline const Property<Spin, OLE_COLOR> BackColorS{
        .name = "BackColorS",
        .get = &Spin::BackColorS,
        .set = &Spin::BackColorS,
        .read = {[](const Spin& c) { return c.Text1.BackColor(); }, "the field's BackColor"},
        .write = 0x00FFFFFFU,
        .init = 0x80000005U};
    static inline const Property<Spin, OLE_COLOR> ForeColor{
        .name = "ForeColor",
        .get = &Spin::ForeColor,
        .set = &Spin::ForeColor,
        .read = {[](const Spin& c) { return c.Text1.ForeColor(); }, "the field's ForeColor"},
        .write = 0x00000000U,
        .init = 0x80000008U};
    static inline const Property<Spin, Font_t> Font{
        .name = "Font", .get = &Spin::Font, .set = &Spin::Font, .restore = FontToField};
    static inline const Property<Spin, float> FontSize{
        .name = "FontSize",
        .get = &Spin::FontSize,
        .set = &Spin::FontSize,
        .read = 8.25F,
        .write = 0.0F,
        .init = {[](const Spin& c) { return static_cast<float>(c.Ambient().Font->Size()); },
                 "the ambient font's"},
        .bag = BagKind::Double};
    static inline const Property<Spin, Picture_t> MouseIcon{
        .name = "MouseIcon", .get = &Spin::MouseIcon, .set = &Spin::MouseIcon};
    static inline const Property<Spin, sMousePointerConst> MousePointer{.name = "MousePointer",
                                                                        .get = &Spin::MousePointer,
                                                                        .set = &Spin::MousePointer,
                                                                        .bag = BagKind::Integer,
                                                                        .restore = PointerToField};
    static inline const Property<Spin, std::int16_t> Max{
        .name = "Max", .get = &Spin::Max, .set = &Spin::Max, .read = std::int16_t{100}};
    static inline const Property<Spin, std::int16_t> Min{
        .name = "Min", .get = &Spin::Min, .set = &Spin::Min};
    static inline const Property<Spin, std::int16_t> Value{
        .name = "Value", .get = &Spin::Value, .set = &Spin::Value};
    static inline const Property<Spin, float> Result1{
        .name = "Result1", .get = &Spin::Result1, .set = &Spin::Result1};
    static inline const Property<Spin, float> Result2{
        .name = "Result2", .get = &Spin::Result2, .set = &Spin::Result2};
    static inline const Property<Spin, float> Result3{
        .name = "Result3", .get = &Spin::Result3, .set = &Spin::Result3};
    static inline const Property<Spin, float> Result4{
        .name = "Result4", .get = &Spin::Result4, .set = &Spin::Result4};
    static inline const Property<Spin, float> Result5{
        .name = "Result5", .get = &Spin::Result5, .set = &Spin::Result5};
    static inline const Property<Spin, bool> PointPosition{
        .name = "PointPosition", .get = &Spin::PointPosition, .set = &Spin::PointPosition};
    static inline const Property<Spin, bool> TimeState{
        .name = "TimeState", .get = &Spin::TimeState, .set = &Spin::TimeState};
    static inline const Property<Spin, float> CurrTimeH{
        .name = "CurrTimeH", .get = &Spin::CurrTimeH, .set = &Spin::CurrTimeH};
    static inline const Property<Spin, float> CurrTimeM{.name = "CurrTimeM",
                                                        .get = &Spin::CurrTimeM,
                                                        .set = &Spin::CurrTimeM,
                                                        .bag = BagKind::Integer};
    static inline const Property<Spin, sAlignmentConst> Alignment{.name = "Alignment",
                                                                  .get = &Spin::Alignment,
                                                                  .set = &Spin::Alignment,
                                                                  .bag = BagKind::Integer,
                                                                  .restore = AlignmentToField};
    static inline const Property<Spin, bool> EnabledS{.name = "EnabledS",
                                                      .get = &Spin::EnabledS,
                                                      .set = &Spin::EnabledS,
                                                      .read = true,
                                                      .restore = EnabledToField};

    // Bag order; "FontSize" goes to the field's font as a Double and is handled on its own.
    static inline const auto KeysBeforeSize =
        std::tie(BorderStyle, ToolTipText, BackColorS, ForeColor, Font);
    static inline const auto KeysAfterSize =
        std::tie(MouseIcon, MousePointer, Max, Min, Value, Result1, Result2, Result3, Result4,
                 Result5, PointPosition, TimeState, CurrTimeH, CurrTimeM, Alignment, EnabledS);
};

const ClassInfo& Spin::Class() {
    static const ClassInfo info =
        ClassBuilder<Spin>("Spin", "Korvex_Tools.Spin")
            .Method("ShowAboutBox", {}, [](Spin& c, std::span<Variant>) { c.ShowAboutBox(); })
            .DispId(kDispIdAboutBox)
            .Property(Props::Min)
            .Property(Props::Max)
            .Property(Props::Value)
            .Property(Props::Result1)
            .Property(Props::Result2)
            .Property(Props::Result3)
            .Property(Props::Result4)
            .Property(Props::Result5)
            .Property(Props::PointPosition)
            .Property(Props::TimeState)
            .Property(Props::CurrTimeH)
            .Property(Props::CurrTimeM)
            .Property(Props::Font)
            .Property(Props::FontSize)
            .Property(Props::MouseIcon)
            .Property(Props::MousePointer)
            .Property(Props::BorderStyle)
            .Property(Props::Alignment)
            .Property(Props::EnabledS)
            .Property(Props::BackColorS)
            .Property(Props::ForeColor)
            .Property(Props::ToolTipText)
            .Method(
                "SaveAsLong",
                {Arg("Betrag", TypeCode::String), Optional("Nachkomma", TypeCode::Integer)},
                [](Spin&, std::span<Variant> a) {
                    const std::int16_t places =
                        a.size() > 1 && !a[1].IsMissing() ? a[1].ToInteger() : 2;
                    return SaveAsLong(a[0].ToString(), places);
                },
                TypeCode::Long)
            .Events<SpinEvents>(
                {{SpinEvents::Changed,
                  {Arg("Value", TypeCode::Integer), Arg("Result1", TypeCode::String),
                   Arg("Result2", TypeCode::String), Arg("Result3", TypeCode::String),
                   Arg("Result4", TypeCode::String), Arg("Result5", TypeCode::String)}}})
            .Enum<EnStyle>()
            .Enum<sAlignmentConst>()
            .Enum<sMousePointerConst>()
            .Build();
    return info;
}

// The design: Text2 covers the control, Text1 (borderless, flat) and VScroll1 sit on it.
Spin::Spin(HostContext& context)
    : SurfaceControl(context), Text2(UserControl), Text1(Text2), VScroll1(Text2) {
    Text2.ScaleMode(forms::ScaleModeConstants::vbTwips);
    Text1.BorderStyle(0);
    Text1.Appearance(0);
    Text1.Font(Ambient().Font->Clone());
    Text1.Text("0");
    VScroll1.Max(Min_);
    VScroll1.Min(Max_);
    // The handlers come last: the design values above raise nothing.
    VScroll1.Change = [this] { ScrollProcedure(); };
    Text1.events.KeyPress = [this](std::int16_t& KeyAscii) { Text1_KeyPress(KeyAscii); };
    Text1.Change = [this] { Text1_Change(); };
    Text1.events.LostFocus = [this] { Text1_LostFocus(); };
    // The control's focus is the field's.
    UserControl.events.GotFocus = [this] { Text1.SetFocus(); };
    Text2.events.GotFocus = [this] { Text1.SetFocus(); };
}

// ---------------------------------------------------------------------------------------------
// Lifecycle

void Spin::UserControl_Initialize() {
    ResultBase_.fill(0);
}

void Spin::UserControl_InitProperties() {
    BorderStyle(Props::BorderStyle.Initial(*this));
    Max(Props::Max.Initial(*this));
    Min(Props::Min.Initial(*this));
    Value(Props::Value.Initial(*this));
}

// Results pass through their let, so each restored result becomes its base.
void Spin::UserControl_ReadProperties(PropertyBag& PropBag) {
    LoadAll(*this, PropBag, Props::KeysBeforeSize);
    Text1.Font()->Size(Props::FontSize.ReadStored(*this, PropBag).ToDouble());
    Text1.Refresh();
    LoadAll(*this, PropBag, Props::KeysAfterSize);
}

void Spin::UserControl_WriteProperties(PropertyBag& PropBag) {
    SaveAll(*this, PropBag, Props::KeysBeforeSize);
    Props::FontSize.SaveStored(*this, PropBag, Variant(Text1.Font()->Size()));
    SaveAll(*this, PropBag, Props::KeysAfterSize);
}

// All in twips; W and H are the surface's inner size. The field's height follows its font
// size, which shrinks to what the control's height leaves.
void Spin::UserControl_Resize() {
    Skippable([&] {
        if (UserControl.Width() < 500) UserControl.Width(500);
        if (UserControl.Height() < 250) UserControl.Height(250);
    });
    const double W = UserControl.ScaleWidth();
    const double H = UserControl.ScaleHeight();
    Skippable([&] { Text2.Move(0, 0, UserControl.Width(), UserControl.Height() - 10); });
    Skippable([&] {
        Text1.BorderStyle(0);
        Text1.Appearance(0);
        const std::int16_t fs = ToInteger(RoundHalfEven((H - 180) / 15));
        if (Text1.Font()->Size() > fs) Text1.Font()->Size(fs);
        Text1.Height(static_cast<float>(Text1.Font()->Size() * 15));
        Text1.Left(20);
        Text1.Width(static_cast<float>(2 * W / 3 - 95));
    });
    Skippable([&] { VScroll1.Width(static_cast<float>(W / 3)); });
    Skippable([&] {
        const double text2Height = Text2.Height();
        const double middle = H / 2 - Text1.Height() / 2;
        switch (BorderStyle_) {
            case EnStyle::sOff:
                Text1.Top(static_cast<float>(middle - 10));
                VScroll1.Move(static_cast<float>(2 * W / 3), 5, VScroll1.Width(),
                              static_cast<float>(text2Height - 10));
                break;
            case EnStyle::sFlat:
                Text1.Top(static_cast<float>(middle - 20));
                VScroll1.Move(static_cast<float>(2 * W / 3 - 60), 25, VScroll1.Width(),
                              static_cast<float>(text2Height - 90));
                break;
            case EnStyle::sStandard:
                Text1.Top(static_cast<float>(middle - 40));
                VScroll1.Move(static_cast<float>(2 * W / 3 - 60), 5, VScroll1.Width(),
                              static_cast<float>(text2Height - 65));
                break;
            default:
                break;
        }
    });
    Text1.Refresh();
}

// ---------------------------------------------------------------------------------------------
// Properties

void Spin::Min(std::int16_t New_Min) {
    Min_ = New_Min;
    VScroll1.Max(Min_);
    PropertyChanged("Min");
}

void Spin::Max(std::int16_t New_Max) {
    Max_ = New_Max;
    VScroll1.Min(Max_);
    PropertyChanged("Max");
}

// A value outside the limits goes through this procedure again as the limit, so the clamped
// value is applied twice and reported twice. With Min above Max that would go back and forth
// until the stack runs out: the host's error 28 comes first, before anything is stored.
void Spin::Value(std::int16_t New_Value) {
    if (Min_ > Max_ && (New_Value < Min_ || New_Value > Max_))
        throw HostError(kErrOutOfStackSpace, "Value");
    Value_ = New_Value;
    if (Value_ < Min_) Value(Min_);
    if (Value_ > Max_) Value(Max_);
    VScroll1.Value(Value_);
    Text1.Text(Decimal(Value_));
    UserControl_Resize();
    PropertyChanged("Value");
}

void Spin::Result(int k, float New_Result) {
    const auto i = static_cast<std::size_t>(k);
    Result_[i] = New_Result;
    if (ResultBase_[i] == 0) ResultBase_[i] = New_Result;
    PropertyChanged("Result" + std::to_string(k + 1));
}

void Spin::PointPosition(bool New_PointPosition) {
    PointPosition_ = New_PointPosition;
    PropertyChanged("PointPosition");
}

// The minutes go to the bar while it still has the numeric range, so minutes outside Min..Max
// (or beyond 16 bits) are refused; that is checked before anything changes.
void Spin::TimeState(bool New_TimeState) {
    if (New_TimeState) {
        const std::int16_t minutes = ToInteger(RoundHalfEven(CurrTimeM_));
        if (minutes < std::min(VScroll1.Min(), VScroll1.Max()) ||
            minutes > std::max(VScroll1.Min(), VScroll1.Max()))
            throw HostError(kErrInvalidPropertyValue, "Value");
    }
    TimeState_ = New_TimeState;
    if (TimeState_) {
        VScroll1.Value(ToInteger(RoundHalfEven(CurrTimeM_)));
        VScroll1.Max(-1);
        VScroll1.Min(60);
    } else {
        VScroll1.Max(Min_);
        VScroll1.Min(Max_);
        VScroll1.Value(Value_);
    }
    ScrollProcedure();
    PropertyChanged("TimeState");
}

void Spin::CurrTimeH(float New_CurrTimeH) {
    CurrTimeH_ = New_CurrTimeH;
    PropertyChanged("CurrTimeH");
}

void Spin::CurrTimeM(float New_CurrTimeM) {
    CurrTimeM_ = New_CurrTimeM;
    PropertyChanged("CurrTimeM");
}

void Spin::Font(std::shared_ptr<StdFont> New_Font) {
    Props::FontToField(*this, std::move(New_Font));
    PropertyChanged("Font");
}

float Spin::FontSize() const {
    return static_cast<float>(Text1.Font()->Size());
}

void Spin::FontSize(float New_FontSize) {
    Text1.Font()->Size(New_FontSize);
    UserControl_Resize();
    PropertyChanged("FontSize");
}

void Spin::MouseIcon(std::shared_ptr<StdPicture> New_MouseIcon) {
    Text1.MouseIcon(std::move(New_MouseIcon));
    PropertyChanged("MouseIcon");
}

void Spin::MousePointer(sMousePointerConst New_MousePointer) {
    Props::PointerToField(*this, New_MousePointer);
    PropertyChanged("MousePointer");
}

void Spin::BorderStyle(EnStyle New_BorderStyle) {
    BorderStyle_ = New_BorderStyle;
    switch (New_BorderStyle) {
        case EnStyle::sOff:
            Text2.BorderStyle(0);
            Text2.Appearance(0);
            break;
        case EnStyle::sFlat:
            Text2.BorderStyle(1);
            Text2.Appearance(0);
            break;
        case EnStyle::sStandard:
            Text2.BorderStyle(1);
            Text2.Appearance(1);
            break;
        default:
            break;
    }
    Text2.BackColor(Text1.BackColor());
    UserControl_Resize();
    PropertyChanged("BorderStyle");
}

void Spin::Alignment(sAlignmentConst New_Alignment) {
    Props::AlignmentToField(*this, New_Alignment);
    ScrollProcedure();
    PropertyChanged("Alignment");
}

void Spin::EnabledS(bool New_EnabledS) {
    Text1.Enabled(New_EnabledS);
    VScroll1.Enabled(New_EnabledS);
    PropertyChanged("EnabledS");
}

void Spin::BackColorS(OLE_COLOR New_BackColorS) {
    Text1.BackColor(New_BackColorS);
    Text2.BackColor(New_BackColorS);
    PropertyChanged("BackColorS");
}

void Spin::ForeColor(OLE_COLOR New_ForeColor) {
    Text1.ForeColor(New_ForeColor);
    PropertyChanged("ForeColor");
}

void Spin::ToolTipText(std::string New_ToolTipText) {
    Text1.ToolTipText(std::move(New_ToolTipText));
    PropertyChanged("ToolTipText");
}

// ---------------------------------------------------------------------------------------------
// Methods

std::int32_t Spin::SaveAsLong(std::string_view Betrag, std::int16_t Nachkomma) {
    std::string s(Betrag);
    s.erase(0, s.find_first_not_of(' ') == std::string::npos ? s.size() : s.find_first_not_of(' '));
    s.erase(s.find_last_not_of(' ') + 1);
    if (!s.empty()) {
        if (const auto comma = s.find(','); comma != std::string::npos) s[comma] = '.';
        const double a = Val(s);
        if (Nachkomma < 0) throw HostError(kErrInvalidCall, "SaveAsLong");
        const double m = std::pow(10.0, Nachkomma);
        const double scaled = Int(m * a + 0.5);
        if (!std::isfinite(scaled)) throw HostError(kErrOverflow, "SaveAsLong");
        s = FormatDouble(scaled);
    }
    return ToLong(RoundHalfEven(Val(s)));
}

// ---------------------------------------------------------------------------------------------
// The bar and the field

// An error ends the procedure quietly, without events.
void Spin::ScrollProcedure() {
    try {
        if (TimeState_) {
            if (VScroll1.Value() == 60) {
                VScroll1.Value(0);
                CurrTimeH_ = CurrTimeH_ + 1;
            }
            if (VScroll1.Value() == -1) {
                VScroll1.Value(59);
                CurrTimeH_ = CurrTimeH_ - 1;
            }
            CurrTimeM_ = VScroll1.Value();
            if (CurrTimeH_ == 24) CurrTimeH_ = 0;
            if (CurrTimeH_ == -1) CurrTimeH_ = 23;
            Text1.Text(Padded(CurrTimeH_, 2) + ":" + Padded(CurrTimeM_, 2));
        } else {
            Text1.Text(Decimal(VScroll1.Value()));
            std::array<float, 5> c{};
            std::array<std::int32_t, 5> n{};
            for (std::size_t k = 0; k < 5; ++k) {
                c[k] = ToSingle(static_cast<float>(Value_) * ResultBase_[k] / 100.0F);
                n[k] = SaveAsLong(FormatSingle(c[k]), 2);
            }
            for (std::size_t k = 0; k < 5; ++k) {
                const int index = static_cast<int>(k);
                if (PointPosition_)
                    Result(index, c[k]);
                else
                    Result(index, ToSingle(Val(Padded(n[k] / 100.0, 1))));
            }
        }
        std::int16_t value = VScroll1.Value();
        std::array<std::string, 5> texts;
        for (std::size_t k = 0; k < 5; ++k) texts[k] = FormatSingle(Result_[k]);
        RaiseEvent(SpinEvents::Changed, value, texts[0], texts[1], texts[2], texts[3], texts[4]);
        RaiseClick();
    } catch (const HostError&) {
    }
}

void Spin::RaiseClick() {
    RaiseEvent(SpinEvents::Click);
}

// Digits, Backspace, the point and the minus sign; anything else is refused with a beep.
void Spin::Text1_KeyPress(std::int16_t& KeyAscii) {
    const bool accepted =
        (KeyAscii >= '0' && KeyAscii <= '9') || KeyAscii == 8 || KeyAscii == 46 || KeyAscii == '-';
    if (accepted) return;
    KeyAscii = 0;
    UserControl.Platform().sound().MessageBeep(0);
}

void Spin::Text1_Change() {
    if (TimeState_)
        TimeTextChanged();
    else
        NumberTextChanged();
}

// The time field holds at most five characters: a longer line puts back the last accepted
// text with its caret and selection. Minutes and hours are read from the line the field
// reported, so the field's rewrite by the bar's step does not change the hours read.
void Spin::TimeTextChanged() {
    if (TimeEditBusy) return;
    TimeEditBusy = true;
    std::string line = Text1.GetLine(Text1.LineFromChar(-1), 255);
    if (line.size() < 6) {
        LastTimeText = line;
        LastSelStart = Text1.SelStart();
        LastSelLength = Text1.SelLength();
    } else {
        Text1.Text(LastTimeText);
        Text1.SelStart(LastSelStart);
        Text1.SelLength(LastSelLength);
        line = Text1.Text();
    }
    TimeEditBusy = false;
    Skippable([&] {
        const std::string_view text = line;
        float minutes = TimeField(text.substr(text.size() >= 2 ? text.size() - 2 : 0));
        if (minutes > 59) minutes = 59;
        if (minutes < 0) minutes = 0;
        CurrTimeM_ = minutes;
        VScroll1.Value(ToInteger(RoundHalfEven(CurrTimeM_)));
        float hours = TimeField(text.substr(0, 2));
        if (hours > 23) hours = 23;
        if (hours < 0) hours = 0;
        CurrTimeH_ = hours;
    });
    RaiseClick();
}

// An error (a number beyond 16 bits, say) skips the rest, leaving ChangeBusy set, so the
// handler stays out of the way until the control is made again.
void Spin::NumberTextChanged() {
    if (ChangeBusy) return;
    ChangeBusy = true;
    Skippable([&] {
        const double v = Val(Text1.Text());
        if (Min_ <= v && v <= Max_) VScroll1.Value(ToInteger(RoundHalfEven(v)));
        Value(ToInteger(RoundHalfEven(v)));
        ChangeBusy = false;
        ScrollProcedure();
    });
    RaiseClick();
}

void Spin::Text1_LostFocus() {
    Skippable([&] {
        const double v = Val(Text1.Text());
        if (v < Min_)
            Text1.Text(Decimal(Min_));
        else if (v > Max_)
            Text1.Text(Decimal(Max_));
    });
    Skippable([&] { VScroll1.Value(ToInteger(RoundHalfEven(Val(Text1.Text())))); });
}

}  // namespace korvex::controls
