/**
 * Reports to the program: something was passed over on the way to a text, and a sentence says why, without characters
 * that could harm a log.
 */
#ifndef KELTO_CATALOG_REPORT_H
#define KELTO_CATALOG_REPORT_H

#include "catalog/catalog.h"
#include "format/output/format_output.h"

#include <string_view>

namespace kelto
{

/** A sentence on its way into a buffer. What does not fit is counted, and left out. */
using Sentence = FormatOutput<char>;

void say(Sentence &sentence, std::string_view text) noexcept;

/**
 * Writes a text as a part of one line of a log, without the characters that steer a terminal or turn the text around.
 */
void sayOnOneLine(Sentence &sentence, std::string_view text) noexcept;

/** What was passed over, and the result that was the reason. */
struct PassedOver
{
    const char *language, *file;
    int64_t id;
    int result;
};

/** Calls onProblem, where the program has set it. `write(Sentence &)` writes the sentence, perhaps twice. */
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

/** Reports that a file as a whole is of no use. @param language  empty where no language is concerned. */
void reportFile(const KTCatalog &catalog, const char *language, const char *path, int result) noexcept;

} // namespace kelto

#endif
