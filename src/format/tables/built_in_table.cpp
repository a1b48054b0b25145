// The records of the library's own conversions, and the table that has them.

#include "format/conversion_record.h"

// Constants have internal linkage unless declared before: kelto.h does that for all of these.
const int singleCharList[] = {KT_ARG_CHARACTER, KT_ARG_END};
const int utf8StrList[] = {KT_ARG_UTF8, KT_ARG_END};
const int ucs2StrList[] = {KT_ARG_UCS2, KT_ARG_END};
const int signedIntList[] = {KT_ARG_SIGNED, KT_ARG_END};
const int unsignedIntList[] = {KT_ARG_UNSIGNED, KT_ARG_END};
const int doubleList[] = {KT_ARG_DOUBLE, KT_ARG_END};

namespace
{

// The order is that of Flag_t, and records of one first letter, in either case, stand together. Two names of 64-bit
// integers have no record of their own: "%l" is "d", and "%ul" is "u" (form_table.cpp, shortNameType()).
// clang-format off
constexpr KTFormatter records[] = {
    {"d", nullptr, 1, signedIntList, formatInteger},
    {"DND", nullptr, 1, ucs2StrList, formatDN},
    {"DNS", nullptr, 1, ucs2StrList, formatDN},
    {"DT", nullptr, 1, utf8StrList, formatDateTime},
    {"D", nullptr, 1, utf8StrList, formatDateTime},
    {"T", nullptr, 1, utf8StrList, formatDateTime},
    {"u", nullptr, 1, unsignedIntList, formatUnsigned},
    {"U", nullptr, 1, ucs2StrList, formatUCS2Str},
    {"o", nullptr, 1, unsignedIntList, formatOctHex},
    {"x", nullptr, 1, unsignedIntList, formatOctHex},
    {"X", nullptr, 1, unsignedIntList, formatOctHex},
    {"f", nullptr, 1, doubleList, formatDouble},
    {"c", nullptr, 1, singleCharList, formatChar},
    {"s", nullptr, 1, utf8StrList, formatUTF8Str},
    {"E", nullptr, 1, utf8StrList, formatError},
    {"EID", nullptr, 1, unsignedIntList, formatEID},
    {"IP", nullptr, 1, utf8StrList, formatIP},
    {nullptr, nullptr, 0, nullptr, nullptr},
};
// clang-format on

constexpr size_t recordCount = std::size(records);
static_assert(recordCount == std::size(builtInFormList));

/** The place of a record's first letter in the alphabet, in either case. */
constexpr int letterOf(const KTFormatter &record)
{
    return (record.name[0] | 0x20) - 'a';
}

constexpr bool lettersStandTogether()
{
    for (size_t i = 0; i + 1 < recordCount; ++i)
        for (size_t j = i + 2; j + 1 < recordCount; ++j)
            if (letterOf(records[i]) == letterOf(records[j]) && letterOf(records[j - 1]) != letterOf(records[j]))
                return false;
    return true;
}
static_assert(lettersStandTogether());

/** A table of the built-in list: of each letter it knows the place of the first record, counted from 1. */
constexpr formTable indexedTable()
{
    formTable table = {true, {}, builtInFormList, nullptr, nullptr};
    for (size_t i = recordCount - 1; i-- > 0;)
        table.letterIndex[letterOf(records[i])] = static_cast<int>(i) + 1;
    return table;
}

} // namespace

// The list is constant data, not filled by code at the start. So each record is named: arrays cannot be copied.
KTFormatter builtInFormList[recordCount] = {
    records[0], records[1],  records[2],  records[3],  records[4],  records[5],  records[6],  records[7],  records[8],
    records[9], records[10], records[11], records[12], records[13], records[14], records[15], records[16], records[17]};

formTable builtInFormTable = indexedTable();
