// SPDX-License-Identifier: GPL-3.0-or-later
#include "CodecFixture.h"

#include "servicefuncs/Channels.h"
#include "support/Signals.h"

#include <cmath>
#include <complex>
#include <numbers>
#include <sndfile.h>

namespace ek {

std::vector<double> Sound::Channel(uint32_t channel) const
{
    std::vector<double> samples;
    for (size_t i = channel; i < Values.size(); i += Channels)
        samples.push_back(Values[i] / 32768.0);
    return samples;
}

Sound MakeTones(uint32_t rate, uint32_t channels, uint64_t frames, double amplitude)
{
    Sound sound{rate, channels, {}};
    for (uint64_t frame = 0; frame < frames; ++frame) {
        for (uint32_t channel = 0; channel < channels; ++channel) {
            const double turns = (200.0 + 100 * channel) * static_cast<double>(frame) / rate;
            const double value = amplitude * 32767 * std::sin(2 * std::numbers::pi * turns);
            sound.Values.push_back(static_cast<int16_t>(std::lround(value)));
        }
    }
    return sound;
}

Sound MakeNoiseSound(uint32_t channels, uint64_t frames)
{
    return {44100, channels, MakeNoise(channels, frames * channels)};
}

void CodecFixture::Choose(const std::string& name, uint32_t channels, Options options)
{
    options.try_emplace("channels", ChannelLayoutName(channels));
    std::string error;
    ASSERT_TRUE(EkSetCoderOptions(Path(name).extension().string().substr(1), options, error)) << error;
}

bool CodecFixture::Write(const std::string& name, const Sound& sound, const StreamProperties* properties,
                         const StreamProperties* tags)
{
    const WAVEFORMATEXTENSIBLE format = MakePcm16Format(sound.Rate, sound.Channels);
    const CoderHandle coder = EkCoderCreateFile(Path(name), format, properties, nullptr, sound.Frames());
    if (coder == 0)
        return false;
    if (tags)
        EkCoderSetTags(coder, *tags);
    bool written = true;
    constexpr uint64_t framesPerCall = 777;
    for (uint64_t frame = 0; frame < sound.Frames(); frame += framesPerCall) {
        const uint64_t count = std::min(framesPerCall, sound.Frames() - frame);
        const void* data = &sound.Values[frame * sound.Channels];
        written = EkCoderAddFileData(coder, count, data, count * format.nBlockAlign) && written;
    }
    return EkCoderCloseFile(coder) && written;
}

void CodecFixture::WriteByLibrary(const std::string& name, int sfFormat, uint32_t rate, uint32_t channels,
                                  const std::vector<double>& values)
{
    SF_INFO info{};
    info.samplerate = static_cast<int>(rate);
    info.channels = static_cast<int>(channels);
    info.format = sfFormat;
    SNDFILE* file = sf_open(Path(name).c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr) << sf_strerror(nullptr);
    sf_write_double(file, values.data(), static_cast<sf_count_t>(values.size()));
    ASSERT_EQ(sf_close(file), 0);
}

std::vector<int16_t> ReadAll(DecoderHandle decoder, uint32_t channels, uint64_t framesPerRead, uint64_t first)
{
    std::vector<int16_t> all;
    std::vector<int16_t> buffer(framesPerRead * channels);
    for (uint64_t got = framesPerRead; got == framesPerRead; first += got) {
        got = EkGetFileData(decoder, first, framesPerRead, buffer.data(), buffer.size() * sizeof(int16_t));
        all.insert(all.end(), buffer.begin(), buffer.begin() + static_cast<ptrdiff_t>(got * channels));
    }
    return all;
}

Sound CodecFixture::Read(const std::string& name)
{
    const WAVEFORMATEXTENSIBLE format = FormatOf(name);
    return format.nChannels == 0 ? Sound() : ReadAs(name, format.nSamplesPerSec, format.nChannels);
}

Sound CodecFixture::ReadAs(const std::string& name, uint32_t rate, uint32_t channels)
{
    WAVEFORMATEXTENSIBLE format = MakePcm16Format(rate, channels, FormatOf(name).dwChannelMask);
    uint64_t frames = 0;
    const DecoderHandle decoder = EkOpenFile(Path(name), format, frames, false);
    EXPECT_NE(decoder, 0u) << name;
    Sound sound{rate, channels, ReadAll(decoder, channels)};
    EXPECT_FALSE(EkDecoderFailed(decoder));
    EkCloseFile(decoder);
    return sound;
}

WAVEFORMATEXTENSIBLE CodecFixture::FormatOf(const std::string& name)
{
    WAVEFORMATEXTENSIBLE format;
    uint64_t frames = 0;
    const DecoderHandle decoder = EkOpenFile(Path(name), format, frames, true);
    EXPECT_NE(decoder, 0u) << name;
    EkCloseFile(decoder);
    return format;
}

StreamProperties CodecFixture::PropertiesOf(const std::string& name)
{
    StreamInfo info;
    StreamProperties properties;
    EXPECT_TRUE(EkGetStreamInfo(Path(name), info, properties)) << name;
    return properties;
}

std::string CodecFixture::TypeOf(const std::string& name)
{
    StreamInfo info;
    StreamProperties properties;
    EXPECT_TRUE(EkGetStreamInfo(Path(name), info, properties)) << name;
    return info.FormatName;
}

bool CodecFixture::Opens(const std::string& name)
{
    StreamInfo info;
    StreamProperties properties;
    WAVEFORMATEXTENSIBLE own;
    WAVEFORMATEXTENSIBLE wanted = MakePcm16Format(48000, 2);
    uint64_t frames = 0;
    const DecoderHandle native = EkOpenFile(Path(name), own, frames, true);
    const DecoderHandle converting = EkOpenFile(Path(name), wanted, frames, false);
    EkCloseFile(native);
    EkCloseFile(converting);
    return EkGetStreamInfo(Path(name), info, properties) || native != 0 || converting != 0;
}

double AmplitudeOf(const std::vector<double>& signal, double frequency, uint32_t rate)
{
    // Whole periods, away from what happens at the ends.
    const double period = rate / frequency;
    const auto periods = std::floor(static_cast<double>(signal.size()) / 2 / period);
    const auto first = static_cast<size_t>(static_cast<double>(signal.size()) / 4);
    const auto count = static_cast<size_t>(std::lround(periods * period));
    std::complex<double> sum = 0;
    for (size_t i = first; i < first + count; ++i)
        sum += signal[i] * std::polar(1.0, -2 * std::numbers::pi * frequency * static_cast<double>(i) / rate);
    return 2 * std::abs(sum) / static_cast<double>(count);
}

} // namespace ek
