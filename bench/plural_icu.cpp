// The same by ICU: its plural rules, and a message format that has the sentences in one text, kept open.

#include "workload.h"

#include <unicode/umsg.h>
#include <unicode/upluralrules.h>
#include <unicode/ustring.h>

#include <array>

namespace bench
{
namespace
{

constexpr int number = 22;
constexpr std::u16string_view pattern = u"{0,plural,one{Skopiowano # plik do {1}} few{Skopiowano # pliki do {1}} "
                                        u"other{Skopiowano # plików do {1}}}";

const Register icuL2("L2", "ICU umsg_format, kept open", [] {
    UErrorCode status = U_ZERO_ERROR;
    UMessageFormat *const format =
        umsg_open(pattern.data(), static_cast<int32_t>(pattern.size()), "pl", nullptr, &status);
    require(U_SUCCESS(status), "a message format cannot be opened");
    return job([owner = std::shared_ptr<UMessageFormat>(static_cast<UMessageFormat *>(format), umsg_close),
                out = std::array<UChar, 200>()]() mutable {
        UErrorCode failure = U_ZERO_ERROR;
        const int32_t length = umsg_format(owner.get(), out.data(), static_cast<int32_t>(out.size()), &failure,
                                           double{number}, u"Faktury");
        return std::u16string_view(out.data(), static_cast<size_t>(length));
    });
});

const Register icuL2First("L2/first", "ICU umsg_open", [] {
    return job([pattern = std::u16string(pattern)] {
        UErrorCode status = U_ZERO_ERROR;
        UMessageFormat *const format =
            umsg_open(pattern.data(), static_cast<int32_t>(pattern.size()), "pl", nullptr, &status);
        umsg_close(format);
        return std::string_view(U_SUCCESS(status) ? "prepared" : "");
    });
});

const Register icuL3("L3", "ICU uplrules_select", [] {
    UErrorCode status = U_ZERO_ERROR;
    UPluralRules *const rules = uplrules_open("pl", &status);
    require(U_SUCCESS(status), "the rules of a language cannot be opened");
    return job([owner = std::shared_ptr<UPluralRules>(rules, uplrules_close), out = std::array<UChar, 20>()]() mutable {
        UErrorCode failure = U_ZERO_ERROR;
        const int32_t length = uplrules_select(owner.get(), number, out.data(), 20, &failure);
        return std::u16string_view(out.data(), static_cast<size_t>(length));
    });
});

} // namespace
} // namespace bench
