/**
 * The rules that look at messages: each by itself, and each beside the message of the same number in a reference.
 */
#ifndef KELTO_TOOLS_CHECK_CHECKS_H
#define KELTO_TOOLS_CHECK_CHECKS_H

#include "check/catalog.h"
#include "check/formats.h"
#include "check/variants.h"

#include <vector>

namespace tool::check
{

/** A catalog that others are compared with. The formats of its messages are parsed once for all of them. */
class Reference
{
public:
    /** @param table  null where messages are no format strings. */
    Reference(const Catalog &catalog, formTable *table);

    const Catalog &catalog() const { return m_catalog; }
    const Format &formatOf(const Message &message) const
    {
        return m_formats[static_cast<size_t>(&message - m_catalog.messages().data())];
    }

    const Variants &variants() const { return m_variants; }

private:
    const Catalog &m_catalog;
    std::vector<Format> m_formats;
    Variants m_variants;
};

/**
 * What is wrong with the messages of a catalog.
 * @param table      the conversions; null where messages are no format strings.
 * @param reference  what to compare with, or null.
 */
Findings checkMessages(const Catalog &catalog, formTable *table, const Reference *reference);

} // namespace tool::check

#endif
