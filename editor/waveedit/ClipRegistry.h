// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

namespace ek {

class CWaveData;

/// Names the clip of a session that a wave document edits.
using EditKey = std::array<uint8_t, 16>;

/// The sessions' side of editing a clip as a wave document. User-interface thread.
class ClipRegistry {
public:
    /// Takes the edited sound back into its clip; false when the clip is gone or the sound could not be copied.
    virtual bool ReturnEditedClip(const EditKey& key, CWaveData& sound) = 0;
    virtual void OnEditorGone(const EditKey& key) = 0;

protected:
    ~ClipRegistry() = default;
};

void SetClipRegistry(ClipRegistry* registry); ///< null: no session is open
ClipRegistry* CurrentClipRegistry();

} // namespace ek
