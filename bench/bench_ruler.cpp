// A full Ruler repaint (clear and draw the scale, as after a Mode, SmallZoom or Orientation
// change) on a ruler 1000 pixels long and 30 high, in centimetres at SmallZoom 1 (about 340
// ticks and 33 labels), against a FillRect of the same area on the same platform in the same run.

#include <benchmark/benchmark.h>

#include "controls/value/ruler.hpp"
#include "forms/graphics.hpp"
#include "host/container.hpp"
#include "library/library.hpp"
#include "platform/sim/sim_platform.hpp"

namespace {

using namespace korvex;

struct RulerBench {
    RulerBench() {
        RegisterLibrary(context);
        form.Width = 16000;
        form.Height = 3000;
        form.Show();
        site = &form.Add("Korvex_Tools.Ruler", {"R", 0, 0, 15000, 450});
    }
    platform::sim::SimPlatform platform;
    host::HostContext context{&platform};
    host::Container form{context};
    host::Site* site = nullptr;
};

void BM_RulerRepaint(benchmark::State& state) {
    RulerBench bench;
    auto& ruler = dynamic_cast<controls::Ruler&>(bench.site->GetControl());
    for (auto _ : state) ruler.Adjust();
}
BENCHMARK(BM_RulerRepaint)->Unit(benchmark::kMicrosecond);

void BM_RulerAreaFillRect(benchmark::State& state) {
    RulerBench bench;
    platform::Gdi& gdi = bench.platform.gdi();
    const forms::MemoryBitmap area(gdi, {1000, 30});
    const forms::GdiObject brush = forms::MakeBrush(gdi, 0x00E1FFFF);
    for (auto _ : state)
        gdi.FillRect(area.dc(), {0, 0, 1000, 30}, static_cast<platform::HBRUSH>(brush.get()));
}
BENCHMARK(BM_RulerAreaFillRect)->Unit(benchmark::kMicrosecond);

}  // namespace
