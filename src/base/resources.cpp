#include "base/resources.hpp"

#include <algorithm>

namespace korvex::resources {

std::span<const std::uint8_t> Find(std::string_view path) {
    const auto all = All();
    auto it = std::lower_bound(all.begin(), all.end(), path,
                               [](const Entry& e, std::string_view p) { return e.path < p; });
    if (it == all.end() || it->path != path) return {};
    return it->bytes;
}

}  // namespace korvex::resources
