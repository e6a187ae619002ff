// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "waveedit/SoundBlock.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ek {

/// The edits of one document that can be undone and, after undos, redone. Each entry owns the sound that an undo (or
/// redo) puts back; its range is the range of the document that it replaces.
class CUndoStack {
public:
    explicit CUndoStack(int32_t limit = 10) : m_limit(limit) {} ///< a negative limit: none

    /// Makes room for one more entry of that name: an edit does so before it changes the sound, because the Push after
    /// it must not fail. Nothing else changes; throws where there is no memory.
    void Reserve(const std::string& name);
    /// Drops what could be redone, appends, and drops the oldest entry beyond the limit. There must be room.
    void Push(std::unique_ptr<CSoundBlock> block, std::string name) noexcept;
    bool CanUndo() const { return m_current >= 0; }
    bool CanRedo() const { return m_current + 1 < static_cast<int32_t>(m_entries.size()); }
    CSoundBlock& UndoBlock() const { return *m_entries[static_cast<size_t>(m_current)].Block; }
    CSoundBlock& RedoBlock() const { return *m_entries[static_cast<size_t>(m_current) + 1].Block; }
    void ReplaceUndo(std::unique_ptr<CSoundBlock> block); ///< the newest undoable entry becomes a redoable one
    void ReplaceRedo(std::unique_ptr<CSoundBlock> block); ///< and back
    void DropUndo();
    void Clear();

    std::vector<std::string> FillUndoList() const; ///< names, the next one to be undone first
    std::vector<std::string> FillRedoList() const; ///< names, the next one to be redone first
    int32_t Current() const { return m_current; }  ///< index of the newest undoable entry; -1: none
    size_t Count() const { return m_entries.size(); }
    const std::string& LastName() const { return m_lastName; } ///< of the last entry pushed
    uint32_t LastTime() const { return m_lastTime; }           ///< of the last push, in milliseconds

private:
    struct Entry {
        std::unique_ptr<CSoundBlock> Block;
        std::string Name;
    };
    std::vector<Entry> m_entries; // oldest first
    const int32_t m_limit;
    int32_t m_current = -1;
    std::string m_lastName;
    uint32_t m_lastTime = 0;
};

} // namespace ek
