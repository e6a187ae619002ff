// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEffects.h"
#include "servicefuncs/Channels.h"

#include <algorithm>
#include <stdexcept>

namespace ek::test {

WAVEFORMATEXTENSIBLE FloatFormat(uint32_t channels, uint32_t rate)
{
    return MakePcm16Format(rate, channels);
}

Sound Noise(uint32_t seed, uint32_t channels, size_t frames, float peak)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> value(-peak, peak);
    Sound sound(channels, std::vector<float>(frames));
    for (std::vector<float>& channel : sound)
        std::generate(channel.begin(), channel.end(), [&] { return value(random); });
    return sound;
}

Sound Scaled(Sound sound, float gain)
{
    for (std::vector<float>& channel : sound) {
        for (float& value : channel)
            value *= gain;
    }
    return sound;
}

uint32_t SoundSource::GetData(_SOUNDDATAEX_* sound)
{
    const size_t frames = std::min<size_t>(sound->FrameCount, m_sound[0].size() - m_pulled);
    for (size_t i = 0; i < m_sound.size(); ++i)
        std::copy_n(m_sound[i].begin() + static_cast<ptrdiff_t>(m_pulled), frames, sound->Channels[i]);
    m_pulled += frames;
    return static_cast<uint32_t>(frames);
}

Sound PullBlock(CAudioAbstract& source, uint32_t channels, uint32_t frames, bool& isEnd)
{
    Sound block(channels, std::vector<float>(frames));
    _SOUNDDATAEX_ record{.ChannelCount = channels, .FrameCount = frames, .Request = 1};
    for (uint32_t i = 0; i < channels; ++i)
        record.Channels[i] = block[i].data();
    const uint32_t given = source.GetData(&record);
    isEnd = given < frames;
    for (std::vector<float>& channel : block)
        channel.resize(given);
    return block;
}

Sound PullAll(CAudioAbstract& source, uint32_t channels, uint32_t seed, uint32_t most,
              const std::function<void(const Sound& soFar)>& between)
{
    std::mt19937 random(seed);
    Sound all(channels);
    for (bool isEnd = false; !isEnd;) {
        const Sound block = PullBlock(source, channels, 1 + random() % most, isEnd);
        for (uint32_t i = 0; i < channels; ++i)
            all[i].insert(all[i].end(), block[i].begin(), block[i].end());
        if (between && !isEnd)
            between(all);
    }
    return all;
}

namespace {
/// Each frame times the gain, some frames late.
class LateGain : public FrameProcessor {
public:
    explicit LateGain(uint32_t late) : m_late(late) {}
    uint32_t Latency() const override { return m_late; }
    void SetSettings(const EffectSettings& settings) override { m_gain = settings.Values.at(0); }

protected:
    tEffError OpenFrames(const WAVEFORMATEXTENSIBLE& format) override
    {
        m_held.resize(format.nChannels);
        return EffectSuccess;
    }
    void RestartFrames() override
    {
        for (std::deque<float>& channel : m_held)
            channel.assign(m_late, 7.0F); // not to be heard: it is no sound of the source's
    }
    void Process(float* const* channels, uint32_t frames) override
    {
        for (size_t i = 0; i < m_held.size(); ++i) {
            for (uint32_t frame = 0; frame < frames; ++frame) {
                m_held[i].push_back(channels[i][frame]);
                channels[i][frame] = m_held[i].front() * m_gain;
                m_held[i].pop_front();
            }
        }
    }

private:
    uint32_t m_late;
    float m_gain = 1;
    std::vector<std::deque<float>> m_held;
};

template <uint32_t late>
std::unique_ptr<EffectProcessor> MakeLate()
{
    return std::make_unique<LateGain>(late);
}

/// Takes sound of up to `most` channels, and refuses it when it has fewer than `least`.
template <uint32_t least, uint32_t most, tEffError refusal>
class Choosy final : public LateGain {
public:
    Choosy() : LateGain(0) {}
    static std::unique_ptr<EffectProcessor> Make() { return std::make_unique<Choosy>(); }

protected:
    tEffError OpenFrames(const WAVEFORMATEXTENSIBLE& format) override
    {
        const bool fits = format.nChannels >= least && format.nChannels <= most;
        return fits ? LateGain::OpenFrames(format) : refusal;
    }
};

class Throwing final : public LateGain {
public:
    Throwing() : LateGain(0) {}

protected:
    tEffError OpenFrames(const WAVEFORMATEXTENSIBLE&) override { throw std::runtime_error("no"); }
};

class Twice final : public EffectProcessor {
public:
    tEffError Open(const WAVEFORMATEXTENSIBLE&) override { return EffectSuccess; }
    void SetSettings(const EffectSettings&) override {}
    void Restart() override { m_hasHalf = false; }
    uint32_t Produce(CAudioAbstract& source, _SOUNDDATAEX_& sound) override
    {
        uint32_t filled = 0;
        for (; filled < sound.FrameCount; ++filled) {
            if (!m_hasHalf) {
                _SOUNDDATAEX_ one{.ChannelCount = 1, .Channels = {&m_value}, .FrameCount = 1};
                if (source.GetData(&one) == 0)
                    break;
            }
            m_hasHalf = !m_hasHalf;
            sound.Channels[0][filled] = m_value;
        }
        return filled;
    }

private:
    bool m_hasHalf = false;
    float m_value = 0;
};

class TestProvider final : public EffectProvider {
public:
    explicit TestProvider(EffectFamily family) : m_family(family) {}
    EffectFamily Family() const override { return m_family; }
    std::string FolderTitle() const override { return "Test"; }
    std::vector<LibraryEffectPtr> Scan() override
    {
        using Stereo = Choosy<2, 2, EffectStereoOnly>;
        using MonoStereo = Choosy<1, 2, EffectMonoOrStereoOnly>;
        return {Make("gain", MakeLate<0>),
                Make("late", MakeLate<50>),
                Make("later", MakeLate<333>),
                Make("stereo", Stereo::Make),
                Make("monostereo", MonoStereo::Make),
                Make("none", [] { return std::unique_ptr<EffectProcessor>(); }),
                Make("throws", []() -> std::unique_ptr<EffectProcessor> { return std::make_unique<Throwing>(); }),
                Make("twice", []() -> std::unique_ptr<EffectProcessor> { return std::make_unique<Twice>(); })};
    }

private:
    static LibraryEffectPtr Make(const std::string& name, std::unique_ptr<EffectProcessor> (*make)())
    {
        return std::make_shared<BuiltInEffect>(
            BuiltInEffect::Description{.LibraryName = "test." + name,
                                       .Title = name,
                                       .Parameters = {{.Name = "Gain", .Least = -4, .Greatest = 4, .Initial = 1}},
                                       .Make = make,
                                       .Presets = {{"Half", {{0.5F}, {}}}, {"Loud", {{99.0F}, {}}}}});
    }

    EffectFamily m_family;
};
} // namespace

std::unique_ptr<EffectProvider> MakeTestProvider(EffectFamily family)
{
    return std::make_unique<TestProvider>(family);
}

void TextMenu::AddItem(uint32_t command, const std::string& text)
{
    m_entries.push_back({std::to_string(command) + " " + text, nullptr});
}

EffectMenu& TextMenu::AddPopup(const std::string& text)
{
    m_entries.push_back({text, std::make_unique<TextMenu>()});
    return *m_entries.back().Popup;
}

std::string TextMenu::Text() const
{
    std::string text;
    for (const Entry& entry : m_entries) {
        text += text.empty() ? "" : ", ";
        text += entry.Popup ? "[" + entry.Text + ": " + entry.Popup->Text() + "]" : entry.Text;
    }
    return text;
}

} // namespace ek::test
