#include "catalog/last_resort.h"

#include "catalog/plain_text.h"
#include "format/arguments/called_arguments.h"
#include "format/output/finished_text.h"
#include "format/tables/form_table.h"
#include "format/tables/own_table.h"

namespace
{

using kelto::FormatOutput;

constexpr kelto::Layout noLayout = {KT_ABSENT, KT_ABSENT, 0};

bool takesOnePointer(const KTFormatter &record)
{
    return record.argCount == 1 && record.argTypes != nullptr && record.argTypes[0] == KT_ARG_POINTER &&
           record.format != nullptr;
}

/**
 * Writes an object by the first conversion of the table's own that takes it alone; false where none does. A conversion
 * that does not ask for the kind of its pointer would take any: those with a context are asked for, and only a program
 * that writes arguments itself has said that its others ask.
 */
template <typename Unit>
bool writeConverted(FormatOutput<Unit> &out, const KTArgument &object, const KTCatalogOptions &options)
{
    if (object.type != KT_ARGUMENT_POINTER || options.table == nullptr)
        return false;
    const void *pointer = object.value.p;
    void *slots[] = {&pointer, nullptr};
    const kelto::RunningSlots running(slots, &object, 1);
    const KTFormatter *record = options.table->formList;
    for (; record != nullptr && record->name != nullptr; ++record)
    {
        const auto convert = [&](const kelto::Layout &layout, unsigned long *units, UCS2 *text) {
            return record->format(record->name, layout.width, layout.precision, layout.flags, nullptr, options.passThru,
                                  slots, units, text);
        };
        const bool isAsking = options.writeArgument != nullptr || kelto::isOwnConversion(*record);
        if (isAsking && takesOnePointer(*record) && out.appendCalled(convert, noLayout) == 0)
            return true;
    }
    return false;
}

template <typename Unit>
void writeArgument(FormatOutput<Unit> &out, const KTArgument &argument, const KTCatalogOptions &options)
{
    if (!writeConverted(out, argument, options))
        kelto::writePlainly(out, argument, options);
}

template <typename Unit>
void writeEncoded(FormatOutput<Unit> &out, const KTArgument &argument, const KTCatalogOptions &options,
                  KTEncoder encoder)
{
    kelto::FinishedText plain;
    int result = plain.make(
        [&](unsigned long *units, UCS2 *text) {
            FormatOutput<UCS2> written(text, units);
            writeArgument(written, argument, options);
            return written.finish(units);
        },
        ~0UL);
    if (result == 0)
        result = out.appendCalled([&](const kelto::Layout &, unsigned long *units,
                                      UCS2 *encoded) { return encoder(plain.units(), KT_ENCODE_UCS2, units, encoded); },
                                  noLayout);
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
    const KTEncoder encoder = findEncoder(catalog.sourceConversions.table());
    const bool isEncoded = encoder != nullptr || (catalog.options.formatOptions & KT_ENCODE_ALL) != 0;
    const bool isUnencodable = isEncoded && (encoder == nullptr || !isStarted());
    const RunningEncoder encoding(encoder, catalog.sourceConversions.table());
    for (size_t i = 0; i < request.count; ++i)
    {
        writeUTF8(text, i == 0 ? ": " : ", ");
        if (isUnencodable)
            writeUTF8(text, "?");
        else if (encoder != nullptr)
            writeEncoded(text, request.arguments[i], catalog.options, encoder);
        else
            writeArgument(text, request.arguments[i], catalog.options);
    }
    writeUTF8(text, "]");
    text.finish(size);
}

template void writeLastResort(const KTCatalog &, const KTCatalogRequest &, size_t *, char *) noexcept;
template void writeLastResort(const KTCatalog &, const KTCatalogRequest &, size_t *, UCS2 *) noexcept;

} // namespace kelto
