/**
 * A prepared format that releases itself, and writes into texts that grow. It knows "nil", as variants have it.
 */
#ifndef KELTO_TOOLS_PREPARED_FORMAT_H
#define KELTO_TOOLS_PREPARED_FORMAT_H

#include "kelto.h"

#include <string>
#include <vector>

namespace tool
{

class PreparedFormat
{
public:
    /** Of UTF-8 text; see result() before anything else. */
    PreparedFormat(const std::string &format, formTable *forms);
    /** Of a message with all that it selects, by the rules of a language and with its conversions. */
    PreparedFormat(MessageTable *table, unsigned id, const std::string &language);
    ~PreparedFormat() { KTFreePrepared(m_prepared); }
    PreparedFormat(const PreparedFormat &) = delete;
    PreparedFormat &operator=(const PreparedFormat &) = delete;

    int result() const { return m_result; }

    /** Its conversions. */
    formTable *forms() const { return m_forms; }

    std::vector<KTSlot> slots() const;

    /** The result of the library. A text that is longer than the library converts comes out as a Failure. */
    int format(unsigned options, const std::vector<KTArgument> &arguments, std::string &utf8) const;

private:
    KTPreparedFormat *m_prepared = nullptr;
    formTable *m_forms;
    int m_result;
};

} // namespace tool

#endif
