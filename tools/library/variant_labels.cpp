#include "library/variant_labels.h"

#include "text.h"

namespace tool
{

VariantLabels::VariantLabels(const MessageFile &file) : m_file(file)
{
    file.forEachMessage([this](unsigned id, const std::string &message) {
        const auto selector = readSelector(message);
        if (!selector.has_value())
            return;
        m_selectors.emplace(id, *selector);
        for (unsigned place = 0; place < selector->rowLength(); ++place)
            if (m_file.find(selector->messageAt(place)) != nullptr)
                m_places[selector->messageAt(place)].push_back({id, place});
    });
}

template <typename Write> std::string VariantLabels::write(unsigned id, Write write) const
{
    std::string labels;
    const auto found = m_places.find(id);
    if (found == m_places.end())
        return labels;
    for (const Place &place : found->second)
    {
        const Selector &selector = m_selectors.at(place.selector);
        labels += (labels.empty() ? "" : " ") + std::to_string(place.selector) + "[" +
                  placeName(selector.kind, place.place) + write(selector, place.place) + "]";
    }
    return labels;
}

std::string VariantLabels::of(unsigned id) const
{
    return write(id, [](const Selector &, unsigned) { return std::string(); });
}

std::string VariantLabels::withNumbers(unsigned id, const std::string &language) const
{
    return write(id, [&](const Selector &selector, unsigned place) {
        if (selector.kind == Selector::Kind::select || selector.digits > 0)
            return std::string();
        const std::string numbers = numbersAt(selector, language, place, [&](unsigned other) {
            return m_file.find(selector.messageAt(other)) != nullptr;
        });
        return " " + (numbers.empty() ? say(Text::neverReached) : numbers);
    });
}

} // namespace tool
