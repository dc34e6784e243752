// LoopRules: key filters, posted work and the modal loop's idle budget.

#include "platform/driven_loop.hpp"

#include <string>

#include "base/error.hpp"

namespace korvex::platform {

void LoopRules::Post(std::function<void()> task) {
    posted_.push_back(std::move(task));
}

void LoopRules::RunPosted() {
    for (std::size_t n = posted_.size(); n > 0 && !posted_.empty(); --n) {
        std::function<void()> task = std::move(posted_.front());
        posted_.pop_front();
        if (task) task();
    }
}

std::uint32_t LoopRules::AddKeyFilter(KeyFilter filter) {
    keyFilters_.emplace_back(nextKeyFilter_, std::move(filter));
    return nextKeyFilter_++;
}

void LoopRules::RemoveKeyFilter(std::uint32_t id) {
    std::erase_if(keyFilters_, [id](const auto& f) { return f.first == id; });
}

bool LoopRules::FilterKey(const KeyEvent& event, const std::function<HWND()>& focus) const {
    // Walk a copy: a filter may add or remove filters (a form closing on Escape).
    const auto filters = keyFilters_;
    for (auto it = filters.rbegin(); it != filters.rend(); ++it)
        if (it->second(event, focus())) return true;
    return false;
}

std::int64_t LoopRules::IdleWait(std::int64_t& idle, std::int64_t now, std::int64_t due,
                                 std::string_view what) {
    const std::int64_t wait = due < 0 ? -1 : due - now;
    if (due < 0 || idle + wait > kIdleLimitMs)
        throw host::HostError(host::kErrModalDeadlock,
                              "The modal " + std::string(what) +
                                  " is still open and nothing left in the script can close it",
                              "EventLoop");
    idle += wait;
    return wait;
}

}  // namespace korvex::platform
