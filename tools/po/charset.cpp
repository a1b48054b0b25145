#include "po/charset.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <gettext-po.h>
#include <memory>
#include <string_view>

namespace po
{

std::string charsetOf(const char *header)
{
    const std::unique_ptr<char, void (*)(void *)> field(po_header_field(header, "Content-Type"), std::free);
    const std::string_view type = field != nullptr ? field.get() : "";
    constexpr std::string_view name = "charset=";
    constexpr size_t longest = 40; // a longer name is none
    const size_t at = type.find(name);
    if (at == std::string_view::npos)
        return "UTF-8";
    const std::string charset(type.substr(at + name.size(), type.find_first_of("; \t", at) - at - name.size()));
    return charset.empty() || charset == "CHARSET" || charset.size() > longest ? "UTF-8" : charset;
}

Charset::Charset(const std::string &name) : m_converter(iconv_open("UTF-8", name.c_str()))
{
}

Charset::~Charset()
{
    if (isKnown())
        iconv_close(m_converter);
}

bool Charset::convert(const char *text, std::string &utf8) const
{
    utf8.clear();
    iconv(m_converter, nullptr, nullptr, nullptr, nullptr);
    std::string source(text);
    char *in = source.data();
    size_t left = source.size();
    std::array<char, 4096> buffer{};
    bool isAtEnd = false;
    while (!isAtEnd)
    {
        isAtEnd = left == 0; // the converter may still keep a letter, for an accent that might have followed
        char *out = buffer.data();
        size_t room = buffer.size();
        const size_t result = iconv(m_converter, isAtEnd ? nullptr : &in, &left, &out, &room);
        utf8.append(buffer.data(), buffer.size() - room);
        if (result == static_cast<size_t>(-1) && errno != E2BIG)
            return false;
    }
    return true;
}

} // namespace po
