"""What it takes to compile a program of 200 calls, beside the same program with {fmt}: in C++17, with texts that the
compiler checks (KELTO_DEFAULT, FMT_STRING) and with such that it does not.
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


PROGRAMS = {
    "Kelto, KELTO_DEFAULT": program("kelto.hpp", "const kelto::catalog &store", [kelto(i, True) for i in range(CALLS)]),
    "Kelto": program("kelto.hpp", "const kelto::catalog &store", [kelto(i, False) for i in range(CALLS)]),
    "{fmt}, FMT_STRING": program("fmt/format.h", "", [fmt(i, True) for i in range(CALLS)]),
    "{fmt}": program("fmt/format.h", "", [fmt(i, False) for i in range(CALLS)]),
}

CHECKED, UNCHECKED = "{fmt}, FMT_STRING", "{fmt}"
PEER = {name: CHECKED if "," in name else UNCHECKED for name in PROGRAMS}


def seconds(command):
    """The processor time of a command."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    subprocess.run(command, check=True)
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before


def measure(root, rounds=5):
    """Seconds by program: the least of some rounds, in which all take turns."""
    command = [os.environ.get("CXX", "c++"), "-std=c++17", "-O2", "-I", str(root / "include"), "-c"]
    least = {}
    with tempfile.TemporaryDirectory() as folder:
        for name, text in PROGRAMS.items():
            with open(os.path.join(folder, "%d.cpp" % len(name)), "w", encoding="utf-8") as file:
                file.write(text)
        for _ in range(rounds):
            for name in PROGRAMS:
                source = os.path.join(folder, "%d.cpp" % len(name))
                taken = seconds([*command, source, "-o", source + ".o"])
                least[name] = min(taken, least.get(name, taken))
    return least
