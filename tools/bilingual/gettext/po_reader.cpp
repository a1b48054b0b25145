#include "bilingual/gettext/po_reader.h"

#include "bilingual/gettext/po_header.h"
#include "bilingual/gettext/po_messages.h"
#include "bilingual/gettext/po_program.h"
#include "bilingual/xliff/xliff_reader.h"
#include "failure.h"
#include "io/transcode.h"
#include "text.h"

#include <algorithm>

namespace tool::bilingual
{
namespace
{

using namespace check;

/** The offsets at which the lines of a text begin, and the one behind the last line. */
std::vector<size_t> linesOf(std::string_view text)
{
    std::vector<size_t> lines{0};
    for (size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1))
        lines.push_back(at + 1);
    lines.push_back(text.size() + 1);
    return lines;
}

/** The same lines without a byte order mark, and with the ends that libgettextpo knows. */
std::string normalized(std::string_view bytes)
{
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (bytes.substr(0, mark.size()) == mark)
        bytes.remove_prefix(mark.size());
    std::string result;
    result.reserve(bytes.size());
    for (size_t at = 0; at < bytes.size(); ++at)
        if (bytes[at] != '\r' || bytes.substr(at + 1, 1) != "\n")
            result += bytes[at];
    return result;
}

/** Reads a PO file as it is written. */
class PoReader
{
public:
    PoReader(SourceText source, Keys keys)
        : m_document(readXliff(SourceText("kelto-po", runPo("read", normalized(source.bytes()))), keys)),
          m_file{{}, inUtf8(std::move(source)), {}, {}, {}, true, false, {}}, m_lines(linesOf(m_file.source.bytes()))
    {
    }

    BilingualFile run(const std::string &language)
    {
        if (!m_document.isWhole)
            throw Failure("kelto-po: " + say(Text::poProgramFailed));
        m_file.content = std::move(m_document.content);
        Bilingual &content = m_file.content;
        content.targetLanguage = headerField(content.header, "Language");
        if (content.targetLanguage.empty())
            content.targetLanguage = language;
        m_file.body = lineAt(1);
        m_file.languagePlace = m_file.body;
        for (Entry &entry : content.entries)
            entry.place = lineAt(entry.line);
        for (const Finding &finding : m_document.findings)
            m_file.findings.push_back(inPo(finding));
        findZero();
        return std::move(m_file);
    }

private:
    /** Tells a zero byte. For libgettextpo a text ends there, and the rest of it would be lost. */
    void findZero()
    {
        const std::string_view bytes = m_file.source.bytes();
        const size_t zero = bytes.find('\0');
        if (zero == std::string_view::npos)
            return;
        const auto behind = std::upper_bound(m_lines.begin(), m_lines.end(), zero);
        const Range place = lineAt(static_cast<size_t>(behind - m_lines.begin()));
        m_file.findings.push_back(findingAt(place, Rule::structure, 0, {Text::controlCharacters}));
    }

    /** The file in UTF-8, with the same lines. A file that cannot be converted stays as it is. */
    SourceText inUtf8(SourceText source) const
    {
        const std::string &charset = m_document.content.charset;
        if (charset.empty() || charset == "UTF-8" || charset == "utf-8")
            return source;
        try
        {
            requireReadable(charset);
            return {source.name(), transcode(charset, "UTF-8", std::string(source.bytes())).bytes};
        }
        catch (const Failure &)
        {
            return source;
        }
    }

    /** The first line where there is none of this number, as in a finding about the file as a whole. */
    Range lineAt(size_t line) const
    {
        if (line == 0 || line >= m_lines.size())
            line = 1;
        const size_t begin = m_lines[line - 1];
        return {begin, std::max(begin, m_lines[line] - 1)};
    }

    /** A finding of the document, at its line in the PO file. */
    Finding inPo(const Finding &finding) const
    {
        Finding moved = finding;
        moved.place = lineAt(m_document.lineOf(finding.place));
        moved.order = moved.place.begin;
        return moved;
    }

    BilingualFile m_document; // of kelto-po
    BilingualFile m_file;
    std::vector<size_t> m_lines;
};

} // namespace

bool isPo(std::string_view bytes)
{
    using namespace std::string_view_literals;
    constexpr std::string_view marks[] = {"\xEF\xBB\xBF"sv, "\xFF\xFE"sv, "\xFE\xFF"sv};
    for (const std::string_view mark : marks)
        if (bytes.substr(0, mark.size()) == mark)
            bytes.remove_prefix(mark.size());
    const size_t first = bytes.find_first_not_of(" \t\r\n\0"sv);
    return first != std::string_view::npos && bytes[first] != '<';
}

BilingualFile readPo(SourceText source, const std::string &language)
{
    return withMessages(PoReader(std::move(source), Keys::numbers).run(language));
}

BilingualFile readGettext(SourceText source, const std::string &language)
{
    return PoReader(std::move(source), Keys::contexts).run(language);
}

} // namespace tool::bilingual
