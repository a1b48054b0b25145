/**
 * Why a format cannot be used for a call, as exactly as possible: what is wrong with its syntax, which argument is of
 * another kind, or which conversion cannot write which value.
 */
#ifndef KELTO_CATALOG_FAILURE_TEXT_H
#define KELTO_CATALOG_FAILURE_TEXT_H

#include "catalog/report.h"

namespace kelto
{

/** A call for which a format is of no use. */
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

/** Says why the format is of no use for the call. */
void sayWhy(Sentence &sentence, const FailedCall &call) noexcept;

/**
 * Says that a translation does not encode an argument which the text in the source encodes. @param slot  of the
 * argument, from 0.
 */
void sayLostEncoding(Sentence &sentence, const char *text, uint32_t slot) noexcept;

} // namespace kelto

#endif
