// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/SoundSource.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace ek {

/// Delivers the frames of a file in one format.
class Decoder {
public:
    virtual ~Decoder() = default;

    virtual uint32_t BlockAlign() const = 0; ///< bytes of one delivered frame
    bool Failed() const { return m_failed || m_source->Failed(); }
    void Fail() { m_failed = true; } ///< a read could not be done
    /// Frames delivered from `firstFrame` on; fewer than asked only at the end.
    virtual uint64_t Read(uint64_t firstFrame, uint64_t frames, void* buffer) = 0;

protected:
    explicit Decoder(std::unique_ptr<SoundSource> source) : m_source(std::move(source)) {}

    std::unique_ptr<SoundSource> m_source;

private:
    bool m_failed = false;
};

/// 16-bit frames at the file's own rate and channels.
class ShortDecoder final : public Decoder {
public:
    explicit ShortDecoder(std::unique_ptr<SoundSource> source) : Decoder(std::move(source)) {}
    uint32_t BlockAlign() const override;
    uint64_t Read(uint64_t firstFrame, uint64_t frames, void* buffer) override;
};

/// The frames of an 8-bit file as unsigned bytes.
class ByteDecoder final : public Decoder {
public:
    explicit ByteDecoder(std::unique_ptr<SoundSource> source) : Decoder(std::move(source)) {}
    uint32_t BlockAlign() const override;
    uint64_t Read(uint64_t firstFrame, uint64_t frames, void* buffer) override;

private:
    std::vector<int16_t> m_block;
};

} // namespace ek
