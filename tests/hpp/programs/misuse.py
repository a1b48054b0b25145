"""Compiles a file of wrong lines, each with what the compiler must say about it in a comment behind it.

    misuse.py FILE COMPILER [ARGUMENT...]
"""

import re
import subprocess
import sys

file, *command = sys.argv[1:]
if "clang" in command[0]:
    command.append("-ferror-limit=0")
done = subprocess.run([*command, file], stderr=subprocess.PIPE, text=True, check=False)
with open(file, encoding="utf-8") as source:
    lines = source.readlines()

# What one error says: the chain that led to it stands before its line with gcc, and behind it with clang.
beginning = r"^(?=[^\n]*\b(?:error|In instantiation|In substitution|In member function|In function)\b)"
parts = re.split(beginning, done.stderr, flags=re.M)
faults = 0
for number, line in enumerate(lines, 1):
    wanted = re.search(r";\s+// (.*)$", line)
    if wanted is None:
        continue
    place = "%s:%d:" % (file, number)
    told = [i for i, part in enumerate(parts) if place in part]
    # With gcc several errors share one chain, so those that follow belong to it up to the next chain.
    if not any(wanted.group(1) in "".join(parts[i:i + 4]) for i in told):
        faults += 1
        print("line %d does not lead to \"%s\"; it leads to:\n%s" %
              (number, wanted.group(1), "".join(parts[i] for i in told)[:2000]))
if faults or done.returncode == 0:
    raise SystemExit(1)
