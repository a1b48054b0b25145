#include "library/language_conversions.h"

#include "kelto.h"

#include <algorithm>
#include <iterator>

#if KELTO_HAS_LOCALE
#include "kelto-locale.h"
#endif

namespace tool
{
namespace
{

struct LanguageConversion
{
    const char *name;
    int types[3];
    std::string_view described; // the conversion of the same values that knows no language, or none
};

constexpr LanguageConversion conversions[] = {
    {"ago", {KT_ARG_SIGNED}, ""},
    {"and", {KT_ARG_UTF8}, ""},
    {"date", {KT_ARG_UTF8}, "D"},
    {"datetime", {KT_ARG_UTF8}, "DT"},
    {"decimal", {KT_ARG_DOUBLE}, "f"},
    {"money", {KT_ARG_UTF8, KT_ARG_UTF8}, ""},
    {"number", {KT_ARG_SIGNED}, "d"},
    {"or", {KT_ARG_UTF8}, ""},
    {"percent", {KT_ARG_DOUBLE}, ""},
    {"time", {KT_ARG_UTF8}, "T"},
    {"unit", {KT_ARG_DOUBLE, KT_ARG_UTF8}, ""},
    {"unumber", {KT_ARG_UNSIGNED}, "u"},
};

int formatNothing(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *)
{
    *size = 0;
    return 0;
}

/** The table, with the records that it points to. */
struct NamedTable
{
    KTFormatter list[std::size(conversions) + 1] = {};
    formTable table = {false, {}, list, nullptr, &builtInFormTable};

    NamedTable()
    {
        for (size_t i = 0; i < std::size(conversions); ++i)
        {
            const LanguageConversion &row = conversions[i];
            list[i] = {row.name, nullptr, row.types[1] != KT_ARG_END ? 2 : 1, row.types, formatNothing};
        }
    }
};

bool isOf(const LanguageConversion &row, std::string_view name, std::string_view described)
{
    return name == row.name && !described.empty() && described == row.described;
}

} // namespace

formTable *namedConversions()
{
    static NamedTable named;
    KTGetVariantFormTable(&named.table.nextTable); // the table of variants is there once the library is started
    return &named.table;
}

#if KELTO_HAS_LOCALE

bool hasLanguageConversions()
{
    return true;
}

formTable *conversionsOf(const std::string &language)
{
    formTable *const table = KTLConversions(nullptr, language.c_str());
    return table != nullptr ? table : namedConversions();
}

#else

bool hasLanguageConversions()
{
    return false;
}

formTable *conversionsOf(const std::string & /*language*/)
{
    return namedConversions();
}

#endif

bool differInLanguageAlone(std::string_view one, std::string_view other)
{
    return std::any_of(std::begin(conversions), std::end(conversions),
                       [&](const LanguageConversion &row) { return isOf(row, one, other) || isOf(row, other, one); });
}

} // namespace tool
