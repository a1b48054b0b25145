// KTExplainFormat(): the verdict on a format with its reason, of which format calls hand out the result alone.

#include "format/grammar/format_string.h"
#include "format/grammar/problem_report.h"
#include "lifecycle/global_state.h"

#include <cstring>

int KTExplainFormat(const char *format, formTable *table, KTProblem *problem)
{
    const kelto::ProblemReport report(problem);
    if (!kelto::isStarted())
        return KT_ERR_NOT_INITIALIZED;
    if (format == nullptr || !report.isUsable())
        return KT_ERR_INVALID_PARAMETER;
    const size_t length = std::strlen(format);
    if (kelto::isTooLong(length))
        return KT_ERR_CONVERSION_INVALID_ARGUMENT;
    kelto::TagBlock<KTParameter> parameters;
    kelto::PercentPlaces<char> places;
    const kelto::FormatVerdict verdict = kelto::checkFormat(format, length, table, parameters, places);
    report.set(verdict);
    return verdict.result;
}
