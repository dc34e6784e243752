// ProgressBar value updates per second on a 300 x 20 pixel bar, against a baseline measured in
// the same run:
//   Value set directly, alternating between two values so that every update draws, in Smooth
//   (a clear and one bar) and in Standart (growing, so the blocks are drawn over the previous
//   ones, then falling back, which clears), reported as updates per second (goal: 100 000/s);
//   one FillRect of the bar's area on a bitmap of the bar's size (what one repaint costs at
//   the least).
// Nothing composes the screen: the bar paints into its persistent surface.

#include <benchmark/benchmark.h>

#include "controls/value/progress_bar.hpp"
#include "host/container.hpp"
#include "platform/sim/sim_gdi.hpp"
#include "platform/sim/sim_platform.hpp"

namespace {

using namespace korvex;

constexpr std::int32_t kTwips = 15;

struct BarForm {
    platform::sim::SimPlatform platform;
    host::HostContext context{&platform};
    host::Container form{context};
    controls::ProgressBar* bar = nullptr;

    explicit BarForm(controls::StyleConstants style) {
        context.Classes().Register(controls::ProgressBar::Class());
        form.Width = 6000;
        form.Height = 1500;
        form.Add("Korvex_Tools.ProgressBar",
                 {"P", 8 * kTwips, 8 * kTwips, 300 * kTwips, 20 * kTwips});
        form.SwitchMode(true);
        form.Show();
        bar = &static_cast<controls::ProgressBar&>(form.Get("P").GetControl());
        bar->BorderStyle(controls::BorderStyleConstantsH::vbNoBorder);
        bar->Max(1000);
        bar->Style(style);
    }
};

void Updates(benchmark::State& state, controls::StyleConstants style) {
    BarForm f(style);
    const std::int32_t values[] = {400, 700};
    f.bar->Value(values[0]);
    if (f.bar->Value() != values[0]) {
        state.SkipWithError("the bar did not take the value");
        return;
    }
    int i = 0;
    for (auto _ : state) {
        f.bar->Value(values[++i & 1]);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_ProgressSmoothUpdate(benchmark::State& state) {
    Updates(state, controls::StyleConstants::Smooth);
}
BENCHMARK(BM_ProgressSmoothUpdate);

void BM_ProgressStandartUpdate(benchmark::State& state) {
    Updates(state, controls::StyleConstants::Standart);
}
BENCHMARK(BM_ProgressStandartUpdate);

// One solid fill of the bar's 300 x 20 pixels on a bitmap of that size.
void BM_FillRectBar(benchmark::State& state) {
    platform::sim::SimGdi gdi;
    const platform::HDC dc = gdi.CreateCompatibleDC(platform::HDC{});
    gdi.SelectObject(dc, gdi.CreateDIBSection32(300, 20));
    const platform::HBRUSH brushes[2] = {gdi.CreateSolidBrush(0x00C8D0D4),
                                         gdi.CreateSolidBrush(0x00800000)};
    const platform::RECT area{0, 0, 300, 20};
    int i = 0;
    for (auto _ : state) {
        gdi.FillRect(dc, area, brushes[i++ & 1]);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FillRectBar);

}  // namespace
