#!/usr/bin/env python3
"""Whether `kelto check`, `kelto gen` and the translators' commands do what their pages show.

And whether documents are what their schemas say.

    pages.py check KELTO ROOT [--update]
    pages.py translating KELTO ROOT [--update]
    pages.py gen KELTO ROOT LIBRARY [--update]     --update writes what the commands print, and the rules, into the page

Blocks under a line `NAME`: are files; in blocks of the console each line "$ COMMAND" is followed by what it prints.
"""

import json
import os
import re
import subprocess
import sys
import tempfile

import jsonschema

which, (kelto, root) = sys.argv[1], map(os.path.abspath, sys.argv[2:4])
page_path = f"{root}/docs/{dict(check='checking', gen='generating').get(which, which)}.md"
faults = []


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def run(command, folder):
    environment = dict(os.environ, LC_ALL="C.UTF-8", LANGUAGE="", PATH=f"{os.path.dirname(kelto)}:{os.environ['PATH']}")
    return subprocess.run(command, shell=True, cwd=folder, env=environment, encoding="utf-8", check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout


def played(block, folder):
    """A block of the console as it comes out."""
    commands = re.findall(r"^\$ .*$", block, re.MULTILINE)
    return "".join(f"{command}\n{run(command[2:], folder)}" for command in commands)


def rules(folder):
    """The chapter of the page that --explain gives."""
    text = ""
    for line in run("kelto check --list-rules", folder).splitlines():
        name = line.split()[0]
        heading, explanation, examples = run(f"kelto check --explain {name}", folder).split("\n\n")
        wrong, right = re.fullmatch(r"Wrong:\n  (.*)\nRight:\n  (.*)\n", examples).groups()
        severity, summary = re.fullmatch(rf"{name} \((\w+)\): (.*)", heading).groups()
        explanation = re.sub(r'"(&\w+;)"', r"`\1`", explanation)
        text += f"### {name}\n\n{severity.capitalize()}: {summary}\n\n{explanation}\n\n"
        text += f"```text\nwrong:  {wrong}\nright:  {right}\n```\n\n"
    return text


def schemas(folder):
    ours = json.loads(read(f"{root}/share/kelto/check.schema.json"))
    sarif = json.loads(read(f"{root}/tests/check/sarif.schema.json"))
    nasty = 'a"\\\x1b\u202e\u2028é\n'.encode() + b"\xff.xlf"
    with open(os.path.join(folder.encode(), nasty), "w", encoding="utf-8") as file:
        file.write(read(f"{folder}/de.xlf").replace(
            "kopiert", "\u202e\u0085&#x9f;\U000E0001 \\\u0085 %y[1] \U0001F600"))
    for form, schema in (("json", ours), ("sarif", sarif)):
        for files in ("en.xlf", "-r en.xlf de.xlf en.xlf own.xlf", "-r en.xlf a*", "-r de.xlf - </dev/null",
                      "none.xlf en.xlf", "--limit=1 -r en.xlf de.xlf"):
            output = run(f"kelto check --format={form} {files} 2>/dev/null", folder)
            if re.search("[\x00-\x09\x0b-\x1f\x7f-\x9f\u2028-\u202e\U000E0001]", output):
                faults.append(f"{form} of {files} holds control characters")
            document = json.loads(output)
            jsonschema.validate(document, schema)
            for part in document.get("runs", []):
                rules = [rule["id"] for rule in part["tool"]["driver"]["rules"]]
                if any(rules[result["ruleIndex"]] != result["ruleId"] for result in part["results"]):
                    faults.append(f"{form} of {files} names a rule by another index")


def project(page, folder, before, command, after=""):
    """What a command prints in a project with the lines of the page."""
    snippet = re.search(r"^```cmake\nfind_package.*?\n(.*?)^```$", page, re.DOTALL | re.MULTILINE)[1]
    with open(f"{folder}/CMakeLists.txt", "w", encoding="utf-8") as file:
        file.write(f"cmake_minimum_required(VERSION 3.20)\nset(KELTO_PROGRAM {kelto})\n"
                   f"{before}include({root}/cmake/KeltoMessages.cmake)\n{snippet}{after}")
    output = run(f"{command}; cmake -S . -B build >log && cmake --build build >>log 2>&1; echo $?; cd build", folder)
    return output + run("cd build; ctest; ./store", folder), read(f"{folder}/log")


def check_page(page, folder):
    workflow = re.search(r"^```yaml\n(.*?)^```$", page, re.DOTALL | re.MULTILINE)[1]
    if workflow != read(f"{root}/examples/workflows/check-messages.yml"):
        faults.append("the workflow of the page is not that of the examples")
    schemas(folder)
    broken, log = project(page, folder, "project(user NONE)\n", "cp en.xlf fr.xlf")
    if broken.startswith("0") or "0% tests passed" not in broken:
        faults.append(f"a broken translation is built: {broken} {log}")
    good, log = project(page, folder, "project(user NONE)\n", "cp en.xlf de.xlf")
    if not good.startswith("0") or "100% tests passed" not in good:
        faults.append(f"good translations are not built: {good} {log}")


def gen_page(page, folder):
    package = (f"project(user CXX)\nadd_library(Kelto::kelto INTERFACE IMPORTED)\ninclude_directories({root}/include)\n"
               f"target_link_libraries(Kelto::kelto INTERFACE {sys.argv[4]})\n")
    with open(f"{folder}/user.cpp", "w", encoding="utf-8") as file:
        file.write('#include <store/texts.hpp>\nint main() { return MESSAGES_WELCOME - 1; }\n')
    library = (re.search(r"^```cmake\n(add_library.*?)^```$", page, re.DOTALL | re.MULTILINE)[1]
               + "add_executable(user user.cpp)\ntarget_link_libraries(user texts)\n")
    output, log = project(page, folder, package, "rm store_messages.hpp; mkdir build; cp store.xlf build", library)
    again = run("touch store.xlf && cmake --build build && build/user && echo works", folder)
    if "Making" not in again or "Building" in again or not again.endswith("works\n"):
        faults.append(f"a header that stays as it is is written, or does not reach a user: {log} {again}")
    if "3 of 4 files copied ( 75%)" not in output:
        faults.append(f"the project of the page does not run: {output} {log}")


with tempfile.TemporaryDirectory() as work:
    page = read(page_path)
    if which == "gen": # a Kelto that pkg-config finds
        folder = os.path.dirname(sys.argv[4])
        with open(f"{work}/kelto.pc", "w", encoding="utf-8") as file:
            file.write(f"Name: kelto\nDescription: Kelto\nVersion: 1\nCflags: -I{root}/include\n"
                       f"Libs: -L{folder} -lkelto -Wl,-rpath,{folder}\n")
        os.environ["PKG_CONFIG_PATH"] = work
    for name, text in re.findall(r"^`([\w./-]+)`:\n\n```\w+\n(.*?)^```$", page, re.DOTALL | re.MULTILINE):
        with open(f"{work}/{name}", "w", encoding="utf-8") as file:
            file.write(text)
    real = re.sub(r"^```console\n(.*?)^```$", lambda block: f"```console\n{played(block[1], work)}```", page,
                  flags=re.DOTALL | re.MULTILINE)
    real = re.sub(r"(?<=\n## Rules\n\n).*?(?=## At run time)", lambda _: rules(work), real, flags=re.DOTALL)
    if "--update" in sys.argv:
        with open(page_path, "w", encoding="utf-8") as file:
            file.write(real)
    elif real != page:
        with open(f"{work}/real.md", "w", encoding="utf-8") as file:
            file.write(real)
        faults.append(run(f"diff -u {page_path} real.md", work))
    {"check": check_page, "gen": gen_page}.get(which, lambda *_: None)(page, work)
for fault in faults:
    print(fault)
sys.exit(bool(faults))
