#include "bilingual/gettext/printf_format.h"

#include "check/texts/utf8.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace tool::bilingual
{
namespace
{

constexpr std::string_view digits = "0123456789";

/** The meaning of a modifier of C for an integer. `long` and types as wide count as 64 bits, as on most systems. */
constexpr struct
{
    std::string_view theirs, ours;
} integerModifiers[] = {{"ll", "!"}, {"h", "h"}, {"l", "!"}, {"q", "!"}, {"L", "!"},
                        {"j", "!"},  {"z", "!"}, {"Z", "!"}, {"t", "!"}, {"", ""}};

/** The macros of <inttypes.h>, as "PRId64", behind their letter: xgettext writes them in angle brackets. */
constexpr struct
{
    std::string_view theirs, ours;
} macroWidths[] = {{"16", "h"}, {"32", ""}, {"64", "!"}, {"MAX", "!"}, {"PTR", "!"}};

/** A name of C, with the modifiers that it may have, and ours. */
constexpr struct
{
    char theirs;
    std::string_view modifiers; // "i": those of integers
    std::string_view ours;
} names[] = {{'d', "i", "d"}, {'i', "i", "d"}, {'u', "i", "u"}, {'o', "i", "o"}, {'x', "i", "x"},
             {'X', "i", "X"}, {'f', "l", "f"}, {'F', "l", "f"}, {'c', "", "c"},  {'s', "", "s"}};

class Conversion
{
public:
    /** @param text  from the percent sign on. */
    explicit Conversion(std::string_view text) : m_rest(text.substr(1))
    {
        const std::string_view whole = m_rest;
        const std::string_view number = take(digits);
        if (!number.empty() && takeWord("$"))
            m_position = number;
        else
            m_rest = whole;
        std::string_view flags = take("-+ #0'I");
        m_isGrouped = flags.find('\'') != std::string_view::npos;
        m_isKnown = flags.find('I') == std::string_view::npos;
        std::copy_if(flags.begin(), flags.end(), std::back_inserter(m_layout), [](char flag) { return flag != '\''; });
        takeSize();
        if (takeWord("."))
        {
            m_layout += '.';
            takeSize();
        }
        takeName();
        m_length = text.size() - m_rest.size();
    }

    size_t length() const { return m_length; }
    const std::string &position() const { return m_position; }

    /** Ours with a position; nothing where there is no equal. */
    std::optional<std::string> with(const std::string &position) const
    {
        if (!m_isKnown)
            return std::nullopt;
        return "%" + m_layout + m_name + "[" + position + "]";
    }

private:
    std::string_view take(std::string_view characters)
    {
        const size_t end = std::min(m_rest.find_first_not_of(characters), m_rest.size());
        const std::string_view taken = m_rest.substr(0, end);
        m_rest.remove_prefix(end);
        return taken;
    }

    bool takeWord(std::string_view word)
    {
        if (m_rest.substr(0, word.size()) != word)
            return false;
        m_rest.remove_prefix(word.size());
        return true;
    }

    /** A width or a precision. One whose argument has a position has no equal: ours stands in front of the value. */
    void takeSize()
    {
        if (!takeWord("*"))
            m_layout += take(digits);
        else
        {
            m_layout += '*';
            const bool hasPosition = !take(digits).empty() && takeWord("$");
            m_isKnown = m_isKnown && !hasPosition && m_position.empty();
        }
    }

    void takeName()
    {
        if (takeWord("<PRI"))
        {
            const std::string_view macro = m_rest.substr(0, m_rest.find('>'));
            const bool isClosed = macro.size() < m_rest.size();
            m_rest.remove_prefix(std::min(macro.size() + 1, m_rest.size()));
            const auto *const width =
                std::find_if(std::begin(macroWidths), std::end(macroWidths), [macro](const auto &row) {
                    return macro.substr(std::min<size_t>(macro.size(), 1)) == row.theirs;
                });
            const bool isInteger =
                !macro.empty() && std::string_view("diuoxX").find(macro[0]) != std::string_view::npos;
            if (!isClosed || width == std::end(macroWidths) || !isInteger)
                m_isKnown = false;
            else
                setName(macro[0], "", width->ours);
            return;
        }
        const std::string_view modifier = take("hlqLjzZt");
        const char name = m_rest.empty() ? '\0' : m_rest[0];
        m_rest.remove_prefix(std::min<size_t>(1, m_rest.size()));
        while (!m_rest.empty() && check::isContinuation(m_rest[0])) // of a character of UTF-8
            m_rest.remove_prefix(1);
        const auto *const ours = std::find_if(std::begin(integerModifiers), std::end(integerModifiers),
                                              [modifier](const auto &row) { return row.theirs == modifier; });
        setName(name, modifier, ours != std::end(integerModifiers) ? ours->ours : "?");
    }

    void setName(char name, std::string_view modifier, std::string_view ofInteger)
    {
        for (const auto &row : names)
            if (row.theirs == name)
            {
                const bool isInteger = row.modifiers == "i";
                const bool isLong = name != 'c' && name != 's' && modifier == "L";
                const bool fits =
                    isInteger ? ofInteger != "?" : modifier.empty() || modifier == row.modifiers || isLong;
                const bool canGroup = name == 'd' || name == 'i' || name == 'f' || name == 'F';
                m_isKnown = m_isKnown && fits && (!m_isGrouped || canGroup);
                m_name = isInteger ? ofInteger : isLong ? "L" : "";
                m_name += !m_isGrouped ? row.ours : isInteger ? "number" : "decimal";
                return;
            }
        m_isKnown = false;
    }

    std::string_view m_rest;
    std::string m_position;
    std::string m_layout; // flags, width and precision
    std::string m_name;   // with its modifier
    size_t m_length = 0;
    bool m_isGrouped = false;
    bool m_isKnown = true;
};

} // namespace

FromPrintf fromPrintf(std::string_view text)
{
    FromPrintf result;
    size_t count = 0;
    for (size_t at = 0; at < text.size();)
    {
        const size_t next = std::min(text.find('%', at), text.size());
        result.message += text.substr(at, next - at);
        at = next;
        if (text.substr(at, 2) == "%%")
        {
            result.message += "%%";
            at += 2;
        }
        else if (at < text.size())
        {
            const Conversion conversion(text.substr(at));
            ++count;
            const std::string position =
                conversion.position().empty() ? std::to_string(count) : std::string(conversion.position());
            const std::string_view written = text.substr(at, conversion.length());
            if (const auto ours = conversion.with(position))
                result.message += *ours;
            else
            {
                result.refused.emplace_back(written);
                result.message += written;
            }
            at += conversion.length();
        }
    }
    return result;
}

} // namespace tool::bilingual
