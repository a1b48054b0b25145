/**
 * A message as a format string: its conversions, the arguments that they take, and what is wrong with it. The verdict
 * on a whole message, and the parsing of each conversion, are the library's.
 */
#ifndef KELTO_TOOLS_CHECK_TEXTS_FORMATS_H
#define KELTO_TOOLS_CHECK_TEXTS_FORMATS_H

#include "check/texts/source_text.h"
#include "kelto.h"
#include "text.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool::check
{

/** What a program passes for an argument, its sign aside. */
enum class Kind
{
    integer16,
    integer32,
    integer64,
    character,
    unit,
    floating,
    longFloating,
    utf8,
    ucs2,
    pointer
};

/** "a 32-bit integer". */
Text nameOf(Kind kind);

constexpr bool isInteger(Kind kind)
{
    return kind == Kind::integer16 || kind == Kind::integer32 || kind == Kind::integer64;
}

struct Slot
{
    enum class Role
    {
        value,
        width,
        precision
    };

    Role role;
    Kind kind;

    bool operator==(const Slot &other) const { return role == other.role && kind == other.kind; }
};

struct Conversion
{
    int position;
    Range place;         // bytes of the message
    std::string written; // as "%-5d[2]"; cut where it is long
    std::string name;    // as "d"; "N" and "O" for the markers of a region
    std::vector<Slot> slots;

    /** As a text shows it. */
    unsigned shownPosition() const { return static_cast<unsigned>(position); }
};

/** A percent sign that begins no conversion. */
struct FormatFault
{
    Range place;
    KTProblem problem;
    int position; // of an unknown conversion; else 0
    bool isLone;  // nothing suggests that a conversion was meant
};

struct Format
{
    bool isAccepted = true;              // by the format calls
    std::vector<Conversion> conversions; // in the order of the text
    std::vector<size_t> byPosition;      // indices into `conversions`, in the order of the positions
    std::vector<FormatFault> faults;

    /** The first conversion with this position, or null. */
    const Conversion *find(int position) const;
    int highestPosition() const;

    /** The slots of all conversions, in the order in which arguments are passed. */
    std::vector<Slot> arguments() const;

    /** Fills `byPosition` from `conversions`. */
    void sortPositions();
};

/**
 * Whether a conversion only takes its argument, as in a sentence for a number that it does not show: "%nil", "%.0s".
 * @param written  with its position or without.
 */
bool writesNothing(std::string_view written);

/** A conversion as a message file has it: <x ts="%d" id="1"/>. */
std::string tagOf(const Conversion &conversion);

/** The same the other way round, "%d[1]"; nothing where a text is no such tag. */
std::optional<std::string> conversionInTag(std::string_view tag);

/** @param message  UTF-8, followed by a zero byte. */
Format parseFormat(std::string_view message, formTable *table);

/**
 * The conversions that a check knows: the built-in ones, those of the add-on, and in front of both those of the
 * caller's that --form names.
 */
class FormTable
{
public:
    FormTable();
    ~FormTable();
    FormTable(const FormTable &) = delete;
    FormTable &operator=(const FormTable &) = delete;

    /** Adds "NAME=TYPE[,TYPE...]"; an empty text, or what is wrong with it. */
    std::string add(std::string_view form);

    /** Not changed by those who use it. */
    formTable *get() { return &m_table; }

private:
    struct Row;
    std::vector<std::unique_ptr<Row>> m_rows;
    std::vector<KTFormatter> m_list; // ends with a row without a name
    formTable m_table;
};

} // namespace tool::check

#endif
