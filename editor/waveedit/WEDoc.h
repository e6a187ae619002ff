// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Document.h"
#include "storage/ColumnCache.h"
#include "storage/WaveData.h"
#include "waveedit/ClipRegistry.h"
#include "waveedit/UndoStack.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ek {

/// The document of the wave editor: one sound and the display settings that its view keeps with it.
class CWEDoc final : public CDocument {
public:
    CWEDoc();
    ~CWEDoc() override;

    bool OnNewDocument() override;
    bool OnOpenDocument(const std::filesystem::path& path) override;
    bool OnSaveDocument(const std::filesystem::path& path) override;
    void DeleteContents() override;
    bool DoSave() override;
    bool SaveAs() override;
    bool SaveModified() override;
    std::span<const CommandEntry> CommandTable() const override;

    /// An empty sound of that format; the document is ready then.
    bool SetFormat(const WAVEFORMATEXTENSIBLE& format, const StreamProperties* properties);
    bool OpenFromStore(CWaveData& source);       ///< becomes a copy of a clip's sound
    bool NewFromBlock(const CSoundBlock& block); ///< becomes a new, modified sound

    /// Links the document to the clip that it edits: Save then gives the sound back instead of writing a file.
    void SetEditKey(const EditKey& key) { m_editKey = key; }
    void ClearEditKey() { m_editKey.reset(); }

    // Edits of frames [start, end) of one channel, or of all (ChannelAll), each behind a progress. They tell the views
    // what changed. One that fails or is cancelled leaves the sound and the undo stack as they were, and one that
    // fails has told the user why.
    bool Copy(uint64_t start, uint64_t end, ChannelCode code); ///< into the sound clipboard
    /// The range is replaced by the clipboard's sound and becomes that of the pasted frames. A document without sound
    /// takes the clipboard's format first; another format is converted. False also when the clipboard is empty.
    bool Paste(uint64_t& start, uint64_t& end, ChannelCode code);
    /// The clipboard's sound is mixed in from `start` on; `end` becomes the end of the mixed range.
    bool PasteMix(uint64_t& start, uint64_t& end, ChannelCode code);
    /// All channels: removed. One of several: silenced. The undo entry gets the label, or "Deleting..." for none.
    bool Delete(uint64_t start, uint64_t end, ChannelCode code, const std::string& undoLabel = {});
    bool Undo(uint64_t& start, uint64_t& end); ///< the range becomes the one that came back
    bool Redo(uint64_t& start, uint64_t& end);
    bool CanUndo() const { return m_undo.CanUndo(); }
    bool CanRedo() const { return m_undo.CanRedo(); }
    const CUndoStack& UndoStack() const { return m_undo; }
    static bool IsClipboardEmpty() { return SoundClipboard().FrameCount == 0; }

    /// What an edit stores before it replaces [start, start + length): that sound, which an undo puts back in the place
    /// of [start, newEnd). False: nothing is stored, and nothing may be changed.
    bool StoreUndo(uint64_t start, uint64_t length, uint64_t newEnd, const std::string& name, ChannelCode code);
    bool RollBack(); ///< takes back the edit that StoreUndo was called for, and its entry

    bool IsReady() const { return m_ready; } ///< sound is present; views draw nothing otherwise
    uint64_t FrameCount() const { return m_store.FrameCount(); }
    const WAVEFORMATEXTENSIBLE& Format() const { return m_store.WorkingFormat(); }
    uint32_t ChannelCount() const { return m_store.WorkingFormat().nChannels; }
    CWaveData& Store() { return m_store; }
    ColumnCache& Columns() { return m_columns; }
    /// Does nothing while the document is not ready.
    void RefreshColumnCache(uint64_t firstFrame, uint32_t framesPerColumn, uint32_t width);

    /// "%02d:%02d:%02d,%03d" of a frame position; empty while there is no rate.
    std::string FormatPosition(uint64_t frame) const;

    // Display state, kept with the sound; its rules are the view's.
    uint32_t FirstVisibleChannel = 0;
    uint32_t VisibleChannelCount = 2;
    uint32_t AmplitudeScale = 100; ///< percent of full scale that fits in a lane

private:
    bool SaveTo(const std::filesystem::path& path, bool useStoredSettings, bool* openAfter);
    bool SaveToChosen(bool mayReopen);
    bool Save(bool mayReopen);
    bool ReturnToClip();
    void FocusView();
    bool TakeFormat(const WAVEFORMATEXTENSIBLE& format, const StreamProperties* properties);
    bool TakeBlock(const CSoundBlock& block);
    /// Nothing is left of a sound that did not arrive.
    bool DropSound();
    /// Another sound has arrived: display state and column cache start afresh, and the views are told.
    void OnNewSound();
    void OnSave() { DoSave(); }
    void OnSaveAs() { SaveAs(); }
    void OnUpdateSave(CommandUi& ui) { ui.Enabled = m_ready; }

    CWaveData m_store;
    CUndoStack m_undo;
    ColumnCache m_columns;
    bool m_ready = false;
    std::optional<EditKey> m_editKey;
};

} // namespace ek
