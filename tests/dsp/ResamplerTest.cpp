// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Resampler.h"

#include "dsp/Resample.h"
#include "servicefuncs/Channels.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <memory>
#include <numbers>
#include <numeric>
#include <random>

namespace ek::test {
namespace {

using Bytes = std::vector<uint8_t>;

WAVEFORMATEXTENSIBLE FormatOf(uint32_t rate, uint32_t channels, uint16_t bits = 16)
{
    WAVEFORMATEXTENSIBLE format = MakePcm16Format(rate, channels);
    format.wBitsPerSample = bits;
    format.nBlockAlign = static_cast<uint16_t>(channels * bits / 8);
    return format;
}

WAVEFORMATEXTENSIBLE FloatFormat(uint32_t rate, uint32_t channels)
{
    WAVEFORMATEXTENSIBLE format = FormatOf(rate, channels, 32);
    format.SubFormat = KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;
    return format;
}

void FillWithNoise(SoundData& sound, uint32_t seed)
{
    std::mt19937 random(seed);
    for (uint32_t c = 0; c < sound.Record().ChannelCount; ++c)
        std::generate_n(sound.Record().Channels[c], sound.Record().FrameCount,
                        [&] { return static_cast<float>(random()) * 0x1p-31F - 1; });
}

std::vector<float> Values(const SoundData& sound, uint32_t channel)
{
    const float* values = sound.Record().Channels[channel];
    return {values, values + sound.Record().FrameCount};
}

TEST(LowPassTest, ItsTapsAndGainsAreThoseOfAButterworthFilter)
{
    for (const uint32_t rate : {8000U, 44100U, 529200U}) {
        for (const int32_t cutoff : {100, 1000, 3999, static_cast<int32_t>(rate / 4)}) {
            CEffectBWLowPass filter;
            filter.SetCutoff(cutoff);
            filter.SetFormat(FormatOf(rate, 1));
            const LowPassTaps& taps = filter.Taps();
            const auto gain = [&](double hertz) {
                const auto z = std::polar(1.0, -2 * std::numbers::pi * hertz / rate);
                return std::abs((taps.b0 + z * (taps.b1 + z * taps.b2)) / (1.0 + z * (taps.a1 + z * taps.a2)));
            };
            EXPECT_NEAR(gain(0), 1, 1e-6);
            EXPECT_NEAR(gain(cutoff), std::numbers::sqrt2 / 2, 1e-9);
            EXPECT_NEAR(gain(rate / 2.0), 0, 1e-9);
            if (cutoff * 4U == rate) {
                EXPECT_NEAR(taps.b0, 1 / (2 + std::numbers::sqrt2), 1e-12);
                EXPECT_NEAR(taps.a1, 0, 1e-12);
            }
        }
    }
}

TEST(LowPassTest, ChannelsAreFilteredApartAndHoweverTheyAreCut)
{
    const auto filtered = [](uint32_t channel, uint32_t cut) {
        CEffectBWLowPass filter;
        filter.SetCutoff(3000);
        filter.SetFormat(FormatOf(44100, 3));
        SoundData sound(3, 1000);
        FillWithNoise(sound, 1);
        std::fill_n(sound.Record().Channels[2], 1000, 0.25F);
        _SOUNDDATAEX_ part = sound.Record();
        part.FrameCount = cut;
        EXPECT_EQ(filter.Process(part), 1u);
        EXPECT_EQ(part.Produced, cut);
        for (float*& buffer : part.Channels)
            buffer += buffer ? cut : 0;
        part.FrameCount = 1000 - cut;
        EXPECT_TRUE(filter.ProcessChain(part));
        return Values(sound, channel);
    };
    EXPECT_EQ(filtered(0, 1), filtered(0, 500));
    EXPECT_EQ(filtered(1, 333), filtered(1, 500));
    EXPECT_NE(filtered(0, 1), filtered(1, 1));
    EXPECT_NEAR(filtered(2, 77).back(), 0.25F, 1e-5F) << "gain 1 at 0 Hz";
}

TEST(LowPassTest, ANewFormatStartsFromSilence)
{
    CEffectBWLowPass filter;
    filter.SetCutoff(1000);
    for (const uint32_t rate : {44100U, 48000U}) {
        filter.SetFormat(FormatOf(rate, 1));
        SoundData sound(1, 1);
        sound.Record().Channels[0][0] = 1;
        filter.Process(sound.Record());
        EXPECT_EQ(sound.Record().Channels[0][0], static_cast<float>(filter.Taps().b0)) << rate;
    }
    _SOUNDDATAEX_ noChannels;
    noChannels.FrameCount = 5;
    EXPECT_EQ(filter.Process(noChannels), 1u);
    EXPECT_EQ(noChannels.Produced, 5u);
}

TEST(LowPassTest, TheNextEffectRunsFirst)
{
    struct Doubler : CBaseEffect {
        uint32_t Process(_SOUNDDATAEX_& sound) override
        {
            sound.Channels[0][0] = sound.Channels[0][0] * 2 + 1;
            return 0;
        }
    };
    CEffectBWLowPass filter;
    filter.SetCutoff(1000);
    filter.SetFormat(FormatOf(44100, 1));
    Doubler doubler;
    Doubler first;
    filter.SetNext(&doubler);
    doubler.SetNext(&first);
    SoundData sound(1, 1);
    EXPECT_FALSE(doubler.ProcessChain(sound.Record()));
    EXPECT_EQ(sound.Record().Channels[0][0], 3);
    EXPECT_TRUE(filter.ProcessChain(sound.Record())) << "only its own result counts";
    EXPECT_EQ(sound.Record().Channels[0][0], static_cast<float>(filter.Taps().b0) * 15);
}

TEST(ResampleTest, TheFactorsAreTheFirstNearEnoughFractionOrTheNearest)
{
    struct Case {
        uint32_t Output;
        uint32_t Input;
        RateFactors Expected;
    };
    const std::vector<Case> cases = {
        {48000, 44100, {12, 11}}, {44100, 48000, {11, 12}}, {44100, 44100, {1, 1}}, {22050, 44100, {1, 2}},
        {192000, 8000, {24, 1}},  {20, 10, {2, 1}},         {44144, 44100, {1, 1}}, // nearer than 0.003
        {400000, 4000, {49, 1}},                                                    // beyond all fractions
        {18, 12, {18, 12}},                                                         // low rates are taken as they are
    };
    for (const Case& test : cases)
        EXPECT_EQ(RateFactors::For(test.Output, test.Input), test.Expected) << test.Output << " " << test.Input;
}

TEST(ResampleTest, TheCascadeIsSpreadBelowTheLowerRate)
{
    const auto cutoffs = [](uint32_t out, uint32_t in) {
        CResample resample;
        resample.SetFactors(RateFactors::For(out, in));
        resample.SetFormat(FormatOf(in, 2));
        std::vector<int32_t> hertz;
        for (const CEffectBWLowPass& stage : resample.Stages())
            hertz.push_back(stage.Cutoff());
        return hertz;
    };
    EXPECT_EQ(cutoffs(48000, 44100), std::vector({21000, 23100, 25410}));
    EXPECT_EQ(cutoffs(44100, 48000), std::vector({20952, 23047, 25352}));
    EXPECT_EQ(cutoffs(22050, 44100), std::vector({10500}));
    EXPECT_EQ(cutoffs(88200, 44100), std::vector({21000, 23100}));
}

/// The definition: zeros between the samples, every low-pass over all of it, every Down-th sample kept.
std::vector<float> PlainResample(std::span<const float> input, RateFactors factors, uint32_t rate)
{
    CResample design;
    design.SetFactors(factors);
    design.SetFormat(FormatOf(rate, 1));
    std::vector<double> work(input.size() * factors.Up);
    for (size_t i = 0; i < input.size(); ++i)
        work[i * factors.Up] = double{input[i]} * factors.Up;
    for (const CEffectBWLowPass& stage : design.Stages()) {
        const auto tap = [](double value) { return double{static_cast<float>(value)}; };
        const LowPassTaps& taps = stage.Taps();
        double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
        for (double& value : work) {
            const double x = value;
            value = tap(taps.b0) * x + tap(taps.b1) * x1 + tap(taps.b2) * x2 - tap(taps.a1) * y1 - tap(taps.a2) * y2;
            x2 = std::exchange(x1, x);
            y2 = std::exchange(y1, value);
        }
    }
    std::vector<float> output;
    for (size_t i = 0; i < work.size(); i += factors.Down)
        output.push_back(static_cast<float>(work[i]));
    return output;
}

TEST(ResampleTest, EveryRatioMeetsTheDefinitionHoweverTheStreamIsCut)
{
    constexpr uint32_t Frames = 3000;
    std::mt19937 random(1);
    const std::vector<RateFactors> ratios = {{12, 11}, {11, 12}, {1, 1},  {2, 1},  {1, 2},  {49, 1},
                                             {1, 49},  {49, 48}, {2, 49}, {7, 49}, {18, 12}};
    for (const RateFactors factors : ratios) {
        const uint32_t channels = 1 + random() % 8;
        SoundData whole(channels, Frames);
        FillWithNoise(whole, 3);
        std::vector<std::vector<float>> output(channels);
        CResample resample;
        resample.SetFactors(factors);
        resample.SetFormat(FormatOf(44100, channels));
        for (uint32_t done = 0; done < Frames;) {
            const uint32_t count = std::min<uint32_t>(random() % 200, Frames - done);
            SoundData part(channels, count);
            for (uint32_t c = 0; c < channels; ++c)
                std::copy_n(whole.Record().Channels[c] + done, count, part.Record().Channels[c]);
            const uint64_t promised = resample.OutputFrames(count);
            resample.Resample(part);
            ASSERT_EQ(part.Record().FrameCount, promised);
            ASSERT_EQ(part.Record().Produced, promised);
            for (uint32_t c = 0; c < channels; ++c)
                output[c].insert(output[c].end(), part.Record().Channels[c], part.Record().Channels[c] + promised);
            done += count;
        }
        std::vector<std::vector<float>> expected;
        for (uint32_t c = 0; c < channels; ++c)
            expected.push_back(PlainResample({whole.Record().Channels[c], Frames}, factors, 44100));
        resample.SetFormat(FormatOf(44100, channels)); // forgets the stream
        resample.Resample(whole);
        for (uint32_t c = 0; c < channels; ++c) {
            ASSERT_EQ(Values(whole, c), output[c]) << factors.Up << "/" << factors.Down;
            ASSERT_EQ(output[c].size(), expected[c].size());
            for (size_t i = 0; i < expected[c].size(); ++i)
                ASSERT_NEAR(output[c][i], expected[c][i], 1e-6) << factors.Up << "/" << factors.Down << " " << i;
        }
    }
}

struct Releaser {
    void operator()(IResampler* resampler) const { resampler->Release(); }
};

class ResamplerTest : public testing::Test {
protected:
    static constexpr uint8_t Canary = 0xA5;

    ResamplerTest()
    {
        IResampler* resampler = nullptr;
        EXPECT_EQ(CreateResampler(&resampler), StatusOk);
        m_resampler.reset(resampler);
    }
    /// The size that an output block may have.
    uint32_t Init(const WAVEFORMATEXTENSIBLE& input, uint32_t inputBytes, const WAVEFORMATEXTENSIBLE& output)
    {
        uint32_t outputBytes = 0;
        EXPECT_EQ(m_resampler->Init(&input, inputBytes, &output, &outputBytes), StatusOk);
        return outputBytes;
    }
    StatusCode Process(const Bytes& input, uint32_t capacity, Bytes& output)
    {
        uint32_t written = 12345;
        output.assign(capacity + 8, Canary);
        const StatusCode status =
            m_resampler->Process(input.data(), static_cast<uint32_t>(input.size()), output.data(), capacity, &written);
        EXPECT_LE(written, capacity);
        EXPECT_EQ(std::count(output.begin() + written, output.end(), Canary), output.end() - output.begin() - written);
        output.resize(written);
        return status;
    }
    Bytes Converted(const Bytes& input, uint32_t capacity)
    {
        Bytes output;
        EXPECT_EQ(Process(input, capacity, output), StatusOk);
        return output;
    }
    static Bytes Noise(size_t bytes)
    {
        std::mt19937 random(5);
        Bytes noise(bytes);
        std::ranges::generate(noise, [&] { return static_cast<uint8_t>(random()); });
        return noise;
    }
    template <typename Sample>
    static Bytes BytesOf(const std::vector<Sample>& samples)
    {
        const auto* bytes = reinterpret_cast<const uint8_t*>(samples.data());
        return {bytes, bytes + samples.size() * sizeof(Sample)};
    }

    std::unique_ptr<IResampler, Releaser> m_resampler;
};

TEST_F(ResamplerTest, BlocksOfEverySizeGiveTheSameStreamWithinThePromisedSize)
{
    std::mt19937 random(2);
    const std::vector<WAVEFORMATEXTENSIBLE> formats = {FormatOf(44100, 2),     FormatOf(48000, 2),
                                                       FormatOf(8000, 1, 8),   FormatOf(96000, 1, 24),
                                                       FormatOf(11025, 2, 32), FloatFormat(22050, 1)};
    for (const WAVEFORMATEXTENSIBLE& from : formats) {
        for (const WAVEFORMATEXTENSIBLE& to : formats) {
            const Bytes input = Noise(size_t{from.nBlockAlign} * 7000);
            const Bytes whole = Converted(input, Init(from, static_cast<uint32_t>(input.size()), to));
            for (const uint32_t most : {1U, 341U, 4096U}) {
                const uint32_t capacity = Init(from, most * from.nBlockAlign, to);
                Bytes stream;
                for (size_t done = 0; done < input.size();) {
                    const size_t frames = most == 341 ? 1 + random() % most : most;
                    const size_t count = std::min(frames * from.nBlockAlign, input.size() - done);
                    const Bytes part = Converted({input.begin() + done, input.begin() + done + count}, capacity);
                    stream.insert(stream.end(), part.begin(), part.end());
                    done += count;
                }
                ASSERT_EQ(stream, whole) << from.nSamplesPerSec << " to " << to.nSamplesPerSec << " by " << most;
            }
        }
    }
}

TEST_F(ResamplerTest, TheSizesFollowTheFactors)
{
    EXPECT_EQ(Init(FormatOf(44100, 2), 4096, FormatOf(48000, 2)), (1024U * 12 / 11 + 1) * 4);
    EXPECT_EQ(Converted(Bytes(44000), 48000).size(), 48000u) << "12 for 11, not the exact ratio";
    EXPECT_EQ(Init(FormatOf(44100, 2), 4098, FormatOf(44100, 1, 24)), 1024U * 3);
}

TEST_F(ResamplerTest, ASoundKeepsItsLevelAndIsSilentAfterwards)
{
    for (const uint32_t rate : {8000U, 48000U, 96000U}) {
        const uint32_t capacity = Init(FloatFormat(44100, 1), 160000, FloatFormat(rate, 2));
        std::vector<float> tone(40000, 0.5F);
        std::fill(tone.begin() + 20000, tone.end(), 0.0F);
        const Bytes output = Converted(BytesOf(tone), capacity);
        const auto* values = reinterpret_cast<const float*>(output.data());
        const size_t count = output.size() / sizeof(float);
        const size_t quarter = count / 4;
        const double sum = std::accumulate(values + quarter / 2, values + quarter / 2 + quarter, 0.0);
        EXPECT_NEAR(sum / static_cast<double>(quarter), 0.5, 1e-4) << rate;
        EXPECT_EQ(std::count(values + count * 3 / 4, values + count, 0.0F), count - count * 3 / 4) << rate;
    }
}

TEST_F(ResamplerTest, ChannelsAndWidthsAreChangedAtTheSameRate)
{
    const std::vector<int16_t> stereo = {100, 300, -32768, -32768, 32767, -32767};
    Init(FormatOf(44100, 2), 12, FormatOf(44100, 1));
    EXPECT_EQ(Converted(BytesOf(stereo), 6), BytesOf<int16_t>({200, -32768, 0}));
    Init(FormatOf(44100, 1), 4, FormatOf(44100, 6));
    EXPECT_EQ(Converted(BytesOf<int16_t>({-5, 7}), 24), BytesOf<int16_t>({-5, -5, -5, -5, -5, -5, 7, 7, 7, 7, 7, 7}));
    Init(FormatOf(44100, 1), 4, FormatOf(44100, 2, 32));
    EXPECT_EQ(Converted(BytesOf<int16_t>({-5, 7}), 16), BytesOf<int32_t>({-5 << 16, -5 << 16, 7 << 16, 7 << 16}));
    Init(FormatOf(44100, 2), 12, FloatFormat(44100, 2));
    const Bytes floats = Converted(BytesOf(stereo), 24);
    Init(FloatFormat(44100, 2), 24, FormatOf(44100, 2));
    EXPECT_EQ(Converted(floats, 12), BytesOf(stereo));
}

TEST_F(ResamplerTest, OtherChangesOfChannelsFail)
{
    const auto fails = [this](const WAVEFORMATEXTENSIBLE& from, const WAVEFORMATEXTENSIBLE& to) {
        Init(from, 4800, to);
        Bytes output;
        return Process(Bytes(4800), 1 << 20, output) == StatusFailed && output.empty();
    };
    EXPECT_TRUE(fails(FormatOf(44100, 2), FormatOf(44100, 6)));
    EXPECT_TRUE(fails(FormatOf(44100, 6), FormatOf(44100, 2)));
    EXPECT_TRUE(fails(FormatOf(44100, 1), FormatOf(48000, 6)));
    EXPECT_TRUE(fails(FormatOf(44100, 1), FormatOf(44100, 6, 24)));
    EXPECT_FALSE(fails(FormatOf(44100, 1), FormatOf(48000, 2, 24)));
    EXPECT_FALSE(fails(FormatOf(44100, 6), FormatOf(48000, 6, 8)));
}

TEST_F(ResamplerTest, ABlockThatDoesNotFitIsNotTaken)
{
    const Bytes input = Noise(4400);
    const uint32_t capacity = Init(FormatOf(44100, 2), 4400, FormatOf(48000, 2));
    const Bytes expected = Converted(input, capacity);
    EXPECT_EQ(m_resampler->Reset(), StatusOk);
    Bytes output;
    EXPECT_EQ(Process(input, static_cast<uint32_t>(expected.size()) - 1, output), StatusFailed);
    EXPECT_TRUE(output.empty());
    EXPECT_EQ(Converted(input, static_cast<uint32_t>(expected.size())), expected)
        << "a new stream, and exactly as large";

    Init(FormatOf(44100, 2), 4400, FormatOf(44100, 2));
    EXPECT_EQ(Converted(input, 4399), Bytes()) << "equal formats: no failure";
    EXPECT_EQ(Converted(input, 4400), input);
}

TEST_F(ResamplerTest, ItWorksOnlyBetweenInitAndUninit)
{
    const WAVEFORMATEXTENSIBLE input = FormatOf(44100, 2);
    const WAVEFORMATEXTENSIBLE output = FormatOf(48000, 1);
    WAVEFORMATEXTENSIBLE got;
    const auto ready = [&] {
        Bytes ignored;
        const std::vector<StatusCode> codes = {m_resampler->GetInputFormat(&got), m_resampler->GetOutputFormat(&got),
                                               m_resampler->Reset(), Process(Bytes(40), 100, ignored)};
        EXPECT_EQ(std::count(codes.begin(), codes.end(), codes[0]), 4);
        return codes[0] == StatusOk;
    };
    WAVEFORMATEXTENSIBLE noRate = input;
    noRate.nSamplesPerSec = 0;
    WAVEFORMATEXTENSIBLE noWidth = input;
    noWidth.wBitsPerSample = 0;
    uint32_t bytes = 77;
    EXPECT_FALSE(ready());
    EXPECT_EQ(m_resampler->Init(nullptr, 4096, &output, &bytes), StatusFailed);
    EXPECT_EQ(m_resampler->Init(&input, 4096, nullptr, &bytes), StatusFailed);
    EXPECT_EQ(m_resampler->Init(&input, 4096, &noRate, &bytes), StatusFailed);
    EXPECT_EQ(m_resampler->Init(&noWidth, 4096, &output, &bytes), StatusFailed);
    EXPECT_EQ(bytes, 77u);
    EXPECT_FALSE(ready());
    Init(input, 4096, output);
    EXPECT_TRUE(ready());
    EXPECT_EQ(m_resampler->GetInputFormat(&got), StatusOk);
    EXPECT_EQ(got, input);
    EXPECT_EQ(m_resampler->GetOutputFormat(&got), StatusOk);
    EXPECT_EQ(got, output);
    uint32_t written = 5;
    EXPECT_EQ(m_resampler->Process(nullptr, 4, &bytes, 4, &written), StatusFailed);
    EXPECT_EQ(m_resampler->Process(&bytes, 0, &bytes, 4, &written), StatusFailed);
    EXPECT_EQ(m_resampler->Process(&bytes, 3, &bytes, 4, &written), StatusOk) << "less than a frame";
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(m_resampler->Uninit(), StatusOk);
    EXPECT_FALSE(ready());
}

} // namespace
} // namespace ek::test
