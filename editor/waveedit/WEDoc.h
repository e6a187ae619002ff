// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Document.h"
#include "storage/ColumnCache.h"
#include "storage/WaveData.h"
#include "waveedit/ClipRegistry.h"
#include "waveedit/UndoStack.h"

#include <cstdint>
#include <memory>
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

    // Edits of frames [start, end) of one channel, or of all (ChannelAll), each behind a progress. A sound of one
    // channel is edited whole. They mark the document modified and tell the views what changed. One that fails or is
    // cancelled leaves the sound, the undo stack and its arguments as they were, and one that fails, also for want of
    // memory, has told the user why. A range or a channel that the sound does not have is refused without a word.
    /// Into the sound clipboard, whose old sound stays when the copy fails or is cancelled. Where there is no room for
    /// both, the old one is given up first; the user is told then that the clipboard is empty.
    bool Copy(uint64_t start, uint64_t end, ChannelCode code);
    /// The range is replaced by the clipboard's sound and becomes that of the pasted frames. One channel takes the
    /// pasted samples and is silent behind them; where it grows, so do the others, in silence. A document without
    /// sound takes the clipboard's format first; another format is converted. False also when the clipboard is empty.
    bool Paste(uint64_t& start, uint64_t& end, ChannelCode code);
    /// The clipboard's sound is mixed in from `start` on; `end` becomes the end of the mixed range.
    bool PasteMix(uint64_t& start, uint64_t& end, ChannelCode code);
    /// All channels: removed. One of several: silenced; when that is cancelled, the part done stays and counts. The
    /// undo entry gets the label, or "Deleting..." for none. False also for an empty range.
    bool Delete(uint64_t start, uint64_t end, ChannelCode code, const std::string& undoLabel = {});
    bool Undo(uint64_t& start, uint64_t& end); ///< the range becomes the one that came back
    bool Redo(uint64_t& start, uint64_t& end);
    bool CanUndo() const { return m_undo.CanUndo(); }
    bool CanRedo() const { return m_undo.CanRedo(); }
    const CUndoStack& UndoStack() const { return m_undo; }
    static bool IsClipboardEmpty() { return SoundClipboard().FrameCount == 0; }

    /// What an edit stores before it replaces [start, start + length): that sound, which an undo puts back in the place
    /// of [start, newEnd). False: nothing is stored, and nothing may be changed. What could be redone is dropped.
    bool StoreUndo(uint64_t start, uint64_t length, uint64_t newEnd, const std::string& name, ChannelCode code);
    /// Takes back the edit that StoreUndo was called for, and its entry. The range has its new length by now, whatever
    /// it holds; an edit that never began must not be taken back.
    bool RollBack();

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
    void DropFormat();
    /// Nothing is left of a sound that did not arrive.
    bool DropSound();
    /// Another sound has arrived: display state and column cache start afresh, and the views are told.
    void OnNewSound();
    bool CanEdit(uint64_t start, uint64_t end, ChannelCode code) const;
    ChannelCode EditedChannel(ChannelCode code) const; ///< ChannelAll in a sound of one channel
    bool CopyToClipboard(uint64_t start, uint64_t length, ChannelCode code);
    /// Before the sound is changed: the name for PushUndo, which then needs no more memory.
    std::string PrepareUndo(std::string name);
    void PushUndo(std::unique_ptr<CSoundBlock> block, uint64_t start, uint64_t end, std::string name) noexcept;
    void TellFramesChanged(uint64_t start, uint64_t oldLength, uint64_t newLength);
    void TellEdited(uint64_t start, uint64_t oldLength, uint64_t newLength); ///< that, and modified
    /// How a sound in the edited format comes into the document.
    using PasteEdit = bool (CWEDoc::*)(const CSoundBlock& source, uint64_t& start, uint64_t& end, ChannelCode code);
    bool PasteBy(PasteEdit edit, uint64_t& start, uint64_t& end, ChannelCode code);
    bool PasteInto(PasteEdit edit, uint64_t& start, uint64_t& end, ChannelCode code);
    bool ReplaceByBlock(const CSoundBlock& source, uint64_t& start, uint64_t& end, ChannelCode code);
    bool MixBlockIn(const CSoundBlock& source, uint64_t& start, uint64_t& end, ChannelCode code);
    bool RemoveFrames(uint64_t start, uint64_t end, std::string name);
    bool SilenceChannel(uint64_t start, uint64_t end, ChannelCode code, std::string name);
    void TellPutBack(const CSoundBlock& replaced, uint64_t& start, uint64_t& end);
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
