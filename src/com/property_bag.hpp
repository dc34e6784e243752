#pragma once
// The host's PropertyBag over a container's IPropertyBag: the control reads and writes the same
// keys with the same kinds as in a JSON form file, the container decides where they go.

#include "com/win.hpp"
#include "host/property_bag.hpp"

namespace korvex::com {

class ComPropertyBag final : public host::PropertyBag {
  public:
    ComPropertyBag(IPropertyBag* bag, IErrorLog* log) : bag_(bag), log_(log) {}

  protected:
    [[nodiscard]] std::optional<host::Variant> Lookup(std::string_view name) const override;
    void Store(std::string_view name, host::Variant value) override;
    // A container's bag starts empty for every save and cannot forget a key.
    void Erase(std::string_view) override {}

  private:
    IPropertyBag* bag_;
    IErrorLog* log_;
};

}  // namespace korvex::com
