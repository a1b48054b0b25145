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
    explicit Prepared(const std::string &format)
    {
        KTPreparedFormat *prepared = nullptr;
        require(KTPrepareFormat(format.c_str(), nullptr, &prepared) == 0, "a format cannot be prepared");
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
