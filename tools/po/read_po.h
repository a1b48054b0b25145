/** From a PO file to the document. */
#ifndef KELTO_TOOLS_PO_READ_PO_H
#define KELTO_TOOLS_PO_READ_PO_H

#include <string>

namespace po
{

/**
 * Reads standard input, which can be read twice, and prints the document.
 * @param input  what stands there.
 * @return the exit status.
 */
int readPo(const std::string &input);

} // namespace po

#endif
