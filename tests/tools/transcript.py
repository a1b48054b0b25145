#!/usr/bin/env python3
"""Runs the commands of a transcript and compares what they print.

    transcript.py PROGRAM TRANSCRIPT             prints what is different
    transcript.py --record PROGRAM TRANSCRIPT    writes what is printed into the transcript

Each command stands behind "$ ", its further lines behind "> ", what it prints on both outputs below it, and its status
in brackets where that is not 0. Lines that begin with "# " in front of a command are comments. The commands are bash's,
and these:

    kelto WORD...             the program
    messages FILE SOURCE...   makes a message file; an empty source leaves its number out
    format MESSAGE ARG...     shows the one message of m.xlf, which it makes first
    convert FROM TO           converts its input, and ends with a new line
    subcommands               lists them
    completed WORD...         what bash makes of the last word
"""

import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "tools"
FUNCTIONS = r"""
messages() {
  local file=$1 id=0 source
  shift
  echo '<xliff><file source-language="en" product-name="p" product-version="1.5"><header/><body>' >"$file"
  for source; do
    id=$((id + 1))
    [ -z "$source" ] || printf '<trans-unit id="%s"><source>%s</source></trans-unit>\n' "$id" "$source" >>"$file"
  done
  echo '</body></file></xliff>' >>"$file"
}
convert() { kelto convert --strict --from "$1" --to "$2" && echo; }
subcommands() { kelto --help | sed -n '/^Subc/,/^$/s/^  \([a-z]*\) .*/\1/p'; }
completed() {
  . "$TOOLS/completions/kelto.bash"
  compopt() { :; }
  COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
  _kelto
  echo "${COMPREPLY[@]}"
}
format() { messages m.xlf "$1" && kelto format m.xlf 1 "${@:2}"; }
"""


def printed_by(command, folder, program):
    path = f"{pathlib.Path(program).resolve().parent}:{os.environ['PATH']}"
    environment = {"PATH": path, "LC_ALL": "C.UTF-8", "NO_COLOR": "1", "TOOLS": str(TOOLS)}
    environment.update((name, value) for name, value in os.environ.items() if name.endswith("SAN_OPTIONS"))
    run = subprocess.run(["bash", "-c", FUNCTIONS + command], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    output = run.stdout.decode("utf-8", "backslashreplace")
    if output and not output.endswith("\n"):
        output += "\\\n"
    return output + (f"[{run.returncode}]\n" if run.returncode != 0 else "")


def main(words):
    record = words[:1] == ["--record"]
    program, path = words[-2:]
    transcript = pathlib.Path(path)
    text = transcript.read_text(encoding="utf-8")
    found = ""
    with tempfile.TemporaryDirectory() as folder:
        for comments, command in re.findall(r"((?:^\n?# .*\n)*)^(\$ .*\n(?:> .*\n)*)", text, re.M):
            found += comments + command + printed_by(re.sub("^..", "", command, flags=re.M), folder, program)
    if record:
        transcript.write_text(found, encoding="utf-8")
    elif found != text:
        sys.stdout.writelines(difflib.unified_diff(text.splitlines(True), found.splitlines(True), path, "found"))
        return 1
    elif not found:
        raise SystemExit(f"{path} has no command")
    return 0


sys.exit(main(sys.argv[1:]))
