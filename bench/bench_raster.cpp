// Software rasteriser throughput, each against a baseline measured in the same run:
//   FillRect of a 1920x1080 canvas vs memset of a buffer of the same size (goal: within 1.2x);
//   100 000 short random lines (fixed seed) reported as line pixels per second, against the same
//   lines drawn by a real GDI engine (goal: at least as fast);
//   an ellipse 10 000 000 pixels across seen through a 100x100 canvas vs an 80x80 one on it: the
//   huge one is clipped first, so it costs its stepper walk, not its outline in memory.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/sim/sim_gdi.hpp"
#include "short_lines.hpp"

namespace {

using namespace korvex::platform;

constexpr std::int32_t kWidth = 1920, kHeight = 1080;

struct Canvas {
    sim::SimGdi gdi;
    HDC dc;
    HBITMAP bitmap;
    Canvas() {
        dc = gdi.CreateCompatibleDC(HDC{});
        bitmap = gdi.CreateDIBSection32(kWidth, kHeight);
        gdi.SelectObject(dc, bitmap);
    }
};

void BM_Memset1080p(benchmark::State& state) {
    std::vector<std::uint32_t> buffer(static_cast<std::size_t>(kWidth) * kHeight);
    int value = 0;
    for (auto _ : state) {
        std::memset(buffer.data(), value++ & 0xFF, buffer.size() * sizeof(std::uint32_t));
        benchmark::DoNotOptimize(buffer.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(buffer.size() * sizeof(std::uint32_t)));
}
BENCHMARK(BM_Memset1080p);

void BM_FillRect1080p(benchmark::State& state) {
    Canvas c;
    const HBRUSH brushes[2] = {c.gdi.CreateSolidBrush(RGB(0x12, 0x34, 0x56)),
                               c.gdi.CreateSolidBrush(RGB(0xAB, 0xCD, 0xEF))};
    const RECT all{0, 0, kWidth, kHeight};
    int i = 0;
    for (auto _ : state) {
        c.gdi.FillRect(c.dc, all, brushes[i++ & 1]);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kWidth) * kHeight * 4);
}
BENCHMARK(BM_FillRect1080p);

void BM_Ellipse(benchmark::State& state) {
    sim::SimGdi gdi;
    const HDC dc = gdi.CreateCompatibleDC(HDC{});
    gdi.SelectObject(dc, gdi.CreateDIBSection32(100, 100));
    gdi.SelectObject(dc, gdi.CreateSolidBrush(RGB(0x33, 0xAA, 0xFF)));
    const std::int32_t half = static_cast<std::int32_t>(state.range(0)) / 2;
    for (auto _ : state) {
        gdi.Ellipse(dc, 50 - half, 10, 50 + half, 10 + 2 * half);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Ellipse)->Arg(80)->Arg(10'000'000)->Unit(benchmark::kMillisecond);

void BM_ShortLines(benchmark::State& state) {
    Canvas c;
    c.gdi.SelectObject(c.dc, c.gdi.CreatePen(PS_SOLID, 1, RGB(0, 0, 0xFF)));
    const korvex::bench::ShortLines set = korvex::bench::MakeShortLines();
    for (auto _ : state) {
        for (const auto& l : set.lines) {
            c.gdi.MoveToEx(c.dc, l.x0, l.y0, nullptr);
            c.gdi.LineTo(c.dc, l.x1, l.y1);
        }
        benchmark::ClobberMemory();
    }
    state.counters["line_pixels"] = benchmark::Counter(
        static_cast<double>(set.pixels) * static_cast<double>(state.iterations()),
        benchmark::Counter::kIsRate);
}
// Wall time, as the baseline below is timed.
BENCHMARK(BM_ShortLines)->UseRealTime();

// The baseline: the same lines drawn by a real GDI engine (the Windows runner under Wine, the
// one the pixel oracle builds), timed inside that process pass by pass, so Wine's start-up is
// not counted. Skipped when the runner or Wine is not there.
void BM_ShortLinesRealGdi(benchmark::State& state) {
    const char* runner = std::getenv("KORVEX_GDI_WIN");
    const char* prefix = std::getenv("KORVEX_WINEPREFIX");
    const std::string exe =
        runner ? runner : KORVEX_ORACLE_DIR "/mingw/src/platform/win32/korvex-gdi-win.exe";
    const std::string winePrefix = prefix ? prefix : KORVEX_ORACLE_DIR "/wineprefix";
    const char* wine = "/usr/lib/wine/wine64";
    if (!std::filesystem::exists(exe) || !std::filesystem::exists(wine) ||
        !std::filesystem::exists(winePrefix)) {
        state.SkipWithError("no Windows runner or Wine prefix: run `ctest -L gdi-oracle` first");
        return;
    }
    const std::int64_t passes = state.max_iterations;
    const std::string command =
        "WINEPREFIX='" + winePrefix + "' WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' " +
        wine + " '" + exe + "' --bench-lines " + std::to_string(passes) + " 2>/dev/null";
    std::vector<double> seconds;
    long long pixels = 0;
    if (FILE* pipe = ::popen(command.c_str(), "r")) {
        char word[64];
        if (std::fscanf(pipe, "pixels %lld seconds", &pixels) == 1) {
            while (std::fscanf(pipe, "%63s", word) == 1)
                seconds.push_back(std::strtod(word, nullptr));
        }
        ::pclose(pipe);
    }
    if (static_cast<std::int64_t>(seconds.size()) != passes ||
        pixels != korvex::bench::MakeShortLines().pixels) {
        state.SkipWithError("the Windows runner gave no timings");
        return;
    }
    std::size_t i = 0;
    for (auto _ : state) state.SetIterationTime(seconds[i++]);
    state.counters["line_pixels"] = benchmark::Counter(
        static_cast<double>(pixels) * static_cast<double>(passes), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_ShortLinesRealGdi)->Iterations(10)->UseManualTime();

}  // namespace
