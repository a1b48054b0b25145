#include "gen/names.h"

#include "gen/macros.h"

#include <algorithm>
#include <fmt/core.h>
#include <map>

namespace tool::gen
{
namespace
{

/** The words of C and C++ up to their newest standards, and the names that a generated function uses itself. */
constexpr std::string_view words[] = {
    "alignas",     "alignof",
    "and",         "and_eq",
    "asm",         "auto",
    "bitand",      "bitor",
    "bool",        "break",
    "case",        "catch",
    "char",        "char16_t",
    "char32_t",    "char8_t",
    "class",       "co_await",
    "co_return",   "co_yield",
    "compl",       "concept",
    "const",       "const_cast",
    "consteval",   "constexpr",
    "constinit",   "continue",
    "decltype",    "default",
    "delete",      "do",
    "double",      "dynamic_cast",
    "else",        "enum",
    "errno",       "explicit",
    "export",      "extern",
    "false",       "float",
    "for",         "friend",
    "goto",        "if",
    "inline",      "int",
    "kelto",       "linux",
    "long",        "mutable",
    "namespace",   "new",
    "noexcept",    "not",
    "not_eq",      "nullptr",
    "operator",    "or",
    "or_eq",       "private",
    "protected",   "public",
    "register",    "reinterpret_cast",
    "requires",    "restrict",
    "return",      "short",
    "signed",      "sizeof",
    "static",      "static_assert",
    "static_cast", "std",
    "stderr",      "stdin",
    "stdout",      "struct",
    "switch",      "template",
    "this",        "thread_local",
    "throw",       "true",
    "try",         "typedef",
    "typeid",      "typename",
    "typeof",      "typeof_unqual",
    "union",       "unix",
    "unsigned",    "using",
    "virtual",     "void",
    "volatile",    "wchar_t",
    "while",       "xor",
    "xor_eq",
};

constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view others = "0123456789_";

std::string nameOf(const check::Message &message)
{
    return message.hasName ? message.name : fmt::format("message_{}", message.id);
}

} // namespace

std::optional<Text> faultOfName(std::string_view name)
{
    const auto isLetter = [](char byte) { return letters.find(byte) != std::string_view::npos; };
    const auto isPart = [&](char byte) { return isLetter(byte) || others.find(byte) != std::string_view::npos; };
    if (name.empty() || !isLetter(name[0]) || !std::all_of(name.begin(), name.end(), isPart))
        return Text::isNoName;
    if (name.find("__") != std::string_view::npos)
        return Text::isReserved;
    const bool isWord = std::find(std::begin(words), std::end(words), name) != std::end(words);
    if (isWord || macros.find(fmt::format(" {} ", name)) != std::string_view::npos)
        return Text::isTaken;
    return std::nullopt;
}

std::string inCapitals(std::string_view name)
{
    std::string capitals(name);
    for (char &byte : capitals)
        if (byte >= 'a' && byte <= 'z')
            byte = static_cast<char>(byte - 'a' + 'A');
    return capitals;
}

std::string textConstant(std::string_view constant)
{
    return fmt::format("{}_TEXT", constant);
}

std::string prefixOf(std::string_view nameSpace)
{
    return inCapitals(nameSpace) + "_";
}

std::vector<std::string> namesOf(const check::ParsedFile &parsed, std::string_view nameSpace, check::Findings &findings)
{
    const std::string prefix = prefixOf(nameSpace);
    std::vector<std::string> names;
    std::map<std::string, const check::Message *> taken; // what constants are made of, behind their prefix
    for (const check::Message &message : parsed.messages())
    {
        const std::string name = nameOf(message);
        const check::Range place = parsed.locateAttribute(message.unit, "resname");
        names.push_back(name);
        std::optional<Text> fault = faultOfName(name);
        if (!fault && name.substr(0, prefix.size()) == prefix)
            fault = Text::beginsAsConstants;
        if (fault)
        {
            findings.push_back({check::Rule::badName, message.id, message.unit.begin, place,
                                Phrase{*fault, {Phrase{Text::theName, {check::quotation(name)}}}}, std::nullopt});
            continue;
        }
        const std::string constants[] = {inCapitals(name), textConstant(inCapitals(name))};
        for (const std::string &constant : constants)
        {
            const bool isMacro = faultOfName(prefix + constant).has_value();
            const auto [first, isNew] = taken.emplace(constant, &message);
            const bool isSame = constant == constants[0] && inCapitals(nameOf(*first->second)) == constant;
            if (isMacro)
                findings.push_back({check::Rule::badName, message.id, message.unit.begin, place,
                                    Phrase{Text::isTaken, {Phrase{Text::theName, {prefix + constant}}}}, std::nullopt});
            else if (!isNew)
                findings.push_back({check::Rule::badName, message.id, message.unit.begin, place,
                                    isSame ? Phrase{Text::nameRepeated, {check::quotation(name)}}
                                           : Phrase{Text::constantRepeated, {prefix + check::quotation(constant)}},
                                    check::Note{false,
                                                parsed.locateAttribute(first->second->unit, "resname"),
                                                {isSame ? Text::nameUsedFirst : Text::constantOfThis}}});
            else
                continue;
            break;
        }
    }
    return names;
}

} // namespace tool::gen
