// The part without exceptions of the program in loud.cpp. It calls what that calls, so that the linker finds each
// inline function here first.
#include <kelto.hpp>

bool failsQuietly()
{
    std::error_code format, text, catalog, table;
    const kelto::prepared_format malformed("%d", format), prepared("%d[1]", table);
    char line[9];
    prepared.format_to(line, text, prepared.format(text, "x"));
    kelto::catalog::load("missing.xlf", catalog);
    kelto::form_table::builder().add<int>("9x", [](int) { return ""; }).build(table);
    return format && text && catalog && table;
}
