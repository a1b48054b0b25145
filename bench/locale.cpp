// Numbers, dates and lists of a language: the add-on's conversions, each alone in a prepared format, beside the calls
// of ICU that a program would make in their place.

#include "format.h"

#include "kelto-locale.h"

#include <array>
#include <unicode/udat.h>
#include <unicode/ulistformatter.h>
#include <unicode/uloc.h>
#include <unicode/unumberformatter.h>

namespace bench
{
namespace
{

using Bytes = std::array<char, formatRoom>;
using Units = std::array<char16_t, formatRoom>;

constexpr const char *languageName = "pl";
constexpr const char *zone = "Europe/Warsaw";
constexpr const char *moment = "1795608000";
constexpr double momentMilliseconds = 1795608000e3;

formTable *conversions()
{
    formTable *const table = KTLConversions(const_cast<char *>(zone), languageName);
    require(table != nullptr, "a language cannot be opened");
    return table;
}

/** Formats one argument by one conversion. */
template <typename Make> std::unique_ptr<Job> conversion(const char *format, const Make &argument)
{
    KTPreparedFormat *prepared = nullptr;
    require(KTPrepareFormat(format, conversions(), &prepared) == 0, "a format cannot be prepared");
    const std::shared_ptr<KTPreparedFormat> owner(prepared, KTFreePrepared);
    return job([owner, argument, out = Bytes()]() mutable {
        size_t size = out.size();
        const KTArgument value = argument();
        require(KTFormatPreparedUTF8(owner.get(), 0, nullptr, &size, out.data(), &value, 1) == 0,
                "a format call fails");
        return std::string_view(out.data(), size);
    });
}

const Register number2("L/number/2", kelto, [] { return conversion("%number[1]", [] { return KT_INT(42); }); });
const Register number7("L/number/7", kelto, [] { return conversion("%number[1]", [] { return KT_INT(1234567); }); });
const Register decimal("L/decimal", kelto,
                       [] { return conversion("%.2decimal[1]", [] { return KT_DOUBLE(1234567.891); }); });
const Register dateTime("L/datetime", kelto,
                        [] { return conversion("%.2datetime[1]", [] { return KT_UTF8(moment); }); });
const Register list("L/and", kelto,
                    [] { return conversion("%and[1]", [] { return KT_UTF8("apples\npears\nplums"); }); });

/** A number formatter of ICU, open, and a place for its numbers. */
template <typename Format> std::unique_ptr<Job> icuNumber(std::u16string_view skeleton, const Format &format)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::shared_ptr<UNumberFormatter> formatter(
        unumf_openForSkeletonAndLocale(skeleton.data(), static_cast<int32_t>(skeleton.size()), languageName, &status),
        unumf_close);
    const std::shared_ptr<UFormattedNumber> number(unumf_openResult(&status), unumf_closeResult);
    require(U_SUCCESS(status), "ICU has no number formatter");
    return job([formatter, number, format, out = Units()]() mutable {
        UErrorCode failure = U_ZERO_ERROR;
        format(formatter.get(), number.get(), &failure);
        const int32_t length = unumf_resultToString(number.get(), out.data(), formatRoom, &failure);
        return std::u16string_view(out.data(), static_cast<size_t>(length));
    });
}

const Register icuNumber2("L/number/2", "ICU", [] {
    return icuNumber(
        u"", [](auto *formatter, auto *number, auto *status) { unumf_formatInt(formatter, 42, number, status); });
});

const Register icuNumber7("L/number/7", "ICU", [] {
    return icuNumber(
        u"", [](auto *formatter, auto *number, auto *status) { unumf_formatInt(formatter, 1234567, number, status); });
});

const Register icuDecimal("L/decimal", "ICU", [] {
    return icuNumber(u".00", [](auto *formatter, auto *number, auto *status) {
        unumf_formatDouble(formatter, 1234567.891, number, status);
    });
});

const Register icuDateTime("L/datetime", "ICU", [] {
    UErrorCode status = U_ZERO_ERROR;
    const std::shared_ptr<UDateFormat> format(
        udat_open(UDAT_LONG, UDAT_LONG, languageName, u"Europe/Warsaw", -1, nullptr, 0, &status), udat_close);
    require(U_SUCCESS(status), "ICU has no date format");
    return job([format, out = Units()]() mutable {
        UErrorCode failure = U_ZERO_ERROR;
        const int32_t length = udat_format(format.get(), momentMilliseconds, out.data(), formatRoom, nullptr, &failure);
        return std::u16string_view(out.data(), static_cast<size_t>(length));
    });
});

const Register icuList("L/and", "ICU", [] {
    UErrorCode status = U_ZERO_ERROR;
    const std::shared_ptr<UListFormatter> format(ulistfmt_open(languageName, &status), ulistfmt_close);
    require(U_SUCCESS(status), "ICU has no list format");
    return job([format, out = Units()]() mutable {
        const UChar *const items[] = {u"apples", u"pears", u"plums"};
        UErrorCode failure = U_ZERO_ERROR;
        const int32_t length = ulistfmt_format(format.get(), items, nullptr, 3, out.data(), formatRoom, &failure);
        return std::u16string_view(out.data(), static_cast<size_t>(length));
    });
});

/** Another language each time, and none that was there before. */
const Register openFirst("L/open", kelto, [] {
    return job([next = int32_t{0}]() mutable {
        KTLLanguage *opened = nullptr;
        require(KTLOpenLanguage(uloc_getAvailable(next++ % uloc_countAvailable()), zone, &opened) == 0,
                "a language cannot be opened");
        return std::string_view(KTLLanguageName(opened));
    });
});

const Register openAgain("L/open/again", kelto, [] {
    return job([table = conversions()] {
        KTLLanguage *opened = nullptr;
        require(KTLOpenLanguage(languageName, zone, &opened) == 0 && KTLFormTable(opened) == table,
                "a language cannot be opened again");
        KTLCloseLanguage(opened);
        return std::string_view(languageName);
    });
});

} // namespace
} // namespace bench
