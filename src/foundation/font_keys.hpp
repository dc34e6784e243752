#pragma once
// The single font attributes a captioned control saves beside its "Font" key ("FontBold",
// "FontItalic", "FontName", "FontSize", "FontStrikethru"). They are read after "Font" and put
// onto the caption's font, so a form edited by hand can change one attribute alone.

#include <string>

#include "host/font.hpp"

namespace korvex::foundation {

// What the bag gave for each key (its defaults when the keys are missing: false, "", 0).
struct FontKeys {
    bool bold = false;
    bool italic = false;
    std::string name;
    float size = 0;
    bool strikethru = false;
};

// The name is taken as it stands, the empty name of a bag without the key included (the drawing
// device then draws in its default face). A size of 0, the key's default, leaves the size "Font"
// gave: every font has a size, so no control ever writes 0. Any other size is the font's, with
// the host's error 380 for one no font can take.
void RestoreFontKeys(host::StdFont& font, const FontKeys& keys);

}  // namespace korvex::foundation
