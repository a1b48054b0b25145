/** Why a file is not well-formed, in words of somebody who writes messages: what to write in place of a bare '&'. */
#ifndef KELTO_TOOLS_CHECK_READING_XML_FAULT_H
#define KELTO_TOOLS_CHECK_READING_XML_FAULT_H

#include "check/texts/source_text.h"
#include "text.h"

#include <expat.h>

namespace tool::check
{

struct XmlFault
{
    Range place;
    Shown why;
};

/** @param index  the byte at which the parser stopped. */
XmlFault explainXmlFault(const SourceText &source, XML_Error error, size_t index);

} // namespace tool::check

#endif
