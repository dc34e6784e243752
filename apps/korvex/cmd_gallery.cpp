// korvex gallery --out DIR: every control of the library in its main looks, each tile a small
// form run on a fresh virtual screen (with a script for hover, pressed or focused looks) or a
// sheet of such captures (gallery.hpp), plus an index.html that shows them in a labelled grid.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "base/file.hpp"
#include "commands.hpp"
#include "driver/gdi_script.hpp"
#include "driver/script_runner.hpp"
#include "gallery.hpp"
#include "host/json_codec.hpp"
#include "platform/png.hpp"
#include "platform/sim/sim_gdi.hpp"
#include "sampler_script.hpp"
#include "session.hpp"

namespace korvex::cli {

namespace gallery {

Json Form(std::int32_t width, std::int32_t height, Json controls, std::uint32_t backColor) {
    return Json{{"Form",
                 {{"Name", "Gallery"},
                  {"Caption", "Gallery"},
                  {"Width", width},
                  {"Height", height},
                  {"BackColor", backColor}}},
                {"Controls", std::move(controls)}};
}

Json Control(const std::string& progId, const std::string& name, std::int32_t left,
             std::int32_t top, std::int32_t width, std::int32_t height, Json properties) {
    return Json{{"ProgID", "Korvex_Tools." + progId},
                {"Name", name},
                {"Left", left},
                {"Top", top},
                {"Width", width},
                {"Height", height},
                {"Properties", std::move(properties)}};
}

Json Font(const std::string& name, double size, bool bold) {
    return Json{{"Font", {{"Name", name}, {"Size", size}, {"Bold", bold}}}};
}

}  // namespace gallery

namespace {

using namespace gallery;

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
        controls.push_back(Control(
            "Line3D", "H" + std::to_string(w), 240, 240 + (w - 1) * 360, 2400, 30,
            {{"Orientation", Json{{"Integer", 0}}}, {"BorderWidth", Json{{"Integer", w}}}}));
        controls.push_back(Control(
            "Line3D", "V" + std::to_string(w), 3000 + (w - 1) * 360, 240, 30, 1200,
            {{"Orientation", Json{{"Integer", 1}}}, {"BorderWidth", Json{{"Integer", w}}}}));
    }
    return {"Line3D",
            {{"line3d.png", "horizontal and vertical, BorderWidth 1, 2 and 3",
              Form(4200, 1680, controls)}}};
}

Section Label3DSection() {
    static const char* const kModes[] = {"0 - Schatten Unten Rechts",
                                         "1 - Schatten Unten",
                                         "2 - Schatten Unten Links",
                                         "3 - Schatten Links",
                                         "4 - Schatten Oben Links",
                                         "5 - Oben",
                                         "6 - Oben Rechts",
                                         "7 - Rechts",
                                         "8 - Standard"};
    auto grid = [&](bool transparent) {
        Json controls = Json::array();
        for (int mode = 0; mode < 9; ++mode) {
            Json props = Label3DFont({{"Caption", kModes[mode]},
                                      {"TextMode", Json{{"Integer", mode}}},
                                      {"xDist", Json{{"Integer", 30}}},
                                      {"BackStyle", transparent ? 1 : 0}},
                                     "Arial", 12, true);
            controls.push_back(Control("Label3D", "L" + std::to_string(mode),
                                       120 + (mode % 3) * 3720, 120 + (mode / 3) * 600, 3600, 480,
                                       props));
        }
        return controls;
    };
    Json focused = Json::array({Control("Label3D", "L1", 120, 120, 3600, 480,
                                        Label3DFont({{"Caption", "Fokus: Enter klickt"},
                                                     {"FocusRect", true},
                                                     {"xDist", Json{{"Integer", 30}}}},
                                                    "Arial", 12, true))});
    return {"Label3D",
            {{"label3d-opaque.png",
              "the nine text modes, opaque (the button face behind the text) on a white form",
              Form(11400, 2040, grid(false), 0x00FFFFFF)},
             {"label3d-transparent.png", "the nine text modes, transparent on a white form",
              Form(11400, 2040, grid(true), 0x00FFFFFF)},
             {"label3d-focused.png", "FocusRect on, focused: the shadow takes the focus colour",
              Form(3840, 720, focused), "focus L1\n"}}};
}

Section FramesSection() {
    static const char* const kStyles[] = {"0 Off_Frame",   "1 Standard_Down", "2 Standard_Up",
                                          "3 Bright_Down", "4 Bright_Up",     "5 Dark_Down",
                                          "6 Dark_UP",     "7 Dark_Frame",    "8 Standard_Frame",
                                          "9 Flat_Frame",  "10 XP_Frame"};
    Json styles = Json::array();
    for (int style = 0; style < 11; ++style) {
        styles.push_back(
            Control("Frames", "F" + std::to_string(style), 120 + (style % 4) * 2040,
                    120 + (style / 4) * 1200, 1920, 1080,
                    {{"Caption", kStyles[style]}, {"BorderStyle", Json{{"Integer", style}}}}));
    }
    static const char* const kAlign[] = {"fLeft", "fCenter", "fRight"};
    static const char* const kTop[] = {"fStandard", "fUnderBorder", "fOverBorder"};
    Json placements = Json::array();
    for (int top = 0; top < 3; ++top) {
        for (int align = 0; align < 3; ++align) {
            placements.push_back(
                Control("Frames", "A" + std::to_string(top * 3 + align), 120 + align * 2400,
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
    return {
        "Hyperlink",
        {link("hyperlink-link.png", "link colour", ""),
         link("hyperlink-hover.png", "hover colour (pointer over the link)", "move H1\nwait 100\n"),
         link("hyperlink-active.png", "active colour (just clicked)", "move H1\nclick\nwait 100\n"),
         link("hyperlink-visited.png", "visited colour (clicked, then released beside the link)",
              "move H1\nclick\nmove H1 185 35\nclick\nwait 100\n")}};
}

Section IconsSection() {
    Json controls = Json::array({Control("Icons", "I1", 240, 240, 570, 570)});
    return {"Icons",
            {{"icons.png", "the Icons control on a form: a 38-pixel raised square",
              Form(1080, 1080, controls)}}};
}

Section AboutSection() {
    Json controls = Json::array({Control("Hyperlink", "H1", 240, 240, 2880, 600)});
    return {"About box",
            {{"about.png", "frmAbout, opened by ShowAboutBox", Form(3360, 1080, controls),
              "call H1.ShowAboutBox\nsnapshot about.png top\nmove top -11 11\nclick\n", "top"}}};
}

// ---------------------------------------------------------------------------------------------
// Rendering

// False (with a note) when the library lacks a class the form needs.
bool HasClasses(const Session& session, const Json& form, const std::string& file) {
    for (const Json& control : form["Controls"]) {
        const std::string progId = control["ProgID"].get<std::string>();
        if (!session.context.Classes().Find(progId)) {
            std::fprintf(stderr, "korvex gallery: %s skipped: %s is not in the library\n",
                         file.c_str(), progId.c_str());
            return false;
        }
    }
    return true;
}

Section RulerSection() {
    const auto ruler = [](const std::string& name, std::int32_t left, std::int32_t top,
                          std::int32_t width, std::int32_t height, int mode, int zoom,
                          int orientation) {
        return Control("Ruler", name, left, top, width, height,
                       {{"Mode", Json{{"Integer", mode}}},
                        {"SmallZoom", Json{{"Integer", zoom}}},
                        {"Orientation", Json{{"Integer", orientation}}},
                        {"Mode3", true},
                        {"Mode4", true},
                        {"Mode4Check", true}});
    };
    Json grid = Json::array();
    for (int mode = 0; mode < 4; ++mode)
        for (int zoom = 0; zoom < 4; ++zoom)
            grid.push_back(ruler("R" + std::to_string(mode) + std::to_string(1 << zoom), 240,
                                 240 + (mode * 4 + zoom) * 480, 7200, 390, mode, 1 << zoom, 0));
    Json vertical = Json::array();
    for (int mode = 0; mode < 4; ++mode)
        vertical.push_back(
            ruler("V" + std::to_string(mode), 240 + mode * 600, 240, 390, 4200, mode, 1, 1));
    Json one = Json::array({ruler("R", 240, 240, 6000, 450, 0, 1, 0)});
    return {"Ruler",
            {{"ruler-units.png",
              "Centimeter, Twip * 1000, Inch and Pixel * 100 (groups of rows), each at SmallZoom "
              "1, 2, 4 and 8",
              Form(7680, 8280, grid)},
             {"ruler-vertical.png", "vertical, the four units at SmallZoom 1, marker at 1000",
              Form(2760, 4680, vertical),
              "call V0.MouseMoved 1000\ncall V1.MouseMoved 1000\ncall V2.MouseMoved 1000\n"
              "call V3.MouseMoved 1000\n"},
             {"ruler-marker.png", "the marker at 2000 after one at 1000",
              Form(6480, 930, one), "call R.MouseMoved 1000\ncall R.MouseMoved 2000\n"},
             {"ruler-menu.png",
              "the right-click menu (Mode3 and Mode4 shown, Hilfslinien checked), pointer on Inch",
              Form(6480, 930, one),
              "move R 60 10\nclick right\nkey down down\nkey down down\nkey down down\n"
              "snapshot ruler-menu.png\nmenu escape\n",
              "top"}}};
}

// A tile whose script raised a host error shows something other than its title says.
void ReportErrors(const std::string& file, const std::string& log) {
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("error ", 0) == 0)
            std::fprintf(stderr, "korvex gallery: %s: %s\n", file.c_str(), line.c_str());
    }
}

bool RenderSnapshot(const Tile& tile, const std::filesystem::path& out) {
    Session session;
    if (!HasClasses(session, tile.form, tile.file)) return false;
    session.Open(tile.form.dump());
    std::ostringstream log;
    host::ScriptRunner runner(session.form, session.platform.driver(), log, out);
    std::string script = tile.script;
    if (tile.capture == "form") script += "snapshot " + tile.file + " form\n";
    runner.Run(script);
    ReportErrors(tile.file, log.str());
    if (tile.capture == "screen") {
        // The screen cut to the form's rectangle: a tooltip is no part of the form's window.
        platform::RECT r;
        if (!session.platform.windows().GetWindowRect(session.form.FormWindow(), &r)) return false;
        const std::vector<std::uint32_t> screen = session.platform.driver().ComposeScreen();
        const platform::SIZE size = session.platform.windows().ScreenSize();
        const std::int32_t width = size.cx;
        r = {std::max(r.left, 0), std::max(r.top, 0), std::min(r.right, size.cx),
             std::min(r.bottom, size.cy)};
        if (r.IsEmpty()) return false;
        std::vector<std::uint32_t> cut;
        cut.reserve(static_cast<std::size_t>(r.Width()) * static_cast<std::size_t>(r.Height()));
        for (std::int32_t y = r.top; y < r.bottom; ++y) {
            const auto row = screen.begin() + static_cast<std::ptrdiff_t>(y) * width + r.left;
            cut.insert(cut.end(), row, row + r.Width());
        }
        platform::WritePng((out / tile.file).string(), {cut.data(), r.Width(), r.Height()});
    }
    return std::filesystem::exists(out / tile.file);
}

// ---- sheets

struct Picture {
    std::int32_t width = 0, height = 0;
    std::vector<std::uint32_t> pixels;  // 0x00RRGGBB
    std::string label;
};

using Grid = std::map<std::pair<int, int>, Picture>;

// Runs one form and captures its cells into `grid`; false when the form cannot run here.
bool CaptureRun(const Run& run, const std::string& file, const std::filesystem::path& out,
                Grid& grid) {
    Session session;
    if (!HasClasses(session, run.form, file)) return false;
    session.Open(run.form.dump());
    std::ostringstream log;
    host::ScriptRunner runner(session.form, session.platform.driver(), log, out);
    platform::Windows& windows = session.platform.windows();
    for (const Capture& capture : run.captures) {
        runner.Run(capture.steps);
        host::Site* site = session.form.Find(capture.control);
        platform::RECT r;
        const platform::HWND window = site ? site->GetControl().SurfaceWindow() : platform::HWND{};
        if (!window || !windows.GetWindowRect(window, &r)) {
            std::fprintf(stderr, "korvex gallery: %s: no window for %s\n", file.c_str(),
                         capture.control.c_str());
            return false;
        }
        grid[{capture.row, capture.column}] = {
            r.Width(), r.Height(), session.platform.driver().ComposeWindow(window), capture.label};
        runner.Run(capture.after);
    }
    ReportErrors(file, log.str());
    return true;
}

// Lays the grid out under its heads, row heads at the left, each picture centred in its column
// with its label below, and writes it as one PNG.
void WriteSheet(const Sheet& sheet, const Grid& grid, const std::filesystem::path& path) {
    constexpr std::int32_t kMargin = 10, kGap = 10, kLabelGap = 3;
    platform::sim::SimGdi gdi;
    const platform::HDC measure = gdi.CreateCompatibleDC(platform::HDC{});
    platform::LOGFONT logFont;
    logFont.lfHeight = -11;  // 8 points at 96 pixels per inch
    logFont.lfFaceName = "Arial";
    const platform::HFONT font = gdi.CreateFontIndirect(logFont);
    gdi.SelectObject(measure, font);
    auto extent = [&](const std::string& text) {
        platform::SIZE size{0, 0};
        if (!text.empty()) gdi.GetTextExtentPoint32(measure, text, &size);
        return size;
    };
    const std::int32_t line = extent("Ag").cy;

    int rows = static_cast<int>(sheet.rowHeads.size()),
        columns = static_cast<int>(sheet.columnHeads.size());
    for (const auto& [at, picture] : grid) {
        rows = std::max(rows, at.first + 1);
        columns = std::max(columns, at.second + 1);
    }
    std::vector<std::int32_t> widths(static_cast<std::size_t>(columns), 0),
        heights(static_cast<std::size_t>(rows), 0);
    std::int32_t headWidth = 0;
    for (const std::string& head : sheet.rowHeads)
        headWidth = std::max(headWidth, extent(head).cx + kGap);
    for (int c = 0; c < static_cast<int>(sheet.columnHeads.size()); ++c)
        widths[static_cast<std::size_t>(c)] =
            extent(sheet.columnHeads[static_cast<std::size_t>(c)]).cx;
    for (const auto& [at, picture] : grid) {
        auto& width = widths[static_cast<std::size_t>(at.second)];
        width = std::max({width, picture.width, extent(picture.label).cx});
        auto& height = heights[static_cast<std::size_t>(at.first)];
        height = std::max(height, picture.height + (picture.label.empty() ? 0 : kLabelGap + line));
    }
    std::vector<std::int32_t> lefts, tops;
    std::int32_t x = kMargin + headWidth,
                 y = kMargin + (sheet.columnHeads.empty() ? 0 : line + kLabelGap);
    for (std::int32_t width : widths) {
        lefts.push_back(x);
        x += width + kGap;
    }
    for (std::int32_t height : heights) {
        tops.push_back(y);
        y += height + kGap;
    }
    const std::int32_t sheetWidth = x - kGap + kMargin, sheetHeight = y - kGap + kMargin;

    const platform::HDC dc = gdi.CreateCompatibleDC(platform::HDC{});
    const platform::HBITMAP bitmap = gdi.CreateDIBSection32(sheetWidth, sheetHeight);
    gdi.SelectObject(dc, bitmap);
    gdi.SelectObject(dc, font);
    const platform::COLORREF background = sheet.background == 0xFFFFFFFF
                                              ? gdi.GetSysColor(platform::COLOR_BTNFACE)
                                              : sheet.background;
    const platform::HBRUSH brush = gdi.CreateSolidBrush(background);
    gdi.FillRect(dc, {0, 0, sheetWidth, sheetHeight}, brush);
    gdi.DeleteObject(brush);
    gdi.SetBkMode(dc, platform::TRANSPARENT);
    gdi.SetTextColor(dc, 0);
    for (std::size_t c = 0; c < sheet.columnHeads.size(); ++c) {
        const std::int32_t w = extent(sheet.columnHeads[c]).cx;
        gdi.TextOut(dc, lefts[c] + (widths[c] - w) / 2, kMargin, sheet.columnHeads[c]);
    }
    for (std::size_t r = 0; r < sheet.rowHeads.size(); ++r) {
        // Beside the middle of the row's pictures, leaving their labels out.
        std::int32_t pictureHeight = 0;
        for (const auto& [at, picture] : grid)
            if (at.first == static_cast<int>(r))
                pictureHeight = std::max(pictureHeight, picture.height);
        gdi.TextOut(dc, kMargin, tops[r] + (pictureHeight - line) / 2, sheet.rowHeads[r]);
    }
    const platform::PixelView pixels = gdi.BitmapPixels(bitmap);
    for (const auto& [at, picture] : grid) {
        const auto r = static_cast<std::size_t>(at.first), c = static_cast<std::size_t>(at.second);
        const std::int32_t left = lefts[c] + (widths[c] - picture.width) / 2, top = tops[r];
        for (std::int32_t py = 0; py < picture.height; ++py) {
            std::copy_n(picture.pixels.begin() + static_cast<std::ptrdiff_t>(py) * picture.width,
                        picture.width,
                        pixels.bits + static_cast<std::ptrdiff_t>(top + py) * sheetWidth + left);
        }
        if (!picture.label.empty()) {
            const std::int32_t w = extent(picture.label).cx;
            gdi.TextOut(dc, lefts[c] + (widths[c] - w) / 2, top + picture.height + kLabelGap,
                        picture.label);
        }
    }
    platform::WritePng(path.string(), gdi.BitmapPixels(bitmap));
    gdi.DeleteDC(dc);
    gdi.DeleteDC(measure);
    gdi.DeleteObject(bitmap);
    gdi.DeleteObject(font);
}

bool RenderSheet(const Tile& tile, const std::filesystem::path& out) {
    Grid grid;
    for (const Run& run : tile.sheet.runs) {
        if (!CaptureRun(run, tile.file, out, grid)) return false;
    }
    for (const DrawnCell& cell : tile.sheet.drawn)
        grid[{cell.row, cell.column}] = {cell.width, cell.height, cell.pixels, cell.label};
    if (grid.empty()) return false;
    WriteSheet(tile.sheet, grid, out / tile.file);
    return true;
}

void RenderSampler(const std::filesystem::path& out) {
    platform::sim::SimGdi gdi;
    const platform::PixelView pixels =
        platform::RunGdiScript(gdi, platform::ParseGdiScript(kSamplerScript));
    platform::WritePng((out / "sampler.png").string(), pixels);
}

std::string Escape(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '<')
            out += "&lt;";
        else if (c == '>')
            out += "&gt;";
        else if (c == '&')
            out += "&amp;";
        else
            out += c;
    }
    return out;
}

}  // namespace

bool gallery::RenderTile(const Tile& tile, const std::filesystem::path& out) {
    if (!tile.sheet.runs.empty() || !tile.sheet.drawn.empty()) return RenderSheet(tile, out);
    return RenderSnapshot(tile, out);
}

int RunGallery(Args args) {
    std::filesystem::path out = "gallery";
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--out" && i + 1 < args.size()) {
            out = std::string(args[++i]);
        } else {
            std::fprintf(stderr, "usage: korvex gallery --out DIR\n");
            return kExitUsage;
        }
    }
    MakeFolder(out);

    std::vector<Section> sections = {Line3DSection(), Label3DSection(), FramesSection(),
                                     HyperlinkSection(), IconsSection()};
    for (Section& section : ButtonSections()) sections.push_back(std::move(section));
    for (Section& section : ValueSections()) sections.push_back(std::move(section));
    sections.push_back(SpinSection());
    sections.push_back(RulerSection());
    sections.push_back(AboutSection());
    RenderSampler(out);

    std::ostringstream html;
    html << "<!DOCTYPE html>\n<html lang=\"de\"><head><meta charset=\"utf-8\"><title>Korvex Tools "
            "gallery</title>\n"
            "<style>body{font-family:sans-serif;background:#f4f4f4;margin:2em}"
            ".grid{display:flex;flex-wrap:wrap;gap:1.5em}figure{margin:0;background:#fff;padding:."
            "8em;"
            "border:1px solid #ccc}img{image-rendering:pixelated;display:block}"
            "figcaption{margin-top:.5em;font-size:.9em;color:#333}</style></head><body>\n"
            "<h1>Korvex Tools gallery</h1>\n";
    int rendered = 0;
    for (const Section& section : sections) {
        std::ostringstream figures;
        for (const Tile& tile : section.tiles) {
            if (!RenderTile(tile, out)) continue;
            ++rendered;
            figures << "<figure><img src=\"" << tile.file << "\" alt=\"" << Escape(tile.title)
                    << "\"><figcaption>" << Escape(tile.file) << ": " << Escape(tile.title)
                    << "</figcaption></figure>\n";
        }
        if (figures.str().empty()) continue;
        html << "<h2>" << Escape(section.title) << "</h2>\n<div class=\"grid\">\n"
             << figures.str() << "</div>\n";
    }
    html << "<h2>Drawing device</h2>\n<div class=\"grid\"><figure><img src=\"sampler.png\" "
            "alt=\"sampler\">"
            "<figcaption>sampler.png: every drawing "
            "primitive</figcaption></figure></div>\n</body></html>\n";
    WriteFileReplacing((out / "index.html").string(), html.str());
    std::printf("korvex gallery: %d pictures and index.html in %s\n", rendered + 1,
                out.string().c_str());
    return kExitOk;
}

}  // namespace korvex::cli
