// The rows of rows.txt: formats, arguments and texts in the notation of the guide, whose own examples are not repeated
// there. Beside them it names what the call is made with: tag, encoder, own (the table below), copy, reduced.

#include "support/formatting.h"
#include "support/page.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <gtest/gtest.h>

namespace
{

/** Writes a text as far as there is room, and tells its length: as the guide advises. */
int writeText(const std::u16string &text, unsigned long *size, UCS2 *out)
{
    const unsigned long room = *size;
    text.copy(out, room);
    *size = text.size();
    return text.size() < room ? 0 : KT_ERR_BUFFER_TOO_SMALL;
}

[[gnu::format(printf, 3, 4)]] int print(unsigned long *size, UCS2 *out, const char *format, ...)
{
    char text[100];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return writeText(toUCS2(text), size, out);
}

/** What it was called with: name, width, precision, flags, whether there is an encoder, the value. */
int show(const char *name, int width, int precision, int flags, KTEncoder encoder, void *passThru2, void **slot,
         unsigned long *size, UCS2 *out)
{
    EXPECT_EQ(*static_cast<int *>(passThru2), 5);
    return print(size, out, "%s %d.%d %x%s %d", name, width, precision, static_cast<unsigned>(flags),
                 encoder != nullptr ? " encoded" : "", *static_cast<const int *>(*slot));
}

/** One argument of each kind. */
int showAll(const char *, int, int, int flags, KTEncoder, void *, void **slots, unsigned long *size, UCS2 *out)
{
    const int character =
        (flags & FLAG_l) != 0 ? *static_cast<const UCS2 *>(slots[0]) : *static_cast<const unsigned char *>(slots[0]);
    const long double number =
        (flags & FLAG_L) != 0 ? *static_cast<const long double *>(slots[4]) : *static_cast<const double *>(slots[4]);
    return print(size, out, "%x %s %s %d %.1Lf %llx", static_cast<unsigned>(character), static_cast<char *>(slots[1]),
                 toUTF8(static_cast<const UCS2 *>(slots[2])).c_str(),
                 (flags & FLAG_h) != 0 ? *static_cast<const int16_t *>(slots[3]) : *static_cast<const int *>(slots[3]),
                 number, *static_cast<const unsigned long long *>(slots[5]));
}

int showNothing(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *out)
{
    return print(size, out, "nothing");
}

int fail(const char *, int, int, int, KTEncoder, void *, void **, unsigned long *size, UCS2 *)
{
    *size = 1000; // not to be read
    return -77;
}

/** Brackets around the value, in front of them the kind of a character. */
int encode(const void *value, int dataType, unsigned long *size, UCS2 *out)
{
    const unsigned long room = *size;
    std::u16string text = u"[";
    if (dataType == 1)
        text += static_cast<const UCS2 *>(value);
    else if (dataType == 0)
        text = u"unit[" + std::u16string(1, *static_cast<const UCS2 *>(value));
    else
        text = u"char[" + std::u16string(1, *static_cast<const unsigned char *>(value));
    text += u"]";
    text.copy(out, room);
    *size = text.size();
    return 0;
}

const int none[] = {0}, all[] = {-1, 8, 1, 2, 3, 99, 4, 6, 7, 0}, two[] = {4, 4, 0};
KTFormatter ownList[] = {{"show", nullptr, 1, signedIntList, show}, {"apple", nullptr, 1, signedIntList, show},
                         {"Zeta", nullptr, 1, signedIntList, show}, {"all", nullptr, 6, all, showAll},
                         {"none", nullptr, 0, none, showNothing},   {"fail", nullptr, 0, none, fail},
                         {"two", nullptr, 2, two, formatInteger},   {"text", nullptr, 1, utf8StrList, formatInteger},
                         {"d", nullptr, 1, signedIntList, nullptr}, // unusable, as the next ones
                         {"u", nullptr, 1, nullptr, show},          {"o", nullptr, 2, signedIntList, show},
                         {"x", nullptr, 0, signedIntList, show},    {nullptr, nullptr, 0, nullptr, nullptr}};

TEST(Formats, GiveTheTextsOfTheRows)
{
    ASSERT_EQ(KTInit(), 0);
    const std::vector<Row> rows =
        rowsUnder(readPage("tests/format/rows.txt"), "| Format | Arguments | Output | With |");
    EXPECT_GT(rows.size(), 50U);
    for (const Row &row : rows)
    {
        ASSERT_EQ(row.size(), 4U) << row[0];
        const auto isWith = [&](const char *word) { return row[3].find(word) != std::string::npos; };
        formTable *copy = nullptr;
        const int option = isWith("copy") ? 1 : isWith("reduced") ? 3 : 0;
        ASSERT_EQ(option != 0 ? KTGetBuiltInFormTable(option, &copy) : 0, 0);
        // The encoder is the first along the chain, not that of the table which the call names.
        formTable second = {
            false, {}, nullptr, isWith("encoder") ? encode : nullptr, copy != nullptr ? copy : &builtInFormTable};
        formTable first = {false, {}, isWith("own") ? ownList : nullptr, nullptr, &second};
        int passThru = 5;
        Arguments arguments(row[1]);
        EXPECT_EQ(formatted(unquoted(row[0]), arguments, {isWith("tag"), row[3].empty() ? nullptr : &first, &passThru}),
                  unquoted(row[2]))
            << row[0] << " of " << row[1] << ' ' << row[3];
        EXPECT_EQ(KTFreeFormTable(copy), 0);
    }
    KTClean();
}

} // namespace
