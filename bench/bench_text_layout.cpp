// Line breaking of a caption, measured with the software device's real font metrics:
//   one word of N characters cut into lines of a 100-pixel label (the worst case: every line is
//   a cut), and N characters of ordinary words, for N = 10 000, 100 000 and 1 000 000. The time
//   per character must stay flat as N grows; measuring whole candidate lines made the long
//   word quadratic.

#include <benchmark/benchmark.h>

#include <string>

#include "forms/text_layout.hpp"
#include "platform/sim/sim_gdi.hpp"

namespace {

using namespace korvex;

// A memory DC with 8-point Arial selected, as a label's container paints with.
struct Measure {
    platform::sim::SimGdi gdi;
    platform::HDC dc = gdi.CreateCompatibleDC({});
    Measure() {
        platform::LOGFONT font;
        font.lfHeight = -11;
        font.lfFaceName = "Arial";
        gdi.SelectObject(dc, gdi.CreateFontIndirect(font));
    }
    std::int32_t operator()(std::string_view piece) {
        platform::SIZE extent;
        gdi.GetTextExtentPoint32(dc, piece, &extent);
        return extent.cx;
    }
};

void Run(benchmark::State& state, const std::string& text) {
    Measure measure;
    const auto width = [&](std::string_view piece) { return measure(piece); };
    std::size_t lines = 0;
    for (auto _ : state) {
        const auto broken = forms::BreakLines(text, 100, width);
        lines = broken.size();
        benchmark::DoNotOptimize(broken.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
    state.counters["lines"] = static_cast<double>(lines);
}

void BM_BreakOneLongWord(benchmark::State& state) {
    Run(state, std::string(static_cast<std::size_t>(state.range(0)), 'm'));
}
BENCHMARK(BM_BreakOneLongWord)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

void BM_BreakWords(benchmark::State& state) {
    const std::string words = "Korvex Tools zeichnet Steuerelemente mit den Regeln von GDI. ";
    std::string text;
    while (text.size() < static_cast<std::size_t>(state.range(0))) text += words;
    text.resize(static_cast<std::size_t>(state.range(0)));
    Run(state, text);
}
BENCHMARK(BM_BreakWords)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
