/**
 * A walk over an XML document: expat calls the functions of an object, start(name, attributes), end(name) and
 * text(words), for each tag and each stretch of text.
 */
#ifndef KELTO_TOOLS_BILINGUAL_XML_WALK_H
#define KELTO_TOOLS_BILINGUAL_XML_WALK_H

#include <expat.h>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>

namespace tool::bilingual
{

/** Stands between a namespace and a name, where names are read with their namespaces. */
constexpr char namespaceEnd = '|';

enum class XmlNames
{
    asWritten,
    withNamespaces
};

template <typename Taker> class XmlWalk
{
public:
    XmlWalk(Taker &taker, XmlNames names)
        : m_parser(names == XmlNames::asWritten ? XML_ParserCreate(nullptr) : XML_ParserCreateNS(nullptr, namespaceEnd))
    {
        if (m_parser == nullptr)
            throw std::bad_alloc();
        XML_SetUserData(get(), &taker);
        XML_SetElementHandler(
            get(),
            [](void *self, const char *name, const char **attributes) {
                static_cast<Taker *>(self)->start(name, attributes);
            },
            [](void *self, const char *name) { static_cast<Taker *>(self)->end(name); });
        XML_SetCharacterDataHandler(get(), [](void *self, const char *words, int length) {
            static_cast<Taker *>(self)->text({words, static_cast<size_t>(length)});
        });
    }

    XML_Parser get() const { return m_parser.get(); }

    /** Whether the walk came to the end of the document. */
    bool run(std::string_view bytes)
    {
        return XML_Parse(get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE) == XML_STATUS_OK;
    }

private:
    struct Free
    {
        void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
    };

    std::unique_ptr<std::remove_pointer_t<XML_Parser>, Free> m_parser;
};

} // namespace tool::bilingual

#endif
