"""The programs of a page of the documentation in one language, c or cpp.

    programs.py extract PAGE FOLDER COUNT [c]  writes FOLDER/1.c, FOLDER/1.txt, ...; there must be COUNT
    programs.py run PROGRAM FILE               runs the program; its output must be what the file holds

A program is a block with a main() in it; the next block of text in the page is its output. The first block of XML is
the file messages.xlf that it finds in its folder. Any other block under a line `NAME`: is the file of that name there.
"""

import os
import re
import subprocess
import sys

BLOCK = re.compile(r"(?:^`([\w./-]+)`:\n\n)?^```(\w+)\n(.*?)^```$", re.DOTALL | re.MULTILINE)


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def extract(page, folder, count, language="c"):
    with open(page, encoding="utf-8") as file:
        blocks = BLOCK.findall(file.read())
    found = 0
    catalog = "messages.xlf"
    while blocks:
        name, kind, text = blocks.pop(0)
        if kind == language and "int main(" in text:
            found += 1
            if not blocks or blocks[0][1] != "text":
                raise SystemExit(f"{page}: no output follows program {found}")
            write(f"{folder}/{found}.{language}", text)
            write(f"{folder}/{found}.txt", blocks[0][2])
        elif name:
            write(f"{folder}/{name}", text)
        elif kind == "xml" and catalog:
            write(f"{folder}/{catalog}", text)
            catalog = None
    if found != int(count):
        raise SystemExit(f"{page}: {found} programs, expected {count}")


def run(program, file):
    environment = dict(os.environ, LC_ALL="C.UTF-8")
    done = subprocess.run([program], stdout=subprocess.PIPE, env=environment, encoding="utf-8", check=False)
    with open(file, encoding="utf-8") as expected:
        printed = expected.read()
    if done.stdout != printed or done.returncode != 0:
        raise SystemExit(f"the page prints:\n{printed}\nthe program, with status {done.returncode}:\n{done.stdout}")


{"extract": extract, "run": run}[sys.argv[1]](*sys.argv[2:])
