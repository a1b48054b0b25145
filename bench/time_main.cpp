// Times the contenders with Google Benchmark; the names are WORK|CONTENDER, to be picked with --benchmark_filter.

#include "workload.h"

#include <benchmark/benchmark.h>

namespace
{

void timeContender(benchmark::State &state, const bench::Contender &contender)
{
    const std::unique_ptr<bench::Job> job = contender.setUp();
    const auto batch =
        static_cast<benchmark::IterationCount>(std::max<size_t>(bench::workNamed(contender.work).calls / 10, 1));
    job->run(1);
    while (state.KeepRunningBatch(batch))
        job->run(static_cast<size_t>(batch));
}

} // namespace

int main(int argc, char **argv)
{
    bench::startProcess();
    for (const bench::Contender &contender : bench::contenders())
        benchmark::RegisterBenchmark((contender.work + "|" + contender.name).c_str(), timeContender, contender);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
