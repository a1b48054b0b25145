/** What two prepared formats take, one beside the other. */
#ifndef KELTO_FORMAT_COMPARE_FORMATS_H
#define KELTO_FORMAT_COMPARE_FORMATS_H

#include "kelto.h"

namespace kelto
{

/** The first slot in which a format differs from the reference; its rule is KT_RULE_NONE where there is none. */
KTProblem compareSlots(const KTPreparedFormat &format, const KTPreparedFormat &reference) noexcept;

/** Notes where the conversion specification of the problem's position stands in a format that was accepted. */
void findPlace(const char *format, KTProblem &problem) noexcept;

} // namespace kelto

#endif
