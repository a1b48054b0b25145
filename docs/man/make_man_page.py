#!/usr/bin/env python3
"""Makes the manual page of a header, kelto.3 or kelto-locale.3; its comments are the reference.

    make_man_page.py HEADER >kelto.3         writes the page
    make_man_page.py --check HEADER PAGE     fails where the page is not what the header gives
    make_man_page.py --functions HEADER FOLDER    writes a page for each KT... function there

It fails too where the header declares something without a comment of its own.
"""

import os
import re
import sys

DATE = "2026-11-25"
CODE_COLUMNS = 80 - 7 - 4  # without the indentation of the text, and of code in it
# By the name of the header: the title of its page, and what to read besides.
PAGES = {
    "kelto": ("message catalogs, formatting with positions, and character sets",
              ("kelto (1)", "kelto.hpp (3)", "printf (3)", "setlocale (3)", "kelto\\-messages (5)",
               "kelto\\-format (7)")),
    "kelto-locale": ("numbers, dates, amounts and lists of a language",
                     ("kelto (3)", "kelto.hpp (3)", "kelto\\-messages (5)", "kelto\\-format (7)")),
}

# A comment, or code up to the end of its declaration. Braces belong to the declaration.
TOKEN = re.compile(r"/\*.*?\*/|[^/;{]+(?:\{[^}]*\}[^;]*)?;", re.DOTALL)
CHAPTER = re.compile(r"^## (\d+\. .*)$")
TAG = re.compile(r"^@(?:param ([\w, ]+?)  +|param (\w+) |return )(.*)$")
MEMBER = re.compile(r"^\s*([^/]*?),?;?\s*(?:/\*\*< (.*?) \*/)?$")


class Page:
    def __init__(self):
        self.lines = []

    def request(self, line):
        self.lines.append(line)

    def begin(self, name, version, title):
        self.request(f'.TH {name} 3 {DATE} "Kelto {version}" "Library Functions"')
        self.request(".nh")
        self.request(".ad l")
        self.request(".SH NAME")
        self.request(f"{escape_code(name.lower() if name.isupper() else name)} \\- {escape(title)}")
        self.request(".SH SYNOPSIS")

    def finished(self, *others):
        """The page as a text, with the pages to read besides."""
        self.request(".SH SEE ALSO")
        for other in others:
            self.request(f".BR {other}" + ("," if other != others[-1] else ""))
        lines = [line for i, line in enumerate(self.lines) if line != ".PP" or begins_paragraph(self.lines, i)]
        return "\n".join(lines) + "\n"

    def text(self, line):
        """A line of running text: with **bold**, and with the names of functions in bold."""
        line = escape(line)
        line = re.sub(r"\*\*(.+?)\*\*", r"\\fB\1\\fR", line)
        line = re.sub(r"\b((?:KT|ZEL_|check)\w+)\(\)", r"\\fB\1\\fR()", line)
        self.lines.append(protect(line))

    def code(self, lines):
        self.request(".PP")
        self.request(".RS 4")
        self.request(".nf")
        for line in lines:
            self.lines.append(protect(escape_code(line)))
        self.request(".fi")
        self.request(".RE")


def escape(text):
    text = text.replace("\\", "\\e")
    return "".join(c if ord(c) < 128 else f"\\[u{ord(c):04X}]" for c in text)


def escape_code(text):
    text = escape(text).replace("-", "\\-")
    return text.replace("'", "\\(aq").replace("`", "\\(ga").replace("^", "\\(ha").replace("~", "\\(ti")


def protect(line):
    return "\\&" + line if line[:1] in (".", "'") else line


def comment_lines(comment):
    """The text of a comment without its frame."""
    body = re.sub(r"^/\*\*?<? ?|\s*\*/$", "", comment)
    lines = [re.sub(r"^ \* ?", "", line) for line in body.split("\n")]
    while lines and not lines[0].strip():
        del lines[0]
    return lines


def write_comment(page, lines):
    """Paragraphs, indented code, @param and @return."""
    # @return may follow a sentence on its line.
    lines = [part for line in lines for part in re.split(r"(?<=\S) (?=@return)", line)]
    pending = False  # a paragraph ended, and nothing has begun since
    hanging = False  # inside @param or @return
    i = 0
    while i < len(lines):
        line = lines[i]
        tag = TAG.match(line)
        if not line.strip():
            pending = True
        elif line.startswith("    ") and not hanging or line.startswith("    ") and pending:
            block = []
            while i < len(lines) and (lines[i].startswith("    ") or not lines[i].strip()):
                block.append(lines[i][4:])
                i += 1
            while not block[-1].strip():
                block.pop()
            page.code(block)
            pending = hanging = False
            page.request(".PP")
            continue
        elif tag:
            name = tag.group(1) or tag.group(2)
            page.request(".TP")
            page.request(f".I {escape(name.strip())}" if name else ".B Returns")
            page.text(tag.group(3))
            hanging, pending = True, False
        else:
            if pending:
                page.request(".PP")
                hanging = False
            page.text(line.strip())
            pending = False
        i += 1


def names_of(declaration):
    """What a declaration declares, for its heading."""
    record = re.match(r"(?:typedef )?(?:struct|union|enum) (\w+)", declaration)
    if record and "{" in declaration:
        return [record.group(1)]
    pointer = re.match(r"typedef .*?\(\*(\w+)\)", declaration, re.DOTALL)
    if pointer:
        return [pointer.group(1)]
    function = re.match(r"[^(]*?(\w+)\(", declaration)
    if function and not declaration.startswith("typedef"):
        return [function.group(1)]
    if declaration.startswith("typedef"):
        return [re.search(r"(\w+);$", declaration).group(1)]
    return re.findall(r"(\w+)(?:\[\d*\])?(?=[,;])", declaration)


def fitted(declaration):
    """The lines of a declaration, broken behind commas so that a terminal of 80 columns shows them whole."""
    lines = declaration.split("\n")
    if "{" in declaration or max(map(len, lines)) <= CODE_COLUMNS:
        return lines
    start, *rest = re.split(r"(?<=,) +", " ".join(declaration.split()))
    inside = start.find("(", start.startswith("typedef") and start.find(")(") + 1) + 1
    longest = max(map(len, rest), default=0)
    indent = " " * (inside if inside and inside + longest <= CODE_COLUMNS else 4)
    lines = [start]
    for part in rest:
        if len(lines[-1]) + 1 + len(part) <= CODE_COLUMNS:
            lines[-1] += " " + part
        else:
            lines.append(indent + part)
    return lines


def write_declaration(page, declaration):
    """A declaration as code; the members of a record with their comments as a list."""
    members = re.match(r"(.*?)\{(.*)\}(.*)$", declaration, re.DOTALL)
    if not members:
        page.code(fitted(declaration))
        return []
    described = []
    silent = []
    for line in members.group(2).strip("\n").split("\n"):
        name, comment = MEMBER.match(line).groups()
        (described if comment else silent).append((name, comment))
    page.code([members.group(1).strip() + " { ... }" + members.group(3)])
    if silent:
        page.request(".PP")
        page.text(", ".join(name for name, _ in silent))
    return described


def strip_preprocessor(source):
    code = re.sub(r"^#(?:.*\\\n)*.*$", "", source, flags=re.MULTILINE)
    code = re.sub(r"^static inline ([^;{]*)\n\{\n.*?\n\}$", r"\1;", code, flags=re.MULTILINE | re.DOTALL)
    return code.replace('extern "C" {', "").replace("\n}\n", "\n")


def begins_paragraph(lines, i):
    """Whether a .PP has an effect: not behind a heading, nor in front of what begins a paragraph itself."""
    return not lines[i - 1].startswith((".SH", ".SS")) and not lines[i + 1].startswith((".SH", ".SS", ".PP", ".TP"))


def version_of(header):
    return ".".join(re.findall(r"#define KELTO_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)", header))


def write_documented(page, declaration, comment):
    described = write_declaration(page, declaration)
    page.request(".PP")
    write_comment(page, comment)
    for name, meaning in described:
        page.request(".TP")
        page.request(f".B {escape(name)}")
        page.text(meaning)


def make_page(name, version, header):
    title, others = PAGES[name]
    page = Page()
    page.request(f'.\\" Made by make_man_page.py of {name}.h; change the comments there.')
    page.begin(name.upper(), version, title)
    page.request(".nf")
    page.request(f".B #include <{escape_code(name)}.h>")
    page.request(".PP")
    page.request(f"Compile and link with \\fIpkg\\-config \\-\\-cflags \\-\\-libs {escape_code(name)}\\fR.")
    page.request(".fi")

    documented = []  # name, declaration and comment
    comment = None  # the one in front of what comes next
    for token in TOKEN.findall(strip_preprocessor(header)):
        token = token.strip()
        if token.startswith("/*"):
            lines = comment_lines(token)
            if token.startswith("/**") and lines[0].startswith("@file"):
                lines = lines[3:]
                token = "/*"
            if token.startswith("/**"):
                comment = lines
                continue
            chapter = CHAPTER.match(lines[0])
            if chapter:
                page.request(f".SH {chapter.group(1).upper()}")
                lines = lines[1:]
                while lines and not lines[0].strip():
                    del lines[0]
            else:
                page.request(".SS About the functions that follow")
            write_comment(page, lines)
            continue
        names = names_of(token)
        if comment is None:
            raise SystemExit(f"{name}.h: {', '.join(names)} has no comment")
        page.request(f".SS {', '.join(names)}")
        write_documented(page, token, comment)
        documented.append((names[0], token, comment))
        comment = None

    return page.finished(*others), documented


def function_page(header, version, name, declaration, comment):
    """A page of one function; its title is the first sentence of the comment."""
    page = Page()
    sentence = re.split(r"[.;:](?:\s|$)|@", " ".join(comment))[0].strip() or "a function of the library Kelto"
    if re.match(r"[A-Z][a-z ]", sentence):
        sentence = sentence[0].lower() + sentence[1:]
    page.begin(name, version, sentence)
    page.request(".nf")
    page.request(f".B #include <{escape_code(header)}.h>")
    page.request(".fi")
    page.code(fitted(declaration))
    page.request(".SH DESCRIPTION")
    write_comment(page, comment)
    page.request(".PP")
    if header != "kelto":
        page.text(f"{header}(3) explains it all.")
    page.text("kelto(3) explains texts, sizes, ownership and threads, which are the same for all functions.")
    return page.finished("kelto (3)", "kelto\\-messages (5)", "kelto\\-format (7)")


def write_functions(header, version, documented, folder):
    os.makedirs(folder, exist_ok=True)
    for name, declaration, comment in documented:
        if name.startswith("KT") and "{" not in declaration and not declaration.startswith("typedef"):
            with open(f"{folder}/{name}.3", "w", encoding="utf-8") as file:
                file.write(function_page(header, version, name, declaration, comment))


def main(arguments):
    option = arguments.pop(0) if arguments and arguments[0].startswith("--") else ""
    if len(arguments) != {"": 1, "--check": 2, "--functions": 2}.get(option):
        raise SystemExit(__doc__)
    name, _ = os.path.splitext(os.path.basename(arguments[0]))
    with open(arguments[0], encoding="utf-8") as file:
        header = file.read()
    with open(os.path.join(os.path.dirname(arguments[0]), "kelto.h"), encoding="utf-8") as file:
        version = version_of(file.read())
    page, documented = make_page(name, version, header)
    if option == "--functions":
        write_functions(name, version, documented, arguments[1])
    elif option == "--check":
        with open(arguments[1], encoding="utf-8") as file:
            if file.read() != page:
                raise SystemExit(f"{arguments[1]} is older than {arguments[0]}: make it anew with make_man_page.py")
    else:
        sys.stdout.write(page)


main(sys.argv[1:])
