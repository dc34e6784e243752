#include "host/json_codec.hpp"

#include <array>
#include <limits>
#include <type_traits>

#include "base/error.hpp"
#include "host/font.hpp"

namespace korvex::host::json {

namespace {

constexpr std::string_view kBase64 =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

[[noreturn]] void Malformed(const std::string& what) {
    throw HostError(kErrInvalidPropertyValue, "Invalid property value in JSON: " + what,
                    "PropertyBag");
}

std::string Base64Encode(const std::vector<std::uint32_t>& words) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(words.size() * 4);
    for (std::uint32_t w : words) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<std::uint8_t>(w >> shift));
    }
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t n = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t chunk = static_cast<std::uint32_t>(bytes[i]) << 16;
        if (n > 1) chunk |= static_cast<std::uint32_t>(bytes[i + 1]) << 8;
        if (n > 2) chunk |= bytes[i + 2];
        for (std::size_t k = 0; k < 4; ++k) {
            out += k <= n ? kBase64[(chunk >> (18 - 6 * k)) & 63] : '=';
        }
    }
    return out;
}

std::vector<std::uint32_t> Base64DecodeWords(const std::string& text) {
    std::vector<std::uint8_t> bytes;
    std::uint32_t chunk = 0;
    int bits = 0;
    for (char c : text) {
        if (c == '=') break;
        const std::size_t v = kBase64.find(c);
        if (v == std::string_view::npos) Malformed("picture pixels are not base64");
        chunk = (chunk << 6) | static_cast<std::uint32_t>(v);
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes.push_back(static_cast<std::uint8_t>(chunk >> bits));
        }
    }
    if (bytes.size() % 4 != 0) Malformed("picture pixels are not whole 32-bit words");
    std::vector<std::uint32_t> words(bytes.size() / 4);
    for (std::size_t i = 0; i < words.size(); ++i) {
        words[i] = static_cast<std::uint32_t>(bytes[4 * i]) |
                   static_cast<std::uint32_t>(bytes[4 * i + 1]) << 8 |
                   static_cast<std::uint32_t>(bytes[4 * i + 2]) << 16 |
                   static_cast<std::uint32_t>(bytes[4 * i + 3]) << 24;
    }
    return words;
}

template <class T>
T Field(const Json& object, const char* key, T fallback) {
    auto it = object.find(key);
    if (it == object.end()) return fallback;
    if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool>) {
        // A number beyond the field's type is malformed; converting it would wrap, or for a
        // decimal be undefined.
        if (it->is_number()) {
            const double value = it->get<double>();
            if (!(value >= static_cast<double>(std::numeric_limits<T>::min()) &&
                  value <= static_cast<double>(std::numeric_limits<T>::max())))
                Malformed(std::string("field ") + key);
        }
    }
    try {
        return it->get<T>();
    } catch (const nlohmann::json::exception&) {
        Malformed(std::string("field ") + key);
    }
}

Json EncodeFont(const StdFont& f) {
    return Json{{"Name", f.Name()},           {"Size", f.Size()},
                {"Bold", f.Bold()},           {"Italic", f.Italic()},
                {"Underline", f.Underline()}, {"Strikethrough", f.Strikethrough()},
                {"Weight", f.Weight()},       {"Charset", f.Charset()}};
}

std::shared_ptr<StdFont> DecodeFont(const Json& j) {
    if (!j.is_object()) Malformed("font");
    auto font = std::make_shared<StdFont>();
    font->Name(Field<std::string>(j, "Name", font->Name()));
    font->Size(Field<double>(j, "Size", font->Size()));
    if (j.contains("Weight"))
        font->Weight(Field<std::int16_t>(j, "Weight", 400));
    else
        font->Bold(Field<bool>(j, "Bold", false));
    font->Italic(Field<bool>(j, "Italic", false));
    font->Underline(Field<bool>(j, "Underline", false));
    font->Strikethrough(Field<bool>(j, "Strikethrough", false));
    font->Charset(Field<std::int16_t>(j, "Charset", 0));
    return font;
}

}  // namespace

Json Encode(const Variant& value) {
    switch (value.Kind()) {
        case VarKind::Empty:
            return nullptr;
        case VarKind::Boolean:
            return value.ToBool();
        case VarKind::Integer:
            return Json{{"Integer", value.ToInteger()}};
        case VarKind::Long:
            return value.ToLong();
        case VarKind::Single:
            return Json{{"Single", static_cast<double>(value.ToSingle())}};
        case VarKind::Double:
            return value.ToDouble();
        case VarKind::String:
            return value.ToString();
        case VarKind::Font:
            return Json{{"Font", EncodeFont(*value.ToFont())}};
        case VarKind::Picture: {
            auto p = value.ToPicture();
            return Json{{"Picture",
                         {{"Type", static_cast<int>(p->Type())},
                          {"Width", p->PixelWidth()},
                          {"Height", p->PixelHeight()},
                          {"Pixels", Base64Encode(p->Pixels())}}}};
        }
        case VarKind::Object:
            if (value.ToObject()) Malformed("an object that cannot be persisted");
            return Json{{"Object", nullptr}};
        case VarKind::Missing:
            return Json{{"Missing", true}};
    }
    return nullptr;
}

Variant Decode(const Json& j) {
    switch (j.type()) {
        case Json::value_t::null:
            return {};
        case Json::value_t::boolean:
            return j.get<bool>();
        case Json::value_t::string:
            return j.get<std::string>();
        case Json::value_t::number_float:
            return j.get<double>();
        case Json::value_t::number_integer:
        case Json::value_t::number_unsigned: {
            // Beyond the 64-bit signed range only a Double can hold it.
            if (j.is_number_unsigned() &&
                j.get<std::uint64_t>() > static_cast<std::uint64_t>(
                                             std::numeric_limits<std::int64_t>::max()))
                return j.get<double>();
            const auto n = j.get<std::int64_t>();
            if (n >= std::numeric_limits<std::int32_t>::min() &&
                n <= std::numeric_limits<std::int32_t>::max())
                return static_cast<std::int32_t>(n);
            if (n > 0 && n <= 0xFFFFFFFFLL) return static_cast<std::uint32_t>(n);
            return static_cast<double>(n);
        }
        case Json::value_t::object: {
            if (j.size() != 1) Malformed(j.dump());
            // The entry's key and value, held by the object itself (an items() proxy would not
            // outlive this statement).
            const auto entry = j.begin();
            const std::string tag = entry.key();
            const Json& inner = entry.value();
            try {
                if (tag == "Integer") {
                    if (!inner.is_number_integer() ||
                        (inner.is_number_unsigned() && inner.get<std::uint64_t>() > 32767))
                        Malformed(j.dump());
                    const auto n = inner.get<std::int64_t>();
                    if (n < -32768 || n > 32767) Malformed(j.dump());
                    return static_cast<std::int16_t>(n);
                }
                if (tag == "Single") return static_cast<float>(inner.get<double>());
                if (tag == "Missing") return Variant::Missing();
                if (tag == "Object" && inner.is_null()) return Variant::Nothing();
            } catch (const nlohmann::json::exception&) {
                Malformed(j.dump());
            }
            if (tag == "Font") return DecodeFont(inner);
            if (tag == "Picture") {
                if (!inner.is_object()) Malformed("picture");
                const auto type = static_cast<PictureType>(Field<int>(inner, "Type", 1));
                return std::make_shared<StdPicture>(
                    type, Field<std::int32_t>(inner, "Width", 0),
                    Field<std::int32_t>(inner, "Height", 0),
                    Base64DecodeWords(Field<std::string>(inner, "Pixels", "")));
            }
            Malformed(j.dump());
        }
        default:
            Malformed(j.dump());
    }
}

Json EncodeBag(const JsonPropertyBag& bag) {
    Json out = Json::object();
    for (const auto& [key, value] : bag.Entries()) out[key] = Encode(value);
    return out;
}

JsonPropertyBag DecodeBag(const Json& j) {
    if (!j.is_object()) Malformed("a property bag must be a JSON object");
    JsonPropertyBag bag;
    for (const auto& [key, value] : j.items()) bag.WriteProperty(key, Decode(value));
    return bag;
}

}  // namespace korvex::host::json
