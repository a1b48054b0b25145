/**
 * ICU as these tests see it: ucnv_open() and ucnv_toUChars() are this program's own and fail on request, with a status
 * that no input could bring about; otherwise they are ICU's.
 */
#ifndef KELTO_TESTS_STRCONV_ICU_FAULTS_H
#define KELTO_TESTS_STRCONV_ICU_FAULTS_H

#include <unicode/utypes.h>

struct IcuFaults
{
    int openFails = 0;    /**< the call of ucnv_open() that fails, counted down to 0; 0 for none */
    int convertFails = 0; /**< likewise of ucnv_toUChars() */
};

constexpr UErrorCode injectedStatus = U_INVALID_TABLE_FORMAT;

/** What fails from now on; a test leaves no request behind. */
extern IcuFaults icuFaults;

#endif
