#!/usr/bin/env python3
"""Gives Doxygen pages and headers in the form that it reads right, and mends what it makes of them.

    filter.py FILE          writes a page, or a header, to standard output
    filter.py --mend HTML   gives the characters that were hidden from Doxygen back to all files of a folder, and all
                            pages a list of them

Pages: headings get the anchors that links between the pages use, and the links become references. kelto.h: each chapter
becomes a group, with its introduction. Doxygen gives a meaning to many characters in code and between quotes, without a
way to escape all of them; they are hidden from it as characters of private use.
"""

import glob
import html
import os
import re
import sys

# A heading, or a link; code is matched too, so that it is left alone.
MARKDOWN = re.compile(r"^(?P<code>```[\s\S]*?^```$)|`(?P<span>[^`]+)`|^(?P<level>#+) (?P<title>.*)$"
                      r"|(?P<image>!)?\[(?P<text>[^\]]*)\]\((?P<link>[^)\s]*)\)|\*\*(?P<bold>.*?)\*\*|[\\@%]",
                      re.MULTILINE)
PRIVATE = 0xE000  # and the character's own number
COMMENT = re.compile(r"/\*(\*?<?)(.*?)\*/", re.DOTALL)


def hidden(text, characters):
    return re.sub(characters, lambda found: chr(PRIVATE + ord(found[0])), text)


def anchor(title):
    return re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-")


def identifier(path, title=""):
    """The name by which Doxygen knows a page, or a heading of it."""
    if path == "README.md" and not title:
        return "mainpage"
    name = "page-" + re.sub(r"\W", "-", os.path.relpath(path))
    return f"{name}-{title}" if title else name


def target_of(path, link):
    """Where a link of a page leads; null for what is not in the reference."""
    if "://" in link:
        return link
    file, _, heading = link.partition("#")
    file = os.path.normpath(os.path.join(os.path.dirname(path), file)) if file else path
    if os.path.isdir(file) and os.path.exists(os.path.join(file, "README.md")):
        file = os.path.join(file, "README.md")
    if file.endswith(".md"):
        return "@ref " + identifier(file, heading).replace("mainpage", "index")
    return "@ref " + os.path.basename(file) if file.startswith("include/") else None


def page(path, text):
    def replaced(found):
        if found["title"]:
            title = found["title"] if found["level"] != "#" else ""
            return f"{found['level']} {found['title']} {{#{identifier(path, anchor(title))}}}"
        if found["span"]:
            return f"`{hidden(found['span'], '[!-/:-@[-^{-~]')}`"
        if found["bold"]:
            return f"<b>{MARKDOWN.sub(replaced, found['bold'])}</b>"
        if found["image"]:
            return f"![{found['text']}]({os.path.basename(found['link'])})"
        if found["link"]:
            target = target_of(path, found["link"])
            shown = MARKDOWN.sub(replaced, found["text"])
            return f"[{shown}]({target})" if target else shown
        return found[0] if found["code"] else hidden(found[0], r"[\\@%]")

    return MARKDOWN.sub(replaced, text)


def reference(found):
    return f"@ref {identifier(found[0])}" if os.path.exists(found[0]) else found[0]


def plain(line):
    """A line of running text in which nothing but the commands in use has a meaning to Doxygen."""
    line = hidden(line, r"@(?!(?:param|return|file|tparam)\b)|[\\%<>#]")
    return re.sub(r"docs/[\w-]+\.md", reference, line)


def comment_text(body):
    lines = [re.sub(r"^ \*(?: |$)", "", line) for line in body.split("\n")]
    text = []
    while lines:
        line = lines.pop(0)
        is_indented = line.startswith("    ") and "@" not in line
        # Indented lines behind an empty one are an example; behind @return Doxygen takes them for running text.
        if is_indented and text and not text[-1].strip():
            text.append("")
            start = len(text)
            text.append(line[4:])
            while lines and (lines[0].startswith("    ") or not lines[0].strip()):
                text.append(lines.pop(0)[4:])
            empty = 0
            while not text[-1].strip():
                text.pop()
                empty += 1
            text[start - 1] = "@code{%s}" % (".cpp" if any(";" in line for line in text[start:]) else ".unparsed")
            text += ["@endcode"] + [""] * empty
        else:
            text.append(line if is_indented else plain(line))
    return "\n".join(text)


def header(text, prefix, what):
    chapters = []

    def replaced(found):
        kind, body = found[1], found[2]
        chapter = re.search(r"^(?: \*)? ?## (\d+)\. (.*)$", body, re.MULTILINE)
        if chapter:
            body = comment_text(body[chapter.end():])
            end = "/** @} */\n" if chapters else f"/** @file\n{what} */\n"
            chapters.append(chapter[1])
            return f"{end}/** @defgroup {prefix}{chapter[1]} {chapter[1]}. {chapter[2].strip()}\n{body}\n@{{ */"
        if not kind and body.startswith(" ") and "\n" in body:
            return f"/** @}} */\n/** @addtogroup {prefix}{chapters[-1]}\n@details {comment_text(body)}\n@{{ */"
        return f"/*{kind}{comment_text(body)}*/" if kind else found[0]

    text = COMMENT.sub(replaced, text)
    end = text.rindex("#pragma GCC visibility pop")
    return text[:end] + "/** @} */\n" + text[end:]


def list_of_pages(folder):
    """For windows too narrow for the side bar: its first level."""
    with open(f"{folder}/navtreedata.js", encoding="utf-8") as file:
        entries = re.findall(r'^    \[ "(.*?)", "([^"#]+)", ', file.read(), re.MULTILINE)
    if not entries:
        raise SystemExit("docs: the side bar has no pages")
    items = "".join(f'<li><a href="{link}">{title}</a></li>' for title, link in [("Kelto", "index.html"), *entries])
    return f'<details class="pages"><summary>All pages</summary><ul>{items}</ul></details>'


def mend(folder):
    pages = list_of_pages(folder)
    pattern = f"[{chr(PRIVATE + 0x21)}-{chr(PRIVATE + 0x7E)}]"
    for path in glob.glob(f"{folder}/**/*.*", recursive=True):
        if path.endswith((".html", ".js")):
            with open(path, encoding="utf-8") as file:
                text = file.read()
            text = text.replace('<div id="doc-content">', f'<div id="doc-content">{pages}')
            with open(path, "w", encoding="utf-8") as file:
                file.write(re.sub(pattern, lambda found: html.escape(chr(ord(found[0]) - PRIVATE)), text))


def main(path):
    with open(path, encoding="utf-8") as file:
        text = file.read()
    path = os.path.relpath(path)
    if path.endswith(".md"):
        text = page(path, text)
    elif path.endswith("kelto.h"):
        text = header(text, "chapter", "The whole C interface.")
    elif path.endswith("kelto-locale.h"):
        text = header(text, "locale", "The C interface of the add-on.")
    else:
        text = COMMENT.sub(lambda found: f"/*{found[1]}{comment_text(found[2])}*/" if found[1] else found[0], text)
        text += "/** @namespace kelto\nThe layer for C++; @ref page-docs-cpp-md is its guide. */\n"
    sys.stdout.write(text)


if sys.argv[1] == "--mend":
    mend(sys.argv[2])
else:
    main(sys.argv[1])
