/** The findings about a file, those of libgettextpo and our own, collected for the end of the document. */
#ifndef KELTO_TOOLS_PO_FINDINGS_H
#define KELTO_TOOLS_PO_FINDINGS_H

#include <cstddef>
#include <gettext-po.h>
#include <string>
#include <vector>

namespace po
{

struct Finding
{
    size_t line; // none of the file where it has none
    std::string text;
    const char *name = ""; // of one of ours, which kelto says in the user's language
};

/** All that were reported so far. */
extern std::vector<Finding> findings;

/** The functions of libgettextpo's handler. A fatal error ends the process. */
extern const po_xerror_handler handler;

} // namespace po

#endif
