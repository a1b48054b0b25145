// Prepared formats: what is left of a call when the format was looked at before.

#include "format.h"

#include "kelto.h"
#include "lookup.h"

#include <array>
#include <memory>

namespace bench
{
namespace
{

using Units = std::array<UCS2, formatRoom>;
using Bytes = std::array<char, formatRoom>;

/** A prepared format, released in the end. */
class Prepared
{
public:
    explicit Prepared(const std::string &format, formTable *table = nullptr)
    {
        KTPreparedFormat *prepared = nullptr;
        require(KTPrepareFormat(format.c_str(), table, &prepared) == 0, "a format cannot be prepared");
        m_prepared.reset(prepared);
    }

    KTPreparedFormat *get() const
    {
        keep(m_prepared.get());
        return m_prepared.get();
    }

private:
    struct Free
    {
        void operator()(KTPreparedFormat *prepared) const { KTFreePrepared(prepared); }
    };
    std::unique_ptr<KTPreparedFormat, Free> m_prepared;
};

constexpr const char *swapped = "%s[2]: %d[1]";

/** The call of W1, into a buffer of so many bytes. */
int formatSwapped(const KTPreparedFormat *prepared, size_t *size, char *out)
{
    const KTArgument arguments[] = {KT_INT(7), KT_UTF8("files")};
    return KTFormatPreparedUTF8(prepared, 0, nullptr, size, out, arguments, 2);
}

const Register unitsW1("W1p/UCS-2", kelto, [] {
    return job([prepared = Prepared(swapped), out = Units()]() mutable {
        size_t units = out.size();
        const KTArgument arguments[] = {KT_INT(7), KT_UTF8("files")};
        KTFormatPrepared(prepared.get(), 0, nullptr, &units, out.data(), arguments, 2);
        return std::u16string_view(out.data(), units);
    });
});

const Register bytesW1("W1p/UTF-8", kelto, [] {
    return job([prepared = Prepared(swapped), out = Bytes()]() mutable {
        size_t bytes = out.size();
        formatSwapped(prepared.get(), &bytes, out.data());
        return std::string_view(out.data(), bytes);
    });
});

/* A conversion of the program's own, which writes the numbers of one digit. */

int writeDigit(const char * /*name*/, int /*width*/, int /*precision*/, int /*flags*/, KTEncoder /*encoder*/,
               void * /*passThru*/, void **slot, unsigned long *size, UCS2 *out)
{
    const bool isFit = *size > 1;
    *size = 1;
    if (!isFit)
        return KT_ERR_BUFFER_TOO_SMALL;
    *out = static_cast<UCS2>('0' + *static_cast<const int *>(*slot));
    return 0;
}

int writeDigitUTF8(const char * /*name*/, int /*width*/, int /*precision*/, int /*flags*/, KTEncoder /*encoder*/,
                   void * /*passThru*/, const KTArgument *argument, size_t *size, char *out)
{
    const bool isFit = *size > 1;
    *size = 1;
    if (!isFit)
        return KT_ERR_BUFFER_TOO_SMALL;
    *out = static_cast<char>('0' + argument->value.i);
    return 0;
}

std::unique_ptr<Job> ownConversion(const char *format)
{
    static KTFormatter records[] = {{"digit", nullptr, 1, signedIntList, writeDigit},
                                    {"digitu", nullptr, 1, signedIntList, writeDigit},
                                    {nullptr, nullptr, 0, nullptr, nullptr}};
    static formTable table = {false, {}, records, nullptr, &builtInFormTable};
    require(KTRegisterUTF8Format(&records[1], writeDigitUTF8) == 0, "a function cannot be registered");
    return job([prepared = Prepared(format, &table), out = Bytes()]() mutable {
        size_t bytes = out.size();
        formatSwapped(prepared.get(), &bytes, out.data());
        return std::string_view(out.data(), bytes);
    });
}

const Register calledW1("W1o/called", kelto, [] { return ownConversion("%s[2]: %digit[1]"); });
const Register calledBytesW1("W1o/UTF-8", kelto, [] { return ownConversion("%s[2]: %digitu[1]"); });

const Register bytesW2("W2p", kelto, [] {
    return job([prepared = Prepared(tenConversions), a = TenArguments(), out = Bytes()]() mutable {
        keep(&a);
        size_t bytes = out.size();
        const KTArgument arguments[] = {KT_UTF8(a.user),   KT_INT(a.files),   KT_DOUBLE(a.done), KT_UINT(a.mask),
                                        KT_UTF8(a.volume), KT_DOUBLE(a.size), KT_UINT(a.id),     KT_DOUBLE(a.load),
                                        KT_INT(a.delta),   KT_UTF8(a.state)};
        KTFormatPreparedUTF8(prepared.get(), 0, nullptr, &bytes, out.data(), arguments, 10);
        return std::string_view(out.data(), bytes);
    });
});

const Register bytesW3("W3p", kelto, [] {
    return job([prepared = Prepared(longText("%d[1]")), out = Bytes()]() mutable {
        size_t bytes = out.size();
        const KTArgument arguments[] = {KT_INT(7)};
        KTFormatPreparedUTF8(prepared.get(), 0, nullptr, &bytes, out.data(), arguments, 1);
        return std::string_view(out.data(), bytes);
    });
});

const Register bytesW4("W4p", kelto, [] {
    return job([prepared = Prepared(swapped), out = Bytes()]() mutable {
        size_t bytes = shortRoom;
        if (formatSwapped(prepared.get(), &bytes, out.data()) == KT_ERR_BUFFER_TOO_SMALL)
        {
            ++bytes;
            formatSwapped(prepared.get(), &bytes, out.data());
        }
        return std::string_view(out.data(), bytes);
    });
});

std::unique_ptr<Job> lookUpAndFormat()
{
    return job([catalogs = OpenCatalogs(1), prepared = Prepared(swapped), out = Bytes()]() mutable {
        char *message = nullptr;
        size_t bytes = out.size();
        KTGetMessage(catalogs.oldest(), formattedMessage, &message);
        keep(message);
        formatSwapped(prepared.get(), &bytes, out.data());
        return std::string_view(out.data(), bytes);
    });
}

const Register bytesW9("W9p", kelto, lookUpAndFormat);
const Register bytesW9c("W9c", "C", lookUpAndFormat);

/** The catalog of the C interface, which the calls of the C++ layer go through. */
const Register catalogInC("W9c/again", "C", [] {
    KTCatalog *opened = nullptr;
    require(KTOpenCatalogFile(catalog("messages-2000.xlf").c_str(), nullptr, &opened) == 0, "a catalog is opened");
    const std::shared_ptr<KTCatalog> store(opened, KTCloseCatalog);
    return job([store, out = std::array<char, 100>()]() mutable {
        size_t size = out.size();
        const KTArgument arguments[] = {KT_INT(7), KT_UTF8(shortArgument)};
        KTCatalogFormatUTF8(store.get(), formattedMessage, nullptr, &size, out.data(), arguments, 2);
        return std::string_view(out.data(), size);
    });
});

const Register preparing("prepare", kelto, [] {
    return job([format = std::string(swapped)]() mutable {
        keep(format.data());
        KTPreparedFormat *prepared = nullptr;
        KTPrepareFormat(format.c_str(), nullptr, &prepared);
        KTFreePrepared(prepared);
        return std::string_view(prepared != nullptr ? "prepared" : "");
    });
});

} // namespace
} // namespace bench
