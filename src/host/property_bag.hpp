#pragma once
// The property bag a control persists itself into. Keys keep the order they were first written
// in and match without regard to case.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/variant.hpp"

namespace korvex::host {

class PropertyBag {
public:
    using Entry = std::pair<std::string, Variant>;

    // The stored value converted to the default's kind (error 13 when it cannot be, 6 when it
    // does not fit); the default when the key is absent.
    [[nodiscard]] Variant ReadProperty(std::string_view name,
                                       const Variant& defaultValue = Variant::Missing()) const;

    // Stores nothing for a value equal to the default (and forgets an earlier value of the key).
    // Fonts are stored as a copy, as a saved form would hold them. An object that cannot be
    // persisted raises error 330.
    void WriteProperty(std::string_view name, const Variant& value,
                       const Variant& defaultValue = Variant::Missing());

    [[nodiscard]] bool Contains(std::string_view name) const;
    [[nodiscard]] const std::vector<Entry>& Entries() const { return entries_; }
    [[nodiscard]] bool Empty() const { return entries_.empty(); }
    void Clear() { entries_.clear(); }

    // JSON text form; FromJson raises HostError for malformed text or values.
    [[nodiscard]] std::string ToJson(int indent = 2) const;
    static PropertyBag FromJson(std::string_view text);

    // Same keys in the same order with SameValue values.
    friend bool operator==(const PropertyBag& a, const PropertyBag& b);

private:
    std::vector<Entry>::const_iterator Find(std::string_view name) const;
    std::vector<Entry> entries_;
};

}  // namespace korvex::host
