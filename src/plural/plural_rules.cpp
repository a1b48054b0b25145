// A language is found in few steps: one of two letters by its letters, one of three among those of its first letter.

#include "plural/plural_rules.h"

#include "plural/plural_table.h"
#include "plural/shown_number.h"

#include <iterator>

namespace
{

using kelto::LanguageRules;
using kelto::plural_table::PluralRule;
using kelto::plural_table::regions;
using Row = kelto::PluralLanguage<PluralRule>;

constexpr unsigned letterCount = 26;

/** The place of a letter in the alphabet, in either case; letterCount or more for any other character. */
constexpr unsigned letterOf(char character)
{
    return (static_cast<unsigned char>(character) | 0x20U) - 'a';
}

/** Two letters as a number in the order of the alphabet. */
constexpr unsigned orderOf(const char *letters)
{
    return letterOf(letters[0]) * letterCount + letterOf(letters[1]);
}

/** Where the languages of two letters stand in the table, counted from 1; 0 for what is none. */
struct TwoLetterIndex
{
    uint8_t place[letterCount * letterCount] = {};
};

constexpr TwoLetterIndex indexTwoLetters()
{
    static_assert(std::size(kelto::plural_table::twoLetters) <= UINT8_MAX);
    TwoLetterIndex index;
    uint8_t place = 0;
    for (const Row &row : kelto::plural_table::twoLetters)
        index.place[orderOf(row.code)] = ++place;
    return index;
}

/** Of the languages of three letters, where those of each first letter begin, and behind the last where they end. */
struct ThreeLetterIndex
{
    uint16_t begin[letterCount + 1] = {};
};

constexpr ThreeLetterIndex indexThreeLetters()
{
    ThreeLetterIndex index;
    for (const Row &row : kelto::plural_table::threeLetters)
        for (unsigned later = letterOf(row.code[0]) + 1; later <= letterCount; ++later)
            ++index.begin[later];
    return index;
}

constexpr TwoLetterIndex twoLetterIndex = indexTwoLetters();
constexpr ThreeLetterIndex threeLetterIndex = indexThreeLetters();

const Row *findTwoLetters(const char *code)
{
    const unsigned place = twoLetterIndex.place[orderOf(code)];
    return place != 0 ? &kelto::plural_table::twoLetters[place - 1] : nullptr;
}

const Row *findThreeLetters(const char *code)
{
    const unsigned first = letterOf(code[0]);
    unsigned begin = threeLetterIndex.begin[first];
    unsigned end = threeLetterIndex.begin[first + 1];
    const unsigned wanted = orderOf(code + 1);
    while (begin < end)
    {
        const unsigned middle = begin + (end - begin) / 2;
        const Row &row = kelto::plural_table::threeLetters[middle];
        const unsigned order = orderOf(row.code + 1);
        if (order == wanted)
            return &row;
        (order < wanted ? begin : end) = order < wanted ? middle + 1 : middle;
    }
    return nullptr;
}

bool endsLanguage(char character)
{
    return character == '\0' || character == '_' || character == '-' || character == '.' || character == '@';
}

/** The row of a region that is named behind the language, if it has one of its own. */
const Row *findRegion(const Row &language, const char *behind)
{
    const unsigned code = orderOf(language.code);
    if (code < orderOf(std::begin(regions)->code) || code > orderOf((std::end(regions) - 1)->code))
        return nullptr;
    while (*behind == '_' || *behind == '-')
    {
        const char *const begin = ++behind;
        while (!endsLanguage(*behind))
            ++behind;
        if (behind - begin != 2)
            continue;
        for (const Row &row : regions)
            if (orderOf(row.code) == code && orderOf(row.region) == orderOf(begin))
                return &row;
    }
    return nullptr;
}

/** The row of a language with its region, or null. */
const Row *findLanguage(const char *locale)
{
    unsigned letters = 0;
    while (letters < 4 && letterOf(locale[letters]) < letterCount)
        ++letters;
    if (!endsLanguage(locale[letters]))
        return nullptr;
    const Row *row = nullptr;
    if (letters == 2)
        row = findTwoLetters(locale);
    else if (letters == 3)
        row = findThreeLetters(locale);
    const Row *const region = row != nullptr ? findRegion(*row, locale + letters) : nullptr;
    return region != nullptr ? region : row;
}

} // namespace

namespace kelto
{

LanguageRules rulesOf(const char *locale) noexcept
{
    const Row *const row = findLanguage(locale);
    if (row == nullptr)
        return {static_cast<uint8_t>(PluralRule::alwaysOther), static_cast<uint8_t>(PluralRule::alwaysOther)};
    return {static_cast<uint8_t>(row->cardinal), static_cast<uint8_t>(row->ordinal)};
}

int categoryOf(uint8_t rule, const PluralOperands &number) noexcept
{
    return plural_table::categoryBy(static_cast<PluralRule>(rule), number);
}

} // namespace kelto

int KTPluralCategory(const char *locale, bool ordinal, KTArgument number, int digits)
{
    kelto::ShownNumber shown;
    if (locale == nullptr || digits < 0 || !shown.read(number, digits) || (ordinal && !kelto::isInteger(number)))
        return KT_ERR_INVALID_PARAMETER;
    const LanguageRules rules = kelto::rulesOf(locale);
    return shown.isFinite ? kelto::categoryOf(ordinal ? rules.ordinal : rules.cardinal, shown.operands)
                          : int{KT_VARIANT_OTHER};
}
