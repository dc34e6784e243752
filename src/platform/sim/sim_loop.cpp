// SimEventLoop: input funnel, posted tasks and nested modal loops on the virtual clock.

#include "platform/sim/sim_loop.hpp"

#include <string>
#include <utility>

#include "base/error.hpp"

namespace korvex::platform::sim {

void SimEventLoop::MouseMove(POINT screen) {
    windows_.RouteMouseMove(screen, clock_.Now());
}

void SimEventLoop::MouseDown(int button, int shift) {
    windows_.RouteMouseButton(true, button, shift, clock_.Now());
}

void SimEventLoop::MouseUp(int button, int shift) {
    windows_.RouteMouseButton(false, button, shift, clock_.Now());
}

void SimEventLoop::Key(KeyEvent::Kind kind, int keyCode, int shift) {
    const KeyEvent event{kind, keyCode, shift, clock_.Now()};
    // Walk a copy: a filter may add or remove filters (a form closing on Escape).
    const auto filters = keyFilters_;
    for (auto it = filters.rbegin(); it != filters.rend(); ++it) {
        if (it->second(event, windows_.GetFocus())) {
            windows_.TrackKey(kind, keyCode);
            return;
        }
    }
    windows_.RouteKey(kind, keyCode, shift, event.time);
}

std::uint32_t SimEventLoop::AddKeyFilter(KeyFilter filter) {
    keyFilters_.emplace_back(nextKeyFilter_, std::move(filter));
    return nextKeyFilter_++;
}

void SimEventLoop::RemoveKeyFilter(std::uint32_t id) {
    std::erase_if(keyFilters_, [id](const auto& f) { return f.first == id; });
}

void SimEventLoop::KeyDown(int keyCode, int shift) {
    Key(KeyEvent::Kind::Down, keyCode, shift);
}

void SimEventLoop::KeyUp(int keyCode, int shift) {
    Key(KeyEvent::Kind::Up, keyCode, shift);
}

void SimEventLoop::KeyPress(int character) {
    Key(KeyEvent::Kind::Press, character, windows_.ShiftState());
}

void SimEventLoop::Post(std::function<void()> task) {
    posted_.push_back(std::move(task));
}

void SimEventLoop::RunPosted() {
    for (std::size_t n = posted_.size(); n > 0 && !posted_.empty(); --n) {
        std::function<void()> task = std::move(posted_.front());
        posted_.pop_front();
        if (task) task();
    }
}

int SimEventLoop::DoEvents() {
    RunPosted();
    return modalDepth_;
}

void SimEventLoop::Wait(std::int64_t ms) {
    const std::int64_t start = clock_.Now();
    for (;;) {
        RunPosted();
        if (clock_.Now() - start >= ms) return;
        clock_.Advance(1);
    }
}

// One round: posted tasks, then the close check, then one scripted step. With the script spent
// the clock jumps to the next timer (one at a time, so the check runs between ticks) until the
// idle budget is used up. A step may open a nested modal loop; it pulls from the same script.
void SimEventLoop::RunModal(const std::function<bool()>& stillOpen, std::string_view what) {
    struct Depth {
        int& depth;
        explicit Depth(int& d) : depth(d) { ++depth; }
        ~Depth() { --depth; }
        Depth(const Depth&) = delete;
        Depth& operator=(const Depth&) = delete;
    } depth(modalDepth_);

    std::int64_t idle = 0;
    for (;;) {
        RunPosted();
        if (!stillOpen()) return;
        if (source_ && source_->Step()) continue;
        const std::int64_t due = clock_.NextDue();
        const std::int64_t wait = due < 0 ? -1 : due - clock_.Now();
        if (due < 0 || idle + wait > kIdleLimitMs)
            throw host::HostError(host::kErrModalDeadlock,
                                  "The modal " + std::string(what) +
                                      " is still open and nothing left in the script can close it",
                                  "EventLoop");
        idle += wait;
        clock_.Advance(wait);
    }
}

}  // namespace korvex::platform::sim
