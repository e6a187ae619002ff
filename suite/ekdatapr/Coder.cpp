// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/Coder.h"

#include "ekdatapr/ChannelOrder.h"
#include "ekdatapr/CoderTypes.h"
#include "ekdatapr/Dither.h"
#include "ekdatapr/Id3.h"
#include "ekdatapr/SourceFacts.h"

#include <algorithm>
#include <utility>

namespace ek {

namespace {

constexpr size_t BlockFrames = 4096;

bool IsMpeg(const CoderPlan& plan)
{
    return (plan.Info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_MPEG;
}

bool IsOgg(const CoderPlan& plan)
{
    return (plan.Info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_OGG;
}

/// The library's setting between 0 (largest files) and 1 that gives a bit rate in kbit/s.
double CompressionFor(const CoderPlan& plan)
{
    double lowest = 6;
    double highest = 256;
    double rate = static_cast<double>(plan.BitRate) / plan.Info.channels;
    if (IsMpeg(plan)) {
        lowest = plan.Info.samplerate >= 32000 ? 32 : 8;
        highest = plan.Info.samplerate >= 32000 ? 320 : plan.Info.samplerate >= 16000 ? 160 : 64;
        rate = plan.BitRate + 0.5; // the library cuts off fractions
    }
    return std::clamp((highest - rate) / (highest - lowest), 0.0, 1.0);
}

/// How the bits are spread. The first frame of an MPEG stream tells the length of the sound; at a constant rate it has
/// that rate, too, and may be too small for that.
int BitRateModeFor(const CoderPlan& plan)
{
    constexpr double lengthBytes = 192;
    const double framesPerSecond = plan.Info.samplerate / (plan.Info.samplerate >= 32000 ? 1152.0 : 576.0);
    const double frameBytes = plan.BitRate * 125.0 / framesPerSecond;
    return frameBytes < lengthBytes ? SF_BITRATE_MODE_AVERAGE : SF_BITRATE_MODE_CONSTANT;
}

} // namespace

Coder::Coder(const WAVEFORMATEXTENSIBLE& format, CoderPlan plan)
    : m_plan(std::move(plan)), m_sourceRate(format.nSamplesPerSec), m_blockAlign(format.nBlockAlign),
      m_matrix(MakeChannelMatrix(format.nChannels, format.dwChannelMask, static_cast<uint32_t>(m_plan.Info.channels),
                                 m_plan.Mask)),
      m_order(FixedChannelOrder(m_plan.Info.format, m_matrix.Outputs).From)
{
    m_samples.resize(BlockFrames * m_matrix.Inputs);
    m_mixed.resize(BlockFrames * m_matrix.Outputs);
    m_converted.resize(BlockFrames * m_matrix.Outputs);
    m_integers.resize(BlockFrames * m_matrix.Outputs);
    m_shorts.resize(BlockFrames * m_matrix.Outputs);
}

std::unique_ptr<Coder> Coder::Create(const std::filesystem::path& target, const WAVEFORMATEXTENSIBLE& format,
                                     CoderPlan plan)
{
    std::unique_ptr<Coder> coder(new Coder(format, std::move(plan)));
    const auto rate = static_cast<uint32_t>(coder->m_plan.Info.samplerate);
    if (rate != coder->m_sourceRate) {
        coder->m_converter = RateConverter::Create(coder->m_sourceRate, rate, coder->m_matrix.Outputs);
        if (!coder->m_converter)
            return nullptr;
    }
    if (!coder->m_file.Create(target, coder->m_plan.Info, coder->m_plan.MaxBytes))
        return nullptr;
    coder->Configure();
    return coder;
}

void Coder::Configure()
{
    if (RateSettingOf(m_plan.Info.format) == RateSetting::Quality)
        sf_command(m_file.Handle(), SFC_SET_VBR_ENCODING_QUALITY, &m_plan.Quality, sizeof m_plan.Quality);
    if (RateSettingOf(m_plan.Info.format) == RateSetting::BitRate) {
        int mode = BitRateModeFor(m_plan);
        double compression = CompressionFor(m_plan);
        if (IsMpeg(m_plan))
            sf_command(m_file.Handle(), SFC_SET_BITRATE_MODE, &mode, sizeof mode);
        sf_command(m_file.Handle(), SFC_SET_COMPRESSION_LEVEL, &compression, sizeof compression);
    }
    if (m_matrix.Outputs > 2 || m_plan.Mask != DefaultChannelMask(m_matrix.Outputs))
        WriteChannelMap(m_file.Handle(), m_plan.Mask);
}

// The library writes tags together with the header, before the first frame.
void Coder::Begin()
{
    if (std::exchange(m_begun, true))
        return;
    std::string encoder = MakeEncoderName(m_plan.Info.format, m_plan.Quality, m_plan.BitRate);
    if (encoder.empty())
        encoder = MakeSpeakersName(m_plan.Info.format, m_matrix.Outputs, m_plan.Mask);
    if (IsMpeg(m_plan)) {
        // The library's own ID3 tags know no letters beyond Latin-1 and no copyright.
        m_file.Stream().WritePrefix(MakeId3Tag(m_plan.Tags, encoder));
        return;
    }
    if (!encoder.empty())
        sf_set_string(m_file.Handle(), SF_STR_SOFTWARE, encoder.c_str());
    WriteTags(m_file.Handle(), m_plan.Tags);
}

bool Coder::Add(const int16_t* samples, uint64_t frames)
{
    Begin();
    m_added += frames;
    if (!m_converter && m_plan.Coding->Kind == SampleKind::Bits16 && m_matrix.IsIdentity()) {
        const sf_count_t done = sf_writef_short(m_file.Handle(), samples, static_cast<sf_count_t>(frames));
        m_written += frames;
        return IsWritten(done, frames);
    }
    while (frames > 0) {
        const size_t count = std::min<uint64_t>(frames, BlockFrames);
        if (!AddConverted(samples, count))
            return false;
        samples += count * m_matrix.Inputs;
        frames -= count;
    }
    return true;
}

bool Coder::AddConverted(const int16_t* samples, size_t frames)
{
    std::transform(samples, samples + frames * m_matrix.Inputs, m_samples.begin(),
                   [](int16_t sample) { return sample / 32768.0; });
    m_matrix.Apply(m_samples.data(), m_mixed.data(), frames);
    return m_converter ? AddAtOtherRate(m_mixed.data(), frames) : Write(m_mixed.data(), frames);
}

bool Coder::AddAtOtherRate(const double* samples, size_t frames)
{
    while (frames > 0) {
        const auto [used, made] = m_converter->Convert(samples, frames, m_converted.data(), BlockFrames);
        if ((used == 0 && made == 0) || !Write(m_converted.data(), made))
            return false;
        samples += used * m_matrix.Outputs;
        frames -= used;
    }
    return true;
}

// Makes the length what the length of the sound is at the file's rate, rounded to nearest.
bool Coder::DrainConverter()
{
    const auto rate = static_cast<uint32_t>(m_plan.Info.samplerate);
    const uint64_t end = ConvertedFrames(m_added, m_sourceRate, rate);
    while (m_written < end) {
        size_t made = m_converter->Convert(nullptr, 0, m_converted.data(), BlockFrames).Made;
        if (made == 0) {
            made = BlockFrames;
            std::ranges::fill(m_converted, 0.0);
        }
        if (!Write(m_converted.data(), std::min<uint64_t>(made, end - m_written)))
            return false;
    }
    return true;
}

bool Coder::Write(double* samples, size_t frames)
{
    Reorder(samples, frames, m_order, OrderDirection::FrameToFile);
    const sf_count_t done = WriteSamples(samples, frames);
    m_written += frames;
    return IsWritten(done, frames);
}

sf_count_t Coder::WriteSamples(const double* samples, size_t frames)
{
    const auto count = static_cast<sf_count_t>(frames);
    const size_t values = frames * m_matrix.Outputs;
    const uint64_t index = m_written * m_matrix.Outputs;
    switch (m_plan.Coding->Kind) {
    case SampleKind::Bits8:
        DitherTo8(samples, values, index, m_shorts.data());
        return sf_writef_short(m_file.Handle(), m_shorts.data(), count);
    case SampleKind::Bits16:
        DitherTo16(samples, values, index, m_shorts.data());
        return sf_writef_short(m_file.Handle(), m_shorts.data(), count);
    case SampleKind::Bits24:
        RoundTo24(samples, values, m_integers.data());
        return sf_writef_int(m_file.Handle(), m_integers.data(), count);
    case SampleKind::Bits32:
        RoundTo32(samples, values, m_integers.data());
        return sf_writef_int(m_file.Handle(), m_integers.data(), count);
    default:
        return sf_writef_double(m_file.Handle(), samples, count);
    }
}

// Some coders report frames as written whose bytes the file refused.
bool Coder::IsWritten(sf_count_t done, uint64_t frames) const
{
    return done == static_cast<sf_count_t>(frames) && m_file.Stream().Error().Ok();
}

bool Coder::Finish()
{
    Begin();
    bool written = !m_converter || DrainConverter();
    if (m_written == 0 && IsOgg(m_plan)) {
        // An Ogg stream without sound cannot be opened again.
        std::ranges::fill(m_mixed, 0.0);
        written = Write(m_mixed.data(), 1);
    } else if (m_written == 0) {
        sf_command(m_file.Handle(), SFC_UPDATE_HEADER_NOW, nullptr, 0);
    }
    return m_file.Finish(m_written) && written;
}

} // namespace ek
