/** From the document to a PO file. */
#ifndef KELTO_TOOLS_PO_WRITE_PO_H
#define KELTO_TOOLS_PO_WRITE_PO_H

#include <string>

namespace po
{

/**
 * Prints the PO file of a document.
 * @return the exit status.
 */
int writePo(const std::string &document);

} // namespace po

#endif
