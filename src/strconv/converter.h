/**
 * The one step between UCS-2 and another charset, in its four directions. Each follows the contract of the
 * conversions in kelto.h: the size is the capacity in and the length out, a terminator is written where there is room,
 * and a failure leaves the empty text and the size as it was.
 */
#ifndef KELTO_STRCONV_CONVERTER_H
#define KELTO_STRCONV_CONVERTER_H

#include "kelto.h"

#include <memory>
#include <unicode/ucnv.h>

namespace kelto
{

/**
 * An ICU converter between a character set and UCS-2, open as long as this object lives. It is never shared: ICU keeps
 * the state of a text in it (shift states, the start of a character), so that two threads at one converter would spoil
 * each other's text, and a pool of them would need a lock and a place where it is closed. The tables behind a converter
 * are shared already, by ICU, which makes opening one cheap from the second time on.
 */
class Converter
{
public:
    /** Opens by the name that mapCharSet() gives; where there is none, each conversion says so and touches nothing. */
    explicit Converter(const char *charSet) noexcept;

    /* The source is zero-terminated, and read only once a converter is open. */
    int toUCS2(const char *source, size_t *size, UCS2 *destination) const noexcept;
    int fromUCS2(const UCS2 *source, size_t *size, char *destination) const noexcept;

private:
    struct Close
    {
        void operator()(UConverter *converter) const noexcept { ucnv_close(converter); }
    };
    std::unique_ptr<UConverter, Close> m_converter;
};

/** UTF-8 of `length` bytes to UCS-2; opens no converter and allocates nothing. */
int utf8ToUCS2(const char *source, size_t length, size_t *size, UCS2 *destination) noexcept;

/** UCS-2 of `length` units to UTF-8; opens no converter and allocates nothing. */
int ucs2ToUTF8(const UCS2 *source, size_t length, size_t *size, char *destination) noexcept;

} // namespace kelto

#endif
