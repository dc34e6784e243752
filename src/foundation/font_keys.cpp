#include "foundation/font_keys.hpp"

namespace korvex::foundation {

void RestoreFontKeys(host::StdFont& font, const FontKeys& keys) {
    font.Bold(keys.bold);
    font.Italic(keys.italic);
    font.Name(keys.name);
    if (keys.size != 0) font.Size(keys.size);
    font.Strikethrough(keys.strikethru);
}

}  // namespace korvex::foundation
