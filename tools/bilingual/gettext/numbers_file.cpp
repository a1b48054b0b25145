#include "bilingual/gettext/numbers_file.h"

#include "bilingual/entry.h"
#include "bilingual/message_parts.h"
#include "check/telling/finding.h"
#include "failure.h"
#include "io/input.h"
#include "io/terminal.h"
#include "library/selector.h"
#include "text.h"

#include <algorithm>
#include <array>
#include <climits>
#include <fmt/core.h>
#include <set>

namespace tool::bilingual
{
namespace
{

/** The fields between the tabs of a line, of which there are four; else nothing. */
std::optional<std::array<std::string_view, 4>> fieldsOf(std::string_view line)
{
    std::array<std::string_view, 4> fields;
    for (size_t i = 0; i < fields.size(); ++i)
    {
        const size_t end = std::min(line.find('\t'), line.size());
        fields.at(i) = line.substr(0, end);
        const bool isLast = i + 1 == fields.size();
        if (isLast != (end == line.size()))
            return std::nullopt;
        line.remove_prefix(isLast ? end : end + 1);
    }
    return fields;
}

/** A number as a key has it; 0 where a text is none. */
int numberIn(std::string_view text)
{
    const std::optional<Key> key = readKey(text);
    return key && key->label.empty() ? key->number : 0;
}

} // namespace

NumbersFile::NumbersFile(const std::string &path)
{
    const std::string bytes = readWhole(path);
    size_t number = 0;
    std::set<int> taken;
    for (size_t at = 0; at < bytes.size();)
    {
        const size_t end = std::min(bytes.find('\n', at), bytes.size());
        std::string_view line = std::string_view(bytes).substr(at, end - at);
        at = end + 1;
        ++number;
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (line.empty() || line[0] == '#')
            continue;
        const auto fail = [&](const Phrase &why) {
            throw Failure(fmt::format("{}:{}: {}", terminal().showBytes(inputName(path)), number, say(why)));
        };
        const auto fields = fieldsOf(line);
        const bool hasRow = fields && (*fields)[1] != "-";
        const AssignedNumber assigned{fields ? numberIn((*fields)[0]) : 0, hasRow ? numberIn((*fields)[1]) : 0};
        if (assigned.id == 0 || (hasRow && (assigned.row == 0 || assigned.row > INT_MAX - mostVariants)))
            fail({Text::noNumbersLine});
        if (!taken.insert(assigned.id).second)
            fail({Text::numberRepeated, {static_cast<unsigned>(assigned.id)}});
        for (int place = 0; hasRow && place < mostVariants; ++place)
            if (!taken.insert(assigned.row + place).second)
                fail({Text::numberRepeated, {static_cast<unsigned>(assigned.row + place)}});
        if (!m_numbers.emplace(Key{unescaped((*fields)[2]), unescaped((*fields)[3])}, assigned).second)
            fail({Text::textNumberedTwice});
        reserve(assigned);
    }
}

void NumbersFile::reserve(const AssignedNumber &number)
{
    m_next = std::max(m_next, number.id + (number.id < INT_MAX ? 1 : 0));
    if (number.row > 0)
        m_next = std::max(m_next, number.row + mostVariants);
}

const AssignedNumber *NumbersFile::find(const std::string &context, const std::string &text) const
{
    const auto found = m_numbers.find({context, text});
    return found != m_numbers.end() ? &found->second : nullptr;
}

std::optional<AssignedNumber> NumbersFile::assign(const std::string &context, const std::string &text, bool hasForms)
{
    AssignedNumber &number = m_numbers[{context, text}];
    if (m_next >= INT_MAX - 2 * mostVariants)
        return number.id > 0 && (number.row > 0 || !hasForms) ? std::optional(number) : std::nullopt;
    if (number.id == 0)
    {
        number.id = m_next;
        ++m_fresh;
    }
    reserve(number);
    if (hasForms && number.row == 0)
        number.row = m_next;
    reserve(number);
    return number;
}

std::string NumbersFile::bytes() const
{
    std::map<int, std::string> lines;
    for (const auto &[key, number] : m_numbers)
        if (number.id > 0)
            lines[number.id] =
                fmt::format("{}\t{}\t{}\t{}\n", number.id, number.row > 0 ? std::to_string(number.row) : "-",
                            escaped(key.first), escaped(key.second));
    std::string bytes = "# number, row of its forms, context, text: kept by kelto import --assign\n";
    for (const auto &[id, line] : lines)
        bytes += line;
    return bytes;
}

} // namespace tool::bilingual
