// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/DocTemplate.h"

namespace ek {

namespace {

std::string SecondField(std::string_view text)
{
    const size_t first = text.find('\n');
    if (first == std::string_view::npos)
        return {};
    const size_t second = text.find('\n', first + 1);
    return std::string(text.substr(first + 1, second == std::string_view::npos ? second : second - first - 1));
}

} // namespace

CDocTemplate::CDocTemplate(std::string_view templateString, DocumentMaker maker)
    : m_documentName(SecondField(templateString)), m_maker(std::move(maker))
{
}

CDocument* CDocTemplate::OpenDocumentFile(const std::filesystem::path& path)
{
    auto document = m_maker();
    if (!document)
        return nullptr;
    document->SetTemplate(this);
    const bool opened = path.empty() ? document->OnNewDocument() : document->OnOpenDocument(path);
    if (!opened)
        return nullptr;
    if (!path.empty())
        document->SetPath(path);
    CDocument& kept = *m_documents.emplace_back(std::move(document));
    if (m_frameMaker && !m_frameMaker(kept)) {
        CloseDocument(kept);
        return nullptr;
    }
    return &kept;
}

void CDocTemplate::CloseDocument(CDocument& document)
{
    std::erase_if(m_documents, [&](const auto& held) { return held.get() == &document; });
}

} // namespace ek
