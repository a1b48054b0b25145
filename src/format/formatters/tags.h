/**
 * The constant UCS-2 texts that formatters write: one-character separators, and the tags around a tagged value. All are
 * exported, zero-terminated arrays.
 */
#ifndef KELTO_FORMAT_FORMATTERS_TAGS_H
#define KELTO_FORMAT_FORMATTERS_TAGS_H

#include "kelto.h"

extern "C" {
#pragma GCC visibility push(default)

extern const UCS2 ucs2_space[], ucs2_slash[], ucs2_colon[], ucs2_dot[];

extern const UCS2 date_tag_o[], date_tag_c[], year_tag_o[], year_tag_c[], month_tag_o[], month_tag_c[], day_tag_o[],
    day_tag_c[];
extern const UCS2 time_tag_o[], time_tag_c[], hour_tag_o[], hour_tag_c[], minute_tag_o[], minute_tag_c[],
    second_tag_o[], second_tag_c[];
extern const UCS2 dn_tag_o[], dn_tag_c[], eid_tag_o[], eid_tag_c[], error_tag_o[], error_tag_c[];
/** No formatter writes this: an address is formatted as nothing. */
extern const UCS2 ip_tag_o[], ip_tag_c[];

#pragma GCC visibility pop
}

#endif
