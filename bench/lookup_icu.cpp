// Fetching a message from an ICU resource bundle, and formatting it.

#include "format.h"

#include <unicode/umsg.h>
#include <unicode/ures.h>
#include <unicode/ustring.h>

#include <array>

namespace bench
{
namespace
{

class Bundle
{
public:
    Bundle()
    {
        UErrorCode status = U_ZERO_ERROR;
        m_bundle = ures_open(KELTO_BENCH_CATALOGS, "root", &status);
        require(U_SUCCESS(status), "the resource bundle cannot be opened");
    }
    Bundle(Bundle &&other) noexcept : m_bundle(std::exchange(other.m_bundle, nullptr)) {}
    ~Bundle()
    {
        if (m_bundle != nullptr)
            ures_close(m_bundle);
    }
    std::u16string_view text(const char *key) const
    {
        UErrorCode status = U_ZERO_ERROR;
        int32_t length = 0;
        const UChar *text = ures_getStringByKey(m_bundle, key, &length, &status);
        return {text, static_cast<size_t>(length)};
    }

private:
    UResourceBundle *m_bundle = nullptr;
};

std::unique_ptr<Job> lookup()
{
    return job([bundle = Bundle()] { return bundle.text("message1000"); });
}

// A bundle is a handle of its own: others that are open make no difference.
const Register bundle1("W5/1", "ICU resource bundle", lookup);
const Register bundle20("W5/20", "ICU resource bundle", lookup);

const Register bundleW9("W9", "ICU bundle, u_formatMessage", [] {
    return job(
        [bundle = Bundle(), wide = std::array<UChar, formatRoom>(), out = std::array<char, formatRoom>()]() mutable {
            UErrorCode status = U_ZERO_ERROR;
            const std::u16string_view pattern = bundle.text("message1234");
            const int32_t units = u_formatMessage("en", pattern.data(), static_cast<int32_t>(pattern.size()),
                                                  wide.data(), formatRoom, &status, 7, u"files");
            int32_t bytes = 0;
            u_strToUTF8(out.data(), formatRoom, &bytes, wide.data(), units, &status);
            return std::string_view(out.data(), static_cast<size_t>(bytes));
        });
});

} // namespace
} // namespace bench
