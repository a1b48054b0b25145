// Lines that must not compile, each with what the compiler says about it; see misuse.py.
#include <kelto.hpp>

struct Unknown
{
};

void misuse(const kelto::catalog &c, std::size_t size, wchar_t wide, void *pointer, const char *text)
{
    c.format(1, Unknown());                             // one: a value of this type cannot be formatted
    c.format(1, pointer);                               // a value of this type cannot be formatted
    c.format(1, nullptr);                               // one: a value of this type cannot be formatted
    c.format(true, 1);                                  // a bool is no message number
    c.format(1, wide);                                  // a value of this type cannot be formatted
    c.format(1, KELTO_DEFAULT(text), "a");              // one: takes a literal
    c.format(1, KELTO_DEFAULT("%d[1] files"), size);    // takes another type than the argument
    c.format(1, KELTO_DEFAULT("%s[2]: %d[1]"), "a", 1); // takes another type than the argument
    c.format(1, KELTO_DEFAULT("%hd[1]"), 1);            // takes another type than the argument
    c.format(1, KELTO_DEFAULT("%*d[1]"), 1L, 1);        // takes another type than the argument
    c.format(1, KELTO_DEFAULT("%f[1]"), 1.5L);          // takes another type than the argument
    c.format(1, KELTO_DEFAULT("%d[1] %s[2]"), 1);       // takes more arguments than the call passes
    c.format(1, KELTO_DEFAULT("none"), 1);              // passes more arguments than this text takes
    c.format(1, KELTO_DEFAULT("%d"), 1);                // lacks its position
    c.format(1, KELTO_DEFAULT("100%"));                 // lacks its position
    c.format(1, KELTO_DEFAULT("%d[0]"), 1);             // a position of this text is malformed
    c.format(1, KELTO_DEFAULT("%d[1] %d[1]"), 1, 2);    // a position is used twice
    c.format(1, KELTO_DEFAULT("%d[1] %d[3]"), 1, 2);    // one is left out
    c.format(1, KELTO_DEFAULT("%2147483648d[1]"), 1);   // is too large
    c.format(1, KELTO_DEFAULT("%price[1]"), 1);         // for one of your own pass kelto::unchecked
    c.format(1, KELTO_DEFAULT("%money[1]"), 1);         // more arguments than the call passes
    c.format_to(std::back_inserter(*new std::string), 1, KELTO_DEFAULT("%c[1]"), 1); // takes another type
    c.format(1, KELTO_PLURAL(1, "%s[1] file", "%s[1] files"), "a"); // one: by an argument that is no integer
    c.format(1, KELTO_PLURAL(1, "%s[1] file", "%d[1] files"), 1);   // takes another type than the argument
    c.format(1, KELTO_PLURAL(1, "%d[1] file", "%s[1] files"), 1);   // takes another type than the argument
    c.format(1, KELTO_PLURAL(2, "%d[1] file", "%d[1] files"), 1);   // one: that the call does not pass
    c.format(1, KELTO_DEFAULT("%d[1]"), 1U);                        // one: this one is unsigned
    c.format(1, KELTO_DEFAULT("%!u[1]"), 1);                        // one: this one is signed
    c.format_to(const_cast<char *>(text), 1, 2);                    // one: does not tell how much room there is
    c.format_to(std::back_inserter(*new std::u16string), 1);        // one: takes larger units
    c.format_to_n(std::back_inserter(*new std::wstring), 9, 1);     // takes larger units
    kelto::form_table::builder b;
    b.add<Unknown>("own", [](const Unknown &) { return ""; }); // derives from kelto::by_identity
    b.add<int>("own", [] { return ""; });                      // takes its values
    b.with_encoder([](int) { return ""; });                    // takes a std::string_view
    kelto::catalog copy = c;                                   // deleted
}
