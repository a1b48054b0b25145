#include "catalog/failure_text.h"

#include "catalog/plain_text.h"
#include "format/arguments/typed_argument.h"
#include "format/grammar/format_string.h"
#include "format/prepared/compare_formats.h"
#include "format/prepared/prepared_call.h"
#include "format/prepared/prepared_variants.h"
#include "format/tables/form_table.h"
#include "format/variants/nil_conversion.h"
#include "message/find_catalog.h"
#include "selection/prepare_message.h"

#include <algorithm>
#include <iterator>

namespace
{

using kelto::FailedCall;
using kelto::say;
using kelto::Sentence;

/** Says the value of an argument, or the beginning of a long one. */
void sayValue(Sentence &sentence, const KTArgument &argument, const KTCatalogOptions &options)
{
    constexpr size_t most = 60;
    char value[most + 1];
    size_t size = sizeof value;
    Sentence beginning(value, &size, kelto::Beginning::kept);
    kelto::writePlainly(beginning, argument, options);
    const bool isCut = beginning.finish(&size) != 0;
    const bool isText = argument.type == KT_ARGUMENT_UTF8 || argument.type == KT_ARGUMENT_UCS2 ||
                        argument.type == KT_ARGUMENT_CODE_POINT;
    say(sentence, isText ? "\"" : "");
    kelto::sayOnOneLine(sentence, value);
    say(sentence, isCut ? "..." : "");
    say(sentence, isText ? "\"" : "");
}

/** The slot that an argument is made for, a KTSlotCode; 0 for an unknown type. */
uint32_t slotFor(const KTArgument &argument, uint32_t wanted)
{
    // By KTArgumentType.
    constexpr uint32_t codes[] = {0,
                                  KT_SLOT_INT32,
                                  KT_SLOT_UINT32,
                                  KT_SLOT_INT64,
                                  KT_SLOT_UINT64,
                                  KT_SLOT_CHAR,
                                  KT_SLOT_UNIT,
                                  KT_SLOT_DOUBLE,
                                  KT_SLOT_LONG_DOUBLE,
                                  KT_SLOT_UTF8,
                                  KT_SLOT_UCS2,
                                  KT_SLOT_POINTER,
                                  KT_SLOT_UCS2};
    if (argument.type == KT_ARGUMENT_CODE_POINT && argument.length == 1 && wanted == KT_SLOT_UNIT)
        return KT_SLOT_UNIT;
    return argument.type < std::size(codes) ? codes[argument.type] : 0;
}

const char *nameOf(uint32_t slot)
{
    return slot == KT_SLOT_POINTER ? "an object" : kelto::slotName(slot);
}

/** The first argument that differs from what a format asks for: of another kind, surplus, or missing in the call. */
KTProblem findMismatch(const KTPreparedFormat &format, const KTArgument *arguments, size_t count)
{
    KTProblem problem = {};
    const size_t most = std::max<size_t>(format.slotCount, count);
    for (size_t i = 0; i < most && problem.rule == KT_RULE_NONE; ++i)
    {
        const uint32_t here = i < format.slotCount ? format.slots[i].code : 0;
        const uint32_t there = i < count ? slotFor(arguments[i], here) : 0;
        const bool areIntegers = here <= KT_SLOT_UINT64 && there <= KT_SLOT_UINT64;
        if (here == 0 || there == 0)
            problem.rule = here == 0 ? KT_RULE_ARGUMENT_MISSING : KT_RULE_ARGUMENT_EXTRA;
        else if (here != there && !areIntegers)
            problem.rule = KT_RULE_ARGUMENT_TYPE;
        problem.slot = static_cast<unsigned>(i + 1);
        problem.found = nameOf(here);
        problem.expected = nameOf(there);
    }
    return problem;
}

/** Says a problem as KTProblemText() does, with `reference` in place of "the reference". */
void sayProblem(Sentence &sentence, const KTProblem &problem, std::string_view reference)
{
    constexpr std::string_view other = "the reference";
    char text[512];
    size_t size = sizeof text;
    if (KTProblemText(&problem, &size, text) != 0)
        return say(sentence, KTResultText(KT_ERR_INVALID_PARAMETER));
    const std::string_view whole(text, size);
    const size_t at = whole.rfind(other);
    say(sentence, whole.substr(0, at));
    if (at != std::string_view::npos)
    {
        say(sentence, reference);
        say(sentence, whole.substr(at + other.size()));
    }
}

/** Says the conversion specification of a position in a correct format; the position alone where the format is null. */
void sayConversion(Sentence &sentence, const char *format, unsigned position)
{
    if (format == nullptr)
    {
        say(sentence, "position ");
        return kelto::writeNumber(sentence, position, false);
    }
    KTProblem place = {};
    place.position = position;
    kelto::findPlace(format, place);
    say(sentence, {format + place.offset, place.length});
}

/** Says which conversion cannot write its arguments, though they are of the right kind; false where all can. */
bool sayUnwritable(Sentence &sentence, const FailedCall &call, const KTPreparedFormat &format, const char *text)
{
    const kelto::TypedCall typed = {call.options.formatOptions, call.options.passThru, call.arguments, call.count};
    const KTSlot *const end = format.slots + format.slotCount;
    const KTSlot *first = format.slots;
    while (first != end && kelto::canWrite(format, first->position, typed))
    {
        const unsigned position = first->position;
        while (first != end && first->position == position)
            ++first;
    }
    if (first == end)
        return false;
    sayConversion(sentence, text, first->position);
    say(sentence, " cannot write ");
    for (const KTSlot *slot = first; slot != end && slot->position == first->position; ++slot)
    {
        const auto index = static_cast<size_t>(slot - format.slots);
        say(sentence, slot == first ? "argument " : ", argument ");
        kelto::writeNumber(sentence, index + 1, false);
        say(sentence, ": ");
        sayValue(sentence, call.arguments[index], call.options);
    }
    return true;
}

void sayQuoted(Sentence &sentence, const char *text)
{
    say(sentence, "\"");
    kelto::sayOnOneLine(sentence, text);
    say(sentence, "\": ");
}

/** Prepares the format or message of the call. @return for a refused one its result and its problem. */
kelto::MessageVerdict prepare(const FailedCall &call, kelto::PreparedOwner &format)
{
    kelto::MessageVerdict verdict = {KT_ERR_TABLE_NOT_FOUND, {}};
    verdict.problem.structSize = sizeof verdict.problem;
    if (!kelto::isStarted())
        return {call.result, verdict.problem};
    if (call.language == nullptr)
    {
        kelto::WithNil withNil(call.conversions());
        verdict.result = kelto::prepareFormat(call.text, withNil.table(), format).result;
        if (format == nullptr)
            KTExplainFormat(call.text, withNil.table(), &verdict.problem);
        else
            format->table = call.conversions();
        return verdict;
    }
    kelto::TableView table;
    if (table.open(call.language->table()))
        verdict =
            kelto::prepareMessage(table, call.number, call.language->locale(), call.language->conversions(), format);
    verdict.problem.structSize = sizeof verdict.problem;
    return verdict;
}

/** The variant that the arguments choose. Where there is none it says so, and returns null. */
const KTPreparedFormat *choose(Sentence &sentence, const FailedCall &call, const KTPreparedFormat &format)
{
    int result = 0;
    const KTPreparedFormat *const chosen = kelto::chooseVariant(format, call.arguments, call.count, result);
    if (chosen == nullptr)
        say(sentence, result == KT_ERR_INVALID_MSG_ID
                          ? "there is no variant for these arguments, and none for any other"
                          : "an argument that selects is missing, or no number");
    return chosen;
}

} // namespace

namespace kelto
{

void sayWhy(Sentence &sentence, const FailedCall &call) noexcept
{
    if (call.text == nullptr)
        return say(sentence, "the catalog has no such message");
    if (*call.text == '\0' && call.result == KT_ERR_INVALID_MSG_ID)
        return say(sentence, "the text is empty");
    sayQuoted(sentence, call.text);
    if (call.result == KT_ERR_BUFFER_TOO_SMALL)
    {
        say(sentence, "the text is longer than max_size, ");
        return writeNumber(sentence, call.options.maxSize, false);
    }
    PreparedOwner format;
    const MessageVerdict verdict = prepare(call, format);
    if (format == nullptr)
        return verdict.problem.rule != KT_RULE_NONE ? sayProblem(sentence, verdict.problem, "the reference")
                                                    : say(sentence, KTResultText(verdict.result));
    const KTPreparedFormat *const chosen = choose(sentence, call, *format);
    if (chosen == nullptr)
        return;
    const KTProblem problem = findMismatch(*chosen, call.arguments, call.count);
    if (problem.rule != KT_RULE_NONE)
        return sayProblem(sentence, problem, "the call");
    if ((call.options.formatOptions & KT_ENCODE_ALL) != 0 && findEncoder(call.conversions()) == nullptr)
        return say(sentence, "there is no encoder, and every argument is to go through it");
    if (!sayUnwritable(sentence, call, *chosen, chosen == format.get() ? call.text : nullptr))
        say(sentence, KTResultText(call.result));
}

void sayLostEncoding(Sentence &sentence, const char *text, uint32_t slot) noexcept
{
    KTProblem problem = {};
    problem.rule = KT_RULE_ENCODING_LOST;
    problem.slot = slot + 1;
    sayQuoted(sentence, text);
    sayProblem(sentence, problem, "the source");
}

} // namespace kelto

int KTExplainFailure(const char *format, int result, const KTCatalogOptions *options, const KTArgument *arguments,
                     size_t count, size_t *size, char *text)
{
    KTCatalogOptions read;
    if (format == nullptr || (arguments == nullptr && count != 0) || size == nullptr ||
        (text == nullptr && *size != 0) || kelto::readOptions(options, read) != 0)
        return KT_ERR_INVALID_PARAMETER;
    kelto::RungConversions conversions;
    conversions.set(read, read.sourceLanguage);
    Sentence sentence(text, size, kelto::Beginning::kept);
    kelto::sayWhy(sentence, {format, result, read, arguments, count, nullptr, 0, conversions.table()});
    return sentence.finish(size);
}

int KTExplainCatalog(const KTCatalog *catalog, const KTCatalogRequest *request, int result, size_t *size, char *text)
{
    const bool isRequest = request != nullptr && request->structSize >= sizeof *request;
    if (size == nullptr || (text == nullptr && *size != 0) || (request != nullptr && !isRequest))
        return KT_ERR_INVALID_PARAMETER;
    if (catalog != nullptr && catalog->isFormat)
        return KTExplainFailure(catalog->name.get(), result, &catalog->options,
                                isRequest ? request->arguments : nullptr, isRequest ? request->count : 0, size, text);
    Sentence sentence(text, size, kelto::Beginning::kept);
    if (catalog == nullptr && isRequest && result == KT_ERR_INVALID_PARAMETER)
        say(sentence, "there is no format");
    else if (catalog == nullptr || isRequest || result != KT_ERR_INVALID_PARAMETER)
        say(sentence, KTResultText(result));
    else if (kelto::isCatalogPlace("any", catalog->name.get()))
        say(sentence, "the directory is not empty");
    else
        say(sentence, "the name of a catalog has no '/' and is not empty");
    return sentence.finish(size);
}
