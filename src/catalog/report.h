/** What the program is told: that something was passed over on the way to a text, and a sentence that says why. */
#ifndef KELTO_CATALOG_REPORT_H
#define KELTO_CATALOG_REPORT_H

#include "catalog/catalog.h"
#include "format/format_output.h"

#include <string_view>

namespace kelto
{

/** A sentence as it is written, to its end or as far as there is room. */
using Sentence = FormatOutput<char>;

void say(Sentence &sentence, std::string_view text) noexcept;

/** Writes a text as a part of one line of a log, without characters to which a terminal or a reader's eye listens. */
void sayOnOneLine(Sentence &sentence, std::string_view text) noexcept;

/** What is passed over. */
struct PassedOver
{
    const char *language, *file;
    int64_t id;
    int result;
};

/** Tells of it, if anybody wants to know, with a sentence that `write` writes, perhaps twice: void(Sentence &). */
template <typename Write>
void report(const KTCatalog &catalog, const PassedOver &passedOver, const Write &write) noexcept
{
    if (catalog.options.onProblem == nullptr)
        return;
    const auto writeInto = [&](char *out, size_t *size) {
        Sentence sentence(out, size, Beginning::kept);
        write(sentence);
        return sentence.finish(size);
    };
    char usual[512];
    size_t size = sizeof usual;
    HeapBlock<char> whole;
    if (writeInto(usual, &size) != 0 && (whole = allocateHeap<char>(++size)) != nullptr)
        writeInto(whole.get(), &size);
    const KTCatalogProblem problem = {sizeof problem,
                                      catalog.nameOrNone(),
                                      passedOver.language,
                                      passedOver.file,
                                      passedOver.id,
                                      passedOver.result,
                                      whole != nullptr ? whole.get() : usual};
    catalog.options.onProblem(catalog.options.context, &problem);
}

/** Tells that a file as a whole is of no use. @param language  empty where none is concerned. */
void reportFile(const KTCatalog &catalog, const char *language, const char *path, int result) noexcept;

} // namespace kelto

#endif
