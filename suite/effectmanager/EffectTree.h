// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/EffectEntryPoint.h"
#include "effectmanager/EffectLibrary.h"
#include "effectmanager/EffectNode.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>

namespace ek {

class CSimpleEffect;
class LookAheadLimiter;

/// What CheckTransference foresees.
enum INSERT_MODE : uint32_t { InsertImpossible = 1, InsertMove = 2, InsertCopy = 3 };
/// What TransferNode has done.
enum INSERT_ACTION : uint32_t { InsertedNothing = 1, InsertedMoved = 2, InsertedCopy = 3 };

/// The library of effects as a tree, and the stream of sound through the effect that is in use.
///
/// The stream: SetAudioInput, OpenStream, GetSoundData again and again, CloseStream, SetAudioInput(nullptr).
/// Without effects sound passes unchanged to the bit. To apply the effect in use without the limiter, GetData of
/// GetTreeEntryPoint() takes the place of GetSoundData.
///
/// GetSoundData and GetData of the entry point may run on another thread than the rest, which is the user interface's:
/// a lock within the tree keeps blocks and changes apart, and is held while the input is asked for frames. Changes
/// that belong together are made between LockMorphStream and UnlockMorphStream.
class CEffectTree {
public:
    explicit CEffectTree(std::string title);
    ~CEffectTree();
    CEffectTree(const CEffectTree&) = delete;
    CEffectTree& operator=(const CEffectTree&) = delete;

    // Building and saving.

    void AddProvider(std::unique_ptr<EffectProvider> provider); ///< asked by the scan for its family
    /// Adds what an element "EffectsTree" holds, below `under` or the root; any other element is no library: false.
    /// Effects that are not known (yet) become NodeUnavailable and are saved again as they were read.
    bool BuildTree(const enXml& xml, CEffectNode* under = nullptr);
    /// Ask the providers of one family. Effects that they offer become available where the tree has them already; the
    /// rest are added in the provider's folder.
    void ScanAllVoiceMorphs() { Scan(EffectFamily::VoiceMorphs); }
    void ScanAllSpecialEffects() { Scan(EffectFamily::SpecialEffects); }
    void ScanAllDirectXEffects() { Scan(EffectFamily::DirectX); }
    void ScanAllVSTEffects() { Scan(EffectFamily::VST); }
    void SaveTreeStruct(enXml& xml) const; ///< adds everything below the root to the element

    CEffectNode& GetRootNode() { return *m_root; }
    const CEffectNode& GetRootNode() const { return *m_root; }
    std::span<const LibraryEffectPtr> GetLibraryEffects() const { return m_library; }
    LibraryEffectPtr FindEffectByDllName(std::string_view libraryName) const; ///< null: not installed

    void BuildMorphMenu(EffectMenu& menu, bool childrenOnly) const { m_root->BuildMorphMenu(menu, childrenOnly); }
    /// One item for each of GetLibraryEffects(), numbered by its place; `inFolders`: in popups, one for each provider.
    void CreateSimpleEffectsMenu(EffectMenu& menu, bool inFolders) const;

    // The stream.

    void SetAudioInput(CAudioAbstract* input); ///< not owned; null: none
    /// Opens anew when it is open already. On failure no stream is open.
    tEffError OpenStream(const WAVEFORMATEXTENSIBLE& format);
    bool IsStreamOpened() const { return m_isOpen; }
    /// Fills the record from the input through the effect in use and the limiter; returns the frames filled. Fewer
    /// than wanted: that was all, and the next call begins anew. What effects and the limiter hold back comes out
    /// before the end: unless an effect changes the length, a stream gives exactly the frames that its input gave, each
    /// at its place. 0 without an open stream, or when the record has fewer channels than its format.
    uint32_t GetSoundData(_SOUNDDATAEX_& sound);
    void RestartStream(); ///< forgets what is held back: for when the input has jumped
    void CloseStream();   ///< the limiter goes too
    /// How many frames GetSoundData has pulled from the input and not yet given out, once it has given out any. Any
    /// thread, without waiting.
    uint32_t Latency() const { return m_latency; }

    // The effect in use.

    /// The thread that locks unlocks, as many times. In between it calls no playback and no player: those may wait for
    /// the thread that asks for blocks, which waits for this lock.
    void LockMorphStream() { m_lock.lock(); }
    void UnlockMorphStream() { m_lock.unlock(); }
    /// `effect` is of a node of this tree; null: none. With an open stream it is heard from the next block on, each
    /// frame still at its place. On failure no effect is in use.
    tEffError SetSoundMorphEffect(CEffectAbstract* effect);
    CEffectAbstract* GetSoundMorphEffect() const { return m_entry.InUse(); }
    /// To be called when a chain that `node` is or is part of was composed anew; an open stream takes it up. The error
    /// is of the effect in use, which is then dropped.
    tEffError UpdateEffect(CEffectNode* node);
    CEffectEntryPoint* GetTreeEntryPoint() { return &m_entry; }
    void SwitchOffEffects(); ///< none is in use: OpenStream cannot fail for an effect
    void SetSoundEffectSettings(CSimpleEffect& effect, const EffectSettings& settings);

    // Editing. What is refused changes nothing. Chains are linked anew at once.

    bool CheckInsertion(const CEffectNode* target, NODE_TYPE type) const;
    /// Whether the node may come below the target. An effect of the library is copied into a chain, all else moves.
    INSERT_MODE CheckTransference(const CEffectNode* node, const CEffectNode* target) const;
    /// Puts the node, or with `copy` a copy of it, below the target, behind `after` when that is a child of it, else at
    /// the end. A node without a parent becomes the tree's; it stays the caller's when nothing is inserted or it
    /// was copied. The effects of the library in a folder are not copied along with it.
    INSERT_ACTION TransferNode(CEffectNode* node, CEffectNode* target, CEffectNode* after = nullptr, bool copy = false);
    bool CheckMovingUp(const CEffectNode* node) const;
    bool CheckMovingDown(const CEffectNode* node) const;
    bool MoveUpNode(CEffectNode* node);
    bool MoveDownNode(CEffectNode* node);
    bool CheckDeletion(const CEffectNode* node) const; ///< not the root, and no effect that the library offers
    /// With `keep` the node becomes the caller's, else it is deleted. The effect in use goes out of use with it.
    bool RemoveNode(CEffectNode* node, bool keep);

private:
    friend class CEffectManager;
    void Scan(EffectFamily family);
    void AddEffect(const LibraryEffectPtr& effect, const std::string& folderTitle);
    bool HasLibraryNode(std::string_view libraryName) const;
    CEffectNode& FolderOf(const std::string& title);
    void Adopt(CEffectNode* node, CEffectNode& parent, CEffectNode* after);
    static void LinkChain(const CEffectNode* node);
    static void LinkChainsIn(const CEffectNode& top);
    void UpdateLatency();
    void InitializeLimiter(const WAVEFORMATEXTENSIBLE& format);

    mutable std::recursive_mutex m_lock;
    std::vector<std::unique_ptr<EffectProvider>> m_providers;
    std::vector<LibraryEffectPtr> m_library;
    std::vector<std::string> m_folders; ///< of each of m_library
    std::unique_ptr<CEffectNode> m_root;
    uint32_t m_nextId = 0;
    CEffectEntryPoint m_entry;
    std::unique_ptr<LookAheadLimiter> m_limiter;
    uint32_t m_channels = 0;
    std::atomic<bool> m_isOpen{false};
    std::atomic<uint32_t> m_latency{0};
};

class CEffectManager {
public:
    /// From now on the stream of playback, the one that was opened last, is kept below full scale until it is closed.
    /// Nothing happens when none is open or its format has another channel count. User-interface thread.
    static void InitializeLimiter(const WAVEFORMATEXTENSIBLE& format);
};

} // namespace ek
