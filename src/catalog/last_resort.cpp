#include "catalog/last_resort.h"

#include "catalog/plain_text.h"
#include "format/finished_text.h"
#include "format/form_table.h"

namespace
{

using kelto::FormatOutput;

template <typename Unit>
void writeEncoded(FormatOutput<Unit> &out, const KTArgument &argument, const KTCatalogOptions &options,
                  KTEncoder encoder)
{
    kelto::FinishedText plain;
    int result = plain.make(
        [&](unsigned long *units, UCS2 *text) {
            FormatOutput<UCS2> written(text, units);
            kelto::writePlainly(written, argument, options);
            return written.finish(units);
        },
        ~0UL);
    if (result == 0)
        result = out.appendCalled([&](const kelto::Layout &, unsigned long *units,
                                      UCS2 *encoded) { return encoder(plain.units(), KT_ENCODE_UCS2, units, encoded); },
                                  {KT_ABSENT, KT_ABSENT, 0});
    if (result != 0)
        kelto::writeUTF8(out, "?");
}

} // namespace

namespace kelto
{

template <typename Unit>
void writeLastResort(const KTCatalog &catalog, const KTCatalogRequest &request, size_t *size, Unit *out) noexcept
{
    FormatOutput<Unit> text(out, size, Beginning::kept);
    const char *const name = catalog.nameOrNone();
    writeUTF8(text, "[");
    writeUTF8(text, name);
    writeUTF8(text, *name != '\0' ? " " : "");
    writeNumber(text, static_cast<uint64_t>(request.id), !request.isUnsigned && request.id < 0);
    const KTEncoder encoder = findEncoder(catalog.options.table);
    const bool isEncoded = encoder != nullptr || (catalog.options.formatOptions & KT_ENCODE_ALL) != 0;
    const bool isUnencodable = isEncoded && (encoder == nullptr || !isStarted());
    for (size_t i = 0; i < request.count; ++i)
    {
        writeUTF8(text, i == 0 ? ": " : ", ");
        if (isUnencodable)
            writeUTF8(text, "?");
        else if (encoder != nullptr)
            writeEncoded(text, request.arguments[i], catalog.options, encoder);
        else
            writePlainly(text, request.arguments[i], catalog.options);
    }
    writeUTF8(text, "]");
    text.finish(size);
}

template void writeLastResort(const KTCatalog &, const KTCatalogRequest &, size_t *, char *) noexcept;
template void writeLastResort(const KTCatalog &, const KTCatalogRequest &, size_t *, UCS2 *) noexcept;

} // namespace kelto
