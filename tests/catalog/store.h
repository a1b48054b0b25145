/**
 * A catalog of the C interface as the rows of the ladder use it. Each text is formatted in UTF-8 and UCS-2, measured,
 * and cut at every room that it does not fit into.
 */
#ifndef KELTO_TESTS_CATALOG_STORE_H
#define KELTO_TESTS_CATALOG_STORE_H

#include "catalog/ladder_rows.h"

#include <string_view>
#include <type_traits>

/** A value as a typed argument. */
inline KTArgument typed(int value)
{
    return KT_INT(value);
}
inline KTArgument typed(unsigned value)
{
    return KT_UINT(value);
}
inline KTArgument typed(long value)
{
    return KT_INT64(value);
}
inline KTArgument typed(char value)
{
    return KT_CHAR(value);
}
inline KTArgument typed(char16_t value)
{
    return KT_UNIT(value);
}
inline KTArgument typed(char32_t value)
{
    return KT_CODE_POINT(value);
}
inline KTArgument typed(double value)
{
    return KT_DOUBLE(value);
}
inline KTArgument typed(const long double &value)
{
    return KT_LONG_DOUBLE(&value);
}
inline KTArgument typed(const char *value)
{
    return KT_UTF8(value);
}
inline KTArgument typed(const std::string &value)
{
    return KT_UTF8N(value.data(), value.size());
}
inline KTArgument typed(std::string_view value)
{
    return KT_UTF8N(value.data(), value.size());
}
inline KTArgument typed(const char16_t *value)
{
    return KT_UCS2(value);
}
inline KTArgument typed(const std::u16string &value)
{
    return KT_UCS2N(value.data(), value.size());
}
inline KTArgument typed(const KTArgument &value)
{
    return value;
}

/** UTF-8 of a catalog's text in a room of so many bytes; what the call says of it in `result` and `size`. */
inline std::string inRoom(const KTCatalog *catalog, const KTCatalogRequest &request, size_t room, int &result,
                          size_t &size)
{
    std::string text(room, '?');
    size = room;
    result = KTCatalogFormatRequestUTF8(catalog, &request, &size, room > 0 ? text.data() : nullptr);
    return room > 0 ? text.c_str() : "";
}

/** The text in UTF-8, after a look at whether all ways to it agree. */
inline std::string textOf(const KTCatalog *catalog, const KTCatalogRequest &request)
{
    size_t need = 0, size = 0;
    int result = KTCatalogFormatRequestUTF8(catalog, &request, &need, nullptr);
    EXPECT_EQ(result, KT_ERR_BUFFER_TOO_SMALL);
    const std::string whole = inRoom(catalog, request, need + 1, result, size);
    EXPECT_TRUE(result == 0 && size == need && whole.size() == need) << whole;
    for (size_t room = 1; room <= need && room < 80; ++room)
    {
        const std::string cut = inRoom(catalog, request, room, result, size);
        EXPECT_TRUE(result == KT_ERR_BUFFER_TOO_SMALL && size == need);
        size_t end = room - 1;
        while ((whole[end] & 0xC0) == 0x80)
            --end;
        EXPECT_EQ(cut, whole.substr(0, end)) << room;
    }
    std::u16string units(need + 1, u'?');
    size_t unitSize = units.size();
    EXPECT_EQ(KTCatalogFormatRequest(catalog, &request, &unitSize, units.data()), 0);
    std::string same(3 * unitSize + 1, '\0');
    size_t sameSize = same.size();
    EXPECT_EQ(KTUCS2ToUTF8(units.data(), &sameSize, same.data()), 0);
    EXPECT_EQ(same.substr(0, sameSize), whole);
    for (size_t room = 1; room <= unitSize && room < 40; ++room)
    {
        std::u16string cut(room, u'?');
        size_t cutSize = room;
        EXPECT_EQ(KTCatalogFormatRequest(catalog, &request, &cutSize, cut.data()), KT_ERR_BUFFER_TOO_SMALL);
        EXPECT_EQ(cutSize, unitSize);
        const size_t end = room - (room > 1 && (units[room - 2] & 0xFC00) == 0xD800 ? 2 : 1);
        EXPECT_EQ(cut.substr(0, end + 1), units.substr(0, end) + u'\0') << room;
    }
    return whole;
}

class CatalogStore
{
public:
    explicit CatalogStore(LadderLog &log, const char *languages = "de:fr", size_t maxSize = 0,
                          std::function<void()> onProblem = nullptr)
        : m_log(log), m_onProblem(std::move(onProblem))
    {
        KTCatalogOptions options = {};
        options.structSize = sizeof options;
        options.languages = languages;
        options.maxSize = maxSize;
        options.context = this;
        options.onProblem = note;
        EXPECT_EQ(KTOpenCatalog("d", "store", &options, &m_catalog), 0);
    }
    ~CatalogStore() { KTCloseCatalog(m_catalog); }
    CatalogStore(const CatalogStore &) = delete;
    CatalogStore &operator=(const CatalogStore &) = delete;

    template <class Id, class... Arguments> std::string format(Id id, const Arguments &...arguments) const
    {
        return formatOr(nullptr, id, arguments...);
    }
    template <class Id, class... Arguments>
    std::string formatOr(const char *source, Id id, const Arguments &...arguments) const
    {
        const KTArgument list[] = {typed(arguments)..., KTArgument()};
        return textOf(m_catalog, {sizeof(KTCatalogRequest), static_cast<int64_t>(id), std::is_unsigned_v<Id>, source,
                                  SIZE_MAX, list, sizeof...(arguments)});
    }
    std::string text(int64_t id) const
    {
        const char *const text = KTCatalogText(m_catalog, id);
        return text != nullptr ? text : "";
    }
    std::string language() const { return KTCatalogLanguage(m_catalog); }

private:
    static void note(void *context, const KTCatalogProblem *problem)
    {
        const auto &store = *static_cast<CatalogStore *>(context);
        const bool isNumber = problem->id >= 0 && problem->id < UINT32_MAX;
        if (store.m_onProblem)
            return store.m_onProblem();
        store.m_log.note(problem->language, isNumber ? problem->id : UINT32_MAX, problem->result, problem->text);
    }

    LadderLog &m_log;
    std::function<void()> m_onProblem;
    KTCatalog *m_catalog = nullptr;
};

#endif
