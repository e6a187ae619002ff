// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/Document.h"

#include <algorithm>

namespace ek {

bool CDocument::OnNewDocument()
{
    DeleteContents();
    SetPath({});
    SetModified(false);
    return true;
}

void CDocument::SetPath(const std::filesystem::path& path)
{
    if (m_path == path)
        return;
    m_path = path;
    Notify({.What = DocumentChange::Kind::Title});
}

void CDocument::SetTitle(const std::string& title)
{
    if (m_title == title)
        return;
    m_title = title;
    Notify({.What = DocumentChange::Kind::Title});
}

std::string CDocument::DisplayName() const
{
    if (!m_path.empty())
        return m_path.filename().string();
    return m_title.empty() ? "Untitled" : m_title;
}

void CDocument::SetModified(bool modified)
{
    if (m_modified == modified)
        return;
    m_modified = modified;
    Notify({.What = DocumentChange::Kind::Modified});
}

void CDocument::AddObserver(DocumentObserver& observer)
{
    m_observers.push_back(&observer);
}

void CDocument::RemoveObserver(DocumentObserver& observer)
{
    std::erase(m_observers, &observer);
}

void CDocument::Notify(const DocumentChange& change)
{
    const auto observers = m_observers; // an observer may leave while it is told
    for (DocumentObserver* observer : observers) {
        if (std::ranges::find(m_observers, observer) != m_observers.end())
            observer->OnDocumentChanged(change);
    }
}

} // namespace ek
