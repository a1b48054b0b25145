/** Compares the arguments that two prepared formats take. */
#ifndef KELTO_FORMAT_PREPARED_COMPARE_FORMATS_H
#define KELTO_FORMAT_PREPARED_COMPARE_FORMATS_H

#include "kelto.h"

namespace kelto
{

/** The first slot in which a format differs from the reference; its rule is KT_RULE_NONE where there is none. */
KTProblem compareSlots(const KTPreparedFormat &format, const KTPreparedFormat &reference) noexcept;

/** Stores in a problem where the conversion specification of its position stands in a correct format. */
void findPlace(const char *format, KTProblem &problem) noexcept;

} // namespace kelto

#endif
