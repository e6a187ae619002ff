// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveedit/WEDoc.h"

#include "debugmanager/DebugManager.h"
#include "platform/TempFile.h"
#include "platform/Text.h"
#include "servicefuncs/MessageBox.h"

#include <algorithm>
#include <new>
#include <utility>

namespace ek {

namespace {

constexpr char PasteCaption[] = "Pasting...";
constexpr char MixCaption[] = "Paste-Mixing...";
constexpr char DeleteCaption[] = "Deleting...";
constexpr char StoreUndoCaption[] = "Storing Undo...";
constexpr char StoreRedoCaption[] = "Storing Redo...";
constexpr char UndoCaption[] = "Undoing...";
constexpr char RedoCaption[] = "Redoing...";

/// What must be kept of frames that an edit of one channel turns into `newLength`: a change of the length concerns
/// every channel, and only whole frames can take it back.
ChannelCode KeptChannel(ChannelCode code, uint64_t length, uint64_t newLength)
{
    return length == newLength ? code : ChannelAll;
}

constexpr char ClipboardIsEmpty[] = "The clipboard is empty now.";

void TellEditFailed(const std::string& alsoText = {})
{
    const std::string text = Format("There is not enough room for temporary files in \"%s\", or they can't be read or "
                                    "written. The sound was not changed.%s",
                                    TempFolder().c_str(), alsoText.c_str());
    AfxSCMessageBox(text, MessageButtons::Ok, MessageIcon::Error);
}

/// The border of an edit, which no lack of memory crosses: the edit has used the last that it needs before it changes
/// the sound. Returns what the edit does, or null or false.
template <typename Edit>
auto WithinMemory(Edit edit) -> decltype(edit())
{
    try {
        return edit();
    } catch (const std::bad_alloc&) {
        AfxSCMessageBox("There is not enough memory. The sound was not changed.", MessageButtons::Ok,
                        MessageIcon::Error);
        return {};
    }
}

/// An edit that is done stands, also where a view has no memory to take note of it.
template <typename Tell>
void TellViews(Tell tell)
{
    try {
        tell();
    } catch (const std::bad_alloc&) {
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: No memory to show an edit.");
    }
}

bool HasFinished(WorkResult result)
{
    if (result == WorkResult::Failed)
        TellEditFailed();
    return result == WorkResult::Finished;
}

bool HasSucceeded(bool done)
{
    return HasFinished(done ? WorkResult::Finished : WorkResult::Failed);
}

/// Of what an edit takes out or puts in.
WAVEFORMATEXTENSIBLE EditFormat(const CWaveData& store, ChannelCode code)
{
    return code == ChannelAll ? store.WorkingFormat() : MakeOneChannelFormat(store.WorkingFormat());
}

bool CreateBlock(CSoundBlock& block, const CWaveData& store, uint64_t frames, ChannelCode code)
{
    return HasSucceeded(block.Create(frames, EditFormat(store, code), nullptr, code));
}

/// Makes the block one of frames of the store.
WorkResult TakeFrames(CSoundBlock& block, CWaveData& store, uint64_t start, uint64_t length, ChannelCode code,
                      const char* caption)
{
    if (!block.Create(length, EditFormat(store, code), nullptr, code))
        return WorkResult::Failed;
    const WorkResult taken =
        store.ExchangeFrames(block, start, length, code, CWaveData::Direction::StoreToBlock, caption, true);
    block.ReleaseMemory();
    return taken;
}

/// Frames of the store in a block of their own; null when that failed or was cancelled.
std::unique_ptr<CSoundBlock> KeepFrames(CWaveData& store, uint64_t start, uint64_t length, ChannelCode code,
                                        const char* caption)
{
    auto block = std::make_unique<CSoundBlock>();
    return HasFinished(TakeFrames(*block, store, start, length, code, caption)) ? std::move(block) : nullptr;
}

bool PutFrames(CWaveData& store, uint64_t start, uint64_t end, const CSoundBlock& block, ChannelCode code,
               bool cancellable, const char* caption)
{
    const bool put = HasFinished(store.ReplaceFrames(start, end, block, code, cancellable, caption));
    block.ReleaseMemory();
    return put;
}

/// Puts a kept block back in the place of its range. Returns what it replaced, with the range to put that back in.
std::unique_ptr<CSoundBlock> PutBack(CWaveData& store, const CSoundBlock& block, const char* keepCaption,
                                     const char* caption)
{
    const uint64_t start = block.RangeStart();
    const uint64_t end = block.RangeEnd();
    auto replaced = KeepFrames(store, start, end - start, block.Code, keepCaption);
    if (!replaced || !PutFrames(store, start, end, block, block.Code, false, caption))
        return nullptr;
    replaced->SetRange(start, start + block.FrameCount);
    return replaced;
}

} // namespace

bool CWEDoc::CanEdit(uint64_t start, uint64_t end, ChannelCode code) const
{
    return m_ready && start <= end && end <= FrameCount() &&
           (EditedChannel(code) == ChannelAll || GetIndexByChannel(Format(), code) != NoChannel);
}

ChannelCode CWEDoc::EditedChannel(ChannelCode code) const
{
    return ChannelCount() == 1 ? ChannelAll : code;
}

std::string CWEDoc::PrepareUndo(std::string name)
{
    m_undo.Reserve(name);
    return name;
}

void CWEDoc::PushUndo(std::unique_ptr<CSoundBlock> block, uint64_t start, uint64_t end, std::string name) noexcept
{
    block->ReleaseMemory();
    block->SetRange(start, end);
    m_undo.Push(std::move(block), std::move(name));
}

void CWEDoc::TellFramesChanged(uint64_t start, uint64_t oldLength, uint64_t newLength)
{
    m_columns.Invalidate();
    TellViews([&] { Notify({DocumentChange::Kind::Frames, start, oldLength, newLength}); });
}

void CWEDoc::TellEdited(uint64_t start, uint64_t oldLength, uint64_t newLength)
{
    TellViews([this] { SetModified(true); });
    TellFramesChanged(start, oldLength, newLength);
}

bool CWEDoc::Copy(uint64_t start, uint64_t end, ChannelCode code)
{
    if (!CanEdit(start, end, code))
        return false;
    return WithinMemory([&] { return CopyToClipboard(start, end - start, EditedChannel(code)); });
}

bool CWEDoc::CopyToClipboard(uint64_t start, uint64_t length, ChannelCode code)
{
    auto copy = std::make_unique<CSoundBlock>();
    const auto take = [&] { return TakeFrames(*copy, m_store, start, length, code, "Copying Sound Block"); };
    WorkResult result = take();
    const bool givesUpOld = result == WorkResult::Failed && copy->LacksRoom() && SoundClipboard().Data;
    if (givesUpOld) {
        SoundClipboard().Free();
        try {
            result = take();
        } catch (const std::bad_alloc&) {
            result = WorkResult::Failed;
        }
    }
    if (result == WorkResult::Finished)
        SetSoundClipboard(std::move(copy));
    else if (!givesUpOld)
        HasFinished(result);
    else if (result == WorkResult::Failed)
        TellEditFailed(std::string(" ") + ClipboardIsEmpty);
    else
        AfxSCMessageBox(ClipboardIsEmpty, MessageButtons::Ok, MessageIcon::Information);
    return result == WorkResult::Finished;
}

bool CWEDoc::Paste(uint64_t& start, uint64_t& end, ChannelCode code)
{
    return PasteBy(&CWEDoc::ReplaceByBlock, start, end, code);
}

bool CWEDoc::PasteMix(uint64_t& start, uint64_t& end, ChannelCode code)
{
    uint64_t mixEnd = start;
    if (!PasteBy(&CWEDoc::MixBlockIn, start, mixEnd, code))
        return false;
    end = mixEnd;
    return true;
}

bool CWEDoc::PasteBy(PasteEdit edit, uint64_t& start, uint64_t& end, ChannelCode code)
{
    const bool wasReady = m_ready;
    const uint64_t oldCount = FrameCount();
    if (IsClipboardEmpty() || !WithinMemory([&] { return PasteInto(edit, start, end, code); })) {
        if (!wasReady)
            DropFormat();
        return false;
    }
    if (wasReady) {
        TellEdited(start, end - start + oldCount - FrameCount(), end - start);
        return true;
    }
    TellViews([this] {
        SetModified(true);
        OnNewSound();
    });
    return true;
}

bool CWEDoc::PasteInto(PasteEdit edit, uint64_t& start, uint64_t& end, ChannelCode code)
{
    if ((!m_ready && !TakeFormat(SoundClipboard().Format, nullptr)) || !CanEdit(start, end, code))
        return false;
    code = EditedChannel(code);
    CSoundBlock converted;
    const CSoundBlock* source = &SoundClipboard();
    const WAVEFORMATEXTENSIBLE format = EditFormat(m_store, code);
    if (source->Format != format) {
        if (!converted.ConvertFrom(*source, format))
            return false;
        source = &converted;
    }
    return (this->*edit)(*source, start, end, code);
}

bool CWEDoc::ReplaceByBlock(const CSoundBlock& source, uint64_t& start, uint64_t& end, ChannelCode code)
{
    const uint64_t oldLength = end - start;
    const uint64_t newLength = code == ChannelAll ? source.FrameCount : std::max(source.FrameCount, oldLength);
    std::string name = PrepareUndo(PasteCaption);
    auto old = KeepFrames(m_store, start, oldLength, KeptChannel(code, oldLength, newLength), StoreUndoCaption);
    if (!old || !PutFrames(m_store, start, end, source, code, true, PasteCaption))
        return false;
    end = start + newLength;
    PushUndo(std::move(old), start, end, std::move(name));
    return true;
}

bool CWEDoc::MixBlockIn(const CSoundBlock& source, uint64_t& start, uint64_t& end, ChannelCode code)
{
    const uint64_t newLength = source.FrameCount;
    const uint64_t oldLength = std::min(FrameCount() - start, newLength);
    std::string name = PrepareUndo(MixCaption);
    auto old = std::make_unique<CSoundBlock>();
    if (!CreateBlock(*old, m_store, oldLength, KeptChannel(code, oldLength, newLength)) ||
        !HasFinished(m_store.MixFrames(old.get(), start, source, code, true, MixCaption)))
        return false;
    source.ReleaseMemory();
    end = start + newLength;
    PushUndo(std::move(old), start, end, std::move(name));
    return true;
}

bool CWEDoc::Delete(uint64_t start, uint64_t end, ChannelCode code, const std::string& undoLabel)
{
    if (start == end || !CanEdit(start, end, code))
        return false;
    code = EditedChannel(code);
    return WithinMemory([&] {
        std::string name = PrepareUndo(undoLabel.empty() ? DeleteCaption : undoLabel);
        return code == ChannelAll ? RemoveFrames(start, end, std::move(name))
                                  : SilenceChannel(start, end, code, std::move(name));
    });
}

bool CWEDoc::RemoveFrames(uint64_t start, uint64_t end, std::string name)
{
    auto old = KeepFrames(m_store, start, end - start, ChannelAll, StoreUndoCaption);
    if (!old || !HasSucceeded(m_store.DeleteFrames(start, end, ChannelAll, DeleteCaption, nullptr)))
        return false;
    PushUndo(std::move(old), start, start, std::move(name));
    TellEdited(start, end - start, 0);
    return true;
}

bool CWEDoc::SilenceChannel(uint64_t start, uint64_t end, ChannelCode code, std::string name)
{
    auto old = std::make_unique<CSoundBlock>();
    if (!CreateBlock(*old, m_store, end - start, code) ||
        !HasSucceeded(m_store.DeleteFrames(start, end, code, DeleteCaption, old.get())) || old->FillPosition == 0)
        return false;
    const uint64_t silenced = old->FillPosition; // fewer when it was cancelled; these stay silent
    old->FrameCount = silenced;
    PushUndo(std::move(old), start, start + silenced, std::move(name));
    TellEdited(start, silenced, silenced);
    return true;
}

void CWEDoc::TellPutBack(const CSoundBlock& replaced, uint64_t& start, uint64_t& end)
{
    start = replaced.RangeStart();
    end = replaced.RangeEnd();
    TellEdited(start, replaced.FrameCount, end - start);
}

bool CWEDoc::Undo(uint64_t& start, uint64_t& end)
{
    if (!CanUndo())
        return false;
    auto replaced =
        WithinMemory([this] { return PutBack(m_store, m_undo.UndoBlock(), StoreRedoCaption, UndoCaption); });
    if (!replaced)
        return false;
    m_undo.ReplaceUndo(std::move(replaced));
    TellPutBack(m_undo.RedoBlock(), start, end);
    return true;
}

bool CWEDoc::Redo(uint64_t& start, uint64_t& end)
{
    if (!CanRedo())
        return false;
    auto replaced =
        WithinMemory([this] { return PutBack(m_store, m_undo.RedoBlock(), StoreUndoCaption, RedoCaption); });
    if (!replaced)
        return false;
    m_undo.ReplaceRedo(std::move(replaced));
    TellPutBack(m_undo.UndoBlock(), start, end);
    return true;
}

bool CWEDoc::StoreUndo(uint64_t start, uint64_t length, uint64_t newEnd, const std::string& name, ChannelCode code)
{
    if (newEnd < start || !CanEdit(start, start + length, code))
        return false;
    const ChannelCode kept = KeptChannel(EditedChannel(code), length, newEnd - start);
    return WithinMemory([&] {
        std::string label = PrepareUndo(name);
        auto old = KeepFrames(m_store, start, length, kept, StoreUndoCaption);
        if (!old)
            return false;
        PushUndo(std::move(old), start, newEnd, std::move(label));
        return true;
    });
}

bool CWEDoc::RollBack()
{
    if (!CanUndo())
        return false;
    const CSoundBlock& block = m_undo.UndoBlock();
    const uint64_t start = block.RangeStart();
    const uint64_t length = block.FrameCount;
    const uint64_t end = block.RangeEnd();
    if (!WithinMemory([&] { return PutFrames(m_store, start, end, block, block.Code, false, UndoCaption); }))
        return false;
    m_undo.DropUndo();
    TellFramesChanged(start, length, length); // as the views know it
    return true;
}

} // namespace ek
