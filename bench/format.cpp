// Formatting by Kelto and by the C library.

#include "format.h"

#include "kelto.h"

#include <array>
#include <cstdio>

namespace bench
{
namespace
{

using Units = std::array<UCS2, formatRoom>;
using Bytes = std::array<char, formatRoom>;

/** A format that may change between two calls, as far as the compiler knows. */
class Format
{
public:
    explicit Format(std::string_view text) : m_text(text) {}
    char *get()
    {
        keep(m_text.data());
        return m_text.data();
    }

private:
    std::string m_text;
};

const Register keltoW1("W1", kelto, [] {
    return job([format = Format("%s[2]: %d[1]"), out = Units()]() mutable {
        unsigned long units = out.size();
        KTFormatString(nullptr, false, &units, out.data(), format.get(), 7, "files");
        return std::u16string_view(out.data(), units);
    });
});

const Register pointersW1("W1", "Kelto, KTvpFormatString", [] {
    return job([format = Format("%s[2]: %d[1]"), number = 7, text = std::string("files"), out = Units()]() mutable {
        unsigned long units = out.size();
        void *arguments[] = {&number, text.data(), nullptr};
        KTvpFormatString(nullptr, false, &units, out.data(), format.get(), arguments);
        return std::u16string_view(out.data(), units);
    });
});

const Register keltoW2("W2", kelto, [] {
    return job([format = Format(tenConversions), a = TenArguments(), out = Units()]() mutable {
        unsigned long units = out.size();
        KTFormatString(nullptr, false, &units, out.data(), format.get(), a.user, a.files, a.done, a.mask, a.volume,
                       a.size, a.id, a.load, a.delta, a.state);
        return std::u16string_view(out.data(), units);
    });
});

const Register keltoW3("W3", kelto, [] {
    return job([format = Format(longText("%d[1]")), out = Units()]() mutable {
        unsigned long units = out.size();
        KTFormatString(nullptr, false, &units, out.data(), format.get(), 7);
        return std::u16string_view(out.data(), units);
    });
});

const Register keltoW3Mixed("W3/mixed", kelto, [] {
    return job([format = Format(longMixedText("%d[1]")), out = Units()]() mutable {
        unsigned long units = out.size();
        KTFormatString(nullptr, false, &units, out.data(), format.get(), 7);
        return std::u16string_view(out.data(), units);
    });
});

const Register keltoW4("W4", kelto, [] {
    return job([format = Format("%s[2]: %d[1]"), out = Units()]() mutable {
        unsigned long units = shortRoom;
        if (KTFormatString(nullptr, false, &units, out.data(), format.get(), 7, "files") == KT_ERR_BUFFER_TOO_SMALL)
        {
            ++units;
            KTFormatString(nullptr, false, &units, out.data(), format.get(), 7, "files");
        }
        return std::u16string_view(out.data(), units);
    });
});

const Register snprintfW1({"W1", "W1p/UTF-8"}, "snprintf", [] {
    return job([format = Format("%2$s: %1$d"), out = Bytes()]() mutable {
        const int length = snprintf(out.data(), out.size(), format.get(), 7, "files");
        return std::string_view(out.data(), static_cast<size_t>(length));
    });
});

const Register snprintfW2({"W2", "W2p"}, "snprintf", [] {
    return job([format = Format("%1$-14s|%2$5d|%3$7.2f|%4$08x|%5$s|%6$12.3f|%7$u|%8$.1f|%9$-6d|%10$10s"),
                a = TenArguments(), out = Bytes()]() mutable {
        const int length = snprintf(out.data(), out.size(), format.get(), a.user, a.files, a.done, a.mask, a.volume,
                                    a.size, a.id, a.load, a.delta, a.state);
        return std::string_view(out.data(), static_cast<size_t>(length));
    });
});

const Register snprintfW3({"W3", "W3p"}, "snprintf", [] {
    return job([format = Format(longText("%1$d")), out = Bytes()]() mutable {
        const int length = snprintf(out.data(), out.size(), format.get(), 7);
        return std::string_view(out.data(), static_cast<size_t>(length));
    });
});

const Register snprintfW3Mixed("W3/mixed", "snprintf", [] {
    return job([format = Format(longMixedText("%1$d")), out = Bytes()]() mutable {
        const int length = snprintf(out.data(), out.size(), format.get(), 7);
        return std::string_view(out.data(), static_cast<size_t>(length));
    });
});

const Register snprintfW4({"W4", "W4p"}, "snprintf", [] {
    return job([format = Format("%2$s: %1$d"), out = Bytes()]() mutable {
        int length = snprintf(out.data(), shortRoom, format.get(), 7, "files");
        if (length >= static_cast<int>(shortRoom))
            length = snprintf(out.data(), static_cast<size_t>(length) + 1, format.get(), 7, "files");
        return std::string_view(out.data(), static_cast<size_t>(length));
    });
});

} // namespace
} // namespace bench
