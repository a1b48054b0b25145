#include "check/rules/files/attributes.h"

namespace tool::check
{
namespace
{

void compareAttribute(const char *name, const Attribute &here, const Attribute &there, Findings &findings)
{
    if (!here.value.empty() && !there.value.empty() && here.value != there.value)
        findings.push_back({Rule::attributeDiffers, 0, here.place.begin, here.place,
                            Phrase{Text::attributeDiffers, {name, quotation(here.value), quotation(there.value)}},
                            Note{true, there.place, {Text::referenceHasItHere}}});
}

} // namespace

void compareProduct(const ParsedFile &parsed, const ParsedFile &reference, Findings &findings)
{
    compareAttribute("product-name", parsed.productName(), reference.productName(), findings);
    compareAttribute("product-version", parsed.productVersion(), reference.productVersion(), findings);
}

void compareName(Subject &subject)
{
    const Message &here = subject.message();
    const Message &there = subject.original();
    if (here.hasName && there.hasName && here.name != there.name)
        subject.find(
            Rule::attributeDiffers, subject.parsed().locateAttribute(here.unit, "resname"),
            {Text::attributeDiffers, {"resname", quotation(here.name), quotation(there.name)}},
            Note{true, subject.reference().locateAttribute(there.unit, "resname"), {Text::referenceHasItHere}});
    const auto isOfVariant = [](const std::string &label) { return label.find('[') != std::string::npos; };
    if (!here.label.empty() && !there.label.empty() && here.label != there.label && !isOfVariant(here.label) &&
        !isOfVariant(there.label))
        subject.find(Rule::attributeDiffers, subject.parsed().locateAttribute(here.unit, "id"),
                     {Text::attributeDiffers, {"id", quotation(here.label), quotation(there.label)}},
                     Note{true, subject.reference().locateAttribute(there.unit, "id"), {Text::referenceHasItHere}});
}

} // namespace tool::check
