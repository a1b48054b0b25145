/** Message files as the tests of the checker write them. */
#ifndef KELTO_TESTS_CHECK_DOCUMENT_H
#define KELTO_TESTS_CHECK_DOCUMENT_H

#include <string>

/** A file whose body holds these lines, of which the first is line 2. */
inline std::string document(const std::string &body)
{
    return "<xliff><file source-language=\"de\" product-name=\"S\" product-version=\"1\"><header/><body>\n" + body +
           "\n</body></file></xliff>\n";
}

/** One message, number 1, whose text begins in line 2, column 1. */
inline std::string unit(const std::string &text)
{
    return document("<trans-unit id='1'><source>\n" + text + "</source></trans-unit>");
}

#endif
