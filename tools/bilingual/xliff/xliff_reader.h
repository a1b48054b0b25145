/**
 * Reads bilingual XLIFF, 1.2 and 2.0, as tools leave it: whatever order, wrapping or encoding, and with elements of
 * their own. What a translation cannot hold, since no message could, is told at its place.
 */
#ifndef KELTO_TOOLS_BILINGUAL_XLIFF_XLIFF_READER_H
#define KELTO_TOOLS_BILINGUAL_XLIFF_XLIFF_READER_H

#include "bilingual/bilingual_file.h"

namespace tool::bilingual
{

/** The key of the units of a document. */
enum class Keys
{
    numbers,
    contexts // which are anything; the units are counted
};

/** Reads a document; its faults are among its findings. */
BilingualFile readXliff(check::SourceText source, Keys keys = Keys::numbers);

} // namespace tool::bilingual

#endif
