"""Checks that the library as built is hardened: check_hardening.py LIBRARY READELF OBJDUMP. Prints what is missing."""
import re
import subprocess
import sys

library, readelf, objdump = sys.argv[1:4]


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


headers = output(readelf, "-lW", library)
dynamic = output(readelf, "-dW", library)
symbols = output(readelf, "--dyn-syms", "-W", library)
code = output(objdump, "-d", "--no-show-raw-insn", library)
functions = {match[1]: match[2] for match in re.finditer(r"^[0-9a-f]+ <(\w+)>:\n +[0-9a-f]+:\s+(\w+)", code, re.M)}
exported = [line.split()[7] for line in symbols.splitlines() if " FUNC " in line and " UND " not in line]

checks = {
    "the relocated data is read-only (RELRO)": "GNU_RELRO" in headers,
    "and all of it, since symbols are bound at once (BIND_NOW)": "BIND_NOW" in dynamic,
    "no stack is executable": re.search(r"GNU_STACK.* RW ", headers) is not None,
    "no segment is writable and executable": not re.search(r"LOAD.* RWE ", headers),
    "functions with buffers guard their stack": "__stack_chk_fail" in symbols,
    "the C library's checked functions are called": "_chk@" in symbols,
    "every exported function is a valid target of an indirect call (endbr64)":
        exported and all(functions.get(name, "endbr64") == "endbr64" for name in exported),
    "no library is looked for in a fixed place": "RPATH" not in dynamic and "RUNPATH" not in dynamic,
}
for sentence, holds in checks.items():
    if not holds:
        print("not so:", sentence)
sys.exit(0 if all(checks.values()) else 1)
