#!/usr/bin/env python3
"""Writes the message catalogs that the benchmarks read: the same messages for Kelto and, to be compiled by their own
tools, for gettext (.po), catgets (.msg) and ICU (.txt).

    make_catalogs.py FOLDER

A catalog of n messages is about 125 n bytes of XLIFF. Messages are German, every tenth one Japanese; two of three hold
a placeholder. Two of them are asked for by the benchmarks: PLAIN, which reads the same in every format, and
FORMATTED, a text and a number with their positions swapped.
"""

import pathlib
import sys

PLAIN = 1000
FORMATTED = 1234

GERMAN = [
    ("Volume {n} could not be mounted: it is used by {0}.", "Datenträger {n} ist belegt, Benutzer: {0}."),
    ("{0} of the files of group {n} have been copied.", "{0} Dateien der Gruppe {n} wurden übertragen."),
    ("Press Enter to go on with step {n}.", "Weiter mit der Eingabetaste, Schritt {n}."),
]
JAPANESE = [
    ("Volume {n} could not be mounted: it is used by {0}.", "ボリューム{n}は{0}が使用しています。"),
    ("{0} of the files of group {n} have been copied.", "グループ{n}の{0}個をコピーしました。"),
    ("Press Enter to go on with step {n}.", "ステップ{n}に進みます。"),
]
CONVERSIONS = ["%s", "%d", None]
ICU_ARGUMENTS = {"%s": "{%d}", "%d": "{%d,number,integer}"}


def message(number):
    """The key, the translation, and the conversions of a message by position."""
    if number == PLAIN:
        return "The last backup of this server is complete.", "Die letzte Sicherung dieses Servers ist vollständig.", []
    if number == FORMATTED:
        return "{1}: {0}", "{1}: {0}", ["%d", "%s"]
    kind = number % 3
    key, text = (JAPANESE if number % 10 == 0 else GERMAN)[kind]
    conversions = [CONVERSIONS[kind]] if CONVERSIONS[kind] else []
    return key.replace("{n}", str(number)), text.replace("{n}", str(number)), conversions


def with_placeholders(text, conversions, write):
    for index, conversion in enumerate(conversions):
        text = text.replace("{%d}" % index, write(conversion, index + 1))
    return text


def positional(text, conversions):
    return with_placeholders(text, conversions, lambda conversion, at: "%%%d$%s" % (at, conversion[1:]))


def xliff(count):
    yield '<?xml version="1.0" encoding="UTF-8"?>\n<xliff version="1.1">\n'
    yield '<file source-language="de-DE" product-name="Bench" product-version="1.0">\n<header/>\n<body>\n'
    for number in range(1, count + 1):
        _, text, conversions = message(number)
        source = with_placeholders(text, conversions, lambda conversion, at: '<x ts="%s" id="%d"/>' % (conversion, at))
        yield '    <trans-unit id="%d">\n      <source>%s</source>\n    </trans-unit>\n' % (number, source)
    yield "</body>\n</file>\n</xliff>\n"


def po(count):
    yield 'msgid ""\nmsgstr "Content-Type: text/plain; charset=UTF-8\\n"\n'
    for number in range(1, count + 1):
        key, text, conversions = message(number)
        yield '\nmsgid "%s"\nmsgstr "%s"\n' % (positional(key, conversions), positional(text, conversions))


def msg(count):
    yield "$set 1\n"
    for number in range(1, count + 1):
        _, text, conversions = message(number)
        yield "%d %s\n" % (number, positional(text, conversions))


def resource_bundle(count):
    yield "root {\n"
    for number in range(1, count + 1):
        _, text, conversions = message(number)
        pattern = with_placeholders(text, conversions, lambda conversion, at: ICU_ARGUMENTS[conversion] % (at - 1))
        yield '  message%d { "%s" }\n' % (number, pattern)
    yield "}\n"


FORMS = {"one": "plik", "few": "pliki", "many": "plików"}
PLACES = {"one": 1, "few": 3, "many": 4}


def plural_xliff():
    yield '<?xml version="1.0" encoding="UTF-8"?>\n<xliff version="1.1">\n'
    yield '<file source-language="pl" product-name="Bench" product-version="1.0">\n<header/>\n<body>\n'
    yield '<trans-unit id="12"><source><x ts="%101plural" id="1"/></source></trans-unit>\n'
    for category, noun in FORMS.items():
        yield ('<trans-unit ts="%d" id="12[%s]"><source>Skopiowano <x ts="%%d" id="1"/> %s do <x ts="%%s" id="2"/>'
               '</source></trans-unit>\n' % (101 + PLACES[category], category, noun))
    yield "</body>\n</file>\n</xliff>\n"


def plural_po():
    yield ('msgid ""\nmsgstr "Content-Type: text/plain; charset=UTF-8\\n"\n'
           '"Plural-Forms: nplurals=3; plural=(n==1 ? 0 : n%10>=2 && n%10<=4 && (n%100<12 || n%100>14) ? 1 : 2);\\n"\n')
    yield '\nmsgid "%d file copied to %s"\nmsgid_plural "%d files copied to %s"\n'
    for index, noun in enumerate(FORMS.values()):
        yield 'msgstr[%d] "Skopiowano %%d %s do %%s"\n' % (index, noun)


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for count in (10, 2000, 20000):
        (folder / ("messages-%d.xlf" % count)).write_text("".join(xliff(count)), encoding="utf-8")
    (folder / "kelto-bench.po").write_text("".join(po(2000)), encoding="utf-8")
    (folder / "plural.xlf").write_text("".join(plural_xliff()), encoding="utf-8")
    (folder / "kelto-plural.po").write_text("".join(plural_po()), encoding="utf-8")
    (folder / "kelto-bench.msg").write_text("".join(msg(2000)), encoding="utf-8")
    (folder / "root.txt").write_text("\ufeff" + "".join(resource_bundle(2000)), encoding="utf-8")


main()
