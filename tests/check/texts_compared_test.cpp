#include "check/file_check.h"
#include "document.h"

#include <fmt/core.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>

using namespace tool::check;
using tool::Placeholders;

// The rows of texts_compared.txt: a language ("de", "de/fr" beside a reference in French; "de +30" with so many other
// messages in the file), a text, that of the reference, and what is found. "⏎" parts messages; "%d[1]" is a
// placeholder, "‹" and "›" are the brackets of an element, and "⟦2060⟧" is a character that nobody sees.

namespace
{

std::vector<std::string> split(const std::string &text, const std::string &mark)
{
    std::vector<std::string> parts;
    size_t begin = 0;
    for (size_t end = text.find(mark); end != std::string::npos; end = text.find(mark, begin))
    {
        parts.push_back(text.substr(begin, end - begin));
        begin = end + mark.size();
    }
    parts.push_back(text.substr(begin));
    return parts;
}

std::string inXml(std::string text)
{
    for (const auto &[mark, entity] :
         {std::pair{"&", "&amp;"}, std::pair{"<", "&lt;"}, std::pair{"‹", "<"}, std::pair{"›", ">"}})
        text = std::regex_replace(text, std::regex(mark), entity);
    text = std::regex_replace(text, std::regex("⟦([0-9A-F]+)⟧"), "&#x$1;");
    return std::regex_replace(text, std::regex(R"((%[-+ #.*!0-9]*[A-Za-z]+)\[([0-9]+)\])"), "<x ts=\"$1\" id=\"$2\"/>");
}

/** A file of these messages, and of others of usual length behind them. */
std::string file(const std::string &language, const std::string &texts, int others, const std::string &other)
{
    std::string body;
    int id = 0;
    for (const std::string &text : split(texts, "⏎"))
        body += fmt::format("<trans-unit id='{}'><source>{}</source></trans-unit>\n", ++id, inXml(text));
    for (int i = 0; i < others; ++i)
        body += fmt::format("<trans-unit id='{}'><source>{}{}</source></trans-unit>\n", ++id, other,
                            std::string(2, static_cast<char>('a' + i % 26)));
    std::string whole = document(body);
    return whole.replace(whole.find("\"de\""), 4, "\"" + language + "\"");
}

/** The part of a file that a finding or its note names; empty where it is a message as a whole. */
std::string partShown(const SourceText &source, Range range)
{
    const std::string_view part = partOf(source.bytes(), range);
    return part == "<source>" || part.substr(0, 11) == "<trans-unit" ? "" : fmt::format(" '{}'", part);
}

const char *nameOf(tool::Text text)
{
    constexpr std::pair<tool::Text, const char *> names[] = {
#define KELTO_TEXT(id, name, english) {tool::Text::name, #name},
#include "texts.inc"
#undef KELTO_TEXT
    };
    for (const auto &[known, name] : names)
        if (known == text)
            return name;
    return "";
}

std::string valuesShown(const tool::Phrase &phrase)
{
    std::string shown;
    for (const tool::Shown &value : phrase.values)
        shown += (shown.empty() ? "(" : ", ") + (value.isNumber          ? std::to_string(value.number)
                                                 : !value.phrase.empty() ? tool::sayInEnglish(value.phrase[0])
                                                                         : value.words);
    return shown.empty() ? "" : shown + ")";
}

/** "RULE TEXT(VALUES) 'PLACE' <- 'NOTE'" of each finding, the number of its message in front if it is not the first. */
std::string findingsIn(ParsedFile &here, ParsedFile &there)
{
    FormTable table;
    Levels levels;
    levels.apply("untranslated");
    there.source().index();
    const Reference reference(there, table.get());
    Findings findings = here.findings();
    for (Finding &finding : checkMessages(here, table.get(), &reference))
        findings.push_back(std::move(finding));
    std::string all;
    for (const Diagnostic &found : report(findings, here.source(), &there.source(), levels))
    {
        all +=
            fmt::format("{}{}{} {}{}{}", all.empty() ? "" : "; ",
                        found.message > 1 ? fmt::format("{}: ", found.message) : "", rowOf(found.rule).name,
                        nameOf(found.text.text), valuesShown(found.text), partShown(here.source(), found.place.bytes));
        if (found.notePlace && !found.notePlace->isLine)
        {
            const bool isInReference = found.notePlace->file == "reference";
            const std::string note = partShown(isInReference ? there.source() : here.source(), found.notePlace->bytes);
            all += note.empty() ? "" : " <-" + note;
        }
    }
    return all.empty() ? "ok" : all;
}

TEST(TextsCompared, LoseWhatTheirOriginalsHave)
{
    ASSERT_EQ(KTInit(), 0);
    std::ifstream rows(KELTO_SOURCE_DIR "/tests/check/texts_compared.txt");
    size_t count = 0;
    for (std::string line; std::getline(rows, line);)
    {
        if (line.empty() || line[0] == '#')
            continue;
        ++count;
        const std::vector<std::string> row = split(line, " ¦ ");
        ASSERT_EQ(row.size(), 4U) << line;
        const std::vector<std::string> setting = split(row[0], " +");
        const std::vector<std::string> languages = split(setting[0], "/");
        const int others = setting.size() > 1 ? std::stoi(setting[1]) : 0;
        ParsedFile here(SourceText("file", file(languages[0], row[1], others, "Ein Satz dieser Größe steht hier ")),
                        Placeholders::positioned);
        ParsedFile there(SourceText("reference", file(languages.size() > 1 ? languages[1] : "en", row[2], others,
                                                      "A sentence of this size stands here ")),
                         Placeholders::positioned);
        EXPECT_EQ(findingsIn(here, there), row[3]) << line;
    }
    EXPECT_GT(count, 100U);
    KTClean();
}

} // namespace
