// "ago": a number of seconds, in the largest unit that it fills.

#include "conversions.h"
#include "language.h"

namespace kelto::locale
{

namespace
{

struct TimeUnit
{
    uint64_t seconds;
    URelativeDateTimeUnit unit;
};

constexpr uint64_t day = 86400;
constexpr TimeUnit timeUnits[] = {
    {365 * day, UDAT_REL_UNIT_YEAR}, {30 * day, UDAT_REL_UNIT_MONTH}, {7 * day, UDAT_REL_UNIT_WEEK},
    {day, UDAT_REL_UNIT_DAY},        {3600, UDAT_REL_UNIT_HOUR},      {60, UDAT_REL_UNIT_MINUTE},
    {1, UDAT_REL_UNIT_SECOND},
};

int openFormatter(const char *locale, Handle<URelativeDateTimeFormatter, ureldatefmt_close> &made)
{
    UErrorCode status = U_ZERO_ERROR;
    made.reset(ureldatefmt_open(locale, nullptr, UDAT_STYLE_LONG, UDISPCTX_CAPITALIZATION_NONE, &status));
    return resultOf(status);
}

} // namespace

int writeAgo(KTLLanguage &language, const Kind & /*kind*/, const Spec &spec, const Value *values, Output &output)
{
    const URelativeDateTimeFormatter *formatter = nullptr;
    const int result = language.ago.get(formatter, [&](auto &made) { return openFormatter(language.name.icu, made); });
    if (result != 0)
        return result;
    const auto seconds = static_cast<int64_t>(values[0].integer);
    const uint64_t distance = seconds < 0 ? -values[0].integer : values[0].integer;
    const TimeUnit *unit = timeUnits;
    while (unit->seconds > distance && unit->seconds > 1)
        ++unit;
    const uint64_t units = distance / unit->seconds; // whole ones
    const auto count = static_cast<double>(units);
    if (const int asked = askForMemory(false))
        return asked;
    IcuText text;
    const int failure = text.make([&](UChar *out, int32_t capacity, UErrorCode *status) {
        // "now" for none at all; otherwise numbers, since "yesterday" would be a matter of midnight.
        const auto write = distance == 0 ? ureldatefmt_format : ureldatefmt_formatNumeric;
        return write(formatter, seconds < 0 ? -count : count, unit->unit, out, capacity, status);
    });
    return failure != 0 ? failure : output.writePadded(spec, {text.units(), text.length()});
}

} // namespace kelto::locale
