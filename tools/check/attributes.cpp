#include "check/attributes.h"

#include "check/digest.h"
#include "check/path_language.h"

#include <algorithm>
#include <cctype>

namespace tool::check
{
namespace
{

char folded(char byte)
{
    return byte == '_' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(byte)));
}

/**
 * Whether two names of languages begin with the same `length` bytes, whatever their case, "_" being "-": with the
 * length of the shorter one, "pt" agrees with "pt-BR", and "de_AT" with "de-at".
 */
bool agree(std::string_view a, std::string_view b, size_t length)
{
    return std::equal(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(length), b.begin(),
                      [](char x, char y) { return folded(x) == folded(y); });
}

void compareAttribute(const char *name, const Attribute &here, const Attribute &there, Findings &findings)
{
    if (!here.value.empty() && !there.value.empty() && here.value != there.value)
        findings.push_back({Rule::attributeDiffers, 0, here.place.begin, here.place,
                            Phrase{Text::attributeDiffers, {name, quotation(here.value), quotation(there.value)}},
                            Note{true, there.place, {Text::referenceHasItHere}}});
}

} // namespace

void checkLanguage(const Catalog &catalog, const Catalog *reference, Findings &findings)
{
    const std::string &language = catalog.language();
    if (language.empty())
        return;
    const Range place = catalog.languagePlace();
    const std::string inPath = languageInPath(catalog.source().name());
    const size_t common = std::min(inPath.size(), language.size());
    if (!inPath.empty() && !agree(inPath, language, common))
        findings.push_back({Rule::pathLanguage, 0, place.begin, place,
                            Phrase{Text::languageNotOfPath, {quotation(language), inPath}}, std::nullopt});
    if (reference != nullptr && language.size() == reference->language().size() &&
        agree(language, reference->language(), language.size()))
        findings.push_back({Rule::sameLanguage, 0, place.begin, place, Phrase{Text::languageOfReference, {language}},
                            Note{true, reference->languagePlace(), {Text::referenceHasItHere}}});
}

void compareProduct(const Catalog &catalog, const Catalog &reference, Findings &findings)
{
    compareAttribute("product-name", catalog.productName(), reference.productName(), findings);
    compareAttribute("product-version", catalog.productVersion(), reference.productVersion(), findings);
}

void compareName(Subject &subject)
{
    const Message &here = subject.message();
    const Message &there = subject.original();
    if (here.hasName && there.hasName && here.name != there.name)
        subject.find(
            Rule::attributeDiffers, subject.catalog().locateAttribute(here.unit, "resname"),
            {Text::attributeDiffers, {"resname", quotation(here.name), quotation(there.name)}},
            Note{true, subject.reference().locateAttribute(there.unit, "resname"), {Text::referenceHasItHere}});
    const auto isOfVariant = [](const std::string &label) { return label.find('[') != std::string::npos; };
    if (!here.label.empty() && !there.label.empty() && here.label != there.label && !isOfVariant(here.label) &&
        !isOfVariant(there.label))
        subject.find(Rule::attributeDiffers, subject.catalog().locateAttribute(here.unit, "id"),
                     {Text::attributeDiffers, {"id", quotation(here.label), quotation(there.label)}},
                     Note{true, subject.reference().locateAttribute(there.unit, "id"), {Text::referenceHasItHere}});
}

void compareAge(Subject &subject)
{
    const Message &here = subject.message();
    if (!here.madeFrom.empty() && here.madeFrom != digestOf(subject.originalText()))
        subject.find(Rule::outdated, subject.catalog().locateAttribute(here.unit, sourceDigest), {Text::madeFromOther},
                     Note{true, subject.original().source, {Text::referenceIsHere}});
}

} // namespace tool::check
