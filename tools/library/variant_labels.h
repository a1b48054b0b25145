/**
 * Which messages of a file are selected by which, as people write it: 12[few] is the one that message 12 has for few.
 */
#ifndef KELTO_TOOLS_VARIANT_LABELS_H
#define KELTO_TOOLS_VARIANT_LABELS_H

#include "library/message_file.h"
#include "library/selector.h"

#include <map>
#include <string>
#include <vector>

namespace tool
{

class VariantLabels
{
public:
    explicit VariantLabels(const MessageFile &file);

    /** "12[few]", or several with blanks between them; empty of a message that no other selects. */
    std::string of(unsigned id) const;

    /** The same with the first numbers that take the message in a language: "12[few 2-4, 22-24, ...]". */
    std::string withNumbers(unsigned id, const std::string &language) const;

private:
    struct Place
    {
        unsigned selector;
        unsigned place;
    };

    template <typename Write> std::string write(unsigned id, Write write) const;

    const MessageFile &m_file;
    std::map<unsigned, Selector> m_selectors;
    std::map<unsigned, std::vector<Place>> m_places; // by message
};

} // namespace tool

#endif
