// Formatting by ICU: its printf, and its message formats, opened for each call and kept open.

#include "format.h"

#include <unicode/umsg.h>
#include <unicode/ustdio.h>
#include <unicode/ustring.h>

#include <array>

namespace bench
{
namespace
{

using Units = std::array<UChar, formatRoom>;

/** A text of ours in ICU's units. */
std::u16string wide(std::string_view text)
{
    std::u16string units(text.size() + 1, u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &length, text.data(),
                  static_cast<int32_t>(text.size()), &status);
    require(U_SUCCESS(status), "a text of the benchmarks is no UTF-8");
    units.resize(static_cast<size_t>(length));
    return units;
}

std::u16string_view given(const Units &out, int32_t length)
{
    return {out.data(), static_cast<size_t>(length)};
}

// u_snprintf knows no positions: here the arguments stand in the order of the text.

const Register uSnprintfW1("W1", "ICU u_snprintf", [] {
    return job([format = wide("%s: %d"), out = Units()]() mutable {
        keep(format.data());
        return given(out, u_snprintf_u(out.data(), formatRoom, format.data(), "files", 7));
    });
});

const Register uSnprintfW2("W2", "ICU u_snprintf", [] {
    const auto format = wide("%-14s|%5d|%7.2f|%08x|%s|%12.3f|%u|%.1f|%-6d|%10s");
    return job([format, a = TenArguments(), out = Units()]() mutable {
        keep(format.data());
        return given(out, u_snprintf_u(out.data(), formatRoom, format.data(), a.user, a.files, a.done, a.mask, a.volume,
                                       a.size, a.id, a.load, a.delta, a.state));
    });
});

const Register uSnprintfW3("W3", "ICU u_snprintf", [] {
    return job([format = wide(longText("%d")), out = Units()]() mutable {
        keep(format.data());
        return given(out, u_snprintf_u(out.data(), formatRoom, format.data(), 7));
    });
});

const Register uSnprintfW4("W4", "ICU u_snprintf", [] {
    return job([format = wide("%s: %d"), out = Units()]() mutable {
        keep(format.data());
        int32_t length = u_snprintf_u(out.data(), shortRoom, format.data(), "files", 7);
        if (length >= static_cast<int32_t>(shortRoom))
            length = u_snprintf_u(out.data(), formatRoom, format.data(), "files", 7);
        return given(out, length);
    });
});

constexpr const char *anInteger = "{0,number,integer}";
constexpr std::u16string_view swapped = u"{1}: {0,number,integer}";

/** A message format that stays open: its pattern is parsed once. */
class MessageFormat
{
public:
    explicit MessageFormat(std::u16string_view pattern)
    {
        UErrorCode status = U_ZERO_ERROR;
        m_format = umsg_open(pattern.data(), static_cast<int32_t>(pattern.size()), "en", nullptr, &status);
        require(U_SUCCESS(status), "ICU rejects a message pattern");
    }
    MessageFormat(MessageFormat &&other) noexcept : m_format(std::exchange(other.m_format, nullptr)) {}
    ~MessageFormat()
    {
        if (m_format != nullptr)
            umsg_close(m_format);
    }
    UMessageFormat *get() const { return m_format; }

private:
    UMessageFormat *m_format = nullptr;
};

const Register uFormatMessageW1("W1", "ICU u_formatMessage", [] {
    return job([out = Units()]() mutable {
        UErrorCode status = U_ZERO_ERROR;
        keep(swapped.data());
        return given(out, u_formatMessage("en", swapped.data(), static_cast<int32_t>(swapped.size()), out.data(),
                                          formatRoom, &status, 7, u"files"));
    });
});

const Register uFormatMessageW3("W3", "ICU u_formatMessage", [] {
    return job([pattern = wide(longText(anInteger)), out = Units()]() mutable {
        UErrorCode status = U_ZERO_ERROR;
        keep(pattern.data());
        return given(out, u_formatMessage("en", pattern.data(), static_cast<int32_t>(pattern.size()), out.data(),
                                          formatRoom, &status, 7));
    });
});

const Register umsgFormatW1("W1", "ICU umsg_format, kept open", [] {
    return job([format = MessageFormat(swapped), out = Units()]() mutable {
        UErrorCode status = U_ZERO_ERROR;
        return given(out, umsg_format(format.get(), out.data(), formatRoom, &status, 7, u"files"));
    });
});

const Register umsgFormatW3("W3", "ICU umsg_format, kept open", [] {
    return job([format = MessageFormat(wide(longText(anInteger))), out = Units()]() mutable {
        UErrorCode status = U_ZERO_ERROR;
        return given(out, umsg_format(format.get(), out.data(), formatRoom, &status, 7));
    });
});

const Register umsgFormatW3Mixed("W3/mixed", "ICU umsg_format, kept open", [] {
    return job([format = MessageFormat(wide(longMixedText(anInteger))), out = Units()]() mutable {
        UErrorCode status = U_ZERO_ERROR;
        return given(out, umsg_format(format.get(), out.data(), formatRoom, &status, 7));
    });
});

const Register umsgFormatW4("W4", "ICU umsg_format, kept open", [] {
    return job([format = MessageFormat(swapped), out = Units()]() mutable {
        UErrorCode status = U_ZERO_ERROR;
        int32_t length = umsg_format(format.get(), out.data(), shortRoom, &status, 7, u"files");
        if (status == U_BUFFER_OVERFLOW_ERROR)
        {
            status = U_ZERO_ERROR;
            length = umsg_format(format.get(), out.data(), length + 1, &status, 7, u"files");
        }
        return given(out, length);
    });
});

} // namespace
} // namespace bench
