/**
 * Distinguished names. A name is split where it stands, whatever its length: its notation is told by the first of '.',
 * '/' and '=' in it, and its components are handed out in either direction. A converted name is one piece of a field.
 */
#ifndef KELTO_FORMAT_FORMATTERS_DISTINGUISHED_NAME_H
#define KELTO_FORMAT_FORMATTERS_DISTINGUISHED_NAME_H

#include "format/formatters/layout.h"
#include "format/formatters/tags.h"

namespace kelto
{

/** A name in any of its notations, not terminated. */
class DistinguishedName
{
public:
    DistinguishedName(const UCS2 *name, size_t length) noexcept;

    /** Calls `take(begin, length)` for each component, from the root to the leaf or the other way round. */
    template <typename Take> void forEachComponent(bool fromRoot, Take take) const noexcept
    {
        Component component;
        if (fromRoot == isRootFirst())
            for (const UCS2 *next = m_begin; next != nullptr;)
            {
                if (takeFirst(next, component))
                    take(component.begin, component.length);
            }
        else
            for (const UCS2 *end = m_end; end != nullptr;)
            {
                if (takeLast(end, component))
                    take(component.begin, component.length);
            }
    }

private:
    struct Component
    {
        const UCS2 *begin;
        size_t length;
    };

    bool isRootFirst() const noexcept { return m_delimiter == u'/'; }
    bool isTyped() const noexcept { return m_delimiter == u'='; }
    bool takeFirst(const UCS2 *&next, Component &component) const noexcept;
    bool takeLast(const UCS2 *&end, Component &component) const noexcept;
    bool componentOf(const UCS2 *begin, const UCS2 *end, Component &component) const noexcept;

    const UCS2 *m_begin; // null, like m_end, for a name without components
    const UCS2 *m_end;
    UCS2 m_delimiter; // of the notation; 0 for a single component
    UCS2 m_separator; // between components
};

/** How a name is written. */
struct NameStyle
{
    UCS2 delimiter;
    bool isRootFirst;
};

inline NameStyle nameStyle(Flag_t kind) noexcept
{
    return kind == CONV_DNS ? NameStyle{ucs2_slash[0], true} : NameStyle{ucs2_dot[0], false};
}

/** The notation that the third character of a conversion's name asks for; the dotted one where the name is shorter. */
Flag_t nameKindOf(const char *convName) noexcept;

/** A converted name as a piece of a field. */
struct NameText
{
    const DistinguishedName &name;
    NameStyle style;
    uint64_t count;

    NameText(const DistinguishedName &source, Flag_t kind) noexcept;

    /** Hands the parts out in their order: `take(units, length)` for components and delimiters. */
    template <typename Take> void forEachPart(Take take) const noexcept
    {
        bool isFirst = true;
        name.forEachComponent(style.isRootFirst, [&](const UCS2 *begin, size_t length) {
            if (!isFirst)
                take(&style.delimiter, 1);
            isFirst = false;
            take(begin, length);
        });
    }

    UCS2 *writeTo(UCS2 *out) const noexcept
    {
        const UCS2 *const end = out + count;
        forEachPart([&](const UCS2 *begin, size_t length) {
            out = std::copy_n(begin, std::min<size_t>(length, static_cast<size_t>(end - out)), out);
        });
        return out;
    }
};

/** "DND" and "DNS". */
template <typename Out> int writeName(Out &out, int flags, const NameText &name) noexcept
{
    return writeTagged(out, flags, dn_tag_o, dn_tag_c, Ending::terminated, name);
}

} // namespace kelto

extern "C" {
#pragma GCC visibility push(default)

/**
 * Converts a name.
 * @param kind  CONV_DNS for the form with slashes, root first; any other for the dotted one, leaf first.
 * @param out   room for the name's length plus 2 units; terminated. It may overlap the name, which is then copied
 *             first.
 * @return 0; KT_ERR_NO_MEMORY where a name of 256 units and more cannot be copied.
 *
 *     UCS2 text[19];
 *     int result = _formatDN(u"CN=alice,O=corp", CONV_DND, text); // "alice.corp"
 */
int _formatDN(const UCS2 *name, Flag_t kind, UCS2 *out);

#pragma GCC visibility pop
}

#endif
