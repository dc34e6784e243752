#include "com/property_bag.hpp"

#include "base/error.hpp"
#include "com/convert.hpp"
#include "com/dispatch.hpp"
#include "com/module.hpp"

namespace korvex::com {

std::optional<host::Variant> ComPropertyBag::Lookup(std::string_view name) const {
    const std::wstring key = Widen(name);
    VARIANT value;
    VariantInit(&value);
    if (FAILED(bag_->Read(key.c_str(), &value, log_))) return std::nullopt;
    try {
        host::Variant out = ToHost(value);
        VariantClear(&value);
        return out;
    } catch (...) {
        VariantClear(&value);
        throw;
    }
}

void ComPropertyBag::Store(std::string_view name, host::Variant value) {
    const std::wstring key = Widen(name);
    VARIANT stored;
    ToVariant(value, &stored);
    const HRESULT hr = bag_->Write(key.c_str(), &stored);
    VariantClear(&stored);
    if (FAILED(hr)) {
        throw host::HostError(host::kErrInvalidCall,
                              "The container's property bag refused " + std::string(name), {});
    }
}

}  // namespace korvex::com
