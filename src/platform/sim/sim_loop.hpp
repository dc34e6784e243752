#pragma once
// SimEventLoop: the inbound funnel and the nested loops of the portable platform. Input enters
// here in screen coordinates, is stamped with the virtual clock and handed to SimWindows for
// routing. Modal loops pull scripted steps from the InputSource and, when the script is spent,
// let virtual time run from timer to timer; a loop that nothing can close raises the host's
// error instead of hanging.

#include <cstdint>
#include <deque>
#include <functional>
#include <string_view>
#include <vector>

#include "platform/driver.hpp"
#include "platform/sim/sim_clock.hpp"
#include "platform/sim/sim_windows.hpp"
#include "platform/window.hpp"

namespace korvex::platform::sim {

class SimEventLoop final : public EventLoop {
  public:
    // Virtual time a modal loop may let pass, timer by timer, after its script has run out.
    static constexpr std::int64_t kIdleLimitMs = 60'000;

    SimEventLoop(SimWindows& windows, SimClock& clock) : windows_(windows), clock_(clock) {}
    SimEventLoop(const SimEventLoop&) = delete;
    SimEventLoop& operator=(const SimEventLoop&) = delete;

    int DoEvents() override;
    void Post(std::function<void()> task) override;
    // Pending work runs, then the virtual clock moves one millisecond, until ms have passed.
    void Wait(std::int64_t ms) override;
    // Pending work, then script steps; with the script spent, time runs timer by timer for at
    // most kIdleLimitMs before the host's error ends the loop.
    void RunModal(const std::function<bool()>& stillOpen, std::string_view what) override;
    std::uint32_t AddKeyFilter(KeyFilter filter) override;
    void RemoveKeyFilter(std::uint32_t id) override;

    // The driver's side (see platform/driver.hpp): the input funnel and the script source.
    void MouseMove(POINT screen);
    void MouseDown(int button, int shift);
    void MouseUp(int button, int shift);
    void KeyDown(int keyCode, int shift);
    void KeyUp(int keyCode, int shift);
    void KeyPress(int character);
    void SetInputSource(InputSource* source) { source_ = source; }

  private:
    void Key(KeyEvent::Kind kind, int keyCode, int shift);
    std::vector<std::pair<std::uint32_t, KeyFilter>> keyFilters_;
    std::uint32_t nextKeyFilter_ = 1;
    // Runs the tasks posted so far; tasks they post wait for the next round, so a task that
    // re-posts itself cannot starve the loop.
    void RunPosted();

    SimWindows& windows_;
    SimClock& clock_;
    InputSource* source_ = nullptr;
    std::deque<std::function<void()>> posted_;
    int modalDepth_ = 0;
};

}  // namespace korvex::platform::sim
