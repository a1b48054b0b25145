/**
 * Makes a Catalog of messages that stand in a file which is no message file, so that they are checked like any others,
 * and told at their place in it.
 */
#ifndef KELTO_TOOLS_CHECK_CATALOG_BUILDER_H
#define KELTO_TOOLS_CHECK_CATALOG_BUILDER_H

#include "check/catalog.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool::check
{

class CatalogBuilder
{
public:
    /** @param body  the place of findings on the catalog as a whole. */
    CatalogBuilder(SourceText source, Range body);

    void setLanguage(const std::string &language, Range place);
    void addFinding(Finding finding);

    /**
     * Adds a message; its place in the catalog's texts is set here.
     * @param rawText  before the escapes are resolved.
     * @param pieces   of that text, from its beginning to its end, without gaps.
     */
    void add(Message message, std::string_view rawText, const std::vector<Piece> &pieces);

    /** Adds a message of another catalog, whose file is the same, under a number. */
    void addCopy(const Catalog &catalog, const Message &message, int id);

    /** The catalog, its messages in the order of their numbers. None counts as missing. */
    Catalog take();

    SourceText &source() { return m_catalog.source(); }

private:
    Catalog m_catalog;
};

} // namespace tool::check

#endif
