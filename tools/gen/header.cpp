#include "gen/header.h"

#include "check/rules/conversions/variants.h"
#include "check/texts/resolved_text.h"
#include "check/texts/utf8.h"
#include "gen/c_function.h"
#include "gen/names.h"
#include "io/invisible.h"
#include "library/language_conversions.h"

#include <algorithm>
#include <fmt/core.h>

namespace tool::gen
{
namespace
{

using namespace check;

/** A text as a literal of C and C++. */
std::string literalOf(std::string_view text)
{
    std::string literal = "\"";
    for (size_t at = 0; at < text.size();)
    {
        const size_t begin = at;
        const char32_t character = takeUtf8(text, at);
        if (character == '\n')
            literal += "\\n";
        else if (character == '\t')
            literal += "\\t";
        else if (character == '"' || character == '\\')
            literal += fmt::format("\\{}", static_cast<char>(character));
        else if (character == '?' && literal.back() == '?')
            literal += "\\?";                                       // no trigraph
        else if (isInvisible(character) || isUnassigned(character)) // an editor would not show it as it is
            for (const char byte : text.substr(begin, at - begin))
                literal += fmt::format("\\{:03o}", static_cast<unsigned char>(byte));
        else
            literal += text.substr(begin, at - begin);
    }
    return literal + '"';
}

/** The text for the inside of a comment: nothing in it ends the comment. */
std::string commentOf(std::string_view text)
{
    std::string comment = literalOf(text);
    for (size_t at = comment.find("*/"); at != std::string::npos; at = comment.find("*/", at))
        comment.insert(at + 1, " ");
    for (size_t at = comment.find("/*"); at != std::string::npos; at = comment.find("/*", at))
        comment.insert(at + 1, " ");
    return comment;
}

/** A name for each argument, in the order in which they are passed. */
std::vector<std::string> parametersOf(const Format &format)
{
    std::vector<std::string> names;
    for (const size_t index : format.byPosition)
    {
        const Conversion &conversion = format.conversions[index];
        const auto isValue = [](const Slot &slot) { return slot.role == Slot::Role::value; };
        const auto values = std::count_if(conversion.slots.begin(), conversion.slots.end(), isValue);
        int value = 0;
        for (const Slot &slot : conversion.slots)
            if (slot.role != Slot::Role::value)
                names.push_back(
                    fmt::format("{}{}", slot.role == Slot::Role::width ? "width" : "precision", conversion.position));
            else if (values == 1)
                names.push_back(fmt::format("argument{}", conversion.position));
            else
                names.push_back(fmt::format("argument{}_{}", conversion.position, ++value));
    }
    return names;
}

/** Whether the C++ layer can look at a text while it is compiled: its conversions are those of the library by name. */
bool isKnownToCompiler(const std::string &text, formTable *table)
{
    const std::optional<std::vector<uint32_t>> known = slotCodesOf(text, namedConversions());
    return known && known == slotCodesOf(text, table); // a program may have given a name of the library's to another
}

/** The texts in the source of a message that selects others: the one for any other number, and perhaps one for 1. */
struct CountedTexts
{
    std::string one;
    unsigned argument = 0; // 0 where there is no text of its own for 1
    std::string other;
};

/** The text of a message, or nothing where it is none that is formatted. */
std::string formatIn(const ParsedFile &parsed, const Variants &variants, unsigned id)
{
    const Message *const message = variants.find(static_cast<int>(id));
    if (message == nullptr || variants.selector(message->id) != nullptr)
        return "";
    return std::string(ResolvedText(parsed.rawText(*message)).text());
}

/** Whether the text takes an integer as the argument of a number, from 1. */
bool takesInteger(const Format &format, unsigned argument)
{
    const std::vector<Slot> slots = format.arguments();
    return argument <= slots.size() && isInteger(slots[argument - 1].kind);
}

CountedTexts countedTexts(const ParsedFile &parsed, const Variants &variants, const Message &message, formTable *table)
{
    const Selector &selector = *variants.selector(message.id);
    const Message *const sentence = variants.counterpart({message.id, {}});
    CountedTexts texts;
    if (sentence == nullptr)
        return texts;
    texts.other = std::string(ResolvedText(parsed.rawText(*sentence)).text());
    if (selector.kind != Selector::Kind::plural || selector.digits != 0 ||
        sentence->id != static_cast<int>(selector.messageAt(KT_VARIANT_OTHER)))
        return texts;
    if (!takesInteger(parseFormat(texts.other, table), selector.argument))
        return texts;
    const auto takes = [&](unsigned place) {
        texts.one = formatIn(parsed, variants, selector.messageAt(place));
        return !texts.one.empty() && isKnownToCompiler(texts.one, table) && isKnownToCompiler(texts.other, table);
    };
    const bool isOneExact = KTPluralCategory(parsed.language().c_str(), false, KT_INT(1), 0) == KT_VARIANT_ONE;
    if (takes(KT_VARIANT_EXACTLY_1) || (isOneExact && takes(KT_VARIANT_ONE)))
        texts.argument = selector.argument;
    return texts;
}

/**
 * A message that is formatted. Its arguments have types of the caller's: the text in the source is compared with them.
 */
std::string formattingFunction(const Message &message, const std::string &name, const CountedTexts &texts,
                               const Format &format, formTable *table)
{
    std::string types;
    std::string parameters;
    std::string arguments;
    for (const std::string &parameter : parametersOf(format))
    {
        std::string type = parameter;
        type[0] = static_cast<char>(type[0] - 'a' + 'A');
        types += fmt::format("{}class {}", types.empty() ? "" : ", ", type);
        parameters += fmt::format(", const {} &{}", type, parameter);
        arguments += ", " + parameter;
    }
    const char *const wrapper = isKnownToCompiler(texts.other, table) ? "KELTO_DEFAULT" : "::kelto::unchecked";
    std::string source = fmt::format("{}({})", wrapper, literalOf(texts.other));
    if (texts.argument != 0)
        source = fmt::format("KELTO_PLURAL({}, {}, {})", texts.argument, literalOf(texts.one), literalOf(texts.other));
    return fmt::format("{}std::string {}(const ::kelto::catalog &catalog{})\n"
                       "{{\n    return catalog.format({}, {}{});\n}}\n",
                       types.empty() ? "inline " : fmt::format("template <{}>\n", types), name, parameters, message.id,
                       source, arguments);
}

/** A message that no call can format, and which is therefore shown as it is. */
std::string fetchingFunction(const Message &message, const std::string &name, std::string_view text)
{
    return fmt::format("inline std::string {}(const ::kelto::catalog &catalog)\n"
                       "{{\n    const std::string_view text = catalog.text({});\n"
                       "    return std::string(text.data() != nullptr ? text : std::string_view({}));\n}}\n",
                       name, message.id, literalOf(text));
}

/** A number that other texts hardly have (FNV-1a). */
uint64_t fingerprintOf(const std::string &text)
{
    uint64_t fingerprint = 0xCBF29CE484222325;
    for (const char byte : text)
        fingerprint = (fingerprint ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    return fingerprint;
}

/** "STORE_MESSAGES_HPP". */
std::string guardOf(const std::string &fileName)
{
    const std::string name = fileName.substr(fileName.rfind('/') + 1);
    std::string guard = inCapitals(name);
    for (char &byte : guard)
        if ((byte < 'A' || byte > 'Z') && (byte < '0' || byte > '9'))
            byte = '_';
    return !faultOfName(guard) ? guard : fmt::format("KELTO_GENERATED_{:X}", fingerprintOf(name));
}

} // namespace

std::string headerOf(const ParsedFile &parsed, const std::vector<std::string> &names, formTable *table,
                     const HeaderOptions &options)
{
    const std::string prefix = prefixOf(options.nameSpace);
    std::string constants;
    std::string functions;
    std::string cFunctions;
    const Variants variants(parsed);
    for (size_t i = 0; i < names.size(); ++i)
    {
        const Message &message = parsed.messages()[i];
        if (variants.pathTo(message.id) != nullptr) // a program asks for the message that selects it
            continue;
        const bool isSelector = variants.selector(message.id) != nullptr;
        const CountedTexts texts = isSelector
                                       ? countedTexts(parsed, variants, message, table)
                                       : CountedTexts{"", 0, std::string(ResolvedText(parsed.rawText(message)).text())};
        const std::string &text = texts.other;
        const Format format = parseFormat(text, table);
        const std::string constant = prefix + inCapitals(names[i]);
        constants += fmt::format("#define {} {}\n#define {} {}\n", constant, message.id, textConstant(constant),
                                 literalOf(text));
        functions += fmt::format("\n/** {} */\n{}", commentOf(text),
                                 format.isAccepted ? formattingFunction(message, names[i], texts, format, table)
                                                   : fetchingFunction(message, names[i], text));
        std::string cName = fmt::format("{}_{}", options.nameSpace, names[i]);
        if (cName == constant)
            cName += "_format"; // no constant ends so
        const std::vector<std::string> parameters = parametersOf(format);
        const bool isCounted = texts.argument != 0;
        const std::string source = isCounted ? fmt::format("{} == 1 ? {} : {}", parameters[texts.argument - 1],
                                                           literalOf(texts.one), literalOf(text))
                                             : literalOf(text);
        const CFunction inC = {cName, fmt::format("{}", message.id), text, source};
        cFunctions +=
            fmt::format("\n/** {} */\n{}", commentOf(text),
                        format.isAccepted ? formattingCFunction(inC, parameters, table) : fetchingCFunction(inC));
    }
    std::string guard = guardOf(options.fileName);
    if (constants.find(fmt::format("#define {} ", guard)) != std::string::npos) // a message has its name
        guard += fmt::format("_{:X}", fingerprintOf(guard));
    return fmt::format(
        "/* Made by `kelto gen` from {0}; changes made here are lost. */\n"
        "#ifndef {1}\n#define {1}\n\n"
        "/* The numbers of the messages, and their texts in the source language. */\n\n{2}\n"
        "#ifdef __cplusplus\n\n#include <kelto.hpp>\n\n#include <string>\n#include <string_view>\n\n"
        "namespace {3}\n{{\n{4}\n}} // namespace {3}\n\n#else\n\n#include <kelto.h>\n{5}\n#endif\n\n#endif\n",
        commentOf(options.catalogName), guard, constants, options.nameSpace, functions, cFunctions);
}

} // namespace tool::gen
