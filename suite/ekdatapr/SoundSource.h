// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/ChannelOrder.h"
#include "ekdatapr/SampleShape.h"
#include "ekdatapr/SoundFile.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace ek {

/// The sound of a file, at any position, as frames whose channels stand in the order of their mask bits.
class SoundSource {
public:
    /// Null when the file cannot be read as sound within the limits of this library.
    static std::unique_ptr<SoundSource> Open(const std::filesystem::path& path);

    uint32_t Channels() const { return static_cast<uint32_t>(m_file.Info().channels); }
    uint32_t Rate() const { return static_cast<uint32_t>(m_file.Info().samplerate); }
    uint32_t Mask() const { return m_order.Mask; } ///< 0: the file does not tell
    uint64_t Frames() const;                       ///< as the file promises; 0 also when it does not tell
    const SampleShape& Shape() const { return m_shape; }
    const SoundFile& File() const { return m_file; }
    /// A call on the file failed; what was read since then is not all there is.
    bool Failed() const { return !m_file.Stream().Error().Ok(); }

    /// False when there is no such position.
    bool Seek(uint64_t frame);
    uint64_t Position() const { return m_position; }
    /// Frames read from the position on; fewer than asked only at the end of what can be decoded. Samples wider than
    /// 16 bits are dithered.
    uint64_t ReadShorts(int16_t* out, uint64_t frames);
    uint64_t ReadDoubles(double* out, uint64_t frames); ///< full scale is 1; beyond it saturates

private:
    bool Skip(uint64_t frames);

    SoundFile m_file;
    SampleShape m_shape;
    ChannelOrder m_order;
    uint64_t m_position = 0;
    uint64_t m_end = ~uint64_t{0}; ///< what can be decoded beyond it only fills a block
    std::vector<double> m_block;
};

} // namespace ek
