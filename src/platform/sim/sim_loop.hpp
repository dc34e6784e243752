#pragma once
// SimEventLoop: the inbound funnel and the nested loops of the portable platform. Input enters
// here in screen coordinates, is stamped with the virtual clock and handed to SimWindows for
// routing. Modal loops pull scripted steps from the InputSource and, when the script is spent,
// let virtual time run from timer to timer; a loop that nothing can close raises the host's
// error instead of hanging.

#include <cstdint>
#include <deque>
#include <vector>
#include <functional>
#include <string_view>

#include "platform/sim/sim_windows.hpp"
#include "platform/window.hpp"

namespace korvex::platform::sim {

class SimEventLoop final : public EventLoop {
public:
    // Virtual time a modal loop may let pass, timer by timer, after its script has run out.
    static constexpr std::int64_t kIdleLimitMs = 60'000;

    SimEventLoop(SimWindows& windows, Clock& clock) : windows_(windows), clock_(clock) {}
    SimEventLoop(const SimEventLoop&) = delete;
    SimEventLoop& operator=(const SimEventLoop&) = delete;

    void MouseMove(POINT screen) override;
    void MouseDown(int button, int shift) override;
    void MouseUp(int button, int shift) override;
    void KeyDown(int keyCode, int shift) override;
    void KeyUp(int keyCode, int shift) override;
    void KeyPress(int character) override;

    int DoEvents() override;
    void Post(std::function<void()> task) override;
    void RunModal(const std::function<bool()>& stillOpen, std::string_view what) override;
    std::uint32_t AddKeyFilter(KeyFilter filter) override;
    void RemoveKeyFilter(std::uint32_t id) override;
    void SetInputSource(InputSource* source) override { source_ = source; }

private:
    void Key(KeyEvent::Kind kind, int keyCode, int shift);
    std::vector<std::pair<std::uint32_t, KeyFilter>> keyFilters_;
    std::uint32_t nextKeyFilter_ = 1;
    // Runs the tasks posted so far; tasks they post wait for the next round, so a task that
    // re-posts itself cannot starve the loop.
    void RunPosted();

    SimWindows& windows_;
    Clock& clock_;
    InputSource* source_ = nullptr;
    std::deque<std::function<void()>> posted_;
    int modalDepth_ = 0;
};

}  // namespace korvex::platform::sim
