"""Compiles a file of wrong lines, each with what the compiler must say about it in a comment behind it;
behind "one:" all that it says, as one error.

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
    text = wanted.group(1)
    if text.startswith("one: "):
        text = text[5:]
        alone = "".join(other for other in lines if other is line or not re.search(r";\s+// ", other))
        errors = subprocess.run([*command, "-xc++", "-"], input=alone, stderr=subprocess.PIPE, text=True,
                                check=False).stderr
        if errors.count("error:") != 1:
            faults += 1
            print("line %d has not one error:\n%s" % (number, errors[:2000]))
    place = "%s:%d:" % (file, number)
    told = [i for i, part in enumerate(parts) if place in part]
    # With gcc several errors share one chain, so those that follow belong to it up to the next chain.
    if not any(text in "".join(parts[i:i + 4]) for i in told):
        faults += 1
        print("line %d does not lead to \"%s\"; it leads to:\n%s" %
              (number, text, "".join(parts[i] for i in told)[:2000]))
if faults or done.returncode == 0:
    raise SystemExit(1)
