"""What it takes to compile programs of one call and of 200, beside the same programs with {fmt}: in C++17, with texts
that the compiler checks (KELTO_DEFAULT, FMT_STRING) and with such that it does not.
"""

import os
import resource
import subprocess
import tempfile

CALLS = 200
# An argument, its conversion with Kelto and with {fmt}.
ARGUMENTS = [('"a"', "%s", "{}"), ("12", "%d", "{}"), ("1.5", "%.2f", "{:.2f}"), ('std::string("x")', "%s", "{}"),
             ("7u", "%u", "{}"), ("900L", "%!d", "{}")]


def arguments_of(call):
    return [ARGUMENTS[(7 * call + 3 * i) % len(ARGUMENTS)] for i in range(1 + call % 4)]


def kelto(call, macro):
    chosen = arguments_of(call)
    text = "message %d " % call + " ".join("%s[%d]" % (c[1], i + 1) for i, c in enumerate(chosen))
    default = 'KELTO_DEFAULT("%s"), ' % text if macro else ""
    return "store.format(%d, %s%s)" % (call + 1, default, ", ".join(c[0] for c in chosen))


def fmt(call, macro):
    chosen = arguments_of(call)
    text = "message %d " % call + " ".join(c[2] for c in chosen)
    text = 'FMT_STRING("%s")' % text if macro else '"%s"' % text
    return "fmt::format(%s, %s)" % (text, ", ".join(c[0] for c in chosen))


def program(header, parameter, calls):
    return "#include <%s>\nvoid use(const std::string &);\nvoid program(%s)\n{\n%s}\n" % (
        header, parameter, "".join("    use(%s);\n" % call for call in calls))


# By name: the number of calls, the program, the peer's name, and how many times its time is the goal.
PROGRAMS = {}
for calls, of in ((1, "one call"), (CALLS, "%d calls" % CALLS)):
    for macro, name in ((True, "KELTO_DEFAULT"), (False, "unchecked")):
        peer = "%s, {fmt}%s" % (of, " FMT_STRING" if macro else "")
        PROGRAMS["%s, Kelto %s" % (of, name)] = (
            program("kelto.hpp", "const kelto::catalog &store", [kelto(i, macro) for i in range(calls)]), peer, 1.25)
        PROGRAMS[peer] = (program("fmt/format.h", "", [fmt(i, macro) for i in range(calls)]), None, None)


def seconds(command):
    """The processor time of a command."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    subprocess.run(command, check=True)
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before


def bytes_of(file):
    """The code and data of an object file, without what debuggers and unwinding take."""
    done = subprocess.run(["size", "-A", "-d", file], capture_output=True, check=True, text=True)
    rows = [line.split() for line in done.stdout.splitlines() if line.startswith((".text", ".rodata", ".data", ".bss"))]
    return sum(int(row[1]) for row in rows)


def measure(root, rounds=5):
    """Seconds, bytes of object and times the peer's seconds, by program. Of the seconds it is the least of some rounds,
    in which all take turns."""
    command = [os.environ.get("CXX", "c++"), "-std=c++17", "-O2", "-I", str(root / "include"), "-c"]
    least, sizes = {}, {}
    with tempfile.TemporaryDirectory() as folder:
        sources = {name: os.path.join(folder, "%d.cpp" % number) for number, name in enumerate(PROGRAMS)}
        for name, (text, _, _) in PROGRAMS.items():
            with open(sources[name], "w", encoding="utf-8") as file:
                file.write(text)
        for _ in range(rounds):
            for name, source in sources.items():
                taken = seconds([*command, source, "-o", source + ".o"])
                least[name] = min(taken, least.get(name, taken))
                sizes[name] = bytes_of(source + ".o")
    return {name: (least[name], sizes[name], least[name] / least[peer] if peer else None, goal)
            for name, (_, peer, goal) in PROGRAMS.items()}


def as_text(measured):
    lines = ["%-36s%8s%9s%9s  %s" % ("", "seconds", "bytes", "x {fmt}", "goal")]
    for name, (taken, size, factor, goal) in measured.items():
        beside = "" if factor is None else "%.2f" % factor
        verdict = "" if factor is None else "%.2f %s" % (goal, "met" if factor <= goal else "NOT MET")
        lines.append("%-36s%8.2f%9d%9s  %s" % (name, taken, size, beside, verdict))
    return "\n".join(line.rstrip() for line in lines)
