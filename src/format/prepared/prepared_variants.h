/**
 * A prepared format that chooses: a selector whose row consists of prepared formats, which may choose themselves. The
 * first format owns all those to which it leads, and frees them.
 */
#ifndef KELTO_FORMAT_PREPARED_PREPARED_VARIANTS_H
#define KELTO_FORMAT_PREPARED_PREPARED_VARIANTS_H

#include "format/prepared/prepared_format.h"
#include "format/variants/selector.h"

namespace kelto
{

/** What a selector has in place of text; it stands behind the head, in the same block. */
struct PreparedVariants
{
    Selector selector;
    LanguageRules rules;
    uint32_t slotCount;           /**< of every variant */
    uint32_t rowLength;           /**< the places below */
    const KTPreparedFormat **row; /**< null where there is no variant */
    KTPreparedFormat **owned;     /**< of the first selector all others that it leads to; else null */
    uint32_t ownedCount;
};

/** A selector without its row filled in; null when memory ran out. */
PreparedOwner makeVariants(const Selector &selector, LanguageRules rules, uint32_t rowLength) noexcept;

/**
 * Follows selectors to the format that a call is for.
 * @param result  out: 0; KT_ERR_INVALID_PARAMETER, KT_ERR_INVALID_MSG_ID, and the format is null.
 */
const KTPreparedFormat *chooseVariant(const KTPreparedFormat &prepared, const KTArgument *arguments, size_t count,
                                      int &result) noexcept;

} // namespace kelto

#endif
