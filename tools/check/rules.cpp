#include "check/rules.h"

#include <fmt/core.h>

namespace tool::check
{
namespace
{

constexpr RuleRow rows[] = {
    {"xml-syntax", Severity::error, "the file is not well-formed XML, or costs more to read than is accepted",
     "The XML parser stops here, so the file does not load and nothing behind this place was checked. Common causes "
     "are "
     "an \"&\" or \"<\" that is not written as \"&amp;\" or \"&lt;\", a tag that is not closed, and bytes that are not "
     "of "
     "the encoding that the first line names. A file whose declarations expand to too much text is refused as well.",
     "<source>Search & replace</source>", "<source>Search &amp; replace</source>"},
    {"structure", Severity::error, "an element is unknown, misplaced, repeated or missing",
     "A message file has a small fixed shape, and a file that departs from it does not load. What the element holds "
     "was "
     "skipped, and the check went on behind it. The guide to message files has the table of elements; a translation is "
     "a "
     "file of its own and has its text in \"source\", never in \"target\".",
     "<trans-unit id=\"1\"><note>n</note><source>a</source></trans-unit>",
     "<trans-unit id=\"1\"><source>a</source><note>n</note></trans-unit>"},
    {"attribute-missing", Severity::error, "an element lacks an attribute that it needs, or it is empty",
     "A \"file\" needs \"source-language\", \"product-name\" and \"product-version\", a \"trans-unit\" needs \"ts\" or "
     "\"id\", an \"x\" needs \"ts\" and \"id\". Without them the file does not load. A value that is empty counts as "
     "missing.",
     "<source>Hello <x ts=\"%s\"/></source>", "<source>Hello <x ts=\"%s\" id=\"1\"/></source>"},
    {"bad-id", Severity::error, "the number of a message is not a whole number from 1 on",
     "Programs fetch a message by its number, which is the attribute \"ts\" or else \"id\" of its \"trans-unit\". It "
     "is a "
     "decimal number from 1 to 2147483647. A file with any other does not load.",
     "<trans-unit id=\"greeting\">", "<trans-unit id=\"1\" resname=\"greeting\">"},
    {"duplicate-id", Severity::error, "two messages have the same number",
     "Each number may be used once in a file; the note shows where it was used first. A file with a number used twice "
     "does "
     "not load. Most often a unit was copied and its number not changed.",
     "<trans-unit id=\"4\">…</trans-unit> <trans-unit id=\"4\">…</trans-unit>",
     "<trans-unit id=\"4\">…</trans-unit> <trans-unit id=\"5\">…</trans-unit>"},
    {"language", Severity::error, "\"source-language\" is neither two letters nor two, a separator and two",
     "The attribute names the language of the file in two bytes, or in five with the country: \"de\", \"de-AT\", "
     "\"de_AT\". "
     "A file with a value of another length does not load. Three-letter codes and scripts have no place in it.",
     "source-language=\"deu\"", "source-language=\"de\""},
    {"bad-conversion", Severity::error, "a conversion is malformed or unknown",
     "Every call that formats this message fails with KT_ERR_FORMAT_SYNTAX. A conversion has the form "
     "%[flags][width][.precision][h|l|L|!]name[position], and its name is one of those that the program knows. A "
     "percent "
     "sign that stands for itself is written \"%%\".",
     "<x ts=\"%y\" id=\"1\"/> of 100 %", "<x ts=\"%s\" id=\"1\"/> of 100 %%"},
    {"position-gap", Severity::error, "the positions of a message do not run from 1 to n",
     "A message that uses position 2 must use position 1 too, or every call that formats it fails with "
     "KT_ERR_FORMAT_SYNTAX. The \"id\" of an \"x\" is the position of its argument. Where a reference has the position "
     "that "
     "is missing, the finding is argument-missing instead.",
     "<x ts=\"%s\" id=\"2\"/>", "<x ts=\"%s\" id=\"1\"/>"},
    {"position-repeat", Severity::error, "a position is used twice",
     "Each position may be used once in a message, or every call that formats it fails with KT_ERR_FORMAT_SYNTAX. An "
     "argument cannot be shown twice. Give each placeholder the number that it has in the original.",
     "<x ts=\"%s\" id=\"1\"/> and <x ts=\"%s\" id=\"1\"/>", "<x ts=\"%s\" id=\"1\"/> and <x ts=\"%s\" id=\"2\"/>"},
    {"argument-type", Severity::error, "an argument is read as another type than the reference has",
     "The program passes what the reference asks for, and this message would read it as something else: a number as an "
     "address, say, which ends the program. The kind and the size of each argument must agree, whatever the letter. "
     "Copy "
     "the placeholder from the original and change its place only.",
     "reference: <x ts=\"%d\" id=\"1\"/> files    here: <x ts=\"%s\" id=\"1\"/> Dateien",
     "reference: <x ts=\"%d\" id=\"1\"/> files    here: <x ts=\"%d\" id=\"1\"/> Dateien"},
    {"argument-missing", Severity::error, "an argument of the reference is not used",
     "The message uses fewer arguments than the reference. Where a later one is used, every call that formats the "
     "message "
     "fails; where it is the last, calls with an array of arguments fail, and the reader misses what it says. Put the "
     "placeholder back, at whatever place the language wants it.",
     "reference: <x ts=\"%s\" id=\"1\"/>: <x ts=\"%d\" id=\"2\"/>    here: <x ts=\"%s\" id=\"1\"/>",
     "reference: <x ts=\"%s\" id=\"1\"/>: <x ts=\"%d\" id=\"2\"/>    here: <x ts=\"%d\" id=\"2\"/>, <x ts=\"%s\" "
     "id=\"1\"/>"},
    {"argument-extra", Severity::error, "an argument is used that the reference does not have",
     "The program does not pass this argument, so the message would read what happens to lie there. The positions of a "
     "message are those of the reference. A width or precision of '*' is an argument too.",
     "reference: <x ts=\"%d\" id=\"1\"/>    here: <x ts=\"%d\" id=\"1\"/> <x ts=\"%s\" id=\"2\"/>",
     "reference: <x ts=\"%d\" id=\"1\"/>    here: <x ts=\"%d\" id=\"1\"/>"},
    {"region-open", Severity::warning, "an encoded region is opened and not closed",
     "\"%N\" opens a region whose texts go through the program's encoder, and \"%O\" closes it; both take a position, "
     "and "
     "the order of the positions counts. A region that is never closed reaches to the last argument. Give \"%O\" a "
     "position "
     "behind the last argument that is to be encoded.",
     "<x ts=\"%N\" id=\"1\"/><x ts=\"%s\" id=\"2\"/>",
     "<x ts=\"%N\" id=\"1\"/><x ts=\"%s\" id=\"2\"/><x ts=\"%O\" id=\"3\"/>"},
    {"message-missing", Severity::warning, "a message of the reference is not in the file",
     "The program finds no text for this number in this language. What it shows then is its own affair: another "
     "language, "
     "or nothing. Copy the unit from the reference and translate it.",
     "reference: <trans-unit id=\"7\">    here: no such unit", "both: <trans-unit id=\"7\">"},
    {"message-extra", Severity::warning, "a message is not in the reference",
     "No program that was written with the reference asks for this number. It is left over from an older version, or "
     "its "
     "number is mistyped. Remove the unit, or correct the number.",
     "here: <trans-unit id=\"71\">    reference: no such unit", "both: <trans-unit id=\"7\">"},
    {"sparse-ids", Severity::warning, "most numbers up to the highest are unused",
     "A loaded file takes 8 bytes for each number up to its highest, used or not. Here seven of eight and more are "
     "unused, "
     "and there are thousands of them. Number the messages from 1 on, without large gaps.",
     "<trans-unit id=\"1\">, <trans-unit id=\"50000\">", "<trans-unit id=\"1\">, <trans-unit id=\"2\">"},
    {"conversion-changed", Severity::warning, "a conversion has another letter than in the reference, of the same type",
     "The argument is read as what it is, so nothing breaks, but it is shown in another way. That may be meant: a "
     "language "
     "may want a date where another has date and time. Flags, width and precision may differ without a word.",
     "reference: <x ts=\"%u\" id=\"1\"/>    here: <x ts=\"%d\" id=\"1\"/>",
     "reference: <x ts=\"%u\" id=\"1\"/>    here: <x ts=\"%u\" id=\"1\"/>"},
    {"typed-conversion", Severity::warning, "a conversion is typed as text instead of an \"x\"",
     "It works, but tools for translators protect \"x\" elements and leave text to be edited. A mistyped letter in it "
     "is "
     "easily overlooked. Write it as an \"x\" with the conversion in \"ts\" and the position in \"id\".",
     "<source>%d[1] files</source>", "<source><x ts=\"%d\" id=\"1\"/> files</source>"},
    {"lone-percent", Severity::warning, "a percent sign stands by itself in a message without conversions",
     "A message that is only fetched may hold it, but every call that formats the message fails with "
     "KT_ERR_FORMAT_SYNTAX. Whether it is formatted only the program knows. Where it is, write \"%%\".",
     "<source>100 % complete</source>", "<source>100 %% complete</source>"},
    {"trailing-backslash", Severity::warning, "a message ends with a single backslash",
     "It stays in the message as it is. Most often an escape was cut off there. A backslash that is meant is written "
     "as "
     "two.",
     "<source>C:\\data\\</source>", "<source>C:\\\\data\\\\</source>"},
    {"unknown-escape", Severity::warning, "a backslash is followed by a character that makes no escape",
     "The escapes are \\\\, \\t, \\r, \\n and \\\"; any other backslash stays in the message as it is. Most often a "
     "letter "
     "is mistyped, or a backslash that is meant was not doubled. A backslash that is meant is written as two.",
     "<source>C:\\data</source>", "<source>C:\\\\data</source>"},
    {"white-space", Severity::warning, "white space at the beginning or end differs from the reference",
     "Programs put texts together, and a blank or line break at either end is there for a reason. Line breaks and "
     "indentation inside \"source\" are part of the message. Copy the white space of the reference.",
     "reference: <source>Name: </source>    here: <source>Name:</source>",
     "reference: <source>Name: </source>    here: <source>Name: </source>"},
    {"empty-message", Severity::warning, "a message has no text",
     "It loads, and shows nothing. Most often a translation was forgotten. Where the reference is empty too, nothing "
     "is "
     "reported.",
     "<source></source>", "<source>Open</source>"},
    {"doctype", Severity::warning, "the file has a document type",
     "Message files need none, and what it declares (entities, default attributes) hides from a reader what the file "
     "says. "
     "How much it may cost is limited, so a file that loads today may be refused once it has grown. Write the texts "
     "out.",
     "<!DOCTYPE xliff [<!ENTITY product \"Store\">]>", "<source>Store</source>"},
    {"bad-name", Severity::error, "a \"resname\" cannot be the name of a function (kelto gen only)",
     "kelto gen makes a function and a constant of each message, with the name that \"resname\" gives it. A name has "
     "letters, digits and '_', begins with a letter, is no word of C or C++, and is used once, capital letters aside. "
     "A "
     "check does not look at names, which have no meaning for the library.",
     "<trans-unit id=\"1\" resname=\"class\">", "<trans-unit id=\"1\" resname=\"class_title\">"},
};
static_assert(sizeof rows == ruleCount * sizeof(RuleRow));

/** Whether the text begins with the prefix, which is then taken off. */
bool takePrefix(std::string_view &text, std::string_view prefix)
{
    if (text.substr(0, prefix.size()) != prefix)
        return false;
    text.remove_prefix(prefix.size());
    return true;
}

} // namespace

const RuleRow &rowOf(Rule rule)
{
    return rows[static_cast<size_t>(rule)];
}

std::optional<Rule> findRule(std::string_view name)
{
    for (size_t i = 0; i < ruleCount; ++i)
        if (name == rows[i].name)
            return static_cast<Rule>(i);
    return std::nullopt;
}

const char *nameOf(Severity severity)
{
    return severity == Severity::error ? "error" : "warning";
}

std::string listOfRules()
{
    std::string text;
    for (const RuleRow &row : rows)
        text += fmt::format("{:<19} {:<8} {}\n", row.name, nameOf(row.severity), row.summary);
    return text;
}

std::string pageOf(Rule rule)
{
    const RuleRow &row = rowOf(rule);
    constexpr size_t width = 80;
    std::string text = fmt::format("{} ({}): {}.\n\n", row.name, nameOf(row.severity), row.summary);
    std::string_view rest = row.explanation;
    while (rest.size() > width)
    {
        const size_t end = rest.rfind(' ', width);
        text += fmt::format("{}\n", rest.substr(0, end));
        rest.remove_prefix(end + 1);
    }
    return text + fmt::format("{}\n\nWrong:\n  {}\nRight:\n  {}\n", rest, row.wrong, row.right);
}

Levels::Levels()
{
    for (size_t i = 0; i < ruleCount; ++i)
        m_severities[i] = rows[i].severity;
}

std::string Levels::apply(std::string_view option)
{
    std::string_view name = option;
    if (name == "error")
    {
        for (Severity &severity : m_severities)
            severity = severity == Severity::warning ? Severity::error : severity;
        return "";
    }
    const bool isNo = takePrefix(name, "no-");
    const bool isError = takePrefix(name, "error=");
    const std::optional<Rule> rule = findRule(name);
    if (!rule)
        return "there is no such rule";
    if (isNo && rowOf(*rule).severity == Severity::error)
        return "it is an error, which cannot be switched off";
    if (isError)
        at(*rule) = isNo ? Severity::warning : Severity::error;
    else if (isNo)
        at(*rule) = Severity::off;
    else if (at(*rule) == Severity::off)
        at(*rule) = Severity::warning;
    return "";
}

} // namespace tool::check
