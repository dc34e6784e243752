// Form loading against the number of controls: a form file of 1,000, 4,000 and 16,000 Line3D
// controls loaded into a fresh form (the whole of LoadFormJson: parsing, name checks, window
// creation and each control's ReadProperties), then the form torn down. The time per control
// should stay flat as the form grows; Google Benchmark fits the complexity over the three sizes.

#include <benchmark/benchmark.h>

#include <string>

#include "host/container.hpp"
#include "host/form_file.hpp"
#include "library/library.hpp"
#include "platform/sim/sim_platform.hpp"

namespace {

using namespace korvex;

std::string FlatForm(std::int64_t controls) {
    std::string text = R"({"Form": {"Width": 6000, "Height": 3000}, "Controls": [)";
    for (std::int64_t i = 0; i < controls; ++i) {
        if (i) text += ",\n";
        text += R"({"ProgID": "Korvex_Tools.Line3D", "Name": "L)" + std::to_string(i) +
                R"(", "Left": )" + std::to_string(i % 50 * 100) + R"(, "Top": )" +
                std::to_string(i / 50 % 40 * 60) + R"(, "Width": 90, "Height": 30})";
    }
    return text + "]}";
}

void BM_LoadForm(benchmark::State& state) {
    const std::string text = FlatForm(state.range(0));
    platform::sim::SimPlatform platform;
    host::HostContext context{&platform};
    RegisterLibrary(context);
    for (auto _ : state) {
        host::Container form(context);
        host::LoadFormJson(form, text);
        benchmark::DoNotOptimize(form.Sites().size());
    }
    state.SetComplexityN(state.range(0));
    state.counters["controls/s"] = benchmark::Counter(
        static_cast<double>(state.range(0)) * static_cast<double>(state.iterations()),
        benchmark::Counter::kIsRate);
}
BENCHMARK(BM_LoadForm)
    ->Arg(1000)
    ->Arg(4000)
    ->Arg(16000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

}  // namespace
