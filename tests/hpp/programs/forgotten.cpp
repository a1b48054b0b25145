// A text in the source without its KELTO_DEFAULT, of which the compiler warns, and what looks like one and is none.
#include <kelto.hpp>

std::string forget(const kelto::catalog &c, const std::string &text)
{
#ifdef FORGOTTEN
    return c.format(1, "%s[1] has %d[2] pages", text, 7);
#else
    return c.format(1, "100%", text) + c.format(1, text, "%s[1]") + c.format(1, KELTO_DEFAULT("%s[1]"), "%s[1]");
#endif
}
