// korvex gallery --out DIR: every control of the library in its main looks, each tile a small
// form run on a fresh virtual screen (with a script for hover, pressed or focused looks), plus
// an index.html that shows them in a labelled grid.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "commands.hpp"
#include "host/json_codec.hpp"
#include "host/script_runner.hpp"
#include "platform/gdi_script.hpp"
#include "platform/png.hpp"
#include "sampler_script.hpp"
#include "session.hpp"

namespace korvex::cli {

namespace {

using host::json::Json;

struct Tile {
    std::string file;   // PNG name
    std::string title;  // caption under the picture
    Json form;          // the form file
    std::string script = {};  // run before the picture is taken
    // "form" for the form's window, "top" for the topmost window (a modal box the script opened).
    std::string capture = "form";
};

struct Section {
    std::string title;
    std::vector<Tile> tiles;
};

Json Form(std::int32_t width, std::int32_t height, Json controls, std::uint32_t backColor = 0x8000000F) {
    return Json{{"Form", {{"Name", "Gallery"}, {"Caption", "Gallery"}, {"Width", width}, {"Height", height},
                          {"BackColor", backColor}}},
                {"Controls", std::move(controls)}};
}

Json Control(const std::string& progId, const std::string& name, std::int32_t left, std::int32_t top,
             std::int32_t width, std::int32_t height, Json properties = Json::object()) {
    return Json{{"ProgID", "Korvex_Tools." + progId}, {"Name", name},  {"Left", left},
                {"Top", top},                          {"Width", width}, {"Height", height},
                {"Properties", std::move(properties)}};
}

Json Font(const std::string& name, double size, bool bold) {
    return Json{{"Font", {{"Name", name}, {"Size", size}, {"Bold", bold}}}};
}

// A Label3D's font as a saved form holds it: the font and the single attributes that override it.
Json Label3DFont(Json props, const std::string& name, std::int16_t size, bool bold) {
    props["Font"] = Font(name, size, bold);
    props["FontBold"] = Json{{"Integer", bold ? -1 : 0}};
    props["FontName"] = name;
    props["FontSize"] = Json{{"Integer", size}};
    return props;
}

// ---------------------------------------------------------------------------------------------
// The tiles

Section Line3DSection() {
    Json controls = Json::array();
    for (int w = 1; w <= 3; ++w) {
        controls.push_back(Control("Line3D", "H" + std::to_string(w), 240, 240 + (w - 1) * 360, 2400, 30,
                                   {{"Orientation", Json{{"Integer", 0}}}, {"BorderWidth", Json{{"Integer", w}}}}));
        controls.push_back(Control("Line3D", "V" + std::to_string(w), 3000 + (w - 1) * 360, 240, 30, 1200,
                                   {{"Orientation", Json{{"Integer", 1}}}, {"BorderWidth", Json{{"Integer", w}}}}));
    }
    return {"Line3D",
            {{"line3d.png", "horizontal and vertical, BorderWidth 1, 2 and 3", Form(4200, 1680, controls)}}};
}

Section Label3DSection() {
    static const char* const kModes[] = {"0 - Schatten Unten Rechts", "1 - Schatten Unten", "2 - Schatten Unten Links",
                                         "3 - Schatten Links",        "4 - Schatten Oben Links", "5 - Oben",
                                         "6 - Oben Rechts",           "7 - Rechts",          "8 - Standard"};
    auto grid = [&](bool transparent) {
        Json controls = Json::array();
        for (int mode = 0; mode < 9; ++mode) {
            Json props = Label3DFont({{"Caption", kModes[mode]}, {"TextMode", Json{{"Integer", mode}}},
                                      {"xDist", Json{{"Integer", 30}}}, {"BackStyle", transparent ? 1 : 0}},
                                     "Arial", 12, true);
            controls.push_back(Control("Label3D", "L" + std::to_string(mode), 120 + (mode % 3) * 3720,
                                       120 + (mode / 3) * 600, 3600, 480, props));
        }
        return controls;
    };
    Json focused = Json::array({Control("Label3D", "L1", 120, 120, 3600, 480,
                                        Label3DFont({{"Caption", "Fokus: Enter klickt"}, {"FocusRect", true},
                                                     {"xDist", Json{{"Integer", 30}}}},
                                                    "Arial", 12, true))});
    return {"Label3D",
            {{"label3d-opaque.png", "the nine text modes, opaque (the button face behind the text) on a white form",
              Form(11400, 2040, grid(false), 0x00FFFFFF)},
             {"label3d-transparent.png", "the nine text modes, transparent on a white form",
              Form(11400, 2040, grid(true), 0x00FFFFFF)},
             {"label3d-focused.png", "FocusRect on, focused: the shadow takes the focus colour",
              Form(3840, 720, focused), "focus L1\n"}}};
}

Section FramesSection() {
    static const char* const kStyles[] = {"0 Off_Frame",  "1 Standard_Down", "2 Standard_Up",  "3 Bright_Down",
                                          "4 Bright_Up",  "5 Dark_Down",     "6 Dark_UP",      "7 Dark_Frame",
                                          "8 Standard_Frame", "9 Flat_Frame", "10 XP_Frame"};
    Json styles = Json::array();
    for (int style = 0; style < 11; ++style) {
        styles.push_back(Control("Frames", "F" + std::to_string(style), 120 + (style % 4) * 2040,
                                 120 + (style / 4) * 1200, 1920, 1080,
                                 {{"Caption", kStyles[style]}, {"BorderStyle", Json{{"Integer", style}}}}));
    }
    static const char* const kAlign[] = {"fLeft", "fCenter", "fRight"};
    static const char* const kTop[] = {"fStandard", "fUnderBorder", "fOverBorder"};
    Json placements = Json::array();
    for (int top = 0; top < 3; ++top) {
        for (int align = 0; align < 3; ++align) {
            placements.push_back(Control("Frames", "A" + std::to_string(top * 3 + align), 120 + align * 2400,
                                         120 + top * 1200, 2280, 1080,
                                         {{"Caption", std::string(kAlign[align]) + ", " + kTop[top]},
                                          {"Alignment", align},
                                          {"AlignmentTop", top}}));
        }
    }
    return {"Frames",
            {{"frames-styles.png", "the eleven border styles", Form(8280, 3840, styles)},
             {"frames-placement.png", "caption alignments (columns) and vertical positions (rows)",
              Form(7440, 3720, placements)}}};
}

Section HyperlinkSection() {
    auto link = [](const std::string& file, const std::string& title, const std::string& script) {
        Json controls = Json::array({Control("Hyperlink", "H1", 240, 240, 2880, 600,
                                             {{"Caption", "www.korvex-tools.de"},
                                              {"Url", "http://www.korvex-tools.de"},
                                              {"AutoSizeH", false},
                                              {"FontUnderline", Json{{"Integer", -1}}}})});
        return Tile{file, title, Form(3360, 1080, controls), script};
    };
    return {"Hyperlink",
            {link("hyperlink-link.png", "link colour", ""),
             link("hyperlink-hover.png", "hover colour (pointer over the link)", "move H1\nwait 100\n"),
             link("hyperlink-active.png", "active colour (just clicked)", "move H1\nclick\nwait 100\n"),
             link("hyperlink-visited.png", "visited colour (clicked, then released beside the link)",
                  "move H1\nclick\nmove H1 185 35\nclick\nwait 100\n")}};
}

Section IconsSection() {
    Json controls = Json::array({Control("Icons", "I1", 240, 240, 570, 570)});
    return {"Icons", {{"icons.png", "the Icons control on a form: a 38-pixel raised square", Form(1080, 1080, controls)}}};
}

Section AboutSection() {
    Json controls = Json::array({Control("Hyperlink", "H1", 240, 240, 2880, 600)});
    return {"About box",
            {{"about.png", "frmAbout, opened by ShowAboutBox", Form(3360, 1080, controls),
              "call H1.ShowAboutBox\nsnapshot about.png top\nmove top -11 11\nclick\n", "top"}}};
}

// ---------------------------------------------------------------------------------------------
// Rendering

// Renders one tile; false (with a note) when the library lacks a control the tile needs.
bool RenderTile(const Tile& tile, const std::filesystem::path& out) {
    Session session;
    for (const Json& control : tile.form["Controls"]) {
        const std::string progId = control["ProgID"].get<std::string>();
        if (!session.context.Classes().Find(progId)) {
            std::fprintf(stderr, "korvex gallery: %s skipped: %s is not in the library\n", tile.file.c_str(),
                         progId.c_str());
            return false;
        }
    }
    session.Open(tile.form.dump());
    std::ostringstream log;
    host::ScriptRunner runner(session.form, log, out);
    std::string script = tile.script;
    if (tile.capture == "form") script += "snapshot " + tile.file + " form\n";
    runner.Run(script);
    // A tile whose script raised a host error shows something other than its title says.
    std::istringstream lines(log.str());
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("error ", 0) == 0) std::fprintf(stderr, "korvex gallery: %s: %s\n", tile.file.c_str(), line.c_str());
    }
    return std::filesystem::exists(out / tile.file);
}

void RenderSampler(const std::filesystem::path& out) {
    platform::sim::SimGdi gdi;
    const platform::PixelView pixels = platform::RunGdiScript(gdi, platform::ParseGdiScript(kSamplerScript));
    platform::WritePng((out / "sampler.png").string(), pixels);
}

std::string Escape(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '<') out += "&lt;";
        else if (c == '>') out += "&gt;";
        else if (c == '&') out += "&amp;";
        else out += c;
    }
    return out;
}

}  // namespace

int RunGallery(Args args) {
    std::filesystem::path out = "gallery";
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--out" && i + 1 < args.size()) {
            out = std::string(args[++i]);
        } else {
            std::fprintf(stderr, "usage: korvex gallery --out DIR\n");
            return 2;
        }
    }
    std::filesystem::create_directories(out);

    std::vector<Section> sections = {Line3DSection(), Label3DSection(), FramesSection(), HyperlinkSection(),
                                     IconsSection(), AboutSection()};
    RenderSampler(out);

    std::ostringstream html;
    html << "<!DOCTYPE html>\n<html lang=\"de\"><head><meta charset=\"utf-8\"><title>Korvex Tools gallery</title>\n"
            "<style>body{font-family:sans-serif;background:#f4f4f4;margin:2em}"
            ".grid{display:flex;flex-wrap:wrap;gap:1.5em}figure{margin:0;background:#fff;padding:.8em;"
            "border:1px solid #ccc}img{image-rendering:pixelated;display:block}"
            "figcaption{margin-top:.5em;font-size:.9em;color:#333}</style></head><body>\n"
            "<h1>Korvex Tools gallery</h1>\n";
    int rendered = 0;
    for (const Section& section : sections) {
        std::ostringstream figures;
        for (const Tile& tile : section.tiles) {
            if (!RenderTile(tile, out)) continue;
            ++rendered;
            figures << "<figure><img src=\"" << tile.file << "\" alt=\"" << Escape(tile.title) << "\"><figcaption>"
                    << Escape(tile.file) << ": " << Escape(tile.title) << "</figcaption></figure>\n";
        }
        if (figures.str().empty()) continue;
        html << "<h2>" << Escape(section.title) << "</h2>\n<div class=\"grid\">\n" << figures.str() << "</div>\n";
    }
    html << "<h2>Drawing device</h2>\n<div class=\"grid\"><figure><img src=\"sampler.png\" alt=\"sampler\">"
            "<figcaption>sampler.png: every drawing primitive</figcaption></figure></div>\n</body></html>\n";
    std::ofstream((out / "index.html").string()) << html.str();
    std::printf("korvex gallery: %d pictures and index.html in %s\n", rendered + 1, out.string().c_str());
    return 0;
}

}  // namespace korvex::cli
