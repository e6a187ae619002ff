// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "waveview/WaveGeometry.h"

#include <string>

namespace ek {

class CWEDoc;

/// The edit commands of a document as its user gives them: on the selection, or at the cursor, of the geometry; they
/// leave selection and cursor where the edit took place. Whoever plays the document stops that first, and ends a drag.
///
/// Each returns whether it did what it says. When it did not (there was nothing to do, the user cancelled, or it failed
/// and the document has told him), selection, cursor and sound are as before. No other field of the geometry changes: a
/// view learns of the new length from the document.
class EditCommands {
public:
    /// Both outlive this object.
    EditCommands(CWEDoc& document, WaveGeometry& geometry) : m_document(document), m_geometry(geometry) {}

    bool CanCopy() const;  ///< and cut, and delete: there is a selection
    bool CanPaste() const; ///< and paste mixed: there is sound to be pasted
    bool CanUndo() const;
    bool CanRedo() const;

    bool Copy();
    bool Cut(); ///< nothing is deleted that could not be copied
    /// Where all channels are deleted, the cursor stands at the place afterwards, and nothing is selected. One of
    /// several channels falls silent, and the selection stays.
    bool Delete();
    bool Paste();    ///< in the place of the selection, else at the cursor, else at the start; selects what was pasted
    bool PasteMix(); ///< from the start of the selection on, else as Paste; selects what was mixed
    bool Undo();     ///< selects what came back
    bool Redo();     ///< selects what came back

    /// The whole sound, in one channel or in all; the cursor goes to its end.
    void SelectChannel(ChannelCode code);

private:
    bool DeleteAs(const std::string& undoLabel);
    uint64_t CursorOrStart() const;
    void SelectEdited(uint64_t start, uint64_t end);

    CWEDoc& m_document;
    WaveGeometry& m_geometry;
};

} // namespace ek
