// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveedit/UndoStack.h"

#include "platform/Events.h"

namespace ek {

void CUndoStack::Reserve(const std::string& name)
{
    m_entries.reserve(m_entries.size() + 1);
    m_lastName.reserve(name.size());
}

void CUndoStack::Push(std::unique_ptr<CSoundBlock> block, std::string name) noexcept
{
    m_lastName = name;
    m_entries.erase(m_entries.begin() + m_current + 1, m_entries.end());
    m_entries.push_back({std::move(block), std::move(name)});
    ++m_current;
    if (m_limit >= 0 && m_current == m_limit) {
        m_entries.erase(m_entries.begin());
        --m_current;
    }
    m_lastTime = static_cast<uint32_t>(TickMilliseconds());
}

void CUndoStack::ReplaceUndo(std::unique_ptr<CSoundBlock> block)
{
    m_entries[static_cast<size_t>(m_current)].Block = std::move(block);
    --m_current;
}

void CUndoStack::ReplaceRedo(std::unique_ptr<CSoundBlock> block)
{
    ++m_current;
    m_entries[static_cast<size_t>(m_current)].Block = std::move(block);
}

void CUndoStack::DropUndo()
{
    m_entries.erase(m_entries.begin() + m_current);
    --m_current;
}

void CUndoStack::Clear()
{
    m_entries.clear();
    m_current = -1;
}

std::vector<std::string> CUndoStack::FillUndoList() const
{
    std::vector<std::string> names;
    for (int32_t i = m_current; i >= 0; --i)
        names.push_back(m_entries[static_cast<size_t>(i)].Name);
    return names;
}

std::vector<std::string> CUndoStack::FillRedoList() const
{
    std::vector<std::string> names;
    for (auto i = static_cast<size_t>(m_current) + 1; i < m_entries.size(); ++i)
        names.push_back(m_entries[i].Name);
    return names;
}

} // namespace ek
