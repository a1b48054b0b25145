"""Builds sharing.cpp as two shared objects with hidden visibility, a third that is loaded with RTLD_LOCAL, and a
program over them, and runs that.

    sharing.py SOURCE FOLDER LIBRARY_FOLDER COMPILER [ARGUMENT...]
"""

import os
import subprocess
import sys

source, folder, library, *command = sys.argv[1:]
os.makedirs(folder, exist_ok=True)
os.chdir(folder)
link = ["-L" + library, "-lkelto", "-Wl,-rpath," + library]
for name in ("first", "second", "third"):
    subprocess.run([*command, "-fPIC", "-shared", "-fvisibility=hidden", "-fvisibility-inlines-hidden",
                    "-DLIBRARY=" + name, source, "-o", "lib%s.so" % name, *link], check=True)
subprocess.run([*command, source, "-o", "program", "-L.", "-lfirst", "-lsecond", "-Wl,-rpath," + os.getcwd(), *link,
                "-ldl"], check=True)
sys.exit(subprocess.run(["./program", "./libthird.so"]).returncode)
