/** Catalogs of messages that nobody has chosen: every conversion, escape and character that message files can hold. */
#ifndef KELTO_TESTS_BILINGUAL_RANDOM_CATALOG_H
#define KELTO_TESTS_BILINGUAL_RANDOM_CATALOG_H

#include "bilingual/message_document.h"

#include <algorithm>
#include <map>
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
            if (below(4) == 0) // the row of a selector, in both
            {
                const int row = 1000 + static_cast<int>(i) * 100; // of 64 places at most
                const Kind kind = static_cast<Kind>(below(3));
                const std::string selector = "%" + std::to_string(row) + kindNames[kind] + "[1]";
                const std::vector<std::string> one = {"%d[1]", "%s[2]"};
                const std::string &language = translation.attributes[0].second;
                reference.units.back().text = selector;
                translation.units.push_back(Unit{id, "", "", "", selector, {}});
                for (const int place : places(kind, "en"))
                    reference.units.push_back(Unit{row + place, label(kind, id, place), "", "", text(one) + "r", {}});
                for (const int place : places(kind, language))
                    translation.units.push_back(Unit{row + place, label(kind, id, place), "", "", text(one) + "t", {}});
                continue;
            }
            const bool isEmpty = below(20) == 0 && conversions.empty();
            translation.units.push_back({id, "", "", "", isEmpty ? "" : text(conversions), {}});
            if (below(4) == 0)
                translation.units.back().remarks.notes.push_back({{}, "note " + text({})});
        }
    }

private:
    enum Kind
    {
        plural,
        ordinal,
        select
    };
    static constexpr const char *kindNames[] = {"plural", "ordinal", "select"};

    static std::string label(Kind kind, int id, int place)
    {
        constexpr const char *names[] = {"zero", "one", "two", "few", "many", "other", "=0", "=1"};
        const std::string name = kind == select ? "=" + std::to_string(place) : names[place];
        return std::to_string(id) + "[" + name + "]";
    }

    /** Those that integers need in a language, and sometimes exactly 0; of a value the first ones. */
    std::vector<int> places(Kind kind, const std::string &language)
    {
        if (kind == select)
            return {0, 1, 3};
        const std::vector<int> all = {0, 1, 2, 3, 4, 5};
        const std::map<std::string, std::vector<int>> ofLanguages[] = {
            {{"en", {1, 5}}, {"pl", {1, 3, 4}}, {"ja", {5}}, {"de", {1, 5}}, {"pt-BR", {1, 4, 5}}},
            {{"en", {1, 2, 3, 5}}, {"pl", {5}}, {"ja", {5}}, {"de", {5}}, {"pt-BR", {5}}, {"ar", {5}}}};
        const auto found = ofLanguages[kind].find(language);
        std::vector<int> needed = found != ofLanguages[kind].end() ? found->second : all;
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
