// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveedit/WEDoc.h"

#include "framework/DocumentSite.h"
#include "framework/Prompts.h"
#include "platform/Text.h"
#include "servicefuncs/MessageBox.h"
#include "waveedit/SoundBlock.h"

#include <algorithm>

namespace ek {

namespace {

ClipRegistry* g_clipRegistry = nullptr;

/// An 8-bit block as 16-bit: unsigned bytes with the zero line at 128.
bool Widen(const CSoundBlock& narrow, const WAVEFORMATEXTENSIBLE& wideFormat, CSoundBlock& wide)
{
    if (narrow.Format.wBitsPerSample != 8)
        return false;
    const auto widen = [&](CProgressDlg&) {
        if (!wide.Create(narrow.FrameCount, wideFormat, nullptr, narrow.Code))
            return WorkResult::Failed;
        std::transform(narrow.Data, narrow.Data + narrow.ByteSize(), reinterpret_cast<int16_t*>(wide.Data),
                       [](uint8_t value) { return static_cast<int16_t>((value - 128) * 256); });
        return WorkResult::Finished;
    };
    return RunInBackground("Creating New File...", false, widen) == WorkResult::Finished;
}

} // namespace

void SetClipRegistry(ClipRegistry* registry)
{
    g_clipRegistry = registry;
}

ClipRegistry* CurrentClipRegistry()
{
    return g_clipRegistry;
}

CWEDoc::CWEDoc()
{
    SetTitle("Untitled");
}

CWEDoc::~CWEDoc()
{
    if (m_editKey && g_clipRegistry)
        g_clipRegistry->OnEditorGone(*m_editKey);
}

bool CWEDoc::OnNewDocument()
{
    if (!CDocument::OnNewDocument())
        return false;
    SetTitle("Untitled");
    return true;
}

bool CWEDoc::OnOpenDocument(const std::filesystem::path& path)
{
    DeleteContents();
    SetModified(true);
    m_ready = m_store.OpenFile(path);
    SetTitle(path.string());
    if (m_ready)
        OnNewSound();
    SetModified(false);
    return m_ready;
}

void CWEDoc::DropFormat()
{
    m_ready = false;
    m_undo.Clear();
    m_store.Close();
}

void CWEDoc::DeleteContents()
{
    DropFormat();
    m_columns.Free();
    SetPath({});
}

bool CWEDoc::TakeFormat(const WAVEFORMATEXTENSIBLE& format, const StreamProperties* properties)
{
    m_undo.Clear();
    m_ready = m_store.SetFormat(format, properties);
    return m_ready;
}

bool CWEDoc::SetFormat(const WAVEFORMATEXTENSIBLE& format, const StreamProperties* properties)
{
    if (!TakeFormat(format, properties))
        return DropSound();
    OnNewSound();
    return true;
}

bool CWEDoc::OpenFromStore(CWaveData& source)
{
    if (!m_store.CopyFrom(source))
        return DropSound();
    m_undo.Clear();
    m_ready = true;
    SetModified(false);
    OnNewSound();
    return true;
}

bool CWEDoc::NewFromBlock(const CSoundBlock& block)
{
    if (!TakeFormat(block.Format, nullptr) || !TakeBlock(block))
        return DropSound();
    SetModified(true);
    OnNewSound();
    return true;
}

bool CWEDoc::TakeBlock(const CSoundBlock& block)
{
    const CSoundBlock* source = &block;
    CSoundBlock wide;
    if (block.Format.wBitsPerSample != Format().wBitsPerSample) {
        if (!Widen(block, Format(), wide))
            return false;
        source = &wide;
    }
    uint64_t end = 0;
    return m_store.ReplaceFrames(0, end, *source, ChannelAll, false, "Creating New File...") == WorkResult::Finished;
}

bool CWEDoc::DropSound()
{
    DeleteContents();
    OnNewSound();
    return false;
}

void CWEDoc::OnNewSound()
{
    FirstVisibleChannel = 0;
    VisibleChannelCount = ChannelCount();
    AmplitudeScale = 100;
    m_columns.SetChannelCount(ChannelCount());
    Notify({.What = DocumentChange::Kind::Reset, .StartFrame = 0, .OldLength = 0, .NewLength = FrameCount()});
}

void CWEDoc::RefreshColumnCache(uint64_t firstFrame, uint32_t framesPerColumn, uint32_t width)
{
    if (m_ready)
        m_columns.Refresh(m_store, firstFrame, framesPerColumn, width);
}

bool CWEDoc::SaveTo(const std::filesystem::path& path, bool useStoredSettings, bool* openAfter)
{
    const bool saved = m_store.SaveFile(path, useStoredSettings, openAfter);
    if (saved) {
        SetPath(path);
        SetModified(false);
    }
    if (DocumentSite* site = CurrentDocumentSite())
        site->AddRecentFile(path);
    return saved;
}

bool CWEDoc::OnSaveDocument(const std::filesystem::path& path)
{
    return SaveTo(path, true, nullptr);
}

bool CWEDoc::ReturnToClip()
{
    const bool returned = g_clipRegistry && g_clipRegistry->ReturnEditedClip(*m_editKey, m_store);
    if (returned)
        SetModified(false);
    return returned;
}

bool CWEDoc::DoSave()
{
    return Save(true);
}

bool CWEDoc::SaveAs()
{
    return SaveToChosen(true);
}

bool CWEDoc::Save(bool mayReopen)
{
    if (!m_editKey && Path().empty())
        return SaveToChosen(mayReopen);
    const bool saved = m_editKey ? ReturnToClip() : OnSaveDocument(Path());
    FocusView();
    return saved;
}

void CWEDoc::FocusView()
{
    if (DocumentSite* site = CurrentDocumentSite())
        site->FocusView(*this);
}

bool CWEDoc::SaveToChosen(bool mayReopen)
{
    const std::filesystem::path suggestion = Path().empty() ? std::filesystem::path(Title()) : Path();
    const auto target = CurrentPrompts().ChooseFileToSave(EkGetSupportedCoderExtensions(), "wav", suggestion);
    bool openAfter = false;
    const bool saved = target && SaveTo(*target, false, &openAfter);
    DocumentSite* site = CurrentDocumentSite();
    if (saved && site)
        site->RefreshMenu();
    if (saved && site && openAfter && mayReopen)
        site->ReopenAs(*this, *target);
    else
        FocusView();
    return saved;
}

bool CWEDoc::SaveModified()
{
    if (!IsModified())
        return true;
    const std::string question = ek::Format("Save changes to %s?", DisplayName().c_str());
    switch (AfxSCMessageBox(question, MessageButtons::YesNoCancel, MessageIcon::Question)) {
    case MessageAnswer::Yes:
        return Save(false); // the document is on its way out: nothing of it is opened again
    case MessageAnswer::No:
        return true;
    default:
        return false;
    }
}

std::string CWEDoc::FormatPosition(uint64_t frame) const
{
    const uint64_t rate = m_store.SourceFormat().nSamplesPerSec;
    if (rate == 0)
        return {};
    const uint64_t seconds = frame / rate;
    const uint64_t milliseconds = std::min<uint64_t>(((frame % rate) * 1000 + rate / 2) / rate, 999);
    return ek::Format("%02I64d:%02I64d:%02I64d,%03I64d", seconds / 3600, seconds / 60 % 60, seconds % 60, milliseconds);
}

std::span<const CommandEntry> CWEDoc::CommandTable() const
{
    static constexpr CommandEntry table[] = {
        Command<CWEDoc, &CWEDoc::OnSave, &CWEDoc::OnUpdateSave>(57603),
        Command<CWEDoc, &CWEDoc::OnSaveAs, &CWEDoc::OnUpdateSave>(57604),
    };
    return table;
}

} // namespace ek
