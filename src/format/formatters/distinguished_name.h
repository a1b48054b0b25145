/**
 * Distinguished names: the formatter of "DND" and "DNS". A name is read in whichever of three notations its first
 * delimiter tells, and written leaf first with dots or root first with slashes. Components are found one after the other
 * and put in their place at once, from the front or from the back, so a name of any length needs no memory.
 */
#ifndef KELTO_FORMAT_FORMATTERS_DISTINGUISHED_NAME_H
#define KELTO_FORMAT_FORMATTERS_DISTINGUISHED_NAME_H

#include "kelto.h"

extern "C" {
#pragma GCC visibility push(default)

/**
 * Converts a name.
 * @param kind  CONV_DND: "alice.staff.corp"; CONV_DNS: "corp/staff/alice".
 * @param out   room for the name's length + 2 units; terminated; not the name itself.
 * @return 0.
 */
int _formatDN(const UCS2 *name, Flag_t kind, UCS2 *out);

#pragma GCC visibility pop
}

#endif
