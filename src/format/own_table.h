/**
 * Conversions and encoders of the program's own that have a context: the tables that hold them, and what stands between
 * them and the functions of a form table. Those get no pointer to a state. A conversion's is found by the address of
 * its name, as it stands in the record; an encoder's is known to the thread while a conversion is written.
 */
#ifndef KELTO_FORMAT_OWN_TABLE_H
#define KELTO_FORMAT_OWN_TABLE_H

#include "kelto.h"

namespace kelto
{

/** Makes known which table's encoder is called from here on, if that is one with a context. */
class RunningEncoder
{
public:
    /** @param table  the table of the call, or null. */
    explicit RunningEncoder(const formTable *table) noexcept;
    ~RunningEncoder();
    RunningEncoder(const RunningEncoder &) = delete;
    RunningEncoder &operator=(const RunningEncoder &) = delete;

private:
    const KTOwnTable *m_outer; // of the call in which this one runs, or null
};

/** The options that the encoder of a table brings into each call: KT_ENCODE_ALL, or none. */
unsigned optionsOf(const formTable *table) noexcept;

/** Whether a record is that of a conversion with a context, which gets no pointer of another kind than its own. */
bool isOwnConversion(const KTFormatter &record) noexcept;

} // namespace kelto

#endif
