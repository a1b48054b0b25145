#include "check/catalog_builder.h"

#include <algorithm>

namespace tool::check
{

CatalogBuilder::CatalogBuilder(SourceText source, Range body) : m_catalog(std::move(source))
{
    m_catalog.m_body = body;
    m_catalog.m_isWhole = false;
}

void CatalogBuilder::setLanguage(const std::string &language, Range place)
{
    m_catalog.m_language = {language, place};
}

void CatalogBuilder::addFinding(Finding finding)
{
    m_catalog.m_findings.push_back(std::move(finding));
}

void CatalogBuilder::add(Message message, std::string_view rawText, const std::vector<Piece> &pieces)
{
    message.textBegin = m_catalog.m_texts.size();
    m_catalog.m_texts += rawText;
    message.textEnd = m_catalog.m_texts.size();
    m_catalog.m_texts += '\0';
    message.firstPiece = m_catalog.m_pieces.size();
    m_catalog.m_pieces.insert(m_catalog.m_pieces.end(), pieces.begin(), pieces.end());
    message.endPiece = m_catalog.m_pieces.size();
    m_catalog.m_messages.push_back(std::move(message));
}

void CatalogBuilder::addCopy(const Catalog &catalog, const Message &message, int id)
{
    Message copy = message;
    copy.id = id;
    const Catalog::Pieces pieces = catalog.piecesOf(message);
    add(std::move(copy), catalog.rawText(message), std::vector<Piece>(pieces.begin(), pieces.end()));
}

Catalog CatalogBuilder::take()
{
    std::stable_sort(m_catalog.m_messages.begin(), m_catalog.m_messages.end(),
                     [](const Message &a, const Message &b) { return a.id < b.id; });
    return std::move(m_catalog);
}

} // namespace tool::check
