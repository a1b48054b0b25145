// A language is found in few steps: one of two letters by its letters, one of three among those of its first letter.

#include "plural/plural_rules.h"

#include "plural/plural_table.h"
#include "plural/shown_number.h"
#include "strconv/ascii.h"

#include <iterator>

namespace
{

using kelto::LanguageRules;
using kelto::plural_table::PluralRule;
using kelto::plural_table::regions;
using Row = kelto::PluralLanguage<PluralRule>;

/** Two letters as a number in the order of the alphabet. */
constexpr unsigned orderOf(const char *letters)
{
    return kelto::letterOf(letters[0]) * kelto::letterCount + kelto::letterOf(letters[1]);
}

/**
 * The rules of every language of two letters, by its letters. Letters that are no language have the rules that know
 * "other" alone.
 */
struct TwoLetterRules
{
    LanguageRules of[kelto::letterCount * kelto::letterCount] = {};
};

constexpr LanguageRules rulesIn(const Row &row)
{
    return {static_cast<uint8_t>(row.cardinal), static_cast<uint8_t>(row.ordinal)};
}

constexpr TwoLetterRules indexTwoLetters()
{
    static_assert(static_cast<uint8_t>(PluralRule::alwaysOther) == 0);
    TwoLetterRules rules;
    for (const Row &row : kelto::plural_table::twoLetters)
        rules.of[orderOf(row.code)] = rulesIn(row);
    return rules;
}

/**
 * Where the languages of three letters begin in the table, by their first letter. Behind the last letter stands the
 * end.
 */
struct ThreeLetterIndex
{
    uint16_t begin[kelto::letterCount + 1] = {};
};

constexpr ThreeLetterIndex indexThreeLetters()
{
    ThreeLetterIndex index;
    for (const Row &row : kelto::plural_table::threeLetters)
        for (unsigned later = kelto::letterOf(row.code[0]) + 1; later <= kelto::letterCount; ++later)
            ++index.begin[later];
    return index;
}

constexpr TwoLetterRules twoLetterRules = indexTwoLetters();
constexpr ThreeLetterIndex threeLetterIndex = indexThreeLetters();

constexpr LanguageRules unknownLanguage = {};

LanguageRules findThreeLetters(const char *code)
{
    const unsigned first = kelto::letterOf(code[0]);
    unsigned begin = threeLetterIndex.begin[first];
    unsigned end = threeLetterIndex.begin[first + 1];
    const unsigned wanted = orderOf(code + 1);
    while (begin < end)
    {
        const unsigned middle = begin + (end - begin) / 2;
        const Row &row = kelto::plural_table::threeLetters[middle];
        const unsigned order = orderOf(row.code + 1);
        if (order == wanted)
            return rulesIn(row);
        (order < wanted ? begin : end) = order < wanted ? middle + 1 : middle;
    }
    return unknownLanguage;
}

bool endsLanguage(char character)
{
    return character == '\0' || character == '_' || character == '-' || character == '.' || character == '@';
}

bool isTwoLetters(const char *code)
{
    return kelto::letterOf(code[0]) < kelto::letterCount && kelto::letterOf(code[1]) < kelto::letterCount;
}

/** The rules of a region, where it has its own, else of its language. Both have two letters. */
LanguageRules findRegion(const char *language, const char *region)
{
    const unsigned wanted = orderOf(language);
    const bool mayHaveRegions =
        wanted >= orderOf(std::begin(regions)->code) && wanted <= orderOf(std::rbegin(regions)->code);
    for (const Row *row = std::begin(regions); mayHaveRegions && row != std::end(regions); ++row)
        if (orderOf(row->code) == wanted && orderOf(row->region) == orderOf(region))
            return rulesIn(*row);
    return twoLetterRules.of[wanted];
}

/** The rules of a name that is longer than a language of two letters. */
[[gnu::noinline]] LanguageRules findLongName(const char *locale)
{
    const unsigned letters = kelto::letterOf(locale[2]) < kelto::letterCount ? 3 : 2;
    const char *behind = locale + letters;
    if (!endsLanguage(*behind))
        return unknownLanguage;
    if (letters == 3)
        return findThreeLetters(locale);
    while (*behind == '_' || *behind == '-')
    {
        const char *const begin = ++behind;
        while (!endsLanguage(*behind))
            ++behind;
        if (behind - begin == 2 && isTwoLetters(begin))
            return findRegion(locale, begin);
    }
    return twoLetterRules.of[orderOf(locale)];
}

/** The category of an argument that is no integer. */
[[gnu::noinline]] int categoryOfReal(uint8_t rule, const KTArgument &number, int digits)
{
    kelto::ShownNumber shown;
    if (!shown.read(number, digits))
        return KT_ERR_INVALID_PARAMETER;
    return shown.isFinite ? kelto::categoryOf(rule, shown.i, static_cast<unsigned>(digits), shown.f, shown.t)
                          : int{KT_VARIANT_OTHER};
}

} // namespace

namespace kelto
{

LanguageRules rulesOf(const char *locale) noexcept
{
    if (!isTwoLetters(locale))
        return unknownLanguage;
    return locale[2] == '\0' ? twoLetterRules.of[orderOf(locale)] : findLongName(locale);
}

LanguageRules rulesOf(const char *language, const char *country) noexcept
{
    if (!isTwoLetters(language))
        return unknownLanguage;
    return isTwoLetters(country) ? findRegion(language, country) : twoLetterRules.of[orderOf(language)];
}

// The operands are passed by value: they stay in registers.
[[gnu::noinline]] int categoryOf(uint8_t rule, uint64_t i, uint64_t v, uint64_t f, uint64_t t) noexcept
{
    return plural_table::categoryBy(static_cast<PluralRule>(rule), i, v, f, t);
}

} // namespace kelto

int KTPluralCategory(const char *locale, bool ordinal, KTArgument number, int digits)
{
    if (locale == nullptr || digits < 0 || (ordinal && !kelto::isInteger(number)))
        return KT_ERR_INVALID_PARAMETER;
    const LanguageRules rules = kelto::rulesOf(locale);
    const uint8_t rule = ordinal ? rules.ordinal : rules.cardinal;
    if (!kelto::isInteger(number))
        return categoryOfReal(rule, number, digits);
    return kelto::categoryOf(rule, kelto::magnitudeOf(number), static_cast<unsigned>(digits), 0, 0);
}
