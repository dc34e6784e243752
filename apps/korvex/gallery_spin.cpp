// The gallery's Spin section: every border style in both modes, focused, with a selection, and
// with an arrow held.

#include <string>

#include "gallery.hpp"

namespace korvex::cli::gallery {

namespace {

// Numeric and time spinners: 1200 x 375 twips each. A restored time shows 00:00 until the mode
// is switched again, since the mode is read before the time; the scripts below do that.
Json Spinner(const std::string& name, std::int32_t left, std::int32_t top, int style, bool time) {
    Json props = {
        {"BorderStyle", style}, {"Max", Json{{"Integer", 500}}}, {"Value", Json{{"Integer", 125}}}};
    if (time) props["TimeState"] = true;
    return Control("Spin", name, left, top, 1200, 375, props);
}

// Sets the time 09:41 and switches time mode on again, so the field shows it.
std::string ShowTime(const std::string& name) {
    return "set " + name + ".CurrTimeH 9\nset " + name + ".CurrTimeM 41\nset " + name +
           ".TimeState True\n";
}

}  // namespace

Section SpinSection() {
    Json styles = Json::array();
    for (int style = 0; style < 3; ++style) {
        styles.push_back(
            Spinner("N" + std::to_string(style), 240 + style * 1440, 240, style, false));
        styles.push_back(
            Spinner("T" + std::to_string(style), 240 + style * 1440, 840, style, true));
    }
    Json one = Json::array({Spinner("S1", 240, 240, 1, false)});
    Json time = Json::array({Spinner("S1", 240, 240, 2, true)});
    return {"Spin",
            {{"spin-styles.png",
              "BorderStyle sOff, sFlat and sStandard; numeric above (125), time below (09:41)",
              Form(4680, 1500, styles), ShowTime("T0") + ShowTime("T1") + ShowTime("T2")},
             {"spin-focused.png", "focused, the caret after the value", Form(1680, 840, one),
              "focus S1\nkey down 35\n"},
             {"spin-selection.png", "time mode, focused, the minutes selected with Shift+Left",
              Form(1680, 840, time),
              "focus S1\nkey down 35\nkey down 37 shift=1\nkey down 37 shift=1\n"},
             {"spin-pressed.png", "the upper arrow held down (the value steps up once)",
              Form(1680, 840, one), "move S1 -12 6\ndown\n"}}};
}

}  // namespace korvex::cli::gallery
