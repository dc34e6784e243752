// SimEventLoop: posted tasks and nested modal loops on the virtual clock.

#include "platform/sim/sim_loop.hpp"

namespace korvex::platform::sim {

int SimEventLoop::DoEvents() {
    RunPosted();
    return ModalDepth();
}

void SimEventLoop::Wait(std::int64_t ms) {
    const std::int64_t start = clock_.Now();
    for (;;) {
        RunPosted();
        if (clock_.Now() - start >= ms) return;
        clock_.Advance(1);
    }
}

void SimEventLoop::RunModal(const std::function<bool()>& stillOpen, std::string_view what) {
    ModalRounds(
        stillOpen, what, [] {}, [] { return false; });
}

}  // namespace korvex::platform::sim
