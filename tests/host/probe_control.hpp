#pragma once
// A test-only control that follows the whole contract: persisted keys with read and write
// defaults (one pair that differ), an object property, an enumeration, methods with optional
// arguments, events with by-reference arguments, and a log of the lifecycle calls it received.

#include <string>
#include <vector>

#include "host/control.hpp"
#include "host/numeric.hpp"

namespace korvex::test {

using namespace korvex::host;

enum class pMode : std::int32_t { pOff = 0, pOn = 1, pBlink = 2 };

class Probe final : public Control {
  public:
    enum EventId : std::int32_t { kClick = 1, kKeyPress = 2, kMouseDown = 3 };

    static const ClassInfo& Class() {
        static const ClassInfo info =
            ClassBuilder<Probe>("Probe", "Korvex_Tools.Probe")
                .Method("ShowAboutBox", {}, [](Probe& p, std::span<Variant>) { p.OpenAboutBox(); })
                .DispId(kDispIdAboutBox)
                .Property(KORVEX_PROPERTY(Caption))
                .Property(KORVEX_PROPERTY(Value))
                .Property(KORVEX_PROPERTY(BackColorP))
                .Property(KORVEX_PROPERTY(Font))
                .Property(KORVEX_PROPERTY(Mode), "pMode")
                .Property(KORVEX_PROPERTY(MousePointer))
                .ReadOnly(KORVEX_READONLY(Clicks))
                .Method(
                    "Bump", {Arg("By", TypeCode::Integer), Optional("Times", TypeCode::Integer)},
                    [](Probe& p, std::span<Variant> a) -> std::int16_t {
                        const std::int16_t times = a[1].IsMissing() ? 1 : a[1].ToInteger();
                        p.Value(AddInteger(p.Value(), MulInteger(a[0].ToInteger(), times)));
                        a[0] = std::int16_t{0};  // by reference: the caller sees the change
                        return p.Value();
                    },
                    TypeCode::Integer)
                .Method(
                    "SimulateKey", {Arg("KeyAscii", TypeCode::Integer)},
                    [](Probe& p, std::span<Variant> a) -> std::int16_t {
                        return p.PressKey(a[0].ToInteger());
                    },
                    TypeCode::Integer)
                .Event("Click")
                .Event("KeyPress", {Arg("KeyAscii", TypeCode::Integer)})
                .Event("MouseDown",
                       {Arg("Button", TypeCode::Integer), Arg("Shift", TypeCode::Integer),
                        Arg("x", TypeCode::Single), Arg("y", TypeCode::Single)})
                .Enum("pMode", {{"pOff", 0}, {"pOn", 1}, {"pBlink", 2}})
                .Enum("pMousePointerConst", MousePointerMembers("pMouseIcon"))
                .Build();
        return info;
    }
    [[nodiscard]] const ClassInfo& TypeInfo() const override { return Class(); }

    // Lifecycle.
    void UserControl_Initialize() override { log.push_back("Initialize"); }
    void UserControl_InitProperties() override {
        log.push_back("InitProperties");
        caption_ = Ambient().DisplayName;
        font_ = Ambient().Font;
    }
    void UserControl_ReadProperties(PropertyBag& PropBag) override {
        log.push_back("ReadProperties");
        Caption(PropBag.ReadProperty("Caption", "").ToString());
        value_ = PropBag.ReadProperty("Value", std::int16_t{7}).ToInteger();
        // Read and write defaults differ on purpose, as some controls' keys do.
        backColor_ = static_cast<OLE_COLOR>(
            PropBag.ReadProperty("BackColorP", Variant(kReadDefaultColor)).ToLong());
        font_ = PropBag.ReadProperty("Font", Ambient().Font).ToFont();
        mode_ = static_cast<pMode>(PropBag.ReadProperty("Mode", Variant(pMode::pOff)).ToLong());
        mousePointer_ = PropBag.ReadProperty("MousePointer", std::int16_t{0}).ToInteger();
    }
    void UserControl_WriteProperties(PropertyBag& PropBag) override {
        log.push_back("WriteProperties");
        PropBag.WriteProperty("Caption", caption_, "");
        PropBag.WriteProperty("Value", value_, std::int16_t{7});
        PropBag.WriteProperty("BackColorP", Variant(backColor_), Variant(kWriteDefaultColor));
        PropBag.WriteProperty("Font", font_, Ambient().Font);
        PropBag.WriteProperty("Mode", Variant(mode_), Variant(pMode::pOff));
        PropBag.WriteProperty("MousePointer", mousePointer_, std::int16_t{0});
    }
    void UserControl_Resize() override { log.push_back("Resize"); }
    void UserControl_Terminate() override {
        log.push_back("Terminate");
        if (terminated) ++*terminated;
    }

    // Properties.
    [[nodiscard]] std::string Caption() const { return caption_; }
    void Caption(std::string New_Caption) {
        caption_ = std::move(New_Caption);
        PropertyChanged("Caption");
    }
    [[nodiscard]] std::int16_t Value() const { return value_; }
    void Value(std::int16_t New_Value) {
        value_ = New_Value;
        PropertyChanged("Value");
    }
    [[nodiscard]] OLE_COLOR BackColorP() const { return backColor_; }
    void BackColorP(OLE_COLOR New_BackColorP) {
        backColor_ = New_BackColorP;
        PropertyChanged("BackColorP");
    }
    [[nodiscard]] std::shared_ptr<StdFont> Font() const { return font_; }
    void Font(std::shared_ptr<StdFont> New_Font) {
        font_ = std::move(New_Font);
        PropertyChanged("Font");
    }
    [[nodiscard]] pMode Mode() const { return mode_; }
    void Mode(pMode New_Mode) {
        mode_ = New_Mode;
        PropertyChanged("Mode");
    }
    [[nodiscard]] std::int16_t MousePointer() const { return mousePointer_; }
    void MousePointer(std::int16_t New_MousePointer) {
        mousePointer_ = CheckMousePointer(New_MousePointer);
        PropertyChanged("MousePointer");
    }
    [[nodiscard]] std::int32_t Clicks() const { return clicks_; }

    // Input as a constituent object would forward it.
    void Click() {
        ++clicks_;
        RaiseEvent(kClick);
    }
    std::int16_t PressKey(std::int16_t KeyAscii) {
        RaiseEvent(kKeyPress, KeyAscii);
        return KeyAscii;  // what the handler left in it
    }
    void Press(std::int16_t Button, std::int16_t Shift, float x, float y) {
        RaiseEvent(kMouseDown, Button, Shift, x, y);
    }

    static constexpr OLE_COLOR kReadDefaultColor = 0x8000000F;
    static constexpr OLE_COLOR kWriteDefaultColor = 0x80000005;

    std::vector<std::string> log;
    int* terminated = nullptr;

  private:
    std::string caption_;
    std::int16_t value_ = 7;
    OLE_COLOR backColor_ = kReadDefaultColor;
    std::shared_ptr<StdFont> font_;
    pMode mode_ = pMode::pOff;
    std::int16_t mousePointer_ = 0;
    std::int32_t clicks_ = 0;
};

}  // namespace korvex::test
