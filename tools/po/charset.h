/** The charset of a PO file: its name in the header, and the conversion of the texts to UTF-8. */
#ifndef KELTO_TOOLS_PO_CHARSET_H
#define KELTO_TOOLS_PO_CHARSET_H

#include <iconv.h>
#include <string>

namespace po
{

/** The charset that a header names; "UTF-8" where it names none. */
std::string charsetOf(const char *header);

class Charset
{
public:
    explicit Charset(const std::string &name);
    ~Charset();
    Charset(const Charset &) = delete;
    Charset &operator=(const Charset &) = delete;

    bool isKnown() const { return m_converter != reinterpret_cast<iconv_t>(-1); }

    /** False where the bytes are no text of the charset. */
    bool convert(const char *text, std::string &utf8) const;

private:
    iconv_t m_converter;
};

} // namespace po

#endif
