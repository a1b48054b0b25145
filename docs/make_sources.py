#!/usr/bin/env python3
"""Makes docs/sources.md, where each source has a sentence: the one that it begins with.

    docs/make_sources.py            writes the page
    docs/make_sources.py --check    fails where the page is not what the sources say
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("include", "src", "locale", "tools", "fuzz", "bench", "scripts", "cmake", "docs", "tests")
MAY_BE_SILENT = ("cmake", "tests")  # where names say it
LONGEST = 240  # characters that the sentences of a source may have together, but for the first

HEAD = """# The sources

What lives in each source of the library, the add-on, the program, the fuzz targets, the benchmarks and the scripts, in
the words of the source itself; `docs/make_sources.py` makes this page of them. How they hang together stands in
[architecture.md](architecture.md).
"""


def first_paragraph(path):
    """What a source begins with, as a line; nothing where it begins with code."""
    text = path.read_text(encoding="utf-8")
    text = re.sub(r"^#![^\n]*\n", "", text)
    comment = re.match(r'/\*\*(.*?)\*/|((?://[^\n]*\n)+)|"""(.*?)"""|((?:#[^\n]*\n)+)', text, re.DOTALL)
    if not comment or (path.suffix in (".h", ".hpp", ".cpp") and comment.group(4)):
        return ""
    lines = [re.sub(r"^ *(?:\*|//|#)? ?", "", line) for line in comment.group(comment.lastindex).strip().splitlines()]
    text = re.split(r"\n\n|\n {2}", "\n".join(lines).strip())[0]  # not what is indented, as the use of a script
    paragraph = " ".join(text.split())
    return re.sub(r"^@file \S+ ?| ?Include kelto\.hpp\.$", "", paragraph).strip()


def in_short(paragraph):
    """The first sentence, and those behind it as long as they are short."""
    sentences = re.split(r"(?<=[.)]) (?=[A-Z\"`])", paragraph)
    short = sentences[0]
    for sentence in sentences[1:]:
        is_whole = sentence.endswith((".", ")"))  # else it leads to what is indented
        if not is_whole or len(short) + len(sentence) > LONGEST:
            break
        short += " " + sentence
    return short


def is_source(path):
    return path.suffix in (".h", ".hpp", ".cpp", ".py", ".cmake") or (path.parent.name == "scripts" and path.is_file())


def sources():
    """The path of each source, without an ending that nobody needs, and what it says of itself; a header speaks for its
    source."""
    found = {}
    for folder in FOLDERS:
        for path in sorted((ROOT / folder).rglob("*")):
            if not is_source(path) or "__pycache__" in path.parts:
                continue
            said = in_short(first_paragraph(path))
            name = path.relative_to(ROOT)
            stem = (name if folder == "include" else name.with_suffix("")).as_posix()
            if said and (stem not in found or path.suffix in (".h", ".hpp")):
                found[stem] = said
            elif folder not in MAY_BE_SILENT:
                found.setdefault(stem, "")
    return found


def page_of_sources():
    page, room = HEAD, None
    for stem, said in sorted(sources().items(), key=lambda row: (str(pathlib.PurePath(row[0]).parent), row[0])):
        if not said:
            sys.exit(f"{stem}: it does not say what lives there; begin it with a comment")
        parent, name = stem.rsplit("/", 1)
        if parent != room:
            room = parent
            page += f"\n## {room}/\n\n| Source | What lives there |\n|---|---|\n"
        said = said.replace("|", "\\|").replace("<", "&lt;")
        page += f"| `{name}` | {said} |\n"
    return page


def main():
    path, page = ROOT / "docs" / "sources.md", page_of_sources()
    if sys.argv[1:] != ["--check"]:
        path.write_text(page, encoding="utf-8")
    elif path.read_text(encoding="utf-8") != page:
        sys.exit("docs/sources.md is not what the sources say: make it anew with docs/make_sources.py")


if __name__ == "__main__":
    main()
