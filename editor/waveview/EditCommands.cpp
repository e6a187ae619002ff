// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/EditCommands.h"

#include "waveedit/WEDoc.h"

namespace ek {

bool EditCommands::CanCopy() const
{
    return m_geometry.HasSelection();
}

bool EditCommands::CanPaste() const
{
    return !CWEDoc::IsClipboardEmpty();
}

bool EditCommands::CanUndo() const
{
    return m_document.CanUndo();
}

bool EditCommands::CanRedo() const
{
    return m_document.CanRedo();
}

bool EditCommands::Copy()
{
    const auto [start, end] = m_geometry.OrderedSelection();
    return CanCopy() && m_document.Copy(start, end, m_geometry.SelectionChannel);
}

bool EditCommands::Cut()
{
    return Copy() && DeleteAs("Cut");
}

bool EditCommands::Delete()
{
    return DeleteAs({});
}

bool EditCommands::DeleteAs(const std::string& undoLabel)
{
    const auto [start, end] = m_geometry.OrderedSelection();
    if (!CanCopy() || !m_document.Delete(start, end, m_geometry.SelectionChannel, undoLabel))
        return false;
    if (m_document.ChannelCount() == 1 || m_geometry.SelectionChannel == ChannelAll)
        SelectEdited(start, start);
    return true;
}

bool EditCommands::Paste()
{
    auto [start, end] = m_geometry.OrderedSelection();
    if (!m_geometry.HasSelection())
        start = end = CursorOrStart();
    if (!CanPaste() || !m_document.Paste(start, end, m_geometry.SelectionChannel))
        return false;
    SelectEdited(start, end);
    return true;
}

bool EditCommands::PasteMix()
{
    uint64_t start = m_geometry.HasSelection() ? m_geometry.OrderedSelection().first : CursorOrStart();
    uint64_t end = start;
    if (!CanPaste() || !m_document.PasteMix(start, end, m_geometry.SelectionChannel))
        return false;
    SelectEdited(start, end);
    return true;
}

bool EditCommands::Undo()
{
    uint64_t start = 0;
    uint64_t end = 0;
    if (!CanUndo() || !m_document.Undo(start, end))
        return false;
    SelectEdited(start, end);
    return true;
}

bool EditCommands::Redo()
{
    uint64_t start = 0;
    uint64_t end = 0;
    if (!CanRedo() || !m_document.Redo(start, end))
        return false;
    SelectEdited(start, end);
    return true;
}

void EditCommands::SelectChannel(ChannelCode code)
{
    const uint64_t length = m_document.IsReady() ? m_document.FrameCount() : 0;
    SelectEdited(0, length);
    m_geometry.SelectionChannel = code;
    m_geometry.CursorFrame = length;
}

uint64_t EditCommands::CursorOrStart() const
{
    return m_geometry.CursorFrame == WaveGeometry::NoFrame ? 0 : m_geometry.CursorFrame;
}

void EditCommands::SelectEdited(uint64_t start, uint64_t end)
{
    m_geometry.SelectionStart = m_geometry.CursorFrame = start;
    m_geometry.SelectionEnd = end;
}

} // namespace ek
