// The gallery's Button sections and the icon collection sheet.
//
//   - every border style in every state, with and without gradient (one run per state: one
//     pointer cannot hover two buttons, so the pointer visits the rows in turn);
//   - caption alignments and the 3D caption styles;
//   - the 50 built-in images in three states at both icon sizes;
//   - the focus rectangle and a designer's picture larger than the built-in images;
//   - the icon groups themselves, drawn straight from the resources.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "base/resources.hpp"
#include "controls/button/button.hpp"
#include "foundation/images.hpp"
#include "gallery.hpp"
#include "host/font.hpp"
#include "host/variant.hpp"
#include "platform/png.hpp"

namespace korvex::cli::gallery {

namespace {

constexpr std::int32_t kTwips = 15;  // per pixel on the gallery's virtual screen

// The looks a button is captured in, as columns of a sheet.
enum class Look { normal, hover, down, latched, disabled };

const char* LookName(Look look) {
    switch (look) {
        case Look::normal:
            return "normal";
        case Look::hover:
            return "hover";
        case Look::down:
            return "down";
        case Look::latched:
            return "latched";
        case Look::disabled:
            return "disabled";
    }
    return "";
}

// The script lines that bring `name` into `look`, and those that undo what would get in the way
// of the next capture in the same run. Normal keeps the pointer where the run started, away from
// every button. Latched is a switch whose Value is set with the pointer away; disabled comes from
// the form itself (EnabledB False), so both need nothing after.
struct Steps {
    std::string before, after;
};

Steps StepsFor(Look look, const std::string& name) {
    switch (look) {
        case Look::hover:
            return {"move " + name + "\nwait 100\n", ""};
        case Look::down:
            return {"move " + name + "\ndown\n", "up\n"};
        case Look::latched:
            return {"set " + name + ".Value True\n", ""};
        case Look::normal:
        case Look::disabled:
            break;
    }
    return {};
}

// Properties that a look needs in the form file.
void ApplyLook(Json& properties, Look look) {
    if (look == Look::latched) properties["OptionMode"] = 1;
    if (look == Look::disabled) properties["EnabledB"] = false;
}

Json ButtonControl(const std::string& name, std::int32_t x, std::int32_t y, std::int32_t w,
                   std::int32_t h, Json properties) {
    return Control("Button", name, x * kTwips, y * kTwips, w * kTwips, h * kTwips,
                   std::move(properties));
}

std::string EnumName(std::int32_t value) {
    return std::string(host::EnumOf<controls::EnumButton>().NameOf(value));
}

// ---------------------------------------------------------------------------------------------
// Border styles

Tile StylesTile(bool gradient) {
    static const char* const kStyles[] = {"nOff",  "Cool",    "Flat",   "nStandard",
                                          "extra", "XPStyle", "XPcool", "XPflat"};
    constexpr Look kLooks[] = {Look::normal, Look::hover, Look::down, Look::latched,
                               Look::disabled};
    Sheet sheet;
    for (Look look : kLooks) sheet.columnHeads.push_back(LookName(look));
    for (int style = 0; style < 8; ++style)
        sheet.rowHeads.push_back(std::to_string(style) + " " + kStyles[style]);
    for (int column = 0; column < 5; ++column) {
        const Look look = kLooks[column];
        Run run;
        Json controls = Json::array();
        for (int style = 0; style < 8; ++style) {
            const std::string name = "B" + std::to_string(style);
            Json properties = {{"BorderStyle", style}, {"Gradient", gradient}, {"Caption", "OK"}};
            ApplyLook(properties, look);
            controls.push_back(ButtonControl(name, 8, 8 + style * 48, 120, 40, properties));
            const Steps steps = StepsFor(look, name);
            run.captures.push_back({style, column, name, steps.before, steps.after});
        }
        run.form = Form(140 * kTwips, (16 + 8 * 48) * kTwips, controls);
        sheet.runs.push_back(std::move(run));
    }
    const std::string which = gradient ? "gradient" : "plain";
    return {"buttons-styles-" + which + ".png",
            std::string("the eight BorderStyle values (rows) normal, hovered, held down, latched "
                        "(a switch with "
                        "Value True) and disabled (EnabledB False); Gradient ") +
                (gradient ? "True" : "False"),
            {},
            "",
            "form",
            std::move(sheet)};
}

// ---------------------------------------------------------------------------------------------
// Caption alignments and 3D captions

Tile TextTile() {
    static const char* const kAlignments[] = {"tOff", "Arrow", "tRight", "tBottom"};
    static const char* const k3D[] = {"pTop", "pTopOver", "pDown", "pDownOver", "pStandard"};
    Sheet sheet;
    sheet.rowHeads = {"TextAlignment", "Font3D", "Font3D, hovered"};
    Run run;
    Json controls = Json::array();
    for (int a = 0; a < 4; ++a) {
        const std::string name = "A" + std::to_string(a);
        controls.push_back(ButtonControl(name, 8 + a * 136, 8, 120, 40,
                                         {{"TextAlignment", a}, {"Caption", "Weiter"}}));
        run.captures.push_back({0, a, name, "", "", std::to_string(a) + " " + kAlignments[a]});
    }
    // A large bold caption on a plain face with a grey copy, where the one-pixel offset shows best.
    for (int p = 0; p < 5; ++p) {
        const std::string name = "P" + std::to_string(p);
        controls.push_back(ButtonControl(name, 8 + p * 136, 80, 120, 40,
                                         {{"Font3D", p},
                                          {"Gradient", false},
                                          {"ButtonShow", 51},
                                          {"Caption", "Korvex"},
                                          {"FontShadowColor", 0x999999},
                                          {"Font", Font("Arial", 14, true)}}));
        run.captures.push_back({1, p, name, "", "", std::to_string(p) + " " + k3D[p]});
    }
    for (int p : {1, 3}) {
        const std::string name = "P" + std::to_string(p);
        run.captures.push_back(
            {2, p, name, "move " + name + "\nwait 100\n", "", std::to_string(p) + " " + k3D[p]});
    }
    run.form = Form(700 * kTwips, 140 * kTwips, controls);
    sheet.runs.push_back(std::move(run));
    return {"buttons-text.png",
            "TextAlignment tOff, Arrow, tRight, tBottom; the five Font3D styles (the copy behind "
            "the caption, "
            "here grey), "
            "pTopOver and pDownOver also hovered",
            {},
            "",
            "form",
            std::move(sheet)};
}

// ---------------------------------------------------------------------------------------------
// The built-in images

Tile ImagesTile(bool iconSize, Look look) {
    constexpr int kColumns = 10;
    const std::int32_t side = iconSize ? 40 : 26;
    Sheet sheet;
    Run run;
    Json controls = Json::array();
    for (int image = 1; image <= 50; ++image) {
        const int row = (image - 1) / kColumns, column = (image - 1) % kColumns;
        const std::string name = "I" + std::to_string(image);
        controls.push_back(
            ButtonControl(name, 8 + column * (side + 8), 8 + row * (side + 8), side, side,
                          {{"ButtonShow", image}, {"TextAlignment", 0}, {"IconSize", iconSize}}));
        const Steps steps = StepsFor(look, name);
        run.captures.push_back({row, column, name, steps.before, steps.after,
                                std::to_string(image) + " " + EnumName(image)});
    }
    run.form =
        Form((16 + kColumns * (side + 8)) * kTwips, (16 + 5 * (side + 8)) * kTwips, controls);
    sheet.runs.push_back(std::move(run));
    const std::string size = iconSize ? "32" : "16";
    return {"buttons-images" + size + "-" + LookName(look) + ".png",
            std::string("ButtonShow 1 to 50, IconSize ") + (iconSize ? "True" : "False") + ", " +
                LookName(look) +
                (iconSize ? " (41 to 50 have no 32-pixel images and keep their own)" : ""),
            {},
            "",
            "form",
            std::move(sheet)};
}

// ---------------------------------------------------------------------------------------------
// Focus rectangle and a large picture

Tile FocusTile() {
    Sheet sheet;
    sheet.columnHeads = {"2 Flat", "5 XPStyle"};
    sheet.rowHeads = {"without focus", "focused"};
    Run run;
    Json controls = Json::array();
    const std::pair<const char*, int> buttons[] = {{"F", 2}, {"X", 5}};
    for (int column = 0; column < 2; ++column) {
        const std::string name = buttons[column].first;
        controls.push_back(ButtonControl(
            name, 8 + column * 136, 8, 120, 40,
            {{"BorderStyle", buttons[column].second}, {"FocusRect", true}, {"Caption", "OK"}}));
        run.captures.push_back({0, column, name, ""});
    }
    for (int column = 0; column < 2; ++column) {
        const std::string name = buttons[column].first;
        run.captures.push_back({1, column, name, "focus " + name + "\nwait 50\n"});
    }
    run.form = Form(290 * kTwips, 60 * kTwips, controls);
    sheet.runs.push_back(std::move(run));
    return {"buttons-focus.png",
            "FocusRect True: the dotted rectangle on Flat, the blue inner frame on XPStyle",
            {},
            "",
            "form",
            std::move(sheet)};
}

// A 48-pixel disc shaded from `light` at the top to `dark` at the bottom, with a white ring, on
// a transparent ground; made as a PNG and read back as a designer would load one.
Json DiscPicture(std::uint32_t light, std::uint32_t dark) {
    constexpr std::int32_t kSide = 48;
    std::vector<std::uint32_t> pixels(kSide * kSide, 0x00FF00FF);
    auto channel = [](std::uint32_t colour, int shift) {
        return static_cast<int>((colour >> shift) & 0xFF);
    };
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            const double r = std::hypot(x - 23.5, y - 23.5);
            if (r > 23) continue;
            std::uint32_t colour = 0xFFFFFF;
            if (r <= 20) {
                colour = 0;
                for (int shift : {0, 8, 16}) {
                    const int c = channel(light, shift) +
                                  (channel(dark, shift) - channel(light, shift)) * y / (kSide - 1);
                    colour |= static_cast<std::uint32_t>(c) << shift;
                }
            }
            pixels[static_cast<std::size_t>(y * kSide + x)] = colour;
        }
    }
    const std::vector<std::uint8_t> png = platform::EncodePng({pixels.data(), kSide, kSide});
    platform::Image image = platform::DecodePng(png);
    // The ground colour becomes transparent; everything else opaque.
    for (std::uint32_t& pixel : image.pixels)
        pixel = pixel == 0x00FF00FF ? 0 : (pixel | 0xFF000000u);
    auto picture = std::make_shared<host::StdPicture>(host::PictureType::Bitmap, image.width,
                                                      image.height, std::move(image.pixels));
    return host::json::Encode(host::Variant(std::move(picture)));
}

Tile BigPictureTile() {
    constexpr Look kLooks[] = {Look::normal, Look::hover, Look::down};
    Sheet sheet;
    Run run;
    // Saved at the size the picture gives it (48 + 2 pixels), as a designer would have saved it;
    // no caption, so the picture is the whole face.
    Json controls =
        Json::array({ButtonControl("G", 8, 8, 50, 50,
                                   {{"ButtonShow", 0},
                                    {"TextAlignment", 0},
                                    {"PictureUp", DiscPicture(0x40A0FF, 0x003080)},
                                    {"PictureOver", DiscPicture(0x80D0FF, 0x2060C0)},
                                    {"PictureDown", DiscPicture(0x003080, 0x40A0FF)}})});
    for (int column = 0; column < 3; ++column) {
        sheet.columnHeads.push_back(LookName(kLooks[column]));
        const Steps steps = StepsFor(kLooks[column], "G");
        run.captures.push_back({0, column, "G", steps.before, steps.after});
    }
    run.form = Form(100 * kTwips, 100 * kTwips, controls);
    sheet.runs.push_back(std::move(run));
    return {"buttons-bigpicture.png",
            "ButtonShow 0 with 48-pixel PictureUp, PictureOver and PictureDown: the face takes the "
            "picture's size",
            {},
            "",
            "form",
            std::move(sheet)};
}

// ---------------------------------------------------------------------------------------------
// The icon collection, drawn directly

// The sizes an icon group holds, smallest first, from its .ico directory.
std::vector<std::int32_t> GroupSizes(std::int32_t group) {
    const auto ico = resources::Find("icons/" + std::to_string(group) + ".ico");
    std::vector<std::int32_t> sizes;
    if (ico.size() < 6) return sizes;
    const std::size_t count = ico[4] | (ico[5] << 8);
    for (std::size_t i = 0; i < count && 6 + 16 * (i + 1) <= ico.size(); ++i) {
        const std::int32_t width = ico[6 + 16 * i] == 0 ? 256 : ico[6 + 16 * i];
        if (std::find(sizes.begin(), sizes.end(), width) == sizes.end()) sizes.push_back(width);
    }
    std::sort(sizes.begin(), sizes.end());
    return sizes;
}

// One image's three groups (normal, hover, down), each at all its sizes side by side.
DrawnCell IconCell(std::int32_t image, int row, int column) {
    constexpr std::uint32_t kGround = 0xFFFFFF;
    constexpr std::int32_t kSizeGap = 3, kGroupGap = 10;
    struct Placed {
        std::int32_t x, size;
        std::vector<std::uint32_t> pixels;
    };
    std::vector<Placed> placed;
    std::int32_t x = 0, height = 0;
    for (std::int32_t group : {image, image + 100, image + 200}) {
        for (std::int32_t size : GroupSizes(group)) {
            const auto picture = foundation::LoadResImage(group, size, foundation::LR_COLOR);
            if (!picture) continue;
            placed.push_back({x, size, foundation::ComposeOnColor(*picture, kGround)});
            x += size + kSizeGap;
            height = std::max(height, size);
        }
        x += kGroupGap - kSizeGap;
    }
    DrawnCell cell{row,
                   column,
                   std::max(x - kGroupGap, 1),
                   std::max(height, 1),
                   {},
                   std::to_string(image) + " " + EnumName(image)};
    cell.pixels.assign(static_cast<std::size_t>(cell.width) * static_cast<std::size_t>(cell.height),
                       kGround);
    for (const Placed& p : placed) {
        // Bottom-aligned, so the sizes of one row stand on one line.
        const std::int32_t top = cell.height - p.size;
        for (std::int32_t py = 0; py < p.size; ++py)
            std::copy_n(
                p.pixels.begin() + static_cast<std::ptrdiff_t>(py) * p.size, p.size,
                cell.pixels.begin() + static_cast<std::ptrdiff_t>(top + py) * cell.width + p.x);
    }
    return cell;
}

Tile IconSheetTile() {
    Sheet sheet;
    sheet.background = 0x00FFFFFF;
    for (std::int32_t image = 1; image <= 50; ++image)
        sheet.drawn.push_back(IconCell(image, (image - 1) / 5, (image - 1) % 5));
    return {"icons-sheet.png",
            "every icon group at each of its sizes: per image the groups N (normal), N + 100 "
            "(hover) and N + 200 "
            "(down)",
            {},
            "",
            "form",
            std::move(sheet)};
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// FlatButton, the message boxes' button

Tile FlatButtonTile() {
    Sheet sheet;
    sheet.columnHeads = {"normal", "hover", "pressed", "focused"};
    Run run;
    Json controls = Json::array();
    for (int column = 0; column < 4; ++column) {
        const std::string name = "F" + std::to_string(column);
        controls.push_back(Control("FlatButton", name, (8 + column * 96) * kTwips, 8 * kTwips,
                                   80 * kTwips, 24 * kTwips,
                                   {{"Caption", column == 3 ? "Abbre&chen" : "&Ja"},
                                    {"HoverColor", 0x00C00000},
                                    {"FocusRect", column == 3}}));
    }
    run.captures.push_back({0, 0, "F0", ""});
    run.captures.push_back({0, 1, "F1", "move F1\nwait 20\n"});
    run.captures.push_back({0, 2, "F2", "move F2\nwait 20\ndown\n", "up\n"});
    run.captures.push_back({0, 3, "F3", "move 0 0\nwait 20\nfocus F3\nwait 20\n"});
    run.form = Form(400 * kTwips, 40 * kTwips, controls);
    sheet.runs.push_back(std::move(run));
    return {"flatbutton.png",
            "FlatButton: the flat ring, raised with the hover colour, sunken with the caption "
            "moved, and the focus",
            {},
            "",
            "form",
            std::move(sheet)};
}

// ---------------------------------------------------------------------------------------------
// The tooltip over a hovered button, as the platform shows it on the screen

Tile ToolTipTile() {
    Json controls = Json::array({Control("Button", "B1", 240, 240, 1800, 450,
                                         {{"Caption", "Senden"}, {"ButtonShow", 21}})});
    return {"button-tooltip.png",
            "ToolTipText on the face, the image and the caption: shown by the platform below "
            "the pointer once it has rested 500 ms on the button",
            Form(3360, 1440, controls), "move B1 30 15\nwait 600\n", "screen"};
}

std::vector<Section> ButtonSections() {
    Section button{"Button",
                   {StylesTile(true), StylesTile(false), TextTile(), FocusTile(), BigPictureTile(),
                    ToolTipTile()}};
    Section images{"Button images", {}};
    for (bool iconSize : {false, true})
        for (Look look : {Look::normal, Look::hover, Look::down})
            images.tiles.push_back(ImagesTile(iconSize, look));
    Section icons{"Icon collection", {IconSheetTile()}};
    Section flat{"FlatButton (the message boxes' button)", {FlatButtonTile()}};
    return {std::move(button), std::move(images), std::move(icons), std::move(flat)};
}

}  // namespace korvex::cli::gallery
