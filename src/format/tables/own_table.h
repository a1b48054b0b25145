/**
 * Conversions and encoders of the program's own that have a context: the tables that hold them, and what stands between
 * them and the functions of a form table. Those get no pointer to a state. A conversion's is found by the address of
 * its name, as it stands in the record; an encoder's is known to the thread while a conversion is written.
 */
#ifndef KELTO_FORMAT_TABLES_OWN_TABLE_H
#define KELTO_FORMAT_TABLES_OWN_TABLE_H

#include "kelto.h"

namespace kelto
{

/** The encoder of all tables that have one with a context. */
int encodeOwn(const void *value, int dataType, unsigned long *sizeInOut, UCS2 *out);

/** Makes known whose encoder is called from here on, where that is one with a context. */
class RunningEncoder
{
public:
    /**
     * @param encoder  that of the call, or null.
     * @param table    in which it was found.
     */
    RunningEncoder(KTEncoder encoder, const formTable *table) noexcept : m_isOwn(encoder == encodeOwn)
    {
        if (m_isOwn)
            enter(table);
    }
    ~RunningEncoder()
    {
        if (m_isOwn)
            leave();
    }
    RunningEncoder(const RunningEncoder &) = delete;
    RunningEncoder &operator=(const RunningEncoder &) = delete;

private:
    void enter(const formTable *table) noexcept;
    void leave() noexcept;

    const bool m_isOwn;
    const KTOwnTable *m_outer = nullptr; // of the call in which this one runs
};

/** The options that the encoder of a table brings into each call: KT_ENCODE_ALL, or none. */
unsigned optionsOf(const formTable *table) noexcept;

/** Whether a record is that of a conversion with a context, which gets no pointer of another kind than its own. */
bool isOwnConversion(const KTFormatter &record) noexcept;

} // namespace kelto

#endif
