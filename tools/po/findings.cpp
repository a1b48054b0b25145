#include "po/findings.h"

#include <cstdio>
#include <cstdlib>

namespace po
{
namespace
{

void report(int severity, po_message_t, const char *, size_t line, size_t, int, const char *text)
{
    if (severity != PO_SEVERITY_WARNING)
        findings.push_back({line, text, ""});
    if (severity == PO_SEVERITY_FATAL_ERROR)
    {
        std::fprintf(stderr, "kelto-po: %s\n", text);
        std::exit(EXIT_FAILURE);
    }
}

void reportTwo(int severity, po_message_t one, const char *file, size_t line, size_t column, int isLong,
               const char *text, po_message_t, const char *, size_t, size_t, int, const char *)
{
    report(severity, one, file, line, column, isLong, text);
}

} // namespace

std::vector<Finding> findings;

const po_xerror_handler handler = {report, reportTwo};

} // namespace po
