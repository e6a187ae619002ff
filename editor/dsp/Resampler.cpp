// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Resampler.h"

#include "dsp/Resample.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace ek {

namespace {

/// Blocks are worked on in slices of this many frames: what lies between fits into the processor's cache, and a huge
/// block needs no more memory than a small one.
constexpr uint64_t SliceFrames = 2048;

bool IsUsable(const WAVEFORMATEXTENSIBLE* format)
{
    return format && IsConvertible(*format) && format->nSamplesPerSec != 0;
}

} // namespace

class CResampler final : public IResampler {
public:
    StatusCode Init(const WAVEFORMATEXTENSIBLE* input, uint32_t inputBytes, const WAVEFORMATEXTENSIBLE* output,
                    uint32_t* outputBytes) override;
    StatusCode Process(const void* input, uint32_t inputBytes, void* output, uint32_t capacity,
                       uint32_t* written) override;
    StatusCode Reset() override;
    StatusCode Uninit() override;
    StatusCode Release() override;
    StatusCode GetInputFormat(WAVEFORMATEXTENSIBLE* format) override;
    StatusCode GetOutputFormat(WAVEFORMATEXTENSIBLE* format) override;

private:
    bool ChangesRate() const { return m_input.nSamplesPerSec != m_output.nSamplesPerSec; }
    bool CanMapChannels() const;
    StatusCode Start();
    StatusCode Give(const WAVEFORMATEXTENSIBLE& format, WAVEFORMATEXTENSIBLE* target) const;
    uint32_t ConvertSlice(const uint8_t* input, uint32_t frames, uint8_t* output);
    StatusCode Convert(const uint8_t* input, uint64_t frames, uint8_t* output);

    WAVEFORMATEXTENSIBLE m_input;
    WAVEFORMATEXTENSIBLE m_output;
    bool m_ready = false;
    CResample m_resample;
    SoundData m_sound;
};

StatusCode CResampler::Init(const WAVEFORMATEXTENSIBLE* input, uint32_t inputBytes, const WAVEFORMATEXTENSIBLE* output,
                            uint32_t* outputBytes)
{
    if (!IsUsable(input) || !IsUsable(output))
        return StatusFailed;
    const RateFactors factors = RateFactors::For(output->nSamplesPerSec, input->nSamplesPerSec);
    uint64_t frames = inputBytes / input->nBlockAlign;
    if (input->nSamplesPerSec != output->nSamplesPerSec)
        frames = frames * factors.Up / factors.Down + 1;
    const uint64_t bytes = frames * output->nBlockAlign;
    if (bytes > std::numeric_limits<uint32_t>::max())
        return StatusFailed;
    m_input = *input;
    m_output = *output;
    m_resample.SetFactors(factors);
    if (outputBytes)
        *outputBytes = static_cast<uint32_t>(bytes);
    return Start();
}

StatusCode CResampler::Start()
{
    try {
        m_resample.SetFormat(m_input);
        m_ready = true;
    } catch (const std::bad_alloc&) {
        m_ready = false;
    }
    return m_ready ? StatusOk : StatusFailed;
}

bool CResampler::CanMapChannels() const
{
    const uint32_t from = m_input.nChannels;
    const uint32_t to = m_output.nChannels;
    const bool onlySpread = !ChangesRate() && m_input.wBitsPerSample == m_output.wBitsPerSample;
    return from == to || (from == 2 && to == 1) || (from == 1 && (to == 2 || onlySpread));
}

StatusCode CResampler::Process(const void* input, uint32_t inputBytes, void* output, uint32_t capacity,
                               uint32_t* written)
{
    *written = 0;
    if (!m_ready || !input || inputBytes == 0)
        return StatusFailed;
    if (m_input == m_output) {
        if (inputBytes <= capacity) {
            std::memcpy(output, input, inputBytes);
            *written = inputBytes;
        }
        return StatusOk;
    }
    const uint64_t frames = inputBytes / m_input.nBlockAlign;
    const uint64_t outputBytes = (ChangesRate() ? m_resample.OutputFrames(frames) : frames) * m_output.nBlockAlign;
    if (!CanMapChannels() || outputBytes > capacity)
        return StatusFailed;
    const StatusCode status = Convert(static_cast<const uint8_t*>(input), frames, static_cast<uint8_t*>(output));
    *written = status == StatusOk ? static_cast<uint32_t>(outputBytes) : 0;
    return status;
}

StatusCode CResampler::Convert(const uint8_t* input, uint64_t frames, uint8_t* output)
{
    try {
        for (uint64_t done = 0; done < frames; done += SliceFrames) {
            const auto count = static_cast<uint32_t>(std::min(frames - done, SliceFrames));
            output += ConvertSlice(input + done * m_input.nBlockAlign, count, output);
        }
        return StatusOk;
    } catch (const std::bad_alloc&) {
        return StatusFailed;
    }
}

/// Returns the bytes written.
uint32_t CResampler::ConvertSlice(const uint8_t* input, uint32_t frames, uint8_t* output)
{
    m_sound.Resize(m_input.nChannels, frames);
    MME2SD_BYSAMPLES(input, frames, m_sound.Record(), m_input, 0, -1);
    if (ChangesRate())
        m_resample.Resample(m_sound);
    _SOUNDDATAEX_ mapped = m_sound.Record();
    if (m_input.nChannels == 2 && m_output.nChannels == 1) {
        for (uint32_t i = 0; i < mapped.FrameCount; ++i)
            mapped.Channels[0][i] = (mapped.Channels[0][i] + mapped.Channels[1][i]) * 0.5F;
    } else if (m_input.nChannels == 1) {
        std::fill_n(mapped.Channels, m_output.nChannels, mapped.Channels[0]);
        mapped.ChannelCount = m_output.nChannels;
    }
    SD2MME(mapped, 0, mapped.FrameCount, output, m_output);
    return mapped.FrameCount * m_output.nBlockAlign;
}

StatusCode CResampler::Reset()
{
    return m_ready ? Start() : StatusFailed;
}

StatusCode CResampler::Uninit()
{
    m_ready = false;
    return StatusOk;
}

StatusCode CResampler::Release()
{
    delete this;
    return StatusOk;
}

StatusCode CResampler::Give(const WAVEFORMATEXTENSIBLE& format, WAVEFORMATEXTENSIBLE* target) const
{
    if (!m_ready || !target)
        return StatusFailed;
    *target = format;
    return StatusOk;
}

StatusCode CResampler::GetInputFormat(WAVEFORMATEXTENSIBLE* format)
{
    return Give(m_input, format);
}

StatusCode CResampler::GetOutputFormat(WAVEFORMATEXTENSIBLE* format)
{
    return Give(m_output, format);
}

StatusCode CreateResampler(IResampler** resampler)
{
    *resampler = new (std::nothrow) CResampler;
    return StatusOk;
}

} // namespace ek
