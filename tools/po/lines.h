/** The lines of a PO file at which the translations stand. libgettextpo tells the line of no entry. */
#ifndef KELTO_TOOLS_PO_LINES_H
#define KELTO_TOOLS_PO_LINES_H

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace po
{

class Lines
{
public:
    explicit Lines(std::string_view file);

    /**
     * The line of an entry's "msgstr", or of its form.
     * @return 0 where nobody knows.
     */
    size_t of(const char *context, const char *id, int form) const;

private:
    void take(std::string_view text, size_t line);
    void addString(std::string_view written);

    std::map<std::pair<std::string, std::string>, std::vector<size_t>> m_lines; // by context and msgid
    std::string m_context, m_id;
    std::string *m_open = nullptr; // of these, the one that goes on
    bool m_hasText = false;        // its msgstr has begun
};

} // namespace po

#endif
