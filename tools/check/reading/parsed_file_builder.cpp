#include "check/reading/parsed_file_builder.h"

#include <algorithm>

namespace tool::check
{

ParsedFileBuilder::ParsedFileBuilder(SourceText source, Range body) : m_parsed(std::move(source))
{
    m_parsed.m_body = body;
    m_parsed.m_isWhole = false;
}

void ParsedFileBuilder::setLanguage(const std::string &language, Range place)
{
    m_parsed.m_language = {language, place};
}

void ParsedFileBuilder::addFinding(Finding finding)
{
    m_parsed.m_findings.push_back(std::move(finding));
}

void ParsedFileBuilder::add(Message message, std::string_view rawText, const std::vector<Piece> &pieces)
{
    message.textBegin = m_parsed.m_texts.size();
    m_parsed.m_texts += rawText;
    message.textEnd = m_parsed.m_texts.size();
    m_parsed.m_texts += '\0';
    message.firstPiece = m_parsed.m_pieces.size();
    m_parsed.m_pieces.insert(m_parsed.m_pieces.end(), pieces.begin(), pieces.end());
    message.endPiece = m_parsed.m_pieces.size();
    m_parsed.m_messages.push_back(std::move(message));
}

void ParsedFileBuilder::addCopy(const ParsedFile &parsed, const Message &message, int id)
{
    Message copy = message;
    copy.id = id;
    const ParsedFile::Pieces pieces = parsed.piecesOf(message);
    add(std::move(copy), parsed.rawText(message), std::vector<Piece>(pieces.begin(), pieces.end()));
}

ParsedFile ParsedFileBuilder::take()
{
    std::stable_sort(m_parsed.m_messages.begin(), m_parsed.m_messages.end(),
                     [](const Message &a, const Message &b) { return a.id < b.id; });
    return std::move(m_parsed);
}

} // namespace tool::check
