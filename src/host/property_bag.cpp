#include "host/property_bag.hpp"

#include <algorithm>

#include "base/error.hpp"
#include "host/font.hpp"
#include "host/json_codec.hpp"
#include "host/text.hpp"

namespace korvex::host {

std::vector<PropertyBag::Entry>::const_iterator PropertyBag::Find(std::string_view name) const {
    return std::find_if(entries_.begin(), entries_.end(),
                        [&](const Entry& e) { return EqualsNoCase(e.first, name); });
}

Variant PropertyBag::ReadProperty(std::string_view name, const Variant& defaultValue) const {
    auto it = Find(name);
    if (it == entries_.end()) return defaultValue.IsMissing() ? Variant() : defaultValue;
    if (defaultValue.IsMissing()) return it->second;
    return it->second.ConvertedLike(defaultValue);
}

void PropertyBag::WriteProperty(std::string_view name, const Variant& value,
                                const Variant& defaultValue) {
    auto it = entries_.begin() + (Find(name) - entries_.cbegin());
    if (ValueEquals(value, defaultValue)) {
        if (it != entries_.end()) entries_.erase(it);
        return;
    }
    Variant stored = value;
    if (value.Kind() == VarKind::Font) {
        stored = Variant(value.ToFont()->Clone());
    } else if (value.Kind() == VarKind::Object && value.ToObject()) {
        throw HostError(330, "Illegal parameter. Can't write object because it does not support persistence",
                        std::string(name));
    }
    if (it != entries_.end()) it->second = std::move(stored);
    else entries_.emplace_back(std::string(name), std::move(stored));
}

bool PropertyBag::Contains(std::string_view name) const { return Find(name) != entries_.end(); }

std::string PropertyBag::ToJson(int indent) const { return json::EncodeBag(*this).dump(indent); }

PropertyBag PropertyBag::FromJson(std::string_view text) {
    json::Json parsed = json::Json::parse(text, nullptr, false);
    if (parsed.is_discarded()) {
        throw HostError(kErrInvalidPropertyValue, "Invalid property bag text (not JSON)", "PropertyBag");
    }
    return json::DecodeBag(parsed);
}

bool operator==(const PropertyBag& a, const PropertyBag& b) {
    return std::equal(a.entries_.begin(), a.entries_.end(), b.entries_.begin(), b.entries_.end(),
                      [](const PropertyBag::Entry& x, const PropertyBag::Entry& y) {
                          return x.first == y.first && SameValue(x.second, y.second);
                      });
}

}  // namespace korvex::host
