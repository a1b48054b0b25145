/**
 * UCS-2 text in tests. GoogleTest compares and prints std::u16string; these make one from what the library handles.
 *
 *     EXPECT_EQ(asString(out), u"files: 7");
 */
#ifndef KELTO_TESTS_SUPPORT_UCS2_H
#define KELTO_TESTS_SUPPORT_UCS2_H

#include "kelto.h"
#include "support/guarded.h"

using Ucs2Buffer = Guarded<UCS2>;

/** The text up to its terminator. */
inline std::u16string asString(const UCS2 *text)
{
    return std::u16string(text);
}

/** The first units of a text that may have no terminator. */
inline std::u16string asString(const UCS2 *text, size_t units)
{
    return std::u16string(text, units);
}

#endif
