// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/TestTone.h"

#include "servicefuncs/Channels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ek {

namespace {

constexpr uint32_t Rate = 48000;
constexpr uint32_t Length = Rate;          ///< frames: a second
constexpr uint32_t FadeLength = Rate / 20; ///< at either end, against clicks
constexpr double Frequency = 440;
constexpr double Amplitude = 0.1;
constexpr uint32_t BlockFrames = 1024;
constexpr uint32_t BlockCount = 5;

float SampleAt(uint32_t frame)
{
    const double fade = std::min({1.0, 1.0 * frame / FadeLength, 1.0 * (Length - frame) / FadeLength});
    return static_cast<float>(Amplitude * fade * std::sin(2 * std::numbers::pi * Frequency * frame / Rate));
}

} // namespace

TestTone::TestTone()
{
    m_player.SetListener(this);
}

TestTone::~TestTone()
{
    m_player.Stop();
    m_player.SetListener(nullptr);
}

void TestTone::Play(const AudioDeviceChoice& choice)
{
    m_player.Stop();
    m_position = 0;
    m_player.Choose(choice);
    const WAVEFORMATEXTENSIBLE format = MakePcm16Format(Rate, 2);
    m_player.SetFormat(&format);
    m_player.SetBufferCount(BlockCount);
    m_player.SetBufferSize(BlockFrames * format.nBlockAlign);
    m_player.SetCallback(&TestTone::Fill, this);
    const bool isPlaying = m_player.Start() != 0; // why it does not start comes as trouble
    if (isPlaying && (choice.System == "null" || m_player.IsInTrouble()))
        emit Failed(tr("There is no sound device: nothing can be heard."));
}

uint32_t TestTone::Fill(CHostAudioDevice*, void* request, void* user)
{
    _SOUNDDATAEX_& block = *static_cast<PlayRequest*>(request)->Sound;
    return block.Request != 0 ? static_cast<TestTone*>(user)->Deliver(block) : 0;
}

uint32_t TestTone::Deliver(_SOUNDDATAEX_& block)
{
    const uint32_t count = std::min(block.FrameCount, Length - m_position);
    for (uint32_t i = 0; i < count; ++i) {
        for (uint32_t channel = 0; channel < block.ChannelCount; ++channel)
            block.Channels[channel][i] = SampleAt(m_position + i);
    }
    m_position += count;
    return count;
}

void TestTone::OnDeviceTrouble(const std::string& text)
{
    QMetaObject::invokeMethod(
        this, [this, text] { emit Failed(QString::fromStdString(text)); }, Qt::QueuedConnection);
}

} // namespace ek
