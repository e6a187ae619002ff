// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/ChannelMatrix.h"
#include "ekdatapr/CoderPlan.h"
#include "ekdatapr/RateConverter.h"
#include "ekdatapr/SoundFile.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace ek {

/// Writes 16-bit frames into a new file, converted to what the file is planned to be.
class Coder {
public:
    /// Null when the file cannot be made; nothing of it is left then.
    static std::unique_ptr<Coder> Create(const std::filesystem::path& target, const WAVEFORMATEXTENSIBLE& format,
                                         CoderPlan plan);

    uint32_t BlockAlign() const { return m_blockAlign; }         ///< bytes of one frame that Add takes
    void SetTags(TagMap tags) { m_plan.Tags = std::move(tags); } ///< before any frame
    bool Add(const int16_t* samples, uint64_t frames);
    /// Completes, syncs and closes the file. False when anything of the sound may be missing.
    bool Finish();

private:
    Coder(const WAVEFORMATEXTENSIBLE& format, CoderPlan plan);

    void Configure();
    void Begin();
    bool AddConverted(const int16_t* samples, size_t frames);
    bool AddAtOtherRate(const double* samples, size_t frames);
    bool DrainConverter();
    bool Write(double* samples, size_t frames);
    sf_count_t WriteSamples(const double* samples, size_t frames);
    bool IsWritten(sf_count_t done, uint64_t frames) const;

    SoundFile m_file;
    CoderPlan m_plan;
    uint32_t m_sourceRate;
    uint32_t m_blockAlign;
    ChannelMatrix m_matrix;
    std::vector<uint8_t> m_order; ///< of the file's channels; empty: as they come
    std::unique_ptr<RateConverter> m_converter;
    bool m_begun = false;
    uint64_t m_added = 0;   ///< frames taken
    uint64_t m_written = 0; ///< frames in the file, at its own rate

    std::vector<double> m_samples;
    std::vector<double> m_mixed;
    std::vector<double> m_converted;
    std::vector<int32_t> m_integers;
    std::vector<int16_t> m_shorts;
};

} // namespace ek
