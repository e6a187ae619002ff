// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/AudioAbstract.h"

#include <cstdint>
#include <string>

namespace ek {

enum tEffError : uint32_t {
    EffectSuccess = 0,
    EffectFailed = 1,
    EffectMonoOrStereoOnly = 3,
    EffectStereoOnly = 4,
};

/// The library of effects as a tree, and the stream of sound through the effects that are in use.
///
/// The stream: SetAudioInput, OpenStream, GetSoundData again and again, CloseStream, SetAudioInput(nullptr).
/// GetSoundData may run on another thread than the rest; the caller keeps the other calls from running at once with it.
class CEffectTree {
public:
    explicit CEffectTree(std::string title);
    ~CEffectTree();
    CEffectTree(const CEffectTree&) = delete;
    CEffectTree& operator=(const CEffectTree&) = delete;

    void SetAudioInput(CAudioAbstract* input); ///< not owned; null: none
    tEffError OpenStream(const WAVEFORMATEXTENSIBLE& format);
    bool IsStreamOpened() const;
    /// Fills the record from the input through the effects in use; returns the frames filled. Fewer than wanted:
    /// that was all. What effects and the limiter hold back comes out before the end: a stream gives exactly the frames
    /// that its input gave, each at its place.
    uint32_t GetSoundData(_SOUNDDATAEX_& sound);
    void CloseStream();
    /// How many frames GetSoundData has pulled from the input and not yet given out, once it has given out any.
    uint32_t Latency() const;

private:
    CAudioAbstract* m_input = nullptr;
};

class CEffectManager {
public:
    /// From now on the open stream of playback is kept below full scale, until it is closed.
    static void InitializeLimiter(const WAVEFORMATEXTENSIBLE& format);
};

} // namespace ek
