#include "host/declare.hpp"

#include <cassert>
#include <charconv>

namespace korvex::host {

namespace {

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\n");
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(" \t\n");
    return text.substr(first, last - first + 1);
}

// An enumerator's value as written in its declaration: decimal or 0x hex, possibly negative.
std::int32_t ParseValue(std::string_view text) {
    text = Trim(text);
    const bool negative = !text.empty() && text.front() == '-';
    if (negative) text.remove_prefix(1);
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        text.remove_prefix(2);
        base = 16;
    }
    std::int64_t value = 0;
    [[maybe_unused]] const auto [end, ec] =
        std::from_chars(text.data(), text.data() + text.size(), value, base);
    assert(ec == std::errc{} && end == text.data() + text.size() &&
           "enumerator values are plain literals");
    return static_cast<std::int32_t>(negative ? -value : value);
}

}  // namespace

EnumDeclaration::EnumDeclaration(std::string_view name, std::string_view body) : name_(name) {
    std::int32_t next = 0;
    while (!body.empty()) {
        const auto comma = body.find(',');
        const std::string_view item = Trim(body.substr(0, comma));
        body = comma == std::string_view::npos ? std::string_view{} : body.substr(comma + 1);
        if (item.empty()) continue;  // a trailing comma
        const auto equals = item.find('=');
        std::int32_t value = next;
        if (equals != std::string_view::npos) value = ParseValue(item.substr(equals + 1));
        members_.emplace_back(std::string(Trim(item.substr(0, equals))), value);
        next = value + 1;
    }
}

std::string_view EnumDeclaration::NameOf(std::int32_t value) const {
    for (const auto& [member, v] : members_)
        if (v == value) return member;
    return {};
}

}  // namespace korvex::host
