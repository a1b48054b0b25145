#include "format/formatters/tags.h"

const UCS2 ucs2_space[] = u" ";
const UCS2 ucs2_slash[] = u"/";
const UCS2 ucs2_colon[] = u":";
const UCS2 ucs2_dot[] = u".";

const UCS2 date_tag_o[] = u"<date>";
const UCS2 date_tag_c[] = u"</date>";
const UCS2 year_tag_o[] = u"<year>";
const UCS2 year_tag_c[] = u"</year>";
const UCS2 month_tag_o[] = u"<month>";
const UCS2 month_tag_c[] = u"</month>";
const UCS2 day_tag_o[] = u"<day>";
const UCS2 day_tag_c[] = u"</day>";

const UCS2 time_tag_o[] = u"<time>";
const UCS2 time_tag_c[] = u"</time>";
const UCS2 hour_tag_o[] = u"<hour>";
const UCS2 hour_tag_c[] = u"</hour>";
const UCS2 minute_tag_o[] = u"<minute>";
const UCS2 minute_tag_c[] = u"</minute>";
const UCS2 second_tag_o[] = u"<second>";
const UCS2 second_tag_c[] = u"</second>";

const UCS2 dn_tag_o[] = u"<DN>";
const UCS2 dn_tag_c[] = u"</DN>";
const UCS2 eid_tag_o[] = u"<EID>";
const UCS2 eid_tag_c[] = u"</EID>";
const UCS2 error_tag_o[] = u"<error>";
const UCS2 error_tag_c[] = u"</error>";
const UCS2 ip_tag_o[] = u"<IP>";
const UCS2 ip_tag_c[] = u"</IP>";
