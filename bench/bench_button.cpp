// Button hover throughput, against baselines measured in the same run:
//   one hover transition (normal -> hover -> normal) of a 120 x 40 pixel XPStyle button with a
//   caption and a 16-pixel image, reported as transitions per second (goal: 20 000/s);
//   the same poll ticks with the pointer moving but never entering (the poll's own cost), and
//   the bare clock advance with the pointer still (the timer's cost);
//   one FillRect of the face's size (what one repaint of the face costs at the least);
//   a full relayout: Caption set through late binding, alternating between two texts.
//
// The driver moves the sim pointer with SetCursorPos and advances the virtual clock by the poll
// interval. That is exactly what the hover poll sees on a real screen (it reads GetCursorPos on
// its 50 ms timer and never looks at mouse messages), and it skips the input funnel's hit test
// and MouseMove dispatch, which are not part of the hover path. Nothing composes the screen: the
// control paints into its persistent surface, and composition is the screen's own cost.

#include <benchmark/benchmark.h>

#include "controls/button/button.hpp"
#include "foundation/hover.hpp"
#include "host/container.hpp"
#include "platform/sim/sim_gdi.hpp"
#include "platform/sim/sim_platform.hpp"

namespace {

using namespace korvex;

constexpr std::int32_t kTwips = 15;

// A run-mode form with one XPStyle button, 1800 x 600 twips, the pointer parked outside it.
struct ButtonForm {
    platform::sim::SimPlatform platform;
    host::HostContext context{&platform};
    host::Container form{context};
    host::Site* site = nullptr;
    platform::POINT inside{}, outside{}, outsideToo{};

    ButtonForm() {
        context.Classes().Register(controls::Button::Class());
        form.Width = 3000;
        form.Height = 1500;
        host::Site& added = form.Add("Korvex_Tools.Button",
                                     {"B", 8 * kTwips, 8 * kTwips, 120 * kTwips, 40 * kTwips});
        form.LetProperty(added, "BorderStyle",
                         static_cast<std::int32_t>(controls::EnumStyle::XPStyle));
        form.LetProperty(added, "Caption", "Weiter");
        form.LetProperty(added, "ButtonShow",
                         static_cast<std::int32_t>(controls::EnumButton::btnOK));
        form.SwitchMode(true);
        form.Show();
        site = &form.Get("B");
        platform::RECT r;
        platform.windows().GetWindowRect(site->GetControl().SurfaceWindow(), &r);
        inside = {(r.left + r.right) / 2, (r.top + r.bottom) / 2};
        outside = {r.right + 20, r.bottom + 20};
        outsideToo = {r.right + 30, r.bottom + 20};
        platform.windows().SetCursorPos(outside.x, outside.y);
        Poll();
    }

    controls::Button& button() { return static_cast<controls::Button&>(site->GetControl()); }

    // One tick of the hover poll after the pointer moved to `to`.
    void PollAt(platform::POINT to) {
        platform.windows().SetCursorPos(to.x, to.y);
        Poll();
    }
    void Poll() { platform.driver().Advance(foundation::kHoverPollMs); }
};

void BM_ButtonHoverTransition(benchmark::State& state) {
    ButtonForm f;
    // The driver must really change the look, or the figure measures nothing.
    f.PollAt(f.inside);
    const bool entered = f.button().State().frame == controls::FrameLook::Hover;
    f.PollAt(f.outside);
    if (!entered || f.button().State().frame != controls::FrameLook::Normal) {
        state.SkipWithError("the hover poll did not change the button's look");
        return;
    }
    for (auto _ : state) {
        f.PollAt(f.inside);
        f.PollAt(f.outside);
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel("transitions");
}
BENCHMARK(BM_ButtonHoverTransition);

// The same two ticks with the pointer moving outside the button: the poll reads the pointer and
// asks IsMouseInto, but the look never changes.
void BM_ButtonHoverPollOutside(benchmark::State& state) {
    ButtonForm f;
    for (auto _ : state) {
        f.PollAt(f.outsideToo);
        f.PollAt(f.outside);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ButtonHoverPollOutside);

// The same two ticks with the pointer still: the timer fires and the poll returns at once.
void BM_ButtonHoverPollIdle(benchmark::State& state) {
    ButtonForm f;
    for (auto _ : state) {
        f.Poll();
        f.Poll();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ButtonHoverPollIdle);

// One solid fill of the XPStyle face (116 x 34 pixels) on a bitmap of the button's size.
void BM_FillRectFace(benchmark::State& state) {
    platform::sim::SimGdi gdi;
    const platform::HDC dc = gdi.CreateCompatibleDC(platform::HDC{});
    gdi.SelectObject(dc, gdi.CreateDIBSection32(120, 40));
    const platform::HBRUSH brushes[2] = {gdi.CreateSolidBrush(0x00C8D0D4),
                                         gdi.CreateSolidBrush(0x00F0F8FC)};
    const platform::RECT face{2, 3, 118, 37};
    int i = 0;
    for (auto _ : state) {
        gdi.FillRect(dc, face, brushes[i++ & 1]);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FillRectFace);

// A full relayout and repaint: Caption let through the member table, as a script or a form's
// code sets it, alternating so every call changes the text.
void BM_ButtonCaptionRelayout(benchmark::State& state) {
    ButtonForm f;
    const host::Variant captions[2] = {host::Variant("Weiter"), host::Variant("Zurück")};
    int i = 0;
    for (auto _ : state) f.form.LetProperty(*f.site, "Caption", captions[i++ & 1]);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ButtonCaptionRelayout);

}  // namespace
