#include "check/texts/source_text.h"
#include "document.h"
#include "io/charset.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

using namespace tool::check;

namespace
{

/** A text by its characters, whose places are counted one by one: what a SourceText has to know in any encoding. */
struct Model
{
    std::vector<std::string> characters; // in UTF-8
    std::vector<size_t> offsets;         // in the file; one more than characters
    std::vector<size_t> lines;           // the first character of each

    size_t lineOf(size_t index) const
    {
        return static_cast<size_t>(std::upper_bound(lines.begin(), lines.end(), index) - lines.begin());
    }

    std::string part(size_t begin, size_t end) const
    {
        std::string text;
        for (size_t i = begin; i < end; ++i)
            text += characters[i] == "\t" ? " " : characters[i];
        return text;
    }

    /** "before|marked|behind" in UTF-8. */
    std::string excerpt(size_t from, size_t to, size_t bytesOfUnit) const
    {
        constexpr size_t longest = 160, before = 60, behind = 60;
        const size_t line = lineOf(from);
        size_t end = line < lines.size() ? lines[line] : characters.size();
        while (end > lines[line - 1] && (characters[end - 1] == "\n" || characters[end - 1] == "\r"))
            --end;
        const size_t begin = lines[line - 1];
        from = std::min(from, end);
        to = std::max(from, std::min(to, end));
        size_t first = begin, last = end, markEnd = to;
        if (offsets[end] - offsets[begin] > longest * bytesOfUnit)
        {
            first = std::max(begin + before, from) - before;
            markEnd = std::min(to, from + longest - before);
            last = markEnd < to ? markEnd : std::min(end, to + behind);
        }
        return (first > begin ? "..." : "") + part(first, from) + "|" + part(from, markEnd) + "|" +
               part(markEnd, last) + (last < end ? "..." : "");
    }
};

TEST(SourceText, KnowsLinesColumnsAndWhatSurroundsAPlace)
{
    const std::vector<std::string> alphabet = {"a", "b", "é", "ÿ", "\t", "\n", "\r", "\r\n", "ࠀ", "€", "𝄞"};
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round)
    {
        const int encoding = round % 5;                // UTF-8 without and with a mark, both of UTF-16, ISO-8859-1
        const size_t letters = encoding == 4 ? 8 : 11; // of the alphabet
        std::string text;
        Model model{{}, {}, {0}};
        while (model.characters.size() < 700)
        {
            const bool breaks = random() % 150 == 0;
            const size_t letter = breaks ? 5 + random() % 3 : random() % (letters - 3);
            const std::string &piece = alphabet[breaks || letter < 5 ? letter : letter + 3];
            for (const char byte : piece == "\r\n" ? "\r\n" : std::string())
                model.characters.emplace_back(1, byte);
            if (piece != "\r\n")
                model.characters.push_back(piece);
            text += piece;
        }
        const auto encoded = [&](const std::string &utf8) {
            return encoding == 4 ? inLatin1(utf8) : encoding >= 2 ? inUtf16(utf8, encoding == 3).substr(2) : utf8;
        };
        const std::string mark = encoding == 1                   ? "\xEF\xBB\xBF"
                                 : encoding >= 2 && encoding < 4 ? inUtf16("", encoding == 3)
                                                                 : "";
        size_t offset = mark.size();
        for (size_t i = 0; i < model.characters.size(); ++i)
        {
            model.offsets.push_back(offset);
            offset += encoded(model.characters[i]).size();
            const std::string &next = i + 1 < model.characters.size() ? model.characters[i + 1] : "";
            if (model.characters[i] == "\n" || (model.characters[i] == "\r" && next != "\n"))
                model.lines.push_back(i + 1);
        }
        model.offsets.push_back(offset);
        SourceText source("file", mark + encoded(text));
        if (encoding == 4)
            source.declareEncoding("iso-8859-1");
        source.index();
        for (int i = 0; i < 50; ++i)
        {
            const size_t from = random() % model.characters.size();
            const size_t to = std::min(from + random() % (i % 2 == 0 ? 5 : 200), model.characters.size());
            const Position place = source.position(model.offsets[from]);
            ASSERT_EQ(place.line, model.lineOf(from)) << round;
            ASSERT_EQ(place.column, from - model.lines[place.line - 1] + 1) << round;
            const Excerpt shown = source.excerpt({model.offsets[from], model.offsets[to]});
            ASSERT_EQ(tool::utf8(shown.before) + "|" + tool::utf8(shown.marked) + "|" + tool::utf8(shown.behind),
                      model.excerpt(from, to, encoding >= 2 && encoding < 4 ? 2 : 1))
                << round;
            EXPECT_EQ(source.sizeAsUtf8({model.offsets[from], model.offsets[to]}), [&] {
                size_t size = 0;
                for (size_t at = from; at < to; ++at)
                    size += model.characters[at].size();
                return size;
            }());
        }
    }
}

} // namespace
