/**
 * Formats in tests, in every way that must agree: as a variable argument list and by pointers, measured with no buffer at
 * all, and into heap blocks of every capacity up to one more than the need.
 */
#ifndef KELTO_TESTS_FORMAT_FORMATTING_H
#define KELTO_TESTS_FORMAT_FORMATTING_H

#include "kelto.h"
#include "support/ucs2.h"

#include <gtest/gtest.h>
#include <string>
#include <type_traits>

/** A test with the library started. */
class StartedTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(KTInit(), 0); }
    void TearDown() override { KTClean(); }
};

struct Formatted
{
    int result;
    std::u16string text;

    bool operator==(const Formatted &other) const { return result == other.result && text == other.text; }
};

inline void PrintTo(const Formatted &formatted, std::ostream *out)
{
    *out << formatted.result << " \"";
    for (const char16_t unit : formatted.text)
        *out << (unit < 128 ? static_cast<char>(unit) : '?');
    *out << '"';
}

inline Formatted ok(std::u16string text)
{
    return {0, std::move(text)};
}

/** A call's options beyond its format. */
struct Options
{
    bool tag = false;
    formTable *table = nullptr;
    void *passThru = nullptr;
};

/** What a pointer-array call is given for an argument: a text itself, or a pointer to the value. */
template <typename Argument> void *slotOf(Argument &argument)
{
    if constexpr (std::is_pointer_v<Argument>)
        return const_cast<void *>(static_cast<const void *>(argument));
    else
        return const_cast<void *>(static_cast<const void *>(&argument));
}

template <typename... Arguments>
int formatInto(unsigned long *size, UCS2 *out, const Options &options, const char *format, Arguments... arguments)
{
    return KTFormatStringWithPassThru(nullptr, options.tag, options.table, options.passThru, size, out,
                                      const_cast<char *>(format), arguments...);
}

template <typename... Arguments>
Formatted formatWith(const Options &options, const char *format, Arguments... arguments)
{
    SCOPED_TRACE(std::string("format \"") + format + '"');
    unsigned long need = 0;
    const int measured = formatInto(&need, nullptr, options, format, arguments...);
    if (measured != KT_ERR_BUFFER_TOO_SMALL)
        return {measured, u""};

    constexpr unsigned long fewUnits = 40;
    for (unsigned long capacity = need > fewUnits ? need - 2 : 0; capacity <= need; ++capacity)
    {
        Ucs2Buffer buffer(capacity);
        unsigned long size = capacity;
        EXPECT_EQ(formatInto(&size, buffer.data(), options, format, arguments...), KT_ERR_BUFFER_TOO_SMALL) << capacity;
        EXPECT_EQ(size, need) << "capacity " << capacity;
        EXPECT_TRUE(capacity == 0 || buffer.text().size() < capacity) << "no terminator in capacity " << capacity;
    }

    Ucs2Buffer buffer(need + 1);
    unsigned long size = need + 1;
    const int result = formatInto(&size, buffer.data(), options, format, arguments...);
    EXPECT_EQ(size, result == 0 ? need : 0);

    Ucs2Buffer byPointer(need + 3);
    unsigned long sizeByPointer = need + 3;
    void *slots[] = {slotOf(arguments)..., nullptr};
    EXPECT_EQ(KTvpFormatStringWithPassThru(nullptr, options.tag, options.table, options.passThru, &sizeByPointer,
                                           byPointer.data(), const_cast<char *>(format), slots),
              result);
    EXPECT_EQ(sizeByPointer, size);
    EXPECT_EQ(byPointer.text(), buffer.text());
    EXPECT_TRUE(result != 0 || buffer.text().size() == need);
    return {result, buffer.text()};
}

template <typename... Arguments> Formatted format(const char *text, Arguments... arguments)
{
    return formatWith({}, text, arguments...);
}

template <typename... Arguments> Formatted formatTagged(const char *text, Arguments... arguments)
{
    return formatWith({true, nullptr, nullptr}, text, arguments...);
}

/** Calls one formatter by itself, with a value in its slot and a room; what it stored as the size, and the buffer. */
struct Direct
{
    int result;
    unsigned long size;
    std::u16string text;
};

inline Direct callFormatter(KTFormatFunction formatter, const char *name, int flags, const void *value,
                            unsigned long room, int width = -1, int precision = -1)
{
    Ucs2Buffer buffer(room);
    void *slot = const_cast<void *>(value);
    unsigned long size = room;
    const int result = formatter(name, width, precision, flags, nullptr, nullptr, &slot, &size, buffer.data());
    EXPECT_TRUE(result == 0 || buffer.untouched()) << "a failing formatter wrote";
    return {result, size, result == 0 ? asString(buffer.data(), size) : u""};
}

#endif
