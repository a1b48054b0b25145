"""Times: the best of several interleaved rounds, so that a busy neighbour spoils single rounds, not the comparison."""

import itertools
import json
import re
import subprocess
import sys

ROUNDS, SECONDS = 15, 0.05
QUICK_ROUNDS, QUICK_SECONDS = 5, 0.01


def run(programs, names, rounds, seconds):
    """All rounds of the benchmarks of these names, in one process, in random order."""
    exactly = "^(%s)(/|$)" % "|".join(re.sub(r"([][{}().*+?|$])", r"[\1]", name) for name in names)
    command = [programs.timing, "--benchmark_filter=" + exactly, "--benchmark_repetitions=%d" % rounds,
               "--benchmark_min_time=%g" % seconds, "--benchmark_enable_random_interleaving=true",
               "--benchmark_format=json"]
    done = subprocess.run(command, env=programs.ENVIRONMENT, capture_output=True, text=True)
    if done.returncode != 0 or not done.stdout:
        sys.exit("scripts/bench: bench_kelto failed\n" + done.stderr)
    return [row for row in json.loads(done.stdout)["benchmarks"] if row["run_type"] == "iteration"]


def measure(programs, contenders, quick):
    """Nanoseconds of processor time per call by (work, contender). A work has a process of its own, so that nobody
    finds the heap or the locale as another work left it."""
    rounds, seconds = (QUICK_ROUNDS, QUICK_SECONDS) if quick else (ROUNDS, SECONDS)
    best = {}
    for _, group in itertools.groupby(contenders, lambda c: c.work):
        names = ["%s|%s" % (c.work, c.name) for c in group]
        for row in run(programs, names, rounds, seconds):
            key = tuple(row["run_name"].split("|"))
            best[key] = min(best.get(key, float("inf")), row["cpu_time"])
    return best


def speed_up(programs, quick):
    """What a second thread brings, by contender: the best rate of two threads over the best rate of one."""
    names = ["W10|Kelto", "W10|arithmetic loop"]
    rates = {}
    # Rounds so short that some are run without anybody else on either processor.
    for row in run(programs, names, 100 if quick else 500, 0.002):
        name = row["run_name"].split("|")[1].split("/")[0]
        key = (name, row["threads"])
        rates[key] = max(rates.get(key, 0), row["items_per_second"])
    return {name: rates[(name, 2)] / rates[(name, 1)] for name, threads in rates if threads == 1}
