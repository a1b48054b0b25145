#include "stats/html_page.h"

#include "bilingual/message_parts.h"
#include "bilingual/xml.h"
#include "check/texts/utf8.h"
#include "io/invisible.h"
#include "text.h"

#include <algorithm>
#include <fmt/core.h>
#include <unicode/uloc.h>

namespace tool::stats
{
namespace
{

using namespace bilingual;

constexpr const char *style = R"(
:root { color-scheme: light dark; --ink: #1c2733; --paper: #fff; --line: #d5dbe1; --soft: #5b6875; --done: #2b7a4b;
  --fuzzy: #8f5f00; --refused: #b3261e; --missing: #e4e8ec; }
@media (prefers-color-scheme: dark) { :root { --ink: #e3e8ee; --paper: #14181d; --line: #38424c; --soft: #9aa7b4;
  --done: #5fbf84; --fuzzy: #e0a93a; --refused: #ff8a80; --missing: #2a323a; } }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 76rem; padding: 1.5rem 1rem 4rem; background: var(--paper); color: var(--ink);
  font: 1rem/1.5 system-ui, sans-serif; }
h1 { font-size: 1.5rem; margin: 0 0 1rem; overflow-wrap: anywhere; }
h2 { font-size: 1.125rem; margin: 2.5rem 0 .5rem; overflow-wrap: anywhere; }
a { color: inherit; }
.languages { list-style: none; margin: 0; padding: 0; }
.languages li { padding: .5rem 0; border-bottom: 1px solid var(--line); }
.numbers { display: flex; flex-wrap: wrap; justify-content: space-between; gap: 0 1rem; }
.bar { display: flex; height: .5rem; margin: .25rem 0; border-radius: .25rem; overflow: hidden;
  background: var(--missing); }
.bar .done { background: var(--done); }
.bar .fuzzy { background: var(--fuzzy); }
.bar .refused { background: var(--refused); }
table { width: 100%; border-collapse: collapse; table-layout: fixed; }
th, td { text-align: start; vertical-align: top; padding: .5rem; border-bottom: 1px solid var(--line);
  overflow-wrap: anywhere; }
th { color: var(--soft); font-weight: normal; }
th:first-child { width: 8rem; }
th:nth-child(2) { width: 9rem; }
.text { white-space: pre-wrap; }
.text bdi { color: var(--soft); }
td ul { margin: .25rem 0 0; padding: 0; list-style: none; color: var(--refused); font-size: .875rem; }
td code { font-size: .875em; color: var(--soft); }
.state-fuzzy { color: var(--fuzzy); }
.state-refused { color: var(--refused); }
.state-missing, .soft { color: var(--soft); }
@media (max-width: 48rem) {
  table, tbody, tr, td { display: block; }
  thead { position: absolute; clip-path: inset(50%); width: 1px; height: 1px; overflow: hidden; }
  tr { border-bottom: 1px solid var(--line); padding: .5rem 0; }
  td { border: 0; padding: .125rem 0; }
  td:empty { display: none; }
  td::before { content: attr(data-label); display: block; color: var(--soft); font-size: .8125rem; }
}
)";

/** A text of a file; characters that a browser would not show, or be moved by, are escapes. */
std::string visible(const std::string &text)
{
    std::string result;
    const std::string plain = escaped(text);
    for (size_t at = 0; at < plain.size();)
    {
        const size_t begin = at;
        const char32_t character = check::takeUtf8(plain, at);
        const bool isKept = isJoiner(character) || character == 0x00AD; // SOFT HYPHEN
        if (isKept || !isInvisible(character))
            result += plain.substr(begin, at - begin);
        else
            result += fmt::format(character <= 0xFFFF ? "\\u{:04X}" : "\\U{:08X}", static_cast<uint32_t>(character));
    }
    return result;
}

std::string shown(const std::string &text)
{
    return xmlText(visible(text));
}

/**
 * A text of a message: its conversions and escapes are set apart, since among letters from right to left they would
 * fall to pieces.
 */
std::string shownMessage(const std::string &message, formTable *table)
{
    constexpr const char *begin = "<bdi dir=\"ltr\">";
    constexpr const char *end = "</bdi>";
    std::string result;
    for (const Part &part : roughPartsOf(message, table))
    {
        const std::string text = visible(part.text);
        if (part.isPlaceholder)
        {
            result += begin + xmlText(text) + end;
            continue;
        }
        for (size_t at = 0; at < text.size();)
        {
            const size_t escape = std::min(text.find('\\', at), text.size());
            result += xmlText(std::string_view(text).substr(at, escape - at));
            if (escape == text.size())
                break;
            const std::string_view begins = std::string_view(text).substr(escape, 2);
            const size_t length = begins == "\\u" ? 6 : begins == "\\U" ? 10 : 2; // "\\u202E", "\\U000E0001", "\\n"
            at = std::min(escape + length, text.size());
            result += begin + xmlText(std::string_view(text).substr(escape, at - escape)) + end;
        }
    }
    return result;
}

std::string label(Text text)
{
    return xmlText(say(text));
}

/** The attributes of an element whose text is in a language. */
std::string languageAttributes(const std::string &language)
{
    std::string tag = language;
    std::replace(tag.begin(), tag.end(), '_', '-');
    const bool isRightToLeft = uloc_isRightToLeft(language.c_str()) != 0;
    return xmlAttribute("lang", tag) + (isRightToLeft ? " dir=\"rtl\"" : " dir=\"ltr\"");
}

struct StateRow
{
    const char *name;
    Text text;
};

StateRow rowOf(Unfinished::Kind kind)
{
    switch (kind)
    {
    case Unfinished::Kind::fuzzy:
        return {"fuzzy", Text::stateFuzzy};
    case Unfinished::Kind::refused:
        return {"refused", Text::stateRefused};
    default:
        return {"missing", Text::stateMissing};
    }
}

std::string cell(Text heading, const std::string &attributes, const std::string &content)
{
    return fmt::format("<td data-label=\"{}\"{}>{}</td>\n", label(heading), attributes, content);
}

std::string rowOf(const Unfinished &message, const Progress &progress, const std::string &sourceLanguage,
                  formTable *table)
{
    const StateRow state = rowOf(message.kind);
    std::string name = xmlText(message.key);
    if (!message.name.empty())
        name += fmt::format("<br><code>{}</code>", shown(message.name));
    if (!message.examples.empty())
        name += fmt::format("<br><span class=\"soft\">{}</span>", xmlText(message.examples));
    std::string translation = shownMessage(message.target, table);
    std::string findings;
    for (const std::string &finding : message.findings)
        findings += "<li>" + shown(finding) + "</li>";
    std::string row = "<tr>\n" + cell(Text::columnMessage, "", name);
    row += cell(Text::columnState, fmt::format(" class=\"state-{}\"", state.name), label(state.text));
    row += cell(Text::columnSource, " class=\"text\"" + languageAttributes(sourceLanguage),
                shownMessage(message.source, table));
    if (!translation.empty())
        translation = fmt::format("<div class=\"text\"{}>{}</div>", languageAttributes(progress.language), translation);
    row += cell(Text::columnTarget, "", translation + (findings.empty() ? "" : "<ul>" + findings + "</ul>"));
    return row + "</tr>\n";
}

std::string barOf(const Counts &counts)
{
    const auto part = [&counts](const char *name, size_t count) {
        return count == 0 ? std::string()
                          : fmt::format("<span class=\"{}\" style=\"width:{:.2f}%\"></span>", name,
                                        100.0 * static_cast<double>(count) / static_cast<double>(counts.messages));
    };
    return "<div class=\"bar\">" + part("done", counts.finished) + part("fuzzy", counts.fuzzy) +
           part("refused", counts.refused) + "</div>\n";
}

} // namespace

std::string pageOf(const std::string &reference, const std::string &language, const std::vector<Progress> &all,
                   formTable *table)
{
    const std::string title = xmlText(say(Text::reportTitle, {visible(reference)}));
    std::string page =
        fmt::format("<!DOCTYPE html>\n<html lang=\"{}\">\n<head>\n<meta charset=\"utf-8\">\n"
                    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
                    "'unsafe-inline'\">\n<title>{}</title>\n<style>{}</style>\n</head>\n<body>\n<h1>{}</h1>\n"
                    "<ul class=\"languages\">\n",
                    say(Text::pageLanguage), title, style, title);
    for (size_t i = 0; i < all.size(); ++i)
    {
        const Progress &progress = all[i];
        page += fmt::format(
            "<li>\n<div class=\"numbers\"><a href=\"#l{}\"><bdi>{}</bdi></a> <span>{}</span></div>\n{}</li>\n", i,
            shown(progress.language), xmlText(sentenceOf(progress.counts)), barOf(progress.counts));
    }
    page += "</ul>\n";
    for (size_t i = 0; i < all.size(); ++i)
    {
        const Progress &progress = all[i];
        page += fmt::format("<h2 id=\"l{}\"><bdi>{}</bdi> <code class=\"soft\">{}</code></h2>\n", i,
                            shown(progress.language), shown(progress.file));
        if (progress.unfinished.empty())
        {
            page += "<p class=\"soft\">" + label(Text::reportDone) + "</p>\n";
            continue;
        }
        page += "<table>\n<thead><tr>";
        for (const Text heading : {Text::columnMessage, Text::columnState, Text::columnSource, Text::columnTarget})
            page += "<th>" + label(heading) + "</th>";
        page += "</tr></thead>\n<tbody>\n";
        for (const Unfinished &message : progress.unfinished)
            page += rowOf(message, progress, language, table);
        page += "</tbody>\n</table>\n";
    }
    return page + "</body>\n</html>\n";
}

} // namespace tool::stats
