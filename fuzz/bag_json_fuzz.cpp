// Property bags and form files come from disk: any text must give a bag or a HostError.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/error.hpp"
#include "host/numeric.hpp"
#include "host/property_bag.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        const auto bag = korvex::host::JsonPropertyBag::FromJson(text);
        // What was read must write back and read again to the same bag.
        if (!(korvex::host::JsonPropertyBag::FromJson(bag.ToJson()) == bag)) __builtin_trap();
    } catch (const korvex::host::HostError&) {
    }
    try {
        (void)korvex::host::Val(text);
        (void)korvex::host::ParseNumber(text);
    } catch (const korvex::host::HostError&) {
    }
    return 0;
}
