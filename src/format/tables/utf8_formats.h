/**
 * The functions that conversions of the caller's own have for UTF-8 beside the one in their record: registered by
 * KTRegisterUTF8Format() under the address of the record, and looked up when a format is prepared. They outlive the
 * library's start and stop, as the records do.
 */
#ifndef KELTO_FORMAT_TABLES_UTF8_FORMATS_H
#define KELTO_FORMAT_TABLES_UTF8_FORMATS_H

#include "kelto.h"

namespace kelto
{

/** The function registered for a record, or null. */
KTUTF8FormatFunction findUTF8Format(const KTFormatter *formatter) noexcept;

} // namespace kelto

#endif
