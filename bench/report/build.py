"""Builds the release library with the benchmarks, and knows the programs that come of it."""

import dataclasses
import os
import subprocess
import sys

KELTO = "Kelto"


def quietly(command, root):
    done = subprocess.run(command, cwd=root, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        sys.stderr.write(done.stdout)
        sys.exit("scripts/bench: failed: " + " ".join(command))
    return done.stdout


@dataclasses.dataclass(frozen=True)
class Contender:
    """Somebody who does a piece of work."""

    work: str
    name: str
    calls: int  # how many are counted
    goal: str  # instructions, or a factor and the contender that it is relative to; "" for none
    time_goal: str  # the same for time
    text: str  # what the work is

    def is_growth(self):
        return self.work.startswith("W11/")

    def is_part(self):
        return self.work.startswith("P/")

    def is_kelto(self):
        return self.name == KELTO

    def is_named(self, beginnings):
        return not beginnings or any(self.work == b or self.work.startswith(b + "/") for b in beginnings)


class Programs:
    """The benchmark programs. They run in an environment of their own: what else is set changes no number."""

    ENVIRONMENT = {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8"}

    def __init__(self, folder):
        self.workload = str(folder / "bench" / "bench_workload")
        self.timing = str(folder / "bench" / "bench_kelto")
        self.memory = str(folder / "bench" / "bench_memory")
        self.library = str(folder / "libkelto.so")

    def contenders(self):
        done = subprocess.run([self.workload, "--list"], capture_output=True, check=True, text=True)
        rows = [line.split("\t") for line in done.stdout.splitlines()]
        return [Contender(work, name, int(calls), *rest) for work, name, calls, *rest in rows]

    def compare(self):
        if subprocess.run([self.workload, "--compare"], env=self.ENVIRONMENT).returncode != 0:
            sys.exit("scripts/bench: the contenders do not do the same work; nothing was measured")


def build(root, with_program):
    """The program takes minutes more, and what it measures no budget."""
    quietly(["scripts/bootstrap", "bench"], root)
    folder = root / "build" / "bench"
    configured = quietly(
        ["cmake", "--preset", "release", "-B", str(folder), "-DKELTO_BUILD_BENCHMARKS=ON", "-DKELTO_BUILD_TESTS=OFF",
         "-DKELTO_BUILD_TOOLS=" + ("ON" if with_program else "OFF")], root)
    for line in configured.splitlines():
        if "Benchmarks:" in line:
            print(line.lstrip("- "), file=sys.stderr)
    quietly(["cmake", "--build", str(folder)], root)
    return Programs(folder)
