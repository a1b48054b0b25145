"""Whether the documentation points to what exists: links between its pages, files in backquotes; and in the other
direction, whether every exported name is declared in a header, which is where names are explained, and whether
docs/architecture.md has for every rule of the checker a source that finds it.
"""

import glob
import os
import re
import sys

root = sys.argv[1]
faults = []


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def anchors(page):
    """The anchors of a page's headings."""
    headings = re.findall(r"^#+ (.*)$", re.sub(r"```.*?```", "", page, flags=re.DOTALL), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


pages = glob.glob(f"{root}/*.md") + glob.glob(f"{root}/docs/*.md")
for path in pages:
    page = read(path)
    folder = os.path.dirname(path)
    name = os.path.relpath(path, root)
    for target in re.findall(r"\]\(([^)]*)\)", re.sub(r"```.*?```", "", page, flags=re.DOTALL)):
        file, _, anchor = target.partition("#")
        if "://" in file:
            continue
        linked = os.path.join(folder, file) if file else path
        if not os.path.exists(linked):
            faults.append(f"{name}: no file {target}")
        elif anchor and anchor not in anchors(read(linked)):
            faults.append(f"{name}: no heading {target}")
    for file in re.findall(r"`((?:docs|examples|src|locale|tests|scripts|include|tools)/[\w./-]+)`", page):
        if not os.path.exists(os.path.join(root, file)):
            faults.append(f"{name}: no file {file}")

headers = glob.glob(f"{root}/include/*.h") + glob.glob(f"{root}/src/**/*.h", recursive=True)
declared = set(re.findall(r"\w+", "\n".join(read(header) for header in headers)))
lists = glob.glob(f"{root}/tests/linkage/exported_names*.txt")
for line in "".join(map(read, lists)).splitlines():
    symbol = line.split()[0]
    member = re.match(r"_ZN12MsgTableList(\d+)(\w+)", symbol)
    plain = re.sub(r"^_ZN12MsgTableList.*", "MsgTableList", symbol)
    symbol = member.group(2)[: int(member.group(1))] if member else plain
    if symbol not in declared:
        faults.append(f"{symbol} is exported and stands in no header")

rules = re.findall(r'^KELTO_RULE\((\w+), "([\w-]+)"', read(f"{root}/tools/check/rules.inc"), re.MULTILINE)
table = read(f"{root}/docs/architecture.md").partition("| Sources of `tools/check/` |")[2].partition("\n\n")[0]
faults += [f"docs/architecture.md: no source has the rule {rule}" for _, rule in rules if f'"{rule}"' not in table]
for sources, _, found in (row.strip("|").split("|") for row in table.splitlines()[2:]):
    paths = [f"{root}/tools/check/{source}.cpp" for source in re.findall("`([^`]+)`", sources)]
    faults += [f"docs/architecture.md: no file {path}" for path in paths if not os.path.exists(path)]
    text = "".join(read(path) for path in paths if os.path.exists(path))
    faults += [f"docs/architecture.md: {sources.strip()} does not find {rule}" for enumerator, rule in rules
               if f'"{rule}"' in found and f"Rule::{enumerator}" not in text]

if len(pages) < 5 or len(rules) < 50 or len(declared) < 100:
    faults.append("pages or headers are not found")
sys.exit("\n".join(faults) or 0)
