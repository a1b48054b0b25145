/**
 * Which numbers the texts of a program that used gettext have: a file that is kept beside them, so that a text has the
 * same number for ever, whatever comes and goes around it. It has a line for each: the number, the first number of its
 * row ("-" where it has no forms), its context and its text, with tabs between them.
 */
#ifndef KELTO_TOOLS_BILINGUAL_GETTEXT_NUMBERS_FILE_H
#define KELTO_TOOLS_BILINGUAL_GETTEXT_NUMBERS_FILE_H

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tool::bilingual
{

struct AssignedNumber
{
    int id = 0;
    int row = 0; // of its forms; 0 where it has none
};

class NumbersFile
{
public:
    NumbersFile() = default;

    /** Reads it; a Failure names the line where it is none. */
    explicit NumbersFile(const std::string &path);

    /** Null where nobody has numbered it. */
    const AssignedNumber *find(const std::string &context, const std::string &text) const;

    /** The number of a text, a new one where it has none, or no row and needs one; nothing where all are taken. */
    std::optional<AssignedNumber> assign(const std::string &context, const std::string &text, bool hasForms);

    /** How many new numbers were given. */
    size_t fresh() const { return m_fresh; }

    std::string bytes() const;

private:
    using Key = std::pair<std::string, std::string>;

    void reserve(const AssignedNumber &number);

    std::map<Key, AssignedNumber> m_numbers;
    int m_next = 1;
    size_t m_fresh = 0;
};

} // namespace tool::bilingual

#endif
