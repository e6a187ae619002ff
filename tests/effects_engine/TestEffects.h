// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/EffectTree.h"
#include "effectmanager/SimpleEffect.h"

#include <deque>
#include <random>

namespace ek::test {

using Sound = std::vector<std::vector<float>>; ///< a channel after the other

WAVEFORMATEXTENSIBLE FloatFormat(uint32_t channels, uint32_t rate = 44100);
Sound Noise(uint32_t seed, uint32_t channels, size_t frames, float peak = 0.9F);
Sound Scaled(Sound sound, float gain);

/// Gives a sound, and then nothing more until it is rewound.
class SoundSource final : public CAudioAbstract {
public:
    explicit SoundSource(Sound sound) : m_sound(std::move(sound)) {}
    uint32_t GetData(_SOUNDDATAEX_* sound) override;
    size_t Pulled() const { return m_pulled; }
    void Seek(size_t frame) { m_pulled = frame; }

private:
    Sound m_sound;
    size_t m_pulled = 0;
};

/// Pulls at most `frames`; fewer when the end has come, which is then kept in `isEnd`.
Sound PullBlock(CAudioAbstract& source, uint32_t channels, uint32_t frames, bool& isEnd);
/// Everything, in blocks of random sizes up to `most`; `between` runs after each block.
Sound PullAll(CAudioAbstract& source, uint32_t channels, uint32_t seed = 1, uint32_t most = 700,
              const std::function<void(const Sound& soFar)>& between = {});

/// The stream of a tree as a source.
class TreeStream final : public CAudioAbstract {
public:
    explicit TreeStream(CEffectTree& tree) : m_tree(tree) {}
    uint32_t GetData(_SOUNDDATAEX_* sound) override { return m_tree.GetSoundData(*sound); }

private:
    CEffectTree& m_tree;
};

/// "test.gain" (parameter Gain), "test.late" (the same 50 frames late), "test.later" (333 frames late), "test.stereo"
/// and "test.monostereo" that refuse other sound, "test.none", "test.throws" that cannot be opened, "test.twice" that
/// gives each frame two times.
std::unique_ptr<EffectProvider> MakeTestProvider(EffectFamily family = EffectFamily::SpecialEffects);

/// A menu as text: "[popup: 1 item, 2 item]".
class TextMenu final : public EffectMenu {
public:
    void AddItem(uint32_t command, const std::string& text) override;
    EffectMenu& AddPopup(const std::string& text) override;
    std::string Text() const;

private:
    struct Entry {
        std::string Text;
        std::unique_ptr<TextMenu> Popup;
    };
    std::deque<Entry> m_entries;
};

} // namespace ek::test
