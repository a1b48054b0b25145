"""Whether `kelto check` finds twenty mistakes, planted one by one in five translations, where they stand, and no more.

    planted.py KELTO ROOT [LIBRARY]     with a library, the example that guards its messages survives each of them
"""

import json
import os
import shutil
import subprocess
import sys
import tempfile

# The file, a text in it, what it is turned into with "‸" where the finding is expected, its rule; the rules of others
# that follow from it.
PLANTED = [
    ("de", '<x ts="%s" id="1"/>, Sie', '‸<x ts="%d" id="1"/>, Sie', "argument-type", ""),
    ("de", 'haben <x ts="%u" id="2"/> neue', "haben neue", "argument-missing", ""),
    ("de", 'Dateien <x ts="%d" id="1"/>', 'Dateien ‸<x ts="%d" id="2"/>', "position-repeat", "argument-missing"),
    ("de", "Willkommen im Dokumentenarchiv</source>",
     "Willkommen im Dokumentenarchiv</source>‸<target>Welcome</target>", "structure", ""),
    ("fr", "Bienvenue dans les archives", "Bienvenue aux archives &‸ documents", "xml-syntax", ""),
    ("fr", "%% terminé", "‸% terminé", "bad-conversion", ""),
    ("fr", '<trans-unit id="5" restype', '‸<trans-unit id="4" restype', "duplicate-id",
     "message-missing"),
    ("fr", "store --help</source>", "store --help‸\\</source>", "trailing-backslash", ""),
    ("it", '<x ts="%E" id="2"/>', '‸<x ts="%e" id="2"/>', "bad-conversion", ""),
    ("it", "archivio dei documenti</source>", "archivio dei documenti‸<source>", "structure", "xml-syntax"),
    ("it", '<trans-unit id="10"', '‸<trans-unit id="1O"', "duplicate-id",
     "message-missing"),
    ("it", 'di <x ts="%d" id="2"/> copiati', "di ‸%d[2] copiati", "typed-conversion", ""),
    ("ja", '<x ts="%s" id="1"/>さん', "％s[1]さん", "argument-missing", ""),
    ("ja", '<x ts="%u" id="2"/>件', "‸%u件", "bad-conversion", ""),
    ("ja", '<trans-unit id="8" restype="string">', '<trans-unit id="80" restype="string">', "message-missing",
     "message-extra"),
    ("ja", 'source-language="ja-JP"', 'source-language="‸jpn"', "language", ""),
    ("el", '<x ts="%!u" id="2"/>', '‸<x ts="%u" id="2"/>', "argument-type", ""),
    ("el", '<x ts="%-16s" id="1"/>', '‸<x ts="%-16s"/>', "attribute-missing", ""),
    ("el", "\\n\\tstore", "‸\\Ν\\tstore", "unknown-escape", "line-break"),
    ("el", '<x ts="%d" id="2"/>', '‸<x ts="%*d" id="2"/>', "argument-extra", ""),
]

kelto, root, *library = sys.argv[1:]
messages = f"{root}/examples/messages"
faults = []


def findings(work, language):
    command = [kelto, "check", "--format=json", "-Wno-conversion-changed", "-r", "en.xlf", f"{language}.xlf"]
    return json.loads(subprocess.run(command, cwd=work, stdout=subprocess.PIPE, check=False).stdout)["findings"]


with tempfile.TemporaryDirectory() as work:
    shutil.copytree(messages, work, dirs_exist_ok=True)
    if library:
        subprocess.run(["cc", "-std=c99", '-DCARELESS="-"', f"-I{root}/include", f"{root}/examples/guarded/guarded.c",
                        *library, f"-Wl,-rpath,{os.path.dirname(library[0])}", "-o", f"{work}/guarded"], check=True)
    for language in "de el fr it ja".split():
        if findings(work, language):
            faults.append(f"{language}: {findings(work, language)}")
    for language, old, new, rule, others in PLANTED:
        path = f"{work}/{language}.xlf"
        encoding = "utf-16" if language == "el" else "utf-8"
        with open(f"{messages}/{language}.xlf", encoding=encoding) as file:
            text = file.read()
        assert text.count(old) == 1, (language, old)
        text = text.replace(old, new)
        before = text.partition("‸")[0].split("\n")
        with open(path, "w", encoding=encoding) as file:
            file.write(text.replace("‸", ""))
        found = findings(work, language)
        if "‸" in new and (len(before), len(before[-1]) + 1, rule) not in [
                (finding["line"], finding["column"], finding["rule"]) for finding in found]:
            faults.append(f"{language}: {rule} is not found at {len(before)}:{len(before[-1]) + 1}: {found}")
        if sorted(finding["rule"] for finding in found) != sorted([rule, *others.split()]):
            faults.append(f"{language}: {new}: {found}")
        if library:
            ran = subprocess.run([f"{work}/guarded", path], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                 check=False)
            if ran.returncode < 0 or ran.stdout.count(b"\n") < 3:
                faults.append(f"{language}: {new}: the guarded program ends with {ran.returncode}: {ran.stdout}")
        shutil.copy(f"{messages}/{language}.xlf", path)
for fault in faults:
    print(fault)
sys.exit(bool(faults))
