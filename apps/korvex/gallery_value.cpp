// The gallery's value-control sections: the progress bar in every style at 0, 33 and 100 %.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "gallery.hpp"
#include "host/font.hpp"
#include "host/json_codec.hpp"
#include "host/variant.hpp"

namespace korvex::cli::gallery {

namespace {

constexpr int kValues[] = {0, 33, 100};

// A picture as a form file holds it: opaque pixels, 0x00RRGGBB.
Json PictureJson(std::int32_t width, std::int32_t height, std::vector<std::uint32_t> pixels) {
    for (std::uint32_t& p : pixels) p |= 0xFF000000u;
    return host::json::Encode(host::Variant(std::make_shared<host::StdPicture>(
        host::PictureType::Bitmap, width, height, std::move(pixels))));
}

// A landscape for the picture styles: sky over hills, 96 x 16.
Json Landscape() {
    constexpr int w = 96, h = 16;
    std::vector<std::uint32_t> px;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const int hill =
                9 + ((x / 6) % 4 == 0 ? 2 : 0) - (x % 24 < 12 ? x % 12 : 12 - x % 12) / 3;
            const auto sky = static_cast<std::uint32_t>(0x60 + y * 8);
            px.push_back(y < hill ? (sky << 16 | sky << 8 | 0xFF) >> 0 & 0xFFFFFF
                                  : (y % 2 ? 0x2E8B3A : 0x3DA04A));
        }
    }
    return PictureJson(w, h, std::move(px));
}

// A tile for the tiled style: an orange brick with a dark seam, 12 x 16.
Json Brick() {
    constexpr int w = 12, h = 16;
    std::vector<std::uint32_t> px;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            px.push_back(y == 0 || x == 0 ? 0x7A3A10 : (y < 8 ? 0xE8782A : 0xD0641E));
    return PictureJson(w, h, std::move(px));
}

Json Bar(const std::string& name, int left, int top, int width, int height, int style, int value,
         bool text, Json extra = Json::object()) {
    Json props = {{"Style", style},          {"Max", 100},
                  {"Value", value},          {"ShowText", text},
                  {"BarColor1", 0x00F09040}, {"BarColor2", 0x0000C0FF}};
    for (auto& [key, v] : extra.items()) props[key] = v;
    return Control("ProgressBar", name, left, top, width, height, props);
}

Tile PlainStyles(const std::string& file, bool text) {
    static const int kStyles[] = {0, 1, 2, 3, 4, 7, 8, 9};
    Json controls = Json::array();
    int row = 0;
    for (int style : kStyles) {
        Json extra = Json::object();
        if (style == 7) extra["PictureLandscape"] = Landscape();
        if (style == 8) extra["PictureStretch"] = Landscape();
        if (style == 9) extra["PictureTile"] = Brick();
        for (int c = 0; c < 3; ++c)
            controls.push_back(Bar("P" + std::to_string(style) + std::to_string(c), 120 + c * 2520,
                                   120 + row * 420, 2400, 300, style, kValues[c], text, extra));
        ++row;
    }
    return {file,
            std::string("Standart, Smooth, ValueDependant, SmoothDoubleColor, DoubleColor and the "
                        "three picture styles (rows) at 0, 33 and 100 % (columns)") +
                (text ? ", with the percentage" : ""),
            Form(7680, 3480, controls)};
}

Tile XPStyles() {
    Json controls = Json::array();
    int row = 0;
    for (int style : {5, 6}) {
        for (int colour : {0, 1}) {
            for (int c = 0; c < 6; ++c) {
                const bool text = c >= 3;
                controls.push_back(
                    Bar("X" + std::to_string(row) + std::to_string(c), 120 + c * 3555,
                        120 + row * 420, 3435, 285, style, kValues[c % 3], text,
                        {{"BorderStyle", Json{{"Integer", 0}}}, {"BarXPcolor", colour}}));
            }
            ++row;
        }
    }
    return {"progress-xp.png",
            "XPStyleBig green and blue, XPStyleSmall green and blue (rows) at 0, 33 and 100 %, "
            "then the same with the percentage",
            Form(21570, 1920, controls)};
}

}  // namespace

std::vector<Section> ValueSections() {
    return {{"ProgressBar",
             {PlainStyles("progress-styles.png", false), PlainStyles("progress-text.png", true),
              XPStyles()}}};
}

}  // namespace korvex::cli::gallery
