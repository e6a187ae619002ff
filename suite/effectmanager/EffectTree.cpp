// SPDX-License-Identifier: GPL-3.0-or-later
#include "effectmanager/EffectTree.h"
#include "debugmanager/DebugManager.h"
#include "effectmanager/EffectTreeFile.h"
#include "effectmanager/LookAheadLimiter.h"
#include "effectmanager/SimpleEffect.h"

#include <algorithm>
#include <exception>
#include <map>
#include <utility>

namespace ek {

namespace {
CEffectTree* g_playback = nullptr; ///< whose stream was opened last and is open
}

CEffectTree::CEffectTree(std::string title)
    : m_root(std::make_unique<CEffectNode>(std::move(title), NodeRoot)), m_entry(m_lock)
{
    m_root->m_id = m_nextId++;
}

CEffectTree::~CEffectTree()
{
    CloseStream();
    m_entry.Use(nullptr);
}

void CEffectTree::AddProvider(std::unique_ptr<EffectProvider> provider)
{
    m_providers.push_back(std::move(provider));
}

LibraryEffectPtr CEffectTree::FindEffectByDllName(std::string_view libraryName) const
{
    const auto found = std::find_if(m_library.begin(), m_library.end(), [&](const LibraryEffectPtr& effect) {
        return effect->LibraryName() == libraryName;
    });
    return found == m_library.end() ? nullptr : *found;
}

bool CEffectTree::BuildTree(const enXml& xml, CEffectNode* under)
{
    if (xml.Name() != EffectTreeFile::RootName)
        return false;
    const std::lock_guard lock(m_lock);
    CEffectNode& parent = under ? *under : *m_root;
    for (std::unique_ptr<CEffectNode>& node : EffectTreeFile(*this).Read(xml, parent.GetType() == NodeComplex))
        Adopt(node.release(), parent, nullptr);
    return true;
}

void CEffectTree::SaveTreeStruct(enXml& xml) const
{
    EffectTreeFile::Write(*m_root, xml);
}

void CEffectTree::Scan(EffectFamily family)
{
    const std::lock_guard lock(m_lock);
    for (const std::unique_ptr<EffectProvider>& provider : m_providers) {
        if (provider->Family() != family)
            continue;
        try {
            for (const LibraryEffectPtr& effect : provider->Scan())
                AddEffect(effect, provider->FolderTitle());
        } catch (const std::exception& error) {
            enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to scan \"%s\": %s",
                                             provider->FolderTitle().c_str(), error.what());
        }
    }
}

void CEffectTree::AddEffect(const LibraryEffectPtr& effect, const std::string& folderTitle)
{
    if (FindEffectByDllName(effect->LibraryName()))
        return;
    m_library.push_back(effect);
    m_folders.push_back(folderTitle);
    EffectTreeFile(*this).MakeAvailable(*m_root);
    m_entry.Change([this] { LinkChainsIn(*m_root); });
    if (!HasLibraryNode(effect->LibraryName()))
        Adopt(new CEffectNode(effect->Title(), NodeLibraryEffect, std::make_unique<CSimpleEffect>(effect)),
              FolderOf(folderTitle), nullptr);
}

bool CEffectTree::HasLibraryNode(std::string_view libraryName) const
{
    for (const CEffectNode* node = m_root.get(); node; node = node->NextInTree(m_root.get())) {
        if (node->GetType() == NodeLibraryEffect && node->GetSimpleEffect()->GetLibraryName() == libraryName)
            return true;
    }
    return false;
}

CEffectNode& CEffectTree::FolderOf(const std::string& title)
{
    for (CEffectNode* node = m_root->FirstChild(); node; node = node->NextSibling()) {
        if (node->GetType() == NodeFolder && node->GetCaption() == title)
            return *node;
    }
    Adopt(new CEffectNode(title, NodeFolder), *m_root, nullptr);
    return *m_root->LastChild();
}

void CEffectTree::CreateSimpleEffectsMenu(EffectMenu& menu, bool inFolders) const
{
    std::map<std::string, EffectMenu*> popups;
    for (size_t i = 0; i < m_library.size(); ++i) {
        EffectMenu* target = &menu;
        if (inFolders) {
            EffectMenu*& popup = popups[m_folders[i]];
            if (!popup)
                popup = &menu.AddPopup(m_folders[i]);
            target = popup;
        }
        target->AddItem(SimpleEffectCommandFirst + static_cast<uint32_t>(i), m_library[i]->Title());
    }
}

void CEffectTree::SetAudioInput(CAudioAbstract* input)
{
    const std::lock_guard lock(m_lock);
    m_entry.SetAudioInput(input);
}

tEffError CEffectTree::OpenStream(const WAVEFORMATEXTENSIBLE& format)
{
    const std::lock_guard lock(m_lock);
    CloseStream();
    if (format.nChannels == 0 || format.nChannels > _SOUNDDATAEX_::MostChannels)
        return EffectFailed;
    if (const tEffError error = m_entry.OpenStream(&format))
        return error;
    m_channels = format.nChannels;
    m_isOpen = true;
    g_playback = this;
    UpdateLatency();
    return EffectSuccess;
}

uint32_t CEffectTree::GetSoundData(_SOUNDDATAEX_& sound)
{
    const std::lock_guard lock(m_lock);
    if (!m_isOpen || sound.ChannelCount < m_channels)
        return 0;
    const uint32_t given = m_limiter ? m_limiter->Produce(m_entry, sound) : m_entry.GetData(&sound);
    UpdateLatency();
    return given;
}

void CEffectTree::RestartStream()
{
    const std::lock_guard lock(m_lock);
    m_entry.Restart();
    if (m_limiter)
        m_limiter->Restart();
    UpdateLatency();
}

void CEffectTree::CloseStream()
{
    const std::lock_guard lock(m_lock);
    m_entry.CloseStream();
    m_limiter.reset();
    m_isOpen = false;
    if (g_playback == this)
        g_playback = nullptr;
    UpdateLatency();
}

void CEffectTree::UpdateLatency()
{
    m_latency = m_isOpen ? m_entry.Ahead() + (m_limiter ? m_limiter->Latency() : 0) : 0;
}

void CEffectTree::InitializeLimiter(const WAVEFORMATEXTENSIBLE& format)
{
    auto limiter = std::make_unique<LookAheadLimiter>();
    if (format.nChannels != m_channels || limiter->Open(format) != EffectSuccess)
        return;
    const std::lock_guard lock(m_lock);
    if (!m_limiter) // one that is at work holds sound back
        m_limiter = std::move(limiter);
    UpdateLatency();
}

void CEffectManager::InitializeLimiter(const WAVEFORMATEXTENSIBLE& format)
{
    if (g_playback)
        g_playback->InitializeLimiter(format);
}

tEffError CEffectTree::SetSoundMorphEffect(CEffectAbstract* effect)
{
    const std::lock_guard lock(m_lock);
    const tEffError error = m_entry.Use(effect);
    UpdateLatency();
    return error;
}

tEffError CEffectTree::UpdateEffect(CEffectNode* node)
{
    const std::lock_guard lock(m_lock);
    for (; node; node = node->Parent()) {
        if (node->GetEffect() && node->GetEffect() == m_entry.InUse())
            return SetSoundMorphEffect(node->GetEffect());
    }
    return EffectSuccess;
}

void CEffectTree::SwitchOffEffects()
{
    SetSoundMorphEffect(nullptr);
}

void CEffectTree::SetSoundEffectSettings(CSimpleEffect& effect, const EffectSettings& settings)
{
    const std::lock_guard lock(m_lock);
    effect.SetSettings(settings);
}

} // namespace ek
