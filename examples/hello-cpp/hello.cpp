// Greets a user in the language that he wants, or in his own: hello [LANGUAGES]
#include <iostream>
#include <kelto.hpp>

int main(int argc, char **argv)
{
    kelto::catalog_options options;
    options.languages = argc > 1 ? argv[1] : nullptr; // as "de_AT:fr"; null: as his environment says
    const kelto::catalog messages = kelto::catalog::find("examples", CATALOGS, options);

    // The text here is what is printed where no catalog has the message, or its translation does not fit.
    std::cout << messages.format(40, KELTO_DEFAULT("Hello %s[1], you have %u[2] new messages."), "Ada", 7U) << '\n';
}
