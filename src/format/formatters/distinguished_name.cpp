#include "format/formatters/distinguished_name.h"

#include "lifecycle/global_state.h"
#include "platform/scoped.h"

#include <functional>
#include <string.h>

// The first delimiter of a name ('.', '/' or '=') decides how the name is divided. Components are taken one at a time,
// from the beginning or from the end, and written as parts. No list of them is kept, so a name may have any number.

namespace
{

const UCS2 *findForward(const UCS2 *from, const UCS2 *end, UCS2 unit)
{
    return std::find(from, end, unit);
}

/** Finds the last such unit before `end`, and returns the place behind it; null when there is none. */
const UCS2 *findBackward(const UCS2 *begin, const UCS2 *end, UCS2 unit)
{
    while (end != begin && end[-1] != unit)
        --end;
    return end != begin ? end : nullptr;
}

/** A name, or a copy of it where the output is going to be written over it. */
class SafeName
{
public:
    /**
     * @param writable  the units at `out` that may be written.
     * @return false when memory for the copy ran out: names of usual length need none.
     */
    bool keep(const UCS2 *name, size_t length, const UCS2 *out, size_t writable)
    {
        m_name = name;
        const std::less<const UCS2 *> before;
        const bool isOverwritten = before(name, out + writable) && before(out, name + length);
        if (!isOverwritten)
            return true;
        UCS2 *copy = m_usual;
        if (length > usualLength)
        {
            m_long = kelto::allocate<UCS2>(glbResHandle, length);
            copy = m_long.get();
        }
        if (copy == nullptr)
            return false;
        std::copy_n(name, length, copy);
        m_name = copy;
        return true;
    }

    const UCS2 *get() const { return m_name; }

private:
    static constexpr size_t usualLength = 255;

    const UCS2 *m_name = nullptr;
    UCS2 m_usual[usualLength];
    kelto::TagBlock<UCS2> m_long;
};

} // namespace

namespace kelto
{

DistinguishedName::DistinguishedName(const UCS2 *name, size_t length) noexcept
    : m_begin(name), m_end(name + length), m_delimiter(0), m_separator(0)
{
    constexpr UCS2 delimiters[] = {u'.', u'/', u'='};
    const UCS2 *const first = std::find_first_of(m_begin, m_end, std::begin(delimiters), std::end(delimiters));
    if (first == m_end)
        return;
    m_delimiter = *first;
    m_separator = isTyped() ? u',' : m_delimiter;
    if (isTyped())
        return;
    // A delimiter at either end has no component beside it.
    if (first == m_begin && ++m_begin == m_end)
        m_begin = m_end = nullptr;
    else if (m_end[-1] == m_delimiter)
        --m_end;
}

/**
 * The value of a component in a typed name ("CN=alice"), behind the name of its attribute. A part between two commas
 * without a '=' is no component: it belongs to the attribute's name that follows.
 */
bool DistinguishedName::componentOf(const UCS2 *begin, const UCS2 *end, Component &component) const noexcept
{
    if (isTyped())
    {
        begin = findForward(begin, end, u'=');
        if (begin++ == end)
            return false;
    }
    component = {begin, static_cast<size_t>(end - begin)};
    return true;
}

bool DistinguishedName::takeFirst(const UCS2 *&next, Component &component) const noexcept
{
    const UCS2 *const begin = next;
    const UCS2 *const end = m_delimiter != 0 ? findForward(begin, m_end, m_separator) : m_end;
    next = end != m_end ? end + 1 : nullptr;
    return componentOf(begin, end, component);
}

bool DistinguishedName::takeLast(const UCS2 *&end, Component &component) const noexcept
{
    const UCS2 *const behind = m_delimiter != 0 ? findBackward(m_begin, end, m_separator) : nullptr;
    const bool isComponent = componentOf(behind != nullptr ? behind : m_begin, end, component);
    end = behind != nullptr ? behind - 1 : nullptr;
    return isComponent;
}

Flag_t nameKindOf(const char *convName) noexcept
{
    return strnlen(convName, 3) == 3 && convName[2] == 'S' ? CONV_DNS : CONV_DND;
}

NameText::NameText(const DistinguishedName &source, Flag_t kind) noexcept
    : name(source), style(nameStyle(kind)), count(0)
{
    forEachPart([this](const UCS2 * /*begin*/, size_t length) { count += length; });
}

} // namespace kelto

int _formatDN(const UCS2 *name, Flag_t kind, UCS2 *out)
{
    const size_t length = KTUCS2strlen(name);
    SafeName safe;
    if (!safe.keep(name, length, out, length + 2))
        return KT_ERR_NO_MEMORY;
    *kelto::NameText(kelto::DistinguishedName(safe.get(), length), kind).writeTo(out) = 0;
    return 0;
}

int formatDN(const char *convName, int /*width*/, int /*precision*/, int flags, KTEncoder /*passThru1*/,
             void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    const auto *const name = static_cast<const UCS2 *>(*argSlot);
    const size_t length = KTUCS2strlen(name);
    kelto::Field field(sizeInOut, out);
    SafeName safe;
    constexpr size_t mostAdded = 10; // both tags and the terminator
    if (!safe.keep(name, length, out, std::min<size_t>(*sizeInOut, length + mostAdded)))
        return KT_ERR_NO_MEMORY;
    const kelto::DistinguishedName source(safe.get(), length);
    return kelto::writeName(field, flags, kelto::NameText(source, kelto::nameKindOf(convName)));
}
