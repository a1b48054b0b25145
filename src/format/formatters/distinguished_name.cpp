#include "format/formatters/distinguished_name.h"

#include "format/field.h"
#include "format/formatters/tags.h"

#include <algorithm>
#include <string.h>

namespace
{

/** A component of a name, in place. */
struct Component
{
    const UCS2 *begin;
    size_t length;
};

/** Hands out the components of a name in the order in which they stand. */
class ComponentReader
{
public:
    explicit ComponentReader(const UCS2 *name) : m_next(name)
    {
        const UCS2 *first = name;
        while (*first != 0 && *first != u'.' && *first != u'/' && *first != u'=')
            ++first;
        m_delimiter = *first;
        if (isTyped())
            m_next = first + 1;
        else if (m_delimiter != 0 && first == name)
            skipDelimiter();
    }

    bool isRootFirst() const { return m_delimiter == u'/'; }

    /** The next component; false when there is none. */
    bool next(Component &component)
    {
        if (m_next == nullptr)
            return false;
        const UCS2 *const begin = m_next;
        const UCS2 separator = isTyped() ? u',' : m_delimiter;
        while (*m_next != 0 && *m_next != separator)
            ++m_next;
        component = {begin, static_cast<size_t>(m_next - begin)};
        if (*m_next == 0)
            m_next = nullptr;
        else if (isTyped())
            skipAttributeName();
        else
            skipDelimiter();
        return true;
    }

private:
    bool isTyped() const { return m_delimiter == u'='; }

    // A delimiter that ends the name has no component behind it.
    void skipDelimiter()
    {
        ++m_next;
        if (*m_next == 0)
            m_next = nullptr;
    }

    // The attribute's name runs to the next '='; without one, nothing that follows is a value.
    void skipAttributeName()
    {
        while (*m_next != 0 && *m_next != u'=')
            ++m_next;
        m_next = *m_next != 0 ? m_next + 1 : nullptr;
    }

    const UCS2 *m_next; // null at the end
    UCS2 m_delimiter;
};

/** How a name is written. */
struct Style
{
    UCS2 delimiter;
    bool isRootFirst;
};

Style styleOf(Flag_t kind)
{
    return kind == CONV_DNS ? Style{ucs2_slash[0], true} : Style{ucs2_dot[0], false};
}

/** The third character tells, so a name of fewer is taken for the dotted form. */
Flag_t kindOf(const char *convName)
{
    return strnlen(convName, 3) == 3 && convName[2] == 'S' ? CONV_DNS : CONV_DND;
}

/** The length of the name as written: the same in either style. */
size_t writtenLength(const UCS2 *name)
{
    ComponentReader reader(name);
    Component component;
    size_t length = 0;
    size_t count = 0;
    for (; reader.next(component); ++count)
        length += component.length;
    return count > 0 ? length + count - 1 : 0;
}

/** A converted name as a piece of a field. */
struct Name
{
    const UCS2 *name;
    Style style;
    uint64_t count; // writtenLength()

    UCS2 *writeTo(UCS2 *out) const
    {
        ComponentReader reader(name);
        const bool isReversed = reader.isRootFirst() != style.isRootFirst;
        UCS2 *front = out;
        UCS2 *back = out + count;
        Component component;
        for (bool isFirst = true; reader.next(component); isFirst = false)
        {
            const UCS2 *const end = component.begin + component.length;
            if (isReversed)
            {
                if (!isFirst)
                    *--back = style.delimiter;
                back = std::copy_backward(component.begin, end, back);
            }
            else
            {
                if (!isFirst)
                    *front++ = style.delimiter;
                front = std::copy(component.begin, end, front);
            }
        }
        return out + count;
    }
};

Name nameOf(const UCS2 *name, Flag_t kind)
{
    return {name, styleOf(kind), writtenLength(name)};
}

} // namespace

int _formatDN(const UCS2 *name, Flag_t kind, UCS2 *out)
{
    *nameOf(name, kind).writeTo(out) = 0;
    return 0;
}

int formatDN(const char *convName, int /*width*/, int /*precision*/, int flags, KTEncoder /*passThru1*/,
             void * /*passThru2*/, void **argSlot, unsigned long *sizeInOut, UCS2 *out)
{
    return kelto::writeTagged(flags, dn_tag_o, dn_tag_c, sizeInOut, out, kelto::Ending::terminated,
                              nameOf(static_cast<const UCS2 *>(*argSlot), kindOf(convName)));
}
