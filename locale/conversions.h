/**
 * The conversions of the add-on, a row for each, and the two functions that all their records have: one takes slots and
 * writes UCS-2, the other takes typed arguments and writes UTF-8. Both read the values and call the row's own function,
 * which knows of neither.
 */
#ifndef KELTO_LOCALE_CONVERSIONS_H
#define KELTO_LOCALE_CONVERSIONS_H

#include "output.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

struct KTLLanguage;

namespace kelto::locale
{

/** One value of a conversion, in the member that its argument type asks for. */
union Value
{
    uint64_t integer;      /**< sign-extended under KT_ARG_SIGNED */
    const void *number;    /**< a double, with FLAG_L a long double */
    std::string_view text; /**< UTF-8, perhaps malformed, without a zero */

    Value() noexcept {} // whoever reads the argument fills it in
};

struct Kind
{
    const char *name;
    int argCount;
    const int *argTypes;
    int (*write)(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output);
    int variant; /**< which of the conversions that share a function */
};

/** By their names, so that the first letters index them. */
constexpr size_t kindCount = 12;
extern const Kind kinds[kindCount];
constexpr size_t longestConversionName = 8;

/** A KTFormatFunction and a KTUTF8FormatFunction. */
int formatUnits(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
                void **argSlot, unsigned long *sizeInOut, UCS2 *out) noexcept;
int formatUTF8(const char *convName, int width, int precision, int flags, KTEncoder passThru1, void *passThru2,
               const KTArgument *arguments, size_t *sizeInOut, char *out) noexcept;

/* What writes them, by file. */
int writeInteger(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output);
int writeDecimal(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output);
int writeMoney(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output);
int writeUnit(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output);
int writeDate(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output);
int writeAgo(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output);
int writeList(KTLLanguage &language, const Kind &kind, const Spec &spec, const Value *values, Output &output);

} // namespace kelto::locale

#endif
