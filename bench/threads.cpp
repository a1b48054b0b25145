// W10: what a second thread brings. Format calls share nothing, so two threads should do twice the work of one, as an
// arithmetic loop does that touches no memory at all.

#include "workload.h"

#include "kelto.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>

namespace
{

constexpr int callsPerRound = 64;

void formatInThreads(benchmark::State &state)
{
    std::array<UCS2, 100> out;
    std::string format = "%s[2]: %d[1]";
    for (auto _ : state)
        for (int i = 0; i < callsPerRound; ++i)
        {
            unsigned long units = out.size();
            KTFormatString(nullptr, false, &units, out.data(), format.data(), 7, "files");
            bench::keep(out.data());
        }
    state.SetItemsProcessed(state.iterations());
}

void calculateInThreads(benchmark::State &state)
{
    uint64_t value = 1;
    for (auto _ : state)
    {
        for (int i = 0; i < 300 * callsPerRound; ++i)
            value = value * 6364136223846793005U + 1442695040888963407U;
        benchmark::DoNotOptimize(value);
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(formatInThreads)->Name("W10|Kelto")->Threads(1)->Threads(2)->UseRealTime();
BENCHMARK(calculateInThreads)->Name("W10|arithmetic loop")->Threads(1)->Threads(2)->UseRealTime();

} // namespace
