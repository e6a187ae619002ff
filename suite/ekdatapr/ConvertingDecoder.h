// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/ChannelMatrix.h"
#include "ekdatapr/Decoder.h"
#include "ekdatapr/RateConverter.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace ek {

/// 16-bit frames at another rate or with other channels than the file's. A jump gives the same frames as reading on
/// from the start does.
class ConvertingDecoder final : public Decoder {
public:
    /// Null when the rates are too far apart.
    static std::unique_ptr<ConvertingDecoder> Create(std::unique_ptr<SoundSource> source, uint32_t rate,
                                                     const ChannelMatrix& matrix);

    uint32_t BlockAlign() const override;
    uint64_t Read(uint64_t firstFrame, uint64_t frames, void* buffer) override;

private:
    ConvertingDecoder(std::unique_ptr<SoundSource> source, uint32_t rate, const ChannelMatrix& matrix);

    bool JumpTo(uint64_t frame);
    bool NextBlock();
    size_t ReadMixed();
    void ConvertBlock();
    void DropBeyondEnd();

    const uint32_t m_rate;
    const ChannelMatrix m_matrix;
    std::unique_ptr<RateConverter> m_converter; ///< null: the file has the rate

    std::vector<double> m_read;  ///< as the file has them
    std::vector<double> m_mixed; ///< with the channels delivered
    size_t m_mixedUsed = 0;      ///< of the frames in m_mixed
    size_t m_mixedFrames = 0;
    bool m_sourceEnded = false;

    std::vector<double> m_block; ///< at the rate delivered
    size_t m_blockUsed = 0;
    size_t m_blockFrames = 0;
    uint64_t m_blockStart = 0; ///< position of the block's first frame in the delivered sound
};

} // namespace ek
