/**
 * The texts of an XLIFF unit, source and target, taken piece by piece with their places. Placeholders become the
 * conversions that they stand for.
 */
#ifndef KELTO_TOOLS_BILINGUAL_XLIFF_XLIFF_TEXTS_H
#define KELTO_TOOLS_BILINGUAL_XLIFF_XLIFF_TEXTS_H

#include "bilingual/entry.h"
#include "bilingual/xliff/xliff_names.h"

#include <map>
#include <string>
#include <string_view>

namespace tool::bilingual
{

class UnitTexts
{
public:
    /** Makes room for the texts of the next unit. */
    void clear();

    void openSource() { m_open = &m_source; }
    void openTarget() { m_open = &m_target; }
    bool isOpen() const { return m_open != nullptr; }
    bool isSourceOpen() const { return m_open == &m_source; }

    /** Adds words to the text that is open. `isVerbatim` says that the file has them so, byte for byte. */
    void add(std::string_view words, check::Range place, bool isVerbatim);

    /** Adds the conversion of a placeholder; false where nobody knows it. */
    bool addPlaceholder(const Tag &tag, check::Range place);

    /** The text that is open has a part that no message can hold. */
    void loseCompleteness() { m_open->isComplete = false; }

    /** Closes the text that is open. Lines that a tool has wrapped become one, where white space is not kept. */
    void close(bool keepsSpace);

    /** Takes note of a conversion in "originalData" of XLIFF 2.0. */
    void addData(const std::string &id, const std::string &conversion) { m_data[id] = conversion; }

    size_t sourceSize() const { return m_source.raw.size(); }

    /** Continues the target with the text that the source has from an offset on. */
    void copySource(size_t begin, check::Range place);

    const WrittenText &source() const { return m_source; }
    WrittenText &target() { return m_target; }

private:
    WrittenText m_source;
    WrittenText m_target;
    WrittenText *m_open = nullptr;
    std::map<std::string, std::string> m_placeholders; // by "id", those of the source
    std::map<std::string, std::string> m_data;         // the same by the "id" of "data"
};

} // namespace tool::bilingual

#endif
