#pragma once
// The property bag a control persists itself into. PropertyBag applies the host's rules (typed
// defaults, a value equal to the default is not stored, fonts stored as copies, objects that
// cannot persist refused); where the values live is up to the implementation: JsonPropertyBag
// keeps them in memory with a JSON text form, a Windows build hands over a COM property bag.

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/variant.hpp"

namespace korvex::host {

class PropertyBag {
  public:
    virtual ~PropertyBag() = default;

    // The stored value converted to the default's kind (error 13 when it cannot be, 6 when it
    // does not fit); the default when the key is absent.
    [[nodiscard]] Variant ReadProperty(std::string_view name,
                                       const Variant& defaultValue = Variant::Missing()) const;

    // Stores nothing for a value equal to the default (and forgets an earlier value of the key).
    // Fonts are stored as a copy, as a saved form would hold them. An object that cannot be
    // persisted raises error 330.
    void WriteProperty(std::string_view name, const Variant& value,
                       const Variant& defaultValue = Variant::Missing());

  protected:
    // Storage: keys match without regard to case.
    [[nodiscard]] virtual std::optional<Variant> Lookup(std::string_view name) const = 0;
    virtual void Store(std::string_view name, Variant value) = 0;
    virtual void Erase(std::string_view name) = 0;
};

// The bag in memory. Keys keep the order they were first written in.
class JsonPropertyBag final : public PropertyBag {
  public:
    using Entry = std::pair<std::string, Variant>;

    [[nodiscard]] bool Contains(std::string_view name) const {
        return Find(name) != entries_.end();
    }
    [[nodiscard]] const std::vector<Entry>& Entries() const { return entries_; }
    [[nodiscard]] bool Empty() const { return entries_.empty(); }
    void Clear() { entries_.clear(); }

    // JSON text form; FromJson raises HostError for malformed text or values.
    [[nodiscard]] std::string ToJson(int indent = 2) const;
    static JsonPropertyBag FromJson(std::string_view text);

    // Same keys in the same order with SameValue values.
    friend bool operator==(const JsonPropertyBag& a, const JsonPropertyBag& b);

  protected:
    [[nodiscard]] std::optional<Variant> Lookup(std::string_view name) const override;
    void Store(std::string_view name, Variant value) override;
    void Erase(std::string_view name) override;

  private:
    std::vector<Entry>::const_iterator Find(std::string_view name) const;
    std::vector<Entry> entries_;
};

}  // namespace korvex::host
