#include "check/reading/refusal.h"

#include "message/grammar/attributes.h"

namespace tool::check
{
namespace
{

using kelto::elementRules;
using kelto::elements;
using kelto::judgeStart;
using kelto::Start;

/** The name of an element; empty for the document. */
const char *nameOf(ElementID id)
{
    const char *const name = kelto::rowOf(id).name;
    return name != nullptr ? name : "";
}

/** The element in which people expect another. The rules let a "context" into more. */
ElementID homeOf(const ElementMapRow &element)
{
    if (element.id == ELM_CONTEXT)
        return ELM_CONTEXT_GROUP;
    if (const ElementID before = elementRules[element.id].mustFollow; before != ELM_UNKNOWN)
        return before;
    for (const ElementMapRow &row : elements)
        if (row.level + 1 == element.level)
            return row.id;
    return ELM_UNKNOWN;
}

/** Whether an element may stand in a parent, whatever stands in front of it. */
bool mayStandIn(ElementID parent, const ElementMapRow &element)
{
    const ElementID before = elementRules[element.id].mustFollow;
    return kelto::rowOf(parent).level + 1 == element.level && (before == ELM_UNKNOWN || before == parent);
}

/** Whether an element that the parent needs could no longer start behind this one. */
bool keepsAway(const FirstPassState &pass, ElementID parent, const ElementMapRow &element)
{
    for (const ElementID needed : elementRules[parent].needed)
    {
        if (needed == ELM_UNKNOWN || needed == element.id || judgeStart(pass, kelto::rowOf(needed)) != Start::accepted)
            continue;
        FirstPassState behind = pass;
        kelto::openElement(behind, element);
        kelto::closeElement(behind, element);
        if (judgeStart(behind, kelto::rowOf(needed)) != Start::accepted)
            return true;
    }
    return false;
}

/** Adds what is wrong with an attribute that must be there and have a text. */
void addFaultOf(const char *attribute, const ElementMapRow &element, const char **attributes,
                std::vector<AttributeFault> &faults)
{
    const char *const value = kelto::findAttribute(attributes, attribute);
    if (value == nullptr)
        faults.push_back({nullptr, Rule::attributeMissing, {Text::attributeMissing, {element.name, attribute}}});
    else if (*value == '\0')
        faults.push_back({attribute, Rule::attributeMissing, {Text::attributeEmpty, {element.name, attribute}}});
}

void addFaultsOfFile(const ElementMapRow &element, const char **attributes, std::vector<AttributeFault> &faults)
{
    const kelto::FileAttributes file = kelto::readFileAttributes(attributes);
    if (file.language == nullptr)
        addFaultOf("source-language", element, attributes, faults);
    else if (!file.namesLanguage())
        faults.push_back({"source-language", Rule::language, {Text::badLanguage, {quotation(file.language)}}});
    addFaultOf("product-name", element, attributes, faults);
    addFaultOf("product-version", element, attributes, faults);
}

void addFaultsOfUnit(const char **attributes, std::vector<AttributeFault> &faults)
{
    const kelto::MessageNumber number = kelto::findMessageNumber(attributes);
    if (number.digits == nullptr)
        faults.push_back({nullptr, Rule::attributeMissing, {Text::numberMissing}});
    else
        faults.push_back({number.attribute, Rule::badId, {Text::badNumber, {quotation(number.digits)}}});
}

} // namespace

std::optional<Phrase> whyMisplaced(const FirstPassState &pass, ElementID parent, const ElementMapRow &element,
                                   const char *name)
{
    const Start answer = judgeStart(pass, element);
    const char *const parentName = nameOf(parent);
    if (answer == Start::accepted)
        return keepsAway(pass, parent, element) ? std::optional(Phrase{Text::inFrontOfSource, {name}}) : std::nullopt;
    if (parent == ELM_UNKNOWN && element.id != ELM_XLIFF)
        return Phrase{Text::xliffExpected, {quotation(name)}};
    if (answer == Start::unknownElement)
        return Phrase{Text::unknownElement, {quotation(name)}};
    if (element.id == ELM_XLIFF)
        return Phrase{Text::xliffInside, {parentName}};
    if (!mayStandIn(parent, element))
        return Phrase{Text::misplacedElement, {name, parentName, nameOf(homeOf(element))}};
    if (answer == Start::repetition)
        return Phrase{Text::secondElement, {name, parentName}};
    if (element.id == ELM_X)
        return Phrase{Text::behindContext};
    return Phrase{Text::elementRefused, {name, parentName}};
}

std::vector<AttributeFault> faultsOf(const ElementMapRow &element, const char **attributes)
{
    std::vector<AttributeFault> faults;
    if (element.id == ELM_FILE)
        addFaultsOfFile(element, attributes, faults);
    else if (element.id == ELM_TRANS_UNIT)
        addFaultsOfUnit(attributes, faults);
    else if (element.id == ELM_X)
        for (const char *const attribute : {"ts", "id"})
            addFaultOf(attribute, element, attributes, faults);
    if (faults.empty())
        faults.push_back({nullptr, Rule::attributeMissing, {Text::attributesRefused, {element.name}}});
    return faults;
}

} // namespace tool::check
