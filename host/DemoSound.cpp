// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/DemoSound.h"

#include "ekdatapr/EkDataPr.h"
#include "platform/File.h"
#include "platform/TempFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace ek {

namespace {

constexpr double LengthSeconds = 12.0;
constexpr double Turn = 2.0 * std::numbers::pi;

size_t ToFrame(double seconds)
{
    return static_cast<size_t>(seconds * DemoRate);
}

double NoteFrequency(int semitonesAboveA4)
{
    return 440.0 * std::exp2(semitonesAboveA4 / 12.0);
}

/// White noise from a fixed start, so that the sound is the same everywhere.
class Noise {
public:
    double Next()
    {
        m_state = m_state * 1664525u + 1013904223u;
        return static_cast<double>(m_state >> 8) / (1u << 23) - 1.0;
    }

private:
    uint32_t m_state = 2024;
};

class Mix {
public:
    Mix() : m_samples(2 * ToFrame(LengthSeconds)) {}

    /// `pan` runs from 0, left, to 1, right, with constant power.
    void Add(size_t frame, double value, double pan)
    {
        if (2 * frame + 1 >= m_samples.size())
            return;
        m_samples[2 * frame] += value * std::cos(pan * Turn / 4);
        m_samples[2 * frame + 1] += value * std::sin(pan * Turn / 4);
    }

    size_t Frames() const { return m_samples.size() / 2; }

    std::vector<int16_t> ToSamples() const
    {
        std::vector<int16_t> result(m_samples.size());
        std::transform(m_samples.begin(), m_samples.end(), result.begin(), [](double value) {
            return static_cast<int16_t>(std::lround(std::clamp(value, -1.0, 1.0) * 32767.0));
        });
        return result;
    }

private:
    std::vector<double> m_samples;
};

/// A string: noise that runs around a delay line and loses its high partials on the way.
void AddPluck(Mix& mix, Noise& noise, double start, double frequency, double level, double pan)
{
    std::vector<double> string(static_cast<size_t>(DemoRate / frequency));
    std::generate(string.begin(), string.end(), [&noise] { return noise.Next(); });
    const size_t first = ToFrame(start);
    const size_t length = ToFrame(1.6);
    for (size_t i = 0; i < length; ++i) {
        double& here = string[i % string.size()];
        const double next = string[(i + 1) % string.size()];
        mix.Add(first + i, here * level * (1.0 - static_cast<double>(i) / static_cast<double>(length)), pan);
        here = 0.498 * (here + next);
    }
}

void AddMelody(Mix& mix, Noise& noise)
{
    constexpr std::array<int, 16> notes = {-9, -5, -2, 3, 2, -2, -5, -2, -7, -4, 0, 5, 3, 0, -4, -9};
    for (size_t i = 0; i < notes.size(); ++i) {
        const double pan = 0.5 + 0.4 * std::sin(Turn * static_cast<double>(i) / 8.0);
        AddPluck(mix, noise, 0.25 + 0.375 * static_cast<double>(i), NoteFrequency(notes[i]), 0.8, pan);
    }
}

double SwellLevel(double progress)
{
    return std::pow(std::sin(progress * Turn / 2), 2.0) * (0.85 + 0.15 * std::sin(progress * Turn * 14));
}

void AddChordTone(Mix& mix, double frequency, double drift)
{
    const size_t first = ToFrame(5.2);
    const size_t length = ToFrame(6.2);
    for (size_t i = 0; i < length; ++i) {
        const double progress = static_cast<double>(i) / static_cast<double>(length);
        const double phase = Turn * frequency * static_cast<double>(i) / DemoRate;
        const double tone = std::sin(phase) + 0.35 * std::sin(2 * phase) + 0.15 * std::sin(3 * phase);
        mix.Add(first + i, 0.19 * tone * SwellLevel(progress), 0.5 + drift * std::cos(progress * Turn));
    }
}

void AddChord(Mix& mix)
{
    AddChordTone(mix, NoteFrequency(-21), 0.1);
    AddChordTone(mix, NoteFrequency(-14), -0.45);
    AddChordTone(mix, NoteFrequency(-9) * 1.002, 0.45);
    AddChordTone(mix, NoteFrequency(-5), -0.3);
}

/// A falling tone with a burst of noise on top.
void AddDrum(Mix& mix, Noise& noise, double start, double weight, double pan)
{
    double phase = 0;
    for (size_t i = 0; i < ToFrame(0.45); ++i) {
        const double seconds = static_cast<double>(i) / DemoRate;
        phase += Turn * (48.0 + 130.0 * std::exp(-seconds * 28)) / DemoRate;
        const double body = std::sin(phase) * std::exp(-seconds * 9) * weight;
        const double snap = noise.Next() * std::exp(-seconds * 45) * (1.0 - weight);
        mix.Add(ToFrame(start) + i, 0.95 * (body + snap), pan);
    }
}

void AddDrums(Mix& mix, Noise& noise)
{
    for (int beat = 0; beat < 8; ++beat)
        AddDrum(mix, noise, 6.25 + 0.5 * beat, beat % 2 == 0 ? 0.9 : 0.25, beat % 2 == 0 ? 0.5 : 0.35 + 0.05 * beat);
}

} // namespace

std::vector<int16_t> MakeDemoSound()
{
    Mix mix;
    Noise noise;
    AddMelody(mix, noise);
    AddChord(mix);
    AddDrums(mix, noise);
    return mix.ToSamples();
}

bool WriteDemoSound(const std::filesystem::path& file)
{
    const std::vector<int16_t> samples = MakeDemoSound();
    const uint64_t frames = samples.size() / 2;
    WAVEFORMATEXTENSIBLE format{.wFormatTag = WAVE_FORMAT_PCM,
                                .nChannels = 2,
                                .nSamplesPerSec = DemoRate,
                                .nAvgBytesPerSec = DemoRate * 4,
                                .nBlockAlign = 4,
                                .wBitsPerSample = 16};
    const std::filesystem::path beside = MakeTempFileName("ekdemo", ".wav", file.parent_path());
    uint8_t openAfter = 0;
    const CoderHandle coder = EkCoderCreateFile(beside, format, nullptr, &openAfter, frames);
    bool done = coder != 0 && EkCoderAddFileData(coder, frames, samples.data(), samples.size() * sizeof(int16_t));
    done = coder != 0 && EkCoderCloseFile(coder) && done;
    if (done && RenameOver(beside, file).Ok())
        return true;
    // Without a coder nothing was left behind.
    static_cast<void>(RemoveFile(beside));
    return false;
}

} // namespace ek
