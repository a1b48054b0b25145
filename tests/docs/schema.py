"""Whether the library loads what the description of message files for editors accepts, but for repeated numbers.

    schema.py LIBRARY SCHEMA FILE...     the files, which are accepted, and 3000 made from them by small changes
"""

import copy
import ctypes
import os
import random
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as Tree

NAMES = "xliff file header body trans-unit source x context-group context note target".split()
ATTRIBUTES = "source-language product-name product-version ts id restype".split()
VALUES = ["", "0", "1", "-3", "12abc", "de-DE", "deu", "%s"]


def change(tree, choose):
    """Changes one thing; the document stays well-formed."""
    parents = {child: parent for parent in tree.iter() for child in parent}
    if not parents:
        return
    name = choose.choice(sorted({child.tag for child in parents})) # so that "file" has its turn as often as "x"
    child = choose.choice([child for child in parents if child.tag == name])
    parent = parents[child]
    what = choose.randrange(8)
    if what == 0:
        parent.remove(child)
    elif what == 1:
        choose.choice(list(tree.iter())).insert(choose.randrange(3), copy.deepcopy(child))
    elif what == 2:
        child.tag = choose.choice(NAMES)
    elif what == 3:
        child.set(choose.choice(ATTRIBUTES), choose.choice(VALUES))
    elif what <= 5 and child.attrib:
        child.set(choose.choice(list(child.attrib)), choose.choice(VALUES))
    elif what == 6 and child.attrib:
        del child.attrib[choose.choice(list(child.attrib))]
    else:
        choose.choice(list(tree.iter())).insert(0, Tree.Element(choose.choice(NAMES), {"ts": "%s", "id": "11"}))


def has_unique_numbers(tree):
    numbers = [unit.get("ts", unit.get("id")) for unit in tree.iter("trans-unit")]
    return len(set(numbers)) == len(numbers)


def main(library, schema, *files):
    choose = random.Random(1)
    kelto = ctypes.CDLL(library)
    kelto.KTInit()
    table = ctypes.c_void_p()
    with tempfile.TemporaryDirectory() as folder:
        made = []
        while len(made) < 3000:
            tree = Tree.parse(choose.choice(files)).getroot()
            for _ in range(choose.choice([1, 1, 2, 3])):
                change(tree, choose)
            if has_unique_numbers(tree):
                made.append(os.path.join(folder, f"{len(made)}.xlf"))
                Tree.ElementTree(tree).write(made[-1], encoding="utf-8")
        command = ["xmllint", "--noout", "--relaxng", schema, *files, *made]
        done = subprocess.run(command, stderr=subprocess.PIPE, encoding="utf-8", check=False)
        accepted = {line[: -len(" validates")] for line in done.stderr.splitlines() if line.endswith(" validates")}
        faults = [f"{file} is refused by the description" for file in set(files) - accepted]
        loaded = {file for file in made if kelto.KTLoadMessages(file.encode(), ctypes.byref(table)) == 0}
        for file in (accepted - loaded) & set(made):
            with open(file, encoding="utf-8") as text:
                faults.append("accepted, but not loaded:\n" + text.read())
    print(f"{len(loaded)} of {len(made)} are loaded, {len(accepted)} accepted")
    if not 500 < len(accepted) < 2500:
        faults.append("the description accepts nearly none, or nearly all")
    raise SystemExit("\n".join(faults) or 0)


main(*sys.argv[1:])
