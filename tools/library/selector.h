/**
 * Messages that select others, as people see them: which message of a row is for what, and which numbers take it in a
 * language. What a selector does is the library's affair.
 */
#ifndef KELTO_TOOLS_SELECTOR_H
#define KELTO_TOOLS_SELECTOR_H

#include "kelto.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool
{

/** The labels of the places of a row for a number, by KTVariant. */
constexpr const char *variantLabels[] = {"zero", "one", "two", "few", "many", "other", "=0", "=1"};
constexpr int mostVariants = KT_VARIANT_EXACTLY_1 + 1;

struct Selector
{
    enum class Kind
    {
        plural,
        ordinal,
        select
    };

    Kind kind;
    unsigned row;      // the number of its first message; 0 is the row of no message
    unsigned argument; // that selects, from 1
    int digits;        // shown behind the mark

    /** The messages that its row may have. */
    unsigned rowLength() const { return rowLengthOf(kind); }
    static unsigned rowLengthOf(Kind kind);

    /** The number of the message at a place; 0 where no message can be. */
    unsigned messageAt(unsigned place) const;
};

/** Reads a message, UTF-8; nothing where it is no selector. */
std::optional<Selector> readSelector(const std::string &message);

/** Whether a conversion specification, as "%-101plural[1]", has the name of a selector. */
bool namesSelector(std::string_view specification);

/** The case that the message at a place is for: "few", "=0", or of a value of the program's "=3". */
std::string placeName(Selector::Kind kind, unsigned place);

/** The place of such a name, or nothing. */
std::optional<unsigned> placeNamed(Selector::Kind kind, const std::string &name);

/** Whether a row has a message at a place. */
using RowHas = std::function<bool(unsigned place)>;

/** Which place a number takes in a language; nothing where it finds no message. */
std::optional<unsigned> placeOf(const Selector &selector, const std::string &language, unsigned long number,
                                const RowHas &has);

/** The first numbers that take a place, as "2-4, 22-24, ..."; empty where none does. */
std::string numbersAt(const Selector &selector, const std::string &language, unsigned place, const RowHas &has);

} // namespace tool

#endif
