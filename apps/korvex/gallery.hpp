#pragma once
// The gallery's building blocks. A tile is one PNG with a caption in index.html, made one of two
// ways:
//
//   - a form snapshot: the form runs on a fresh virtual screen, a script brings it into the look
//     the tile shows, and the form's window (or the topmost one) is the picture;
//   - a sheet: a labelled grid of pictures. Each cell is one control's window, captured after the
//     script lines that bring that control into the cell's look, or a picture drawn directly.
//     Cells that need the pointer in different places come from different captures in turn (one
//     pointer cannot hover two buttons), and looks that need a different form come from separate
//     runs, each on its own virtual screen. The grid is drawn with the platform's text calls.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/json_codec.hpp"

namespace korvex::cli::gallery {

using host::json::Json;

// One cell of a sheet: the window of `control` once `steps` (script lines) have run; `after`
// runs once the picture is taken, to leave the form ready for the next capture.
struct Capture {
    int row = 0;
    int column = 0;
    std::string control;
    std::string steps;
    std::string after = {};
    std::string label = {};  // under the picture
};

// One form on its own virtual screen, captured cell by cell in the order given.
struct Run {
    Json form;
    std::vector<Capture> captures;
};

// A picture drawn without a form (pixels 0x00RRGGBB, top-down).
struct DrawnCell {
    int row = 0;
    int column = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint32_t> pixels;
    std::string label = {};
};

struct Sheet {
    std::vector<std::string> columnHeads;  // may be empty
    std::vector<std::string> rowHeads;     // may be empty
    std::vector<Run> runs;
    std::vector<DrawnCell> drawn;
    // The sheet's background, 0x00BBGGRR; the platform's button face when unset.
    std::uint32_t background = 0xFFFFFFFF;
};

struct Tile {
    std::string file;         // PNG name
    std::string title;        // caption under the picture
    Json form;                // a form snapshot's form file
    std::string script = {};  // run before the picture is taken
    // "form" for the form's window, "top" for the topmost window (a modal box the script opened),
    // "screen" for the screen where the form lies, with what floats over it (a tooltip).
    std::string capture = "form";
    Sheet sheet = {};  // a sheet instead of a form snapshot when it has runs or drawn cells
};

struct Section {
    std::string title;
    std::vector<Tile> tiles;
};

// A form file (sizes in twips) and one of its controls, as korvex run reads them.
Json Form(std::int32_t width, std::int32_t height, Json controls,
          std::uint32_t backColor = 0x8000000F);
Json Control(const std::string& progId, const std::string& name, std::int32_t left,
             std::int32_t top, std::int32_t width, std::int32_t height,
             Json properties = Json::object());
Json Font(const std::string& name, double size, bool bold);

// Renders one tile into `out`; false (with a note on stderr) when it could not be made, for
// example because the library lacks a control it needs.
bool RenderTile(const Tile& tile, const std::filesystem::path& out);

// The button sections (gallery_buttons.cpp).
std::vector<Section> ButtonSections();
// The value-control sections (gallery_value.cpp).
std::vector<Section> ValueSections();
// The Spin section (gallery_spin.cpp).
Section SpinSection();

}  // namespace korvex::cli::gallery
