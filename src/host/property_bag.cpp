#include "host/property_bag.hpp"

#include <algorithm>

#include "base/error.hpp"
#include "host/font.hpp"
#include "host/json_codec.hpp"
#include "host/text.hpp"

namespace korvex::host {

Variant PropertyBag::ReadProperty(std::string_view name, const Variant& defaultValue) const {
    std::optional<Variant> stored = Lookup(name);
    if (!stored) return defaultValue.IsMissing() ? Variant() : defaultValue;
    if (defaultValue.IsMissing()) return *stored;
    try {
        return stored->ConvertedLike(defaultValue);
    } catch (const HostError& e) {
        // Say which key and value, so a bad form file can be mended by hand.
        throw HostError(e.Number(),
                        e.Description() + " (key \"" + std::string(name) + "\", value " +
                            DisplayText(*stored) + ")",
                        e.Source());
    }
}

void PropertyBag::WriteProperty(std::string_view name, const Variant& value,
                                const Variant& defaultValue) {
    if (ValueEquals(value, defaultValue)) {
        Erase(name);
        return;
    }
    Variant stored = value;
    if (value.Kind() == VarKind::Font) {
        stored = Variant(value.ToFont()->Clone());
    } else if (value.Kind() == VarKind::Object && value.ToObject()) {
        throw HostError(
            330, "Illegal parameter. Can't write object because it does not support persistence",
            std::string(name));
    }
    Store(name, std::move(stored));
}

std::vector<JsonPropertyBag::Entry>::const_iterator JsonPropertyBag::Find(
    std::string_view name) const {
    return std::find_if(entries_.begin(), entries_.end(),
                        [&](const Entry& e) { return EqualsNoCase(e.first, name); });
}

std::optional<Variant> JsonPropertyBag::Lookup(std::string_view name) const {
    auto it = Find(name);
    if (it == entries_.end()) return std::nullopt;
    return it->second;
}

void JsonPropertyBag::Store(std::string_view name, Variant value) {
    auto it = entries_.begin() + (Find(name) - entries_.cbegin());
    if (it != entries_.end())
        it->second = std::move(value);
    else
        entries_.emplace_back(std::string(name), std::move(value));
}

void JsonPropertyBag::Erase(std::string_view name) {
    auto it = entries_.begin() + (Find(name) - entries_.cbegin());
    if (it != entries_.end()) entries_.erase(it);
}

std::string JsonPropertyBag::ToJson(int indent) const {
    return json::EncodeBag(*this).dump(indent);
}

JsonPropertyBag JsonPropertyBag::FromJson(std::string_view text) {
    json::Json parsed = json::Json::parse(text, nullptr, false);
    if (parsed.is_discarded()) {
        throw HostError(kErrInvalidPropertyValue, "Invalid property bag text (not JSON)",
                        "PropertyBag");
    }
    return json::DecodeBag(parsed);
}

bool operator==(const JsonPropertyBag& a, const JsonPropertyBag& b) {
    return std::equal(a.entries_.begin(), a.entries_.end(), b.entries_.begin(), b.entries_.end(),
                      [](const JsonPropertyBag::Entry& x, const JsonPropertyBag::Entry& y) {
                          return x.first == y.first && SameValue(x.second, y.second);
                      });
}

}  // namespace korvex::host
