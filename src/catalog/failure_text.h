/**
 * Why a format is not used for a call, as exactly as it can be told: what of its syntax is wrong, which argument is of
 * another kind, or which conversion cannot write which value.
 */
#ifndef KELTO_CATALOG_FAILURE_TEXT_H
#define KELTO_CATALOG_FAILURE_TEXT_H

#include "catalog/report.h"

namespace kelto
{

/** What was asked of a format. */
struct FailedCall
{
    const char *text; /**< the format; null where there is none */
    int result;
    const KTCatalogOptions &options; /**< as readOptions() gives them */
    const KTArgument *arguments;
    size_t count;
    const Language *language; /**< whose message it is, or null for a format that is none */
    uint32_t number;          /**< of the message */
    formTable *sourceTable;   /**< the conversions of a format that is none */

    formTable *conversions() const noexcept { return language != nullptr ? language->conversions() : sourceTable; }
};

/** Says why. */
void sayWhy(Sentence &sentence, const FailedCall &call) noexcept;

/** Says that a text does not encode the argument of a slot, from 0, as the text in the source does. */
void sayLostEncoding(Sentence &sentence, const char *text, uint32_t slot) noexcept;

} // namespace kelto

#endif
