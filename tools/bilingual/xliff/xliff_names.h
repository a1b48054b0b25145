/** The words of XLIFF, 1.2 and 2.0: its elements, their attributes, and the states of translations. */
#ifndef KELTO_TOOLS_BILINGUAL_XLIFF_XLIFF_NAMES_H
#define KELTO_TOOLS_BILINGUAL_XLIFF_XLIFF_NAMES_H

#include "bilingual/entry.h"
#include "bilingual/xml.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tool::bilingual
{

/** The "subState" of a segment of 2.0 whose source has changed under its translation. */
constexpr const char *changedSubState = "kelto:changed";

enum class Element : uint8_t
{
    other,   // looked through
    skipped, // with all that it holds
    xliff,
    file,
    unit, // "trans-unit" of 1.2, "unit" of 2.0
    segment,
    ignorable, // the text between two segments
    source,
    target,
    placeholder, // "x" of 1.2, "ph" of 2.0
    marked,      // "mrk", which is looked through
    data,
    alternative, // another translation than the one of the unit
    finding,     // of kelto-po
    note,
    contextGroup,
    context
};

/** Name and attributes of a tag. The pointers are the parser's. */
class Tag
{
public:
    Tag(const char *name, const char **attributes);

    /** The name without its namespace. */
    const char *name() const { return m_name; }
    Element element() const;

    /** The value of an attribute without a namespace; null where there is none. */
    const char *find(const char *name) const;

    /** The same; empty where there is none. */
    std::string get(const char *name) const;

    /** The value of an attribute of our namespace; empty where there is none. */
    std::string ours(const char *name) const;

    /** The value of "xml:space"; empty where there is none. */
    std::string space() const;

    /** All attributes without a namespace, and those of XML. */
    Attributes attributes() const;

private:
    const char *m_name;
    const char **m_attributes;
};

/** The meaning of an attribute "state"; nothing where it has none for us. */
std::optional<State> meaningOf(const std::string &state);

} // namespace tool::bilingual

#endif
