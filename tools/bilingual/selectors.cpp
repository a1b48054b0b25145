#include "bilingual/selectors.h"

#include "bilingual/message_parts.h"
#include "bilingual/plural_forms.h"
#include "check/reading/parsed_file_builder.h"
#include "library/selector.h"
#include "text.h"

#include <algorithm>

namespace tool::bilingual
{

std::optional<Selector> readSelector(const std::string &message)
{
    const std::optional<tool::Selector> selector = tool::readSelector(message);
    if (!selector || selector->row == 0) // the row of no message
        return std::nullopt;
    return Selector{selector->kind, static_cast<int>(selector->row), selector->digits, message};
}

std::string labelAt(const Selector &selector, int place)
{
    return placeName(selector.kind, static_cast<unsigned>(place));
}

std::optional<int> placeOf(const Selector &selector, const std::string &label)
{
    const std::optional<unsigned> place = placeNamed(selector.kind, label);
    if (!place || placeName(selector.kind, *place) != label) // a form has one name in bilingual files
        return std::nullopt;
    return static_cast<int>(*place);
}

Rows::Rows(const check::ParsedFile &parsed)
{
    for (const check::Message &message : parsed.messages())
    {
        m_messages.emplace(message.id, &message);
        if (const std::optional<Selector> selector = readSelector(unescaped(parsed.rawText(message))))
            m_selectors.emplace(message.id, *selector);
    }
    for (const auto &[number, selector] : m_selectors)
        for (int place = 0; place < selector.places(); ++place)
            if (m_messages.count(selector.messageAt(place)) > 0)
                m_keys.emplace(selector.messageAt(place), Key{number, labelAt(selector, place)});
}

const Selector *Rows::find(int number) const
{
    const auto found = m_selectors.find(number);
    return found != m_selectors.end() ? &found->second : nullptr;
}

const Key *Rows::keyOf(int id) const
{
    const auto found = m_keys.find(id);
    return found != m_keys.end() ? &found->second : nullptr;
}

const check::Message *Rows::message(int id) const
{
    const auto found = m_messages.find(id);
    return found != m_messages.end() ? found->second : nullptr;
}

const check::Message *Rows::variant(int number, int place) const
{
    const Selector *const selector = find(number);
    if (selector == nullptr || find(selector->messageAt(place)) != nullptr)
        return nullptr;
    return message(selector->messageAt(place));
}

const check::Message *Rows::sourceFor(int number, int place) const
{
    const Selector *const selector = find(number);
    if (selector == nullptr)
        return message(number);
    const bool isOwn = selector->kind != Selector::Kind::plural || place == KT_VARIANT_ONE || place > KT_VARIANT_OTHER;
    const check::Message *const own = variant(number, place);
    if (isOwn && own != nullptr)
        return own;
    // One text for "one" and one for all others, as PO files have it.
    const int others = selector->kind == Selector::Kind::select ? 0 : KT_VARIANT_OTHER;
    if (const check::Message *const other = variant(number, others))
        return other;
    for (const int instead : {KT_VARIANT_MANY, KT_VARIANT_FEW, KT_VARIANT_TWO, KT_VARIANT_ONE, KT_VARIANT_ZERO})
        if (const check::Message *const message = variant(number, instead))
            return message;
    return own;
}

CountArgument countArgumentOf(const check::Format &format)
{
    unsigned argument = 0;
    for (const size_t index : format.byPosition)
        for (const check::Slot &slot : format.conversions[index].slots)
        {
            ++argument;
            if (isInteger(slot.kind) && slot.role == check::Slot::Role::value)
                return {argument, format.conversions[index].position, slot.kind};
        }
    return {};
}

std::vector<int> neededPlaces(const Selector &selector, const std::string &language)
{
    std::vector<int> places;
    if (selector.kind == Selector::Kind::select)
        return places;
    for (const Category &category : categoriesOf(language, selector.kind == Selector::Kind::ordinal))
        places.push_back(category.variant);
    for (int tenths = 0; selector.digits > 0 && tenths < 210; ++tenths) // and what has digits behind the mark
    {
        const int place = KTPluralCategory(language.c_str(), false, KT_DOUBLE(tenths / 10.0), selector.digits);
        if (place >= 0 && std::find(places.begin(), places.end(), place) == places.end())
            places.push_back(place);
    }
    std::sort(places.begin(), places.end());
    return places;
}

std::string exampleFor(const Selector &selector, int place, const std::string &language)
{
    if (selector.kind == Selector::Kind::select || place > KT_VARIANT_OTHER)
        return "";
    for (const Category &category : categoriesOf(language, selector.kind == Selector::Kind::ordinal))
        if (category.variant == place)
            return sayInEnglish({Text::examplesOf, {variantLabels[place], examplesText(category)}});
    return "";
}

check::ParsedFile withoutSelectors(const check::ParsedFile &parsed, const Rows &rows)
{
    const check::SourceText &source = parsed.source();
    check::ParsedFileBuilder builder(source, parsed.body());
    builder.setLanguage(parsed.language(), parsed.languagePlace());
    for (const check::Message &message : parsed.messages())
        if (rows.find(message.id) == nullptr)
            builder.addCopy(parsed, message, message.id);
    return builder.take();
}

} // namespace tool::bilingual
