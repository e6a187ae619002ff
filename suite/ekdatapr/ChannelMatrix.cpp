// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/ChannelMatrix.h"

#include <algorithm>
#include <bit>
#include <numbers>
#include <numeric>
#include <vector>

namespace ek {

namespace {

constexpr uint32_t FrontLeft = 0x1;
constexpr uint32_t FrontRight = 0x2;
constexpr uint32_t FrontCentre = 0x4;
constexpr uint32_t LowFrequency = 0x8;
constexpr uint32_t BackLeft = 0x10;
constexpr uint32_t BackRight = 0x20;
constexpr uint32_t LeftOfCentre = 0x40;
constexpr uint32_t RightOfCentre = 0x80;
constexpr uint32_t BackCentre = 0x100;
constexpr uint32_t SideLeft = 0x200;
constexpr uint32_t SideRight = 0x400;
constexpr uint32_t FrontPair = FrontLeft | FrontRight;

constexpr double Minus3dB = std::numbers::sqrt2 / 2;

/// Where the sound of a speaker goes that the target does not have: to each of `Into`, when all of them are there.
struct Fold {
    uint32_t Speaker;
    uint32_t Into;
    double Gain;
};

// Nearest first. The front pair is always there, so every speaker named here finds a place.
constexpr Fold Folds[] = {
    {FrontCentre, FrontPair, Minus3dB},
    {BackLeft, SideLeft, 1.0},
    {BackLeft, FrontLeft, Minus3dB},
    {BackRight, SideRight, 1.0},
    {BackRight, FrontRight, Minus3dB},
    {SideLeft, BackLeft, 1.0},
    {SideLeft, FrontLeft, Minus3dB},
    {SideRight, BackRight, 1.0},
    {SideRight, FrontRight, Minus3dB},
    {BackCentre, BackLeft | BackRight, Minus3dB},
    {BackCentre, SideLeft | SideRight, Minus3dB},
    {BackCentre, FrontPair, 0.5},
    {LeftOfCentre, FrontLeft, 1.0},
    {RightOfCentre, FrontRight, 1.0},
};

std::vector<uint32_t> SpeakersOf(uint32_t channels, uint32_t mask)
{
    if (static_cast<uint32_t>(std::popcount(mask)) != channels)
        mask = DefaultChannelMask(channels);
    std::vector<uint32_t> speakers;
    for (uint32_t rest = mask; rest != 0; rest &= rest - 1)
        speakers.push_back(rest & (~rest + 1));
    return speakers;
}

uint32_t MaskOf(const std::vector<uint32_t>& speakers)
{
    return std::accumulate(speakers.begin(), speakers.end(), 0u);
}

Fold PlaceFor(uint32_t speaker, uint32_t targetMask)
{
    if (speaker & targetMask)
        return {speaker, speaker, 1.0};
    if (speaker == LowFrequency)
        return {speaker, 0, 0.0};
    for (const Fold& fold : Folds) {
        if (fold.Speaker == speaker && (fold.Into & targetMask) == fold.Into)
            return fold;
    }
    return {speaker, FrontPair, 0.5};
}

void ScaleToFit(ChannelMatrix& matrix)
{
    double largest = 1.0;
    for (const auto& row : matrix.Gain)
        largest = std::max(largest, std::accumulate(row.begin(), row.end(), 0.0));
    for (auto& row : matrix.Gain) {
        for (double& gain : row)
            gain /= largest;
    }
}

ChannelMatrix MonoToAny(uint32_t channels, uint32_t mask)
{
    ChannelMatrix matrix{.Inputs = 1, .Outputs = channels};
    const std::vector<uint32_t> speakers = SpeakersOf(channels, mask);
    const bool centre = channels == 1 || (channels > 2 && (MaskOf(speakers) & FrontCentre));
    for (uint32_t i = 0; i < channels; ++i)
        matrix.Gain[i][0] = channels == 1 || (speakers[i] & (centre ? FrontCentre : FrontPair)) ? 1.0 : 0.0;
    return matrix;
}

ChannelMatrix AnyToMono(uint32_t channels, uint32_t mask)
{
    const ChannelMatrix stereo = MakeChannelMatrix(channels, mask, 2, FrontPair);
    ChannelMatrix matrix{.Inputs = channels, .Outputs = 1};
    for (uint32_t i = 0; i < channels; ++i)
        matrix.Gain[0][i] = (stereo.Gain[0][i] + stereo.Gain[1][i]) / 2;
    return matrix;
}

} // namespace

bool ChannelMatrix::IsIdentity() const
{
    ChannelMatrix identity{.Inputs = Inputs, .Outputs = Inputs};
    for (uint32_t i = 0; i < Inputs; ++i)
        identity.Gain[i][i] = 1.0;
    return *this == identity;
}

void ChannelMatrix::Apply(const double* in, double* out, size_t frames) const
{
    for (size_t frame = 0; frame < frames; ++frame, in += Inputs, out += Outputs) {
        for (uint32_t i = 0; i < Outputs; ++i)
            out[i] = std::inner_product(in, in + Inputs, Gain[i].begin(), 0.0);
    }
}

ChannelMatrix MakeChannelMatrix(uint32_t fromChannels, uint32_t fromMask, uint32_t toChannels, uint32_t toMask)
{
    if (fromChannels == 1)
        return MonoToAny(toChannels, toMask);
    if (toChannels == 1)
        return AnyToMono(fromChannels, fromMask);
    const std::vector<uint32_t> from = SpeakersOf(fromChannels, fromMask);
    // Layouts without a front pair are not worth rules of their own.
    if (from == SpeakersOf(toChannels, toMask) || (toMask & FrontPair) != FrontPair)
        toMask = from.size() == toChannels ? fromMask : 0;
    const std::vector<uint32_t> to = SpeakersOf(toChannels, toMask);
    ChannelMatrix matrix{.Inputs = fromChannels, .Outputs = toChannels};
    for (uint32_t i = 0; i < fromChannels; ++i) {
        const Fold place = PlaceFor(from[i], MaskOf(to));
        for (uint32_t target = 0; target < toChannels; ++target)
            matrix.Gain[target][i] = (place.Into & to[target]) ? place.Gain : 0.0;
    }
    ScaleToFit(matrix);
    return matrix;
}

} // namespace ek
