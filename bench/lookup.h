/** Message catalogs that are open, as the works that look a message up have them. */
#ifndef KELTO_BENCH_LOOKUP_H
#define KELTO_BENCH_LOOKUP_H

#include "kelto.h"
#include "workload.h"

namespace bench
{

/** A loaded catalog of 2,000 messages, and newer ones that stand before it in the list of the open ones. */
class OpenCatalogs
{
public:
    explicit OpenCatalogs(size_t count)
    {
        load("messages-2000.xlf");
        while (m_tables.size() < count)
            load("messages-10.xlf");
    }
    OpenCatalogs(OpenCatalogs &&) = default;
    ~OpenCatalogs()
    {
        for (MessageTable *table : m_tables)
            KTFreeMessages(table);
    }
    MessageTable *oldest() const { return m_tables.front(); }

private:
    void load(std::string_view file)
    {
        MessageTable *table = nullptr;
        require(KTLoadMessages(catalog(file).data(), &table) == 0, "a message file cannot be loaded");
        m_tables.push_back(table);
    }
    std::vector<MessageTable *> m_tables;
};

} // namespace bench

#endif
