#pragma once
// DrivenEventLoop: what the event loops of both backends share. Input from the driver enters
// here, is stamped with the clock and passes the key filters before the windows route it;
// posted work runs in rounds; a modal loop pulls scripted steps from the InputSource and, with
// the script spent, lets virtual time run from timer to timer, raising the host's error when
// nothing can close it instead of hanging.
//
// A backend supplies its windows (RouteMouseMove, RouteMouseButton, RouteKey, TrackKey,
// ShiftState, GetFocus) and its clock (Now, NextDue, Advance), and keeps DoEvents and Wait,
// which depend on how it lets time pass.

#include <cstdint>
#include <deque>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/driver.hpp"
#include "platform/window.hpp"

namespace korvex::platform {

// The parts that do not depend on the backend's types.
class LoopRules : public EventLoop {
  public:
    // Virtual time a modal loop may let pass, timer by timer, after its script has run out.
    static constexpr std::int64_t kIdleLimitMs = 60'000;

    void Post(std::function<void()> task) override;
    std::uint32_t AddKeyFilter(KeyFilter filter) override;
    void RemoveKeyFilter(std::uint32_t id) override;
    void SetInputSource(InputSource* source) { source_ = source; }

  protected:
    // True when a filter consumed the key; filters run newest first, each told the focus as it
    // is then (an earlier one may have moved it).
    bool FilterKey(const KeyEvent& event, const std::function<HWND()>& focus) const;
    // Runs the tasks posted so far; tasks they post wait for the next round, so a task that
    // re-posts itself cannot starve the loop.
    void RunPosted();
    // One scripted step; false when there is no script or it is spent.
    bool StepScript() { return source_ && source_->Step(); }
    [[nodiscard]] int ModalDepth() const { return modalDepth_; }
    // With the script spent: the virtual time to let pass until the next timer (due, -1 for
    // none), counted in idle. Raises the host's error when no timer is left or the idle budget
    // would run out.
    static std::int64_t IdleWait(std::int64_t& idle, std::int64_t now, std::int64_t due,
                                 std::string_view what);

    // Counts the modal loops open while one runs.
    class ModalScope {
      public:
        explicit ModalScope(LoopRules& loop) : loop_(loop) { ++loop_.modalDepth_; }
        ~ModalScope() { --loop_.modalDepth_; }
        ModalScope(const ModalScope&) = delete;
        ModalScope& operator=(const ModalScope&) = delete;

      private:
        LoopRules& loop_;
    };

  private:
    std::vector<std::pair<std::uint32_t, KeyFilter>> keyFilters_;
    std::uint32_t nextKeyFilter_ = 1;
    std::deque<std::function<void()>> posted_;
    InputSource* source_ = nullptr;
    int modalDepth_ = 0;
};

template <class WindowsT, class ClockT>
class DrivenEventLoop : public LoopRules {
  public:
    DrivenEventLoop(WindowsT& windows, ClockT& clock) : windows_(windows), clock_(clock) {}
    DrivenEventLoop(const DrivenEventLoop&) = delete;
    DrivenEventLoop& operator=(const DrivenEventLoop&) = delete;

    // The driver's side (see platform/driver.hpp): the input funnel, in screen coordinates.
    void MouseMove(POINT screen) { windows_.RouteMouseMove(screen, clock_.Now()); }
    void MouseDown(int button, int shift) {
        windows_.RouteMouseButton(true, button, shift, clock_.Now());
    }
    void MouseUp(int button, int shift) {
        windows_.RouteMouseButton(false, button, shift, clock_.Now());
    }
    void KeyDown(int keyCode, int shift) { Key(KeyEvent::Kind::Down, keyCode, shift); }
    void KeyUp(int keyCode, int shift) { Key(KeyEvent::Kind::Up, keyCode, shift); }
    void KeyPress(int character) { Key(KeyEvent::Kind::Press, character, windows_.ShiftState()); }

  protected:
    // A consumed key still counts as held or released for GetAsyncKeyState.
    void Key(KeyEvent::Kind kind, int keyCode, int shift) {
        const KeyEvent event{kind, keyCode, shift, clock_.Now()};
        if (FilterKey(event, [this] { return windows_.GetFocus(); })) {
            windows_.TrackKey(kind, keyCode);
            return;
        }
        windows_.RouteKey(kind, keyCode, shift, event.time);
    }

    // One round: posted tasks and the backend's pending work, then the close check, then one
    // scripted step. With the script spent, sleep may wait for input on the system's time
    // (true: it did); otherwise the clock jumps to the next timer (one at a time, so the check
    // runs between ticks) until the idle budget is used up. A step may open a nested modal
    // loop; it pulls from the same script.
    template <class Pending, class Sleep>
    void ModalRounds(const std::function<bool()>& stillOpen, std::string_view what, Pending pending,
                     Sleep sleep) {
        const ModalScope scope(*this);
        std::int64_t idle = 0;
        for (;;) {
            RunPosted();
            pending();
            if (!stillOpen()) return;
            if (StepScript() || sleep()) continue;
            clock_.Advance(IdleWait(idle, clock_.Now(), clock_.NextDue(), what));
        }
    }

    WindowsT& windows_;
    ClockT& clock_;
};

}  // namespace korvex::platform
