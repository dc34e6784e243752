#pragma once
// Button's model: its public enumerations, the properties that decide its look (ButtonLook) and
// its interaction state (ButtonState). The behaviour (button_behaviour.cpp) writes both; the
// painter (button_paint.cpp, button_images.cpp) only reads them.

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "host/declare.hpp"
#include "host/font.hpp"
#include "host/ole_types.hpp"
#include "platform/window.hpp"

namespace korvex::controls {

KORVEX_ENUM(EnumMode, optButton = 0, optSwitch = 1, optGroup = 2)
KORVEX_ENUM(EnumSwitched, bFalse = 0, bLeft = 1, bRight = 2)
KORVEX_ENUM(EnumStyle, nOff = 0, Cool = 1, Flat = 2, nStandard = 3, extra = 4, XPStyle = 5,
            XPcool = 6, XPflat = 7)
KORVEX_ENUM(Enum3D, pTop = 0, pTopOver = 1, pDown = 2, pDownOver = 3, pStandard = 4)
KORVEX_ENUM(EnumTextAlignment, tOff = 0, Arrow = 1, tRight = 2, tBottom = 3)
// 0 the designer's own pictures, 1 to 50 the built-in images, 51 no image.
KORVEX_ENUM(EnumButton, Benutzerdefiniert = 0, btnCancel, btnConvert, btnColor, btnCopy,
            btnComputer, btnCut, btnCDRom, btnDVD, btnDelete, btnDesktop, btnEdit, btnFavorites,
            btnFill, btnHelp, btnHome, btnIE, btnInfo, btnMail, btnMusic, btnNew, btnOK, btnOpen,
            btnPaste, btnPrinter, btnProperties, btnRedo, btnSave, btnSave2, btnScan, btnSearch,
            btnSecurity, btnSpeaker, btnStop, btnTextEditor, btnTools, btnUndo, btnRefresh, btnUser,
            btnView, btnClock, btnX, CheckBox, LEDred, LEDgreen, LEDyellow, LEDblue, btnIcon,
            btnSmallIcon, btnList, btnReport, pOff)
KORVEX_POINTER_ENUM(MousePointerConst, "bMouseIcon")
KORVEX_EVENTS(ButtonEvents, Click, MouseDown, MouseMove, MouseUp, KeyDown, KeyPress, KeyUp, Group)

// The frame around the face: Plain is the frameless rest of Cool and XPcool.
enum class FrameLook : std::int16_t { Plain = 0, Normal = 1, Hover = 2, Down = 3 };
// The image (and, without a gradient, the face colour) of each look.
enum class ImageLook : std::int16_t { Normal = 1, Hover = 2, Down = 3 };
// The face gradient: Normal runs from the top colour down, Turned from the bottom row up.
enum class GradientLook : std::int16_t { Normal = 1, Turned = 2 };

// Where a press stands. Down: a push button held; Latched: a switch or group button in.
enum class PressPhase { Up, Down, Latched };

struct ButtonState {
    PressPhase phase = PressPhase::Up;
    bool hover = false;         // the hover look is shown
    bool pressed = false;       // a press in progress, or Value set True
    bool hotEntry = false;      // the pointer came in while nothing was pressed
    bool groupClicked = false;  // a latched group button has reported its click
    bool recheck = false;       // the next hover poll looks even if the pointer stood still
    bool hasFocus = false;      // kept only with FocusRect
    bool noFrmFocus = false;    // NotFrmFocus(True)
    // A designer's picture larger than the icons was set since ButtonShow last left 0.
    bool bigPicture = false;
    FrameLook frame = FrameLook::Normal;  // the frame drawn last
    ImageLook image = ImageLook::Normal;  // the image loaded last
    EnumSwitched switched = EnumSwitched::bFalse;
    platform::POINT lastCursor{0, 0};  // where the hover poll last saw the pointer

    [[nodiscard]] bool Latched() const { return phase == PressPhase::Latched; }
};

// The persisted properties the painter reads; the Button's accessors are these fields.
struct ButtonLook {
    // The designer's up, over and down pictures, by image look.
    std::array<std::shared_ptr<host::StdPicture>, 3> pictures;
    bool enabled = false;
    bool iconSize = false;
    EnumStyle style = EnumStyle::nOff;
    bool gradient = false;
    EnumButton show = EnumButton::Benutzerdefiniert;
    EnumTextAlignment textAlignment = EnumTextAlignment::tOff;
    host::OLE_COLOR buttonColor = 0;
    std::string caption;
    Enum3D font3D = Enum3D::pTop;
    host::OLE_COLOR fontColor = 0;
    host::OLE_COLOR fontShadowColor = 0;
    std::shared_ptr<host::StdFont> font;

    [[nodiscard]] bool IsXP() const {
        return style == EnumStyle::XPStyle || style == EnumStyle::XPcool;
    }
    // Cool and XPcool rest without a frame.
    [[nodiscard]] bool RestsPlain() const {
        return style == EnumStyle::Cool || style == EnumStyle::XPcool;
    }
    [[nodiscard]] bool ShowsCaption() const {
        return textAlignment == EnumTextAlignment::tRight ||
               textAlignment == EnumTextAlignment::tBottom;
    }
};

}  // namespace korvex::controls
