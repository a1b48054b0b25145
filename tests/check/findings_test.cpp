#include "agreement.h"
#include "check/file_check.h"
#include "check/texts/utf8.h"
#include "document.h"

#include <fmt/core.h>
#include <gtest/gtest.h>
#include <iterator>

using namespace tool::check;
using tool::Placeholders;

namespace
{

/** "LINE:COLUMN-COLUMN RULE MESSAGE" of each finding; "LINE:COLUMN-LINE:COLUMN" where it reaches over a line's end. */
std::string findingsIn(const std::string &bytes, const std::string &reference, formTable *table)
{
    ParsedFile parsed(SourceText("file", bytes), Placeholders::positioned);
    Findings findings = parsed.findings();
    Findings others;
    if (reference.empty())
        others = checkMessages(parsed, table, nullptr);
    else
    {
        ParsedFile original(SourceText("reference", reference), Placeholders::positioned);
        original.source().index();
        const Reference compared(original, table);
        others = checkMessages(parsed, table, &compared);
    }
    findings.insert(findings.end(), others.begin(), others.end());
    suppress(findings, parsed.suppressions());
    for (Finding &finding : findings)
        finding.note.reset();
    std::string text;
    for (const Diagnostic &found : report(findings, parsed.source(), nullptr, Levels()))
    {
        const Place &place = found.place;
        const std::string end = place.end.line == place.begin.line
                                    ? std::to_string(place.end.column)
                                    : fmt::format("{}:{}", place.end.line, place.end.column);
        text += fmt::format("{}{}:{}-{} {}", text.empty() ? "" : ", ", place.begin.line, place.begin.column, end,
                            rowOf(found.rule).name);
        if (found.message > 1)
            text += fmt::format(" {}", found.message);
    }
    return text;
}

struct Row
{
    std::string file;
    std::string expected;
    std::string reference = {};
};

std::string x(const std::string &conversion, int position)
{
    return fmt::format("<x ts='{}' id='{}'/>", conversion, position);
}

std::string numbered(int id, const std::string &text)
{
    return fmt::format("<trans-unit id='{}'><source>{}</source></trans-unit>", id, text);
}

/** A document type of many entities: each refers to the one before it, or all to the first. */
std::string entities(bool isChain)
{
    std::string declarations = "<!ENTITY e0 'a'>";
    for (int i = 1; i <= 110; ++i)
        declarations += fmt::format("<!ENTITY e{} '&e{};'>", i, isChain ? i - 1 : 0);
    return "<!DOCTYPE xliff [" + declarations + "]>";
}

/** A file of the same language in another one. */
std::string in(const std::string &language, std::string file)
{
    return file.replace(file.find("\"de\""), 4, "\"" + language + "\"");
}

// Texts stand in line 3 and begin at column 1; "<x ts='%d' id='1'/>" is 19 columns wide.
const Row rows[] = {
    {unit("a"), ""},
    // The file as a whole.
    {"", "1:1-1 xml-syntax"},
    {"plain text", "1:1-2 xml-syntax"},
    {"<html><body/></html>", "1:1-7 structure"},
    {unit("a & b"), "3:4-5 xml-syntax"},
    {unit("a <b/> c"), "3:3-7 structure"},
    {unit("é&nbsp;"), "3:2-3 xml-syntax"},
    {"<xliff/>", "1:1-9 structure"},
    {"<xliff><file source-language='deu' product-name='' product-version='1'><header/></file></xliff>",
     "1:8-72 structure, 1:31-34 language, 1:50-50 attribute-missing"},
    {"<!DOCTYPE xliff [<!ENTITY e \"&#37;d[1]\">]>" + unit("&e; ") + "\n", "1:1-10 doctype, 3:1-4 typed-conversion"},
    {"<!DOCTYPE xliff [<!ENTITY e \"a &#37;y[1] b\">]>" + unit("&e; ") + "\n", "1:1-10 doctype, 3:1-4 bad-conversion"},
    {entities(false) + unit("&e110; <b/> c"), "1:1-10 doctype, 3:8-12 structure"},
    {entities(true) + unit("a"), "1:1-10 doctype, 1:1-10 xml-syntax"},
    {document(numbered(1, "a") + "<trans-unit><source/></trans-unit>"), "2:51-63 attribute-missing"},
    {"<xliff>\n a &amp; b<!-- -->c <file source-language='de' product-name='S' "
     "product-version='1'>\n<header>=23456789</header>"
     "<body><trans-unit id='1'><source>a<context>d</context>e</source><note>n</note>f</trans-unit>\n\n<<",
     "2:2-20 stray-text, 3:9-18 stray-text, 3:81-82 stray-text, 3:105-106 stray-text, 5:2-3 xml-syntax"},
    {document(numbered(1, "a") + "\n>>>>>>> b\n<!--\n=======\n-->"), "3:1-8 stray-text, 5:1-8 stray-text"},
    {document(numbered(1, "a") + "\n>>>>>>>b"), "3:1-9 stray-text"},
    {document(numbered(1, "a") + "\n" + std::string(1032, ' ')), ""}, // more than the parser gives at once
    {"<xliff><file source-language='de_AT' product-name='S' product-version='1'><header/><body/></file></xliff>",
     "1:31-36 same-language",
     "<xliff><file source-language='DE-at' product-name='S' product-version='1'><header/><body/></file></xliff>"},
    {"<!DOCTYPE xliff [<!ENTITY e \"<x ts='&#37;y' id='1'/>\">]>" + unit("a&e;"),
     "1:1-10 doctype, 3:2-5 bad-conversion"},
    // What a file lacks is told where all of it is read.
    {document("<g/>" + numbered(1, "a")), "2:1-5 structure", document(numbered(1, "a") + numbered(2, "b"))},
    {document("<trans-unit id='1'><g/><source>a</source></trans-unit>"), "1:81-87 message-missing 2, 2:20-24 structure",
     document(numbered(1, "a") + numbered(2, "b"))},
    {document(numbered(1, "a") + numbered(2, "b")), "", document("<g/>" + numbered(1, "a"))},
    {unit("a<b/>  b."), "3:2-6 structure", unit("a")},
    // Units and their numbers.
    {document("<trans-unit id=''><source>a</source></trans-unit>"), "2:17-17 bad-id"},
    {document("<trans-unit id='7' ts=' 0x1'><source>a</source></trans-unit>"), "2:24-28 bad-id"},
    {document(numbered(2, "a") + "\n" + numbered(1, "b") + "\n" + numbered(2, "c")), "4:1-20 duplicate-id 2"},
    {document(numbered(9000, "a")), "2:1-23 sparse-ids 9000"},
    {document(numbered(1, "a") + "\n" + numbered(1, "b") + "\n" + numbered(1, "c")),
     "3:1-20 duplicate-id, 4:1-20 duplicate-id"},
    {document(numbered(4097, "a")), "2:1-23 sparse-ids 4097"},
    {document(numbered(4096, "a")), ""},
    {document("<trans-unit id='1'><note/><source>a</source><target/><g><source/></g></trans-unit>"),
     "2:20-27 structure, 2:45-54 structure, 2:54-57 structure"},
    {document("<trans-unit id='1'/>\n<group><trans-unit/></group>\n<source/>"),
     "2:1-21 structure, 3:1-8 structure, 4:1-10 structure"},
    {document("<trans-unit id='1'><source>a</source><source>b</source></trans-unit>"), "2:38-46 structure"},
    {unit("a<context>b</context>" + x("%d", 1)), "3:22-41 structure"},
    {unit("<x id='1'/><x ts='%d' id=''/><x ts='%d' id='1'><note/></x>"),
     "3:1-12 attribute-missing, 3:27-27 attribute-missing, 3:48-55 structure"},
    // Where a pass goes on behind a fault, and what of it counts there.
    {document("<trans-unit id='1'><g/><source>a\\q</source></trans-unit>"),
     "2:20-24 structure, 2:33-35 unknown-escape"},
    {document(numbered(1, "a") + "\n" + numbered(1, "b") + "\n<g/>"), "3:1-20 duplicate-id, 4:1-5 structure"},
    {document(numbered(2, "a") + "\n<g/>\nb"), "3:1-5 structure, 4:1-2 stray-text"},
    {document("<trans-unit id='1'><g/></trans-unit>"), "2:20-24 structure"},
    {document("<g>\n>>>>>>> b\n</g>"), "2:1-4 structure, 3:1-8 stray-text"},
    {document("<g>a<g>b</g>c</g>d<g>e</g>f"),
     "2:1-4 structure, 2:18-19 stray-text, 2:19-22 structure, 2:27-28 stray-text"},
    {document(numbered(1, "a") + "\nso\n&"), "3:1-3 stray-text, 4:2-5:1 xml-syntax",
     document(numbered(1, "a") + numbered(2, "b"))},
    {document("\t" + numbered(1, "a") + "&#13;&#9;\t&#32;&#10; b\t"), "2:73-74 stray-text"},
    {document(numbered(1, "a") + "\r\n=======\r\nb"), "3:1-8 stray-text, 4:1-2 stray-text"},
    {document("<trans-unit id='1'><source>a  b?</source><note from='kelto check'>no-white-space</note>"
              "<note>no-end-punctuation</note><note from='kelto'>no-such</note></trans-unit>"),
     "2:32-33 end-punctuation", document(numbered(1, "a b"))},
    // What comes from one place, and what from several.
    {unit("a<!-- c -->b\\q"), "3:13-15 unknown-escape"},
    {unit("a&amp;\\q<![CDATA[<&]]>\\q<![CDATA[&\\q]]>\\q"),
     "3:7-9 unknown-escape, 3:23-25 unknown-escape, 3:35-37 unknown-escape, 3:40-42 unknown-escape"},
    {unit("<x ts='%d' id='1\\q'/>"), "3:1-22 bad-conversion, 3:17-19 unknown-escape"},
    {unit("<x id='1' ts='&#126;&#199;&#x7e;&#x8A0; %y'/>"), "3:33-40 wrong-script, 3:41-43 bad-conversion"},
    {"<!DOCTYPE xliff [<!ENTITY e 'b'><!ATTLIST x ts CDATA '&#37;y'>]>" + unit("<x id='1'/><x ts='&e; %y' id='2'/>"),
     "1:1-10 doctype, 3:1-12 bad-conversion, 3:25-32 bad-conversion"},
    // Percent signs, and positions beyond what a text can have: a character beyond U+FFFF counts two, any other one.
    {unit("%!d a, %-+#0.5*q b, %1$"), "3:1-4 bad-conversion, 3:8-9 lone-percent, 3:21-22 lone-percent"},
    {unit("%1$ a"), "3:1-2 lone-percent"},
    {unit("a %!"), "3:3-4 lone-percent"},
    {unit("%z a %Z b %[ c %`"), "3:1-2 lone-percent, 3:6-7 lone-percent, 3:11-13 bad-conversion, 3:16-17 lone-percent"},
    {unit("%d[" + std::string(300, '1') + "]"), "3:1-201 bad-conversion"},
    {unit("%d[" + std::string(196, '1') + "é[1]"), "3:1-200 bad-conversion"},
    {unit("%d[" + std::string(196, '1') + "€[1]"), "3:1-200 bad-conversion"},
    {unit("%d[" + std::string(197, '1') + "€[1]"), "3:1-201 bad-conversion"},
    {unit("%d[" + std::string(195, '1') + "é[1]"), "3:1-200 bad-conversion"},
    {unit(std::string(990, 'a') + "😀é€" + x("%d", 1003)), "3:994-1016 position-gap"},
    {unit(std::string(990, 'a') + "😀é€" + x("%d", 1004)), "2:20-28 position-gap, 3:994-1016 bad-conversion"},
    // What a note switches off, and how much of it is read.
    {document("<trans-unit id='1'><source>a  b?</source><note from='kelto check'>no-white-space,\nno-end-punctuation"
              "</note></trans-unit>"),
     "", document(numbered(1, "a b"))},
    {document("<trans-unit id='1'><source>a</source><note from='kelto check'>" + std::string(4095, ' ') +
              "x</note></trans-unit>"),
     "2:38-63 bad-suppression"},
    {document("<trans-unit id='1'><source>a</source><note from='kelto check'>" + std::string(4096, ' ') +
              "x</note></trans-unit>"),
     ""},
    // Numbers that are there twice, here and there, and the highest.
    {document(numbered(1, "a") + "\n" + numbered(1, "b ")), "3:1-20 duplicate-id", document(numbered(1, "a"))},
    {document(numbered(1, "a")), "1:81-87 message-missing 2, 1:81-87 message-missing 2147483647",
     document(numbered(1, "a") + numbered(2, "b") + numbered(2, "c") + numbered(2147483647, "d"))},
    // Texts that are compared part by part, and those that are too long for it.
    {unit(std::string(8189, 'a') + " 5"), "3:8191-8192 literal-changed", unit(std::string(8189, 'a') + " 6")},
    {unit(std::string(8190, 'a') + " 5"), "", unit(std::string(8189, 'a') + " 6")},
    {unit(std::string(8189, 'a') + " 5"), "", unit(std::string(8190, 'a') + " 6")},
    {unit("nicht 5"), "", unit("5")},
    {unit("a\uE000b\uD7FF"), ""},
    // Texts.
    {unit("ä\\q\\\\\\n" + x("a\\z", 1) + "\\"),
     "3:2-4 unknown-escape, 3:15-18 bad-placeholder, 3:16-18 unknown-escape, 3:28-29 trailing-backslash"},
    {document(numbered(1, "") + numbered(2, "<!-- a -->")), "2:20-28 empty-message, 2:69-77 empty-message 2"},
    // Directions: Arabic and Hebrew as they are written, then what is closed wrongly, or not as in the reference.
    {unit("مرحبا \u200Fשלום “é”"), "3:1-6 wrong-script", unit("a")},
    {unit("\u2068a\u2069"), "", unit("a")},
    {unit("\u202Ea\u2066b\u202Ac\u2069d\u202C e\u2069\u202C\u2067"),
     "3:5-6 bidi-controls, 3:12-13 bidi-controls, 3:13-14 bidi-controls, 3:14-15 bidi-controls"},
    {unit("\u2067a\u2069 \u202Eb\u202C"), "2:20-28 bidi-controls, 3:5-6 bidi-controls",
     unit("\u2067\u2069 \u202D\u202C")},
    // Conversions.
    {unit("100%% " + x("%d", 1) + " %"), "3:27-28 bad-conversion"},
    {unit("100 % sure, 50% off"), "3:5-6 lone-percent, 3:15-16 lone-percent"},
    {unit("%d files"), "3:1-3 bad-conversion"},
    {unit("%AaZz files"), "3:1-6 bad-conversion"},
    {unit("𝄞é&#xE9;%d[1]"), "3:9-14 typed-conversion"},
    {unit(x("%y", 1) + x("%d", 2)), "3:1-20 bad-conversion"},
    {unit("<x id='1'\n ts='é %y'/>"), "4:8-10 bad-conversion"},
    {unit("<x id='1' ts='&#xE9;&#233; %y'/>"), "3:28-30 bad-conversion"},
    {unit("<x ts='é&#x20;%y ' id='1'/>" + x("%d", 2)), "3:8-18 bad-conversion"},
    {unit("<x id='1' ts='&quot;&apos;&gt;&lt;&amp; %y'/>"), "3:41-43 bad-conversion"},
    {unit("<x ts='&quot;&apos;&gt;&lt;&amp; %y' id='1'/>"), "3:34-43 bad-conversion"},
    {unit("<x\tid = '1' ts\n=\n' %y'/>"), "5:3-5 bad-conversion"},
    {unit(x("%d", 1) + x("%d", 1) + x("%d", 4)), "3:20-39 position-repeat, 3:39-58 position-gap"},
    {unit("%d[3000000000]"), "3:1-15 bad-conversion"},
    {unit(x("%N", 2) + x("%O", 1)), "3:1-20 region-open"},
    {unit(x("%d", 2) + x("%s", 1)), "3:20-39 encoding-lost", unit(x("%N", 1) + x("%s", 2) + x("%O", 3) + x("%d", 4))},
    {unit(x("%N", 1) + x("%-9s", 2)), "3:1-20 region-open", unit(x("%N", 1) + x("%s", 2) + x("%O", 3))},
    // Placeholders that are none, of which no other finding follows.
    {unit(x("%s[1]", 1) + x("s", 2) + x("％s", 3) + x("%%", 4)),
     "3:8-13 bad-placeholder, 3:30-31 bad-placeholder, 3:48-50 bad-placeholder, 3:67-69 bad-placeholder",
     unit(x("%s", 1) + x("%s", 2) + x("%s", 3) + x("%s", 4))},
    {unit("<x id='1' ts='s'/>" + x("%d", 2)), "3:15-16 bad-conversion"},
    {unit(x("s", 2)), "3:8-9 bad-placeholder"},
    {unit(x("T", 1) + "%q[2]"), "3:8-9 bad-placeholder, 3:19-24 bad-conversion"},
    {unit("a\\n" + x("%s ", 1) + x("%d of", 2) + x("%d", 4)),
     "2:20-28 line-break, 3:11-14 bad-conversion, 3:31-36 bad-conversion, 3:46-65 argument-type, "
     "2:1-20 argument-missing",
     unit(x("%d", 1) + x("%d", 2) + x("%d", 3) + x("%s", 4))},
    {unit(x("%d", 1) + x("%d[2] ", 5) + x("%size", 3)), "3:27-33 bad-placeholder"},
    {unit("100 %" + x("%s", 1)), "3:13-15 bad-placeholder", unit("100 %% " + x("%s", 1))},
    {unit(x("%s", 1)), "", unit(x("s", 1))},
    // Beside a reference.
    {unit(x("%s", 1)), "3:1-20 argument-type", unit(x("%d", 1))},
    {unit(x("%hd", 1) + x("%lu", 2)), "3:1-21 argument-type, 3:21-41 conversion-changed",
     unit(x("%d", 1) + x("%d", 2))},
    {unit(x("%number", 1) + x("%f", 2) + x("%and", 3) + x("%money", 4)), "3:44-65 conversion-changed",
     unit(x("%d", 1) + x("%decimal", 2) + x("%s", 3) + x("%money", 4))},
    {unit(x("%d", 2)), "3:1-20 argument-type, 2:1-20 argument-missing", unit(x("%s", 1) + x("%s", 2))},
    {unit("%d[1"), "3:1-5 bad-conversion", unit(x("%d", 1))},
    {unit("a"), "2:1-20 argument-missing", unit(x("%d", 1))},
    {unit(x("%d", 1) + x("%3d", 2)), "3:20-40 argument-extra", unit(x("%d", 1))},
    {unit(x("%*d", 1) + x("%.2f", 2)), "3:1-21 argument-extra, 3:21-42 argument-missing, 2:1-20 argument-missing",
     unit(x("%d", 1) + x("%.*lf", 2) + x("%d", 3))},
    {unit(x("%d", 1) + x("%d", 2)), "3:1-20 argument-missing, 3:20-39 argument-extra", unit(x("%*d", 1))},
    {unit(x("%two", 1) + x("%d", 2)), "3:1-22 argument-extra, 3:22-41 argument-extra", unit(x("%d", 1))},
    {unit("5 %"), "3:3-4 bad-conversion", unit(x("%d", 1))},
    {unit("5 %"), "3:3-4 bad-conversion", unit("5 %%")},
    {unit(x("%*N", 1) + x("%O", 2)), "", unit(x("%N", 1) + x("%O", 2))},
    {document(numbered(1, "a") + "\n" + numbered(1, "b")), "3:1-20 duplicate-id", document(numbered(1, "a"))},
    {"<tmx>" + numbered(1, "a") + "</tmx>", "1:1-6 structure", unit("a")},
    {unit("%d of " + x("%d", 2)), "3:1-3 bad-conversion, 3:7-26 argument-type", unit(x("%d", 1) + x("%s", 2))},
    {unit("%1$d, so 50% of " + x("%d", 2)), "3:1-6 bad-conversion, 3:12-13 bad-conversion"},
    {document(numbered(1, " a ") + "\n" + numbered(2, "b\\n") + "\n" + numbered(4, "")),
     "1:81-87 message-missing 3, 2:30-31 white-space, 3:29-31 white-space 2, 4:20-28 empty-message 4, "
     "4:1-20 message-extra 4",
     document(numbered(1, " a") + numbered(2, "b") + numbered(3, "c"))},
    {document(numbered(1, "")), "", document(numbered(1, ""))},
    {unit(x("%d", 1)), "", unit(x("%s", 1) + "%")},
    // Damaged on the way; and what only looks so.
    {unit("GrÃ¶ÃŸe"), "3:3-7 mojibake"},
    {unit("Ã–ffnen"), "3:1-3 mojibake"},
    {unit("itâ€™s"), "3:3-6 mojibake"},
    {unit("IRMÃ… «É» à «CAFÉ…» 5 Â"), ""},
    {unit("a\u0092b"), "3:2-3 mojibake"},
    {unit("Gr\uFFFDße, Gr??e, was? http://a?b"), "3:3-4 lost-character, 3:10-12 lost-character"},
    {unit("a&amp;amp;b"), "3:2-11 double-escape"},
    {unit("a&amp;amp;b"), "", unit("&amp;amp;")},
    {unit("a\u200Bb"), "3:2-3 invisible-character"},
    {unit("\u007F\u0080\u07FF\u0800\uFFFC\U00010000 %"),
     "3:1-2 invisible-character, 3:2-3 mojibake, 3:4-5 wrong-script, 3:8-9 lone-percent"},
    {unit("\uFFF9a\uFFFBa\U000E0000a\U000E007F\uFFFC\U000E0080"),
     "3:1-2 invisible-character, 3:3-4 invisible-character, 3:5-6 invisible-character, 3:7-8 invisible-character"},
    {unit("Копировать"), "3:1-11 wrong-script"},
    {unit("5 μm, Русский"), "", unit("μ Я")},
    {unit("a\n=======\nb"), "4:1-8 stray-text"},
    {unit("a\n=======b"), ""},
    {unit("Fertig./n"), "3:8-10 line-break"},
    {document("<trans-unit id='1'><source>a</source><note from='kelto check'>white-space no-structure, "
              "no-mojibake: no-reason</note></trans-unit>"),
     "2:38-63 bad-suppression, 2:38-63 bad-suppression"},
    {document(
         "<trans-unit id='1'><source>a  b?</source><note from='kelto check'>no-white-space</note></trans-unit>\n"
         "<trans-unit id='2'><source>a  b?</source><note from='kelto check'>no-end-punctuation</note></trans-unit>"),
     "2:32-33 end-punctuation, 3:29-31 white-space 2", document(numbered(1, "a b") + numbered(2, "a b"))},
    // What a translation keeps.
    {unit("a/nb"), "3:2-4 line-break", unit("a\\nb")},
    {unit("a b"), "2:20-28 line-break", unit("a\\nb")},
    {unit("a  b" + x("%s", 1) + "c"), "3:2-4 white-space, 3:5-24 white-space, 3:5-24 white-space",
     unit("a b " + x("%s", 1) + " c")},
    {unit("a" + x("%.0s", 1) + "b" + x("%.1f", 2)), "3:24-45 conversion-changed, 3:24-45 white-space",
     unit("a " + x("%s", 1) + " b " + x("%.2f", 2))},
    {unit("Nom"), "3:3-4 end-punctuation", unit("Name:")},
    {unit("“Name：”"), "", unit("“Name:”")},
    {unit("a (b"), "2:20-28 unbalanced", unit("a (b)")},
    {unit("„a\""), "", unit("“a”")},
    {unit("--hilfe 88, 2.000 €"), "2:20-28 literal-changed, 2:20-28 literal-changed", unit("--help 80, €2,000")},
    {document("<trans-unit id='1' resname='a'><source>a</source></trans-unit>"), "2:29-30 attribute-differs",
     document("<trans-unit id='1' resname='b'><source>a</source></trans-unit>")},
    {document("<trans-unit ts='1' id='a'><source>a</source></trans-unit>"), "2:24-25 attribute-differs",
     document("<trans-unit ts='1' id='b'><source>a</source></trans-unit>")},
    {document("<trans-unit ts='1' id='a[=1]'><source>a</source></trans-unit>"), "",
     document("<trans-unit ts='1' id='b'><source>a</source></trans-unit>")},
    {document("<trans-unit ts='1' id='a'><source>a</source></trans-unit>"), "",
     document("<trans-unit ts='1' id='b[=1]'><source>a</source></trans-unit>")},
    {document("<trans-unit id='1' resname='a'><source>a</source></trans-unit>"), "", document(numbered(1, "a"))},
    {"<xliff><file source-language='de' product-name='T' product-version='2'><header/><body/></file></xliff>",
     "1:49-50 attribute-differs, 1:69-70 attribute-differs",
     "<xliff><file source-language='en' product-name='S' product-version='1'><header/><body/></file></xliff>"},
    {unit("&lt;a href=\"https://a.b\">x&lt;/a>"), "", unit("&lt;a href=\"https://a.b\">online&lt;/a>")},
    {unit("STORE_HAUS, 5 GB"), "2:20-28 literal-changed, 3:15-17 literal-changed", unit("STORE_HOME, 5 MB")},
    {unit("24"), "3:1-3 literal-changed", unit("2")},
    {unit("1. a, 2. b, 2. c"), "3:7-8 literal-changed", unit("1. x, 2. y, 3. z")},
    {unit("5 °F, Mo,Di,Do"), "2:20-28 literal-changed, 2:20-28 literal-changed", unit("5 °C, Mo,Tu,We,Th")},
    {unit(x("%d", 1) + " a"), "2:20-28 literal-changed", unit(x("%d", 1) + "|a")},
    // Marks that a language has for itself, and marks out of place.
    {in("es", unit("Quiere salir?")), "3:13-14 end-punctuation", unit("Do you want to leave?")},
    {in("es", unit("¿Salir?")), "", unit("Leave?")},
    {in("el", unit("Έξοδος?")), "3:7-8 end-punctuation", unit("Leave?")},
    {unit("Datum " + x("%d", 1)), "2:20-28 end-punctuation", unit("Date: " + x("%d", 1))},
    {unit("5 Min."), "", unit("5 min")},
    {unit(")a("), "2:20-28 unbalanced", unit("(a)")},
    {unit("\"Öffnen\""), "2:20-28 unbalanced", unit("Open")},
    {unit("Nein"), "2:20-28 other-meaning", unit("")},
    {unit(" "), "2:20-28 empty-message", unit("Open")},
    {document(numbered(1, "Ja") + "\n" + numbered(2, "Ja")), "2:20-28 other-meaning, 3:20-28 other-meaning 2",
     document(numbered(1, "Yes") + "\n" + numbered(2, "No"))},
    {in("he", unit("chyuk")), "3:1-6 wrong-script", unit("Cancel")},
    {in("ru", unit("Email: Кодак")), "", unit("E-mail: Kodak")},
    {in("ru", unit("Show all")), "2:20-28 left-over", unit("Show all")},
    {unit("a u\u0308"), "3:4-5 invisible-character", unit("a")},
    {in("ko", unit("\u1112\u1161\u11AB")), "3:2-3 invisible-character", unit("a")},
    {unit("\u2013date=TAG http: //a.example/" + x("%s", 1)), "2:20-28 literal-changed, 2:20-28 literal-changed",
     unit("--date=DAY http://a.example/" + x("%s", 1))},
    {unit("Name,Ort,Tag"), "2:20-28 literal-changed", unit("Name;Place;Day")},
    {in("zh", unit("ls\u200B -a 与")), "3:3-4 invisible-character", unit("ls -a and")},
    {in("zh", unit("開啟檔案")), "2:20-28 wrong-language", unit("Open the file")},
    {unit("24.12.2026, 10.30"), "", unit("12/24/2026, 10:30")},
    {unit("64–8"), "3:1-5 literal-changed", unit("8–64")},
    {unit("%d[1] a"), "", unit("%d[1] b")},
    {unit(x("%5d", 1) + x("%d", 2) + x("%9s", 3)), "3:1-21 conversion-changed, 3:21-40 conversion-changed",
     unit(x("%-5d", 1) + x("%3d", 2) + x("%s", 3))},
    // Arguments that are exchanged, and a sentence that only turns.
    {unit(x("%s", 2) + " nach " + x("%s", 1)), "3:1-20 argument-order",
     unit("copy " + x("%s", 1) + " to " + x("%s", 2))},
    {unit(x("%s", 2) + " („" + x("%s", 1) + "“)"), "3:1-20 argument-order",
     unit("“" + x("%s", 1) + "” (" + x("%s", 2) + ")")},
    {unit(x("%d", 2) + "/" + x("%d", 1)), "3:1-20 argument-order", unit(x("%d", 1) + "/" + x("%d", 2))},
    {unit("in " + x("%s", 2) + ": „" + x("%s", 1) + "“"), "", unit("“" + x("%s", 1) + "” of " + x("%s", 2))},
    // Markup and keys.
    {unit("&lt;b>a&lt;b>"), "2:20-28 markup-changed", unit("&lt;b>a&lt;/b>")},
    {unit("&lt;a href=“b”>a&lt;/a>"), "3:1-6 markup-changed", unit("&lt;a href='b'>a&lt;/a>")},
    {unit("&lt;datei> a"), "", unit("&lt;file> a")},
    {unit("&amp;a &amp;b"), "3:1-6 access-key", unit("&amp;b")},
    {document(numbered(1, "&amp;a") + "\n" + numbered(2, "b") + "\n" + numbered(3, "R&amp;D")), "3:20-28 access-key 2",
     document(numbered(1, "&amp;b") + numbered(2, "b&amp;c") + numbered(3, "R&amp;D"))},
    // What was not finished.
    {unit("Der Name fehlt. Please choose another name."), "3:17-43 left-over",
     unit("The name is missing. Please choose another name.")},
    {unit("GNU General Public License (TODO)"), "3:29-33 left-over", unit("GNU General Public License (free)")},
    {unit("das ist ist gut"), "3:5-12 left-over", unit("it is good")},
    {unit("le fichier est dans la liste"), "2:20-28 wrong-language"},
    {in("ja", unit("找不到打印机。请检查打印机。")), "2:20-28 wrong-language"},
    {in("ru", unit("Ціна, Москва")), "3:2-3 wrong-language"},
    {in("ru", unit("Ïîèñê, café")), "3:1-6 mojibake"},
    {unit("gr³n"), "3:3-4 mojibake"},
    // What another message says.
    {document(numbered(1, "Leere Dateien zeigen") + "\n" + numbered(2, "Leere Dateien zeigen")),
     "2:20-28 other-meaning, 3:20-28 other-meaning 2",
     document(numbered(1, "Sort by date") + numbered(2, "Show empty files"))},
    {unit("Die Datei wurde gefunden"), "2:20-28 other-meaning", unit("The file was not found")},
    {unit("Die Datei fehlt hier"), "", unit("The file is not here")},
};

std::string declared(const std::string &encoding, const std::string &bytes)
{
    return "<?xml version='1.0' encoding='" + encoding + "'?>\n" + bytes;
}

class CheckFindings : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(KTInit(), 0);
        ASSERT_EQ(m_table.add("two=int,pointer"), "");
        ASSERT_EQ(m_table.add("size=uint"), "");
        ASSERT_EQ(m_table.add("AaZz=uint"), ""); // a name may have any letter
    }
    void TearDown() override { KTClean(); }

    FormTable m_table;
};

/** The same file in another language, which it says with small letters. */
std::string inEnglish(std::string reference)
{
    const size_t at = reference.find("\"de\"");
    return at == std::string::npos ? reference : reference.replace(at, 4, "\"en\"");
}

TEST_F(CheckFindings, StandAtTheirColumnsInEveryEncoding)
{
    for (Row row : rows)
    {
        row.reference = inEnglish(row.reference);
        SCOPED_TRACE(row.file + "\nreference:\n" + row.reference);
        EXPECT_EQ(findingsIn(row.file, row.reference, m_table.get()), row.expected);
        EXPECT_EQ(disagreement(row.file), "");
        if (row.file.empty())
            continue;
        EXPECT_EQ(findingsIn("\xEF\xBB\xBF" + row.file, row.reference, m_table.get()), row.expected);
        EXPECT_EQ(findingsIn(inUtf16(row.file, true), inUtf16(row.reference, false), m_table.get()), row.expected);
        EXPECT_EQ(findingsIn(inUtf16(row.file, false), row.reference, m_table.get()), row.expected);
        for (const bool isBig : {false, true}) // a file that begins with its first tag needs no mark
            if (row.file[0] == '<')
            {
                EXPECT_EQ(findingsIn(inUtf16(row.file, isBig).substr(2), row.reference, m_table.get()), row.expected);
            }
        if (const std::string latin1 = inLatin1(row.file); !latin1.empty())
        {
            EXPECT_EQ(findingsIn(declared("iso-8859-1", latin1), row.reference, m_table.get()),
                      findingsIn(declared("utf-8", row.file), row.reference, m_table.get()));
        }
    }
}

TEST_F(CheckFindings, TellOfUtf8ThatIsDeclaredAsLatin1WhereItBegins)
{
    EXPECT_EQ(findingsIn(declared("iso-8859-1", unit("Größe")), "", m_table.get()), "4:3-4 mojibake");
    EXPECT_EQ(findingsIn(declared("iso-8859-1", inLatin1(unit("Größe"))), "", m_table.get()), "");
}

TEST_F(CheckFindings, AreAHundredOfARuleInAMessageAtMost)
{
    for (const auto &[mistakes, untold] : {std::pair(100, 0U), std::pair(103, 3U)})
    {
        std::string text;
        for (int i = 0; i < mistakes; ++i)
            text += "\\q";
        const ParsedFile parsed(SourceText("file", unit(text)), Placeholders::positioned);
        const Findings findings = checkMessages(parsed, nullptr, nullptr);
        ASSERT_EQ(findings.size(), untold > 0 ? 101U : 100U);
        EXPECT_EQ(findings.back().place.begin, findings[99].place.begin);
        EXPECT_TRUE(untold == 0 || findings.back().text.values.at(0).number == untold);
    }
}

// What is compared part by part would take hours for texts that nobody can read.
TEST_F(CheckFindings, OfMegabytesAreThoseThatTakeNoHours)
{
    std::string here;
    std::string there;
    for (int i = 0; i < 50000; ++i)
    {
        here += fmt::format("please AA_B a@b.c &lt;b&gt; {} ", i);
        there += fmt::format("please x AA_C a@b.d &lt;i&gt; {} ", 50000 - i);
    }
    EXPECT_EQ(findingsIn(unit(here + "."), inEnglish(unit(there)), m_table.get()).substr(0, 1), "3");
    EXPECT_EQ(findingsIn(unit(here), inEnglish(unit(there)), m_table.get()), "");
}

TEST_F(CheckFindings, TellTextsThatAreFarShorterOrLongerThanTheOthersOfTheirFile)
{
    const std::string sentence = "A sentence of this length stands here";
    std::string here;
    std::string there;
    for (int id = 1; id <= 30; ++id)
    {
        there += numbered(id, sentence + std::string(1, static_cast<char>('A' + id % 26)));
        here +=
            numbered(id, "Ein Satz dieser Größe steht da, er ist " + std::string(1, static_cast<char>('A' + id % 26)));
    }
    const std::string longer = "Ein Satz " + std::string(80, 'a');
    EXPECT_EQ(findingsIn(document(here + "\n" + numbered(31, "Ein Satz") + "\n" + numbered(32, longer)),
                         inEnglish(document(there + numbered(31, sentence + "x") + numbered(32, sentence + "y"))),
                         m_table.get()),
              "3:21-29 text-length 31, 4:21-29 text-length 32");
}

TEST_F(CheckFindings, StandInTheFileWhereItEndsWithHalfAUnit)
{
    for (const char *tail : {"\n", "<", "\xD8"})
    {
        ParsedFile parsed(SourceText("file", inUtf16(unit("a"), false) + tail), Placeholders::positioned);
        const std::vector<Diagnostic> found = report(parsed.findings(), parsed.source(), nullptr, Levels());
        ASSERT_EQ(found.size(), 1U);
        EXPECT_LE(found[0].place.bytes.end, parsed.source().bytes().size());
        EXPECT_EQ(disagreement(std::string(parsed.source().bytes())), "");
    }
    ParsedFile half(SourceText("file", inUtf16("<xliff>a", false) + std::string("\0\xD8", 2) + "b"),
                    Placeholders::positioned);
    const Excerpt shown = report(half.findings(), half.source(), nullptr, Levels()).back().excerpt;
    EXPECT_EQ(shown.before + shown.marked + shown.behind, u"<xliff>a\uFFFDb");
}

} // namespace
