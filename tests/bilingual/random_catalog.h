/** Catalogs of messages that nobody has chosen: every conversion, escape and character that message files can hold. */
#ifndef KELTO_TESTS_BILINGUAL_RANDOM_CATALOG_H
#define KELTO_TESTS_BILINGUAL_RANDOM_CATALOG_H

#include "bilingual/message_document.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

class RandomCatalog
{
public:
    explicit RandomCatalog(unsigned seed) : m_random(seed) {}

    size_t below(size_t end) { return m_random() % end; }

    /** Fills a reference and a translation of it. */
    void fill(tool::bilingual::MessageDocument &reference, tool::bilingual::MessageDocument &translation)
    {
        using Unit = tool::bilingual::MessageUnit;
        reference.attributes = {{"source-language", "en"}, {"product-name", "p&<\"'>"}, {"product-version", "1"}};
        translation.attributes = reference.attributes;
        translation.attributes[0].second = std::vector<std::string>{"de", "pt-BR", "pl", "ar", "ja", "cy"}[below(6)];
        const size_t messages = 1 + below(8);
        for (size_t i = 0; i < messages; ++i)
        {
            const int id = static_cast<int>((i * 10) + below(10)) + 1;
            const std::vector<std::string> conversions = chooseConversions();
            reference.units.push_back(
                {id, "", below(2) == 0 ? "name" + std::to_string(id) : "", "", text(conversions), {}});
            if (below(4) == 0)
                reference.units.back().remarks.notes.push_back({{{"from", "developer"}}, text({})});
            if (below(6) == 0)
                continue;
            if (below(5) == 0) // the row of a selector, in both
            {
                const int row = 1000 + static_cast<int>(i) * 10;
                const std::string selector = "%" + std::to_string(row) + "plural[1]";
                const std::vector<std::string> one = {"%d[1]", "%s[2]"};
                reference.units.back().text = selector;
                translation.units.push_back(Unit{id, "", "", "", selector, {}});
                for (const int place : {1, 5})
                    reference.units.push_back(Unit{row + place, label(id, place), "", "", text(one) + "r", {}});
                for (const int place : places(translation.attributes[0].second))
                    translation.units.push_back(Unit{row + place, label(id, place), "", "", text(one) + "t", {}});
                continue;
            }
            const bool isEmpty = below(20) == 0 && conversions.empty();
            translation.units.push_back({id, "", "", "", isEmpty ? "" : text(conversions), {}});
            if (below(4) == 0)
                translation.units.back().remarks.notes.push_back({{}, "note " + text({})});
        }
    }

private:
    static std::string label(int id, int place)
    {
        constexpr const char *names[] = {"zero", "one", "two", "few", "many", "other", "=0", "=1"};
        return std::to_string(id) + "[" + names[place] + "]";
    }

    /** Those that integers need in a language, and sometimes exactly 0. */
    std::vector<int> places(const std::string &language)
    {
        std::vector<int> needed = language == "pl"      ? std::vector<int>{1, 3, 4}
                                  : language == "ja"    ? std::vector<int>{5}
                                  : language == "de"    ? std::vector<int>{1, 5}
                                  : language == "pt-BR" ? std::vector<int>{1, 4, 5}
                                                        : std::vector<int>{0, 1, 2, 3, 4, 5};
        if (below(2) == 0)
            needed.push_back(6);
        return needed;
    }

    std::vector<std::string> chooseConversions()
    {
        constexpr const char *known[] = {"%d",  "%-5d", "%+.3f", "%s",   "%.10s",  "%x",  "%#06X", "%o",
                                         "%u",  "%c",   "%!d",   "%l",   "%ul",    "%hd", "%lc",   "%f",
                                         "%Lf", "%DT",  "%DND",  "%EID", "%-*.*f", "%U",  "%E",    "%IP",
                                         "% d", "%T",   "%D",    "%*s",  "%!x",    "%.d"};
        std::vector<std::string> conversions;
        for (size_t count = below(4); conversions.size() < count;)
            conversions.push_back(std::string(known[below(std::size(known))]) + "[" +
                                  std::to_string(conversions.size() + 1) + "]");
        return conversions;
    }

    std::string words()
    {
        constexpr const char *pieces[] = {"a",      "word", " ",   "  ",   "\t",    "\n",     "\r",
                                          "\r\n",   "\\",   "\\n", "\\\\", "\"",    "'",      "<",
                                          "&",      ">",    "]]>", "%%",   "é",     "\u0645", "\U0001F600",
                                          "\u2028", "&lt;", "$",   "1$",   "%%1$d", "{",      "\u00A0"};
        std::string text;
        for (size_t count = below(4); count > 0; --count)
            text += pieces[below(std::size(pieces))];
        return text;
    }

    std::string text(std::vector<std::string> conversions)
    {
        std::shuffle(conversions.begin(), conversions.end(), m_random);
        std::string text = words();
        for (const std::string &conversion : conversions)
            text += conversion + words();
        return text;
    }

    std::mt19937 m_random;
};

#endif
