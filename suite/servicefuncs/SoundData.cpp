// SPDX-License-Identifier: GPL-3.0-or-later
#include "servicefuncs/SoundData.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <limits>

namespace ek {

namespace {

// The loops here run over every sample that is played or converted. They are written without branches and with the
// strides of mono and stereo known to the compiler, so that it can take several samples at once.

/// `value` in steps of 1 / `scale`, within -scale .. scale - 1.
template <typename Real>
Real Limited(float value, Real scale)
{
    Real x = static_cast<Real>(value) * scale;
    x = x == x ? x : Real{0};
    x = x < -scale ? -scale : x;
    return x > scale - 1 ? scale - 1 : x;
}

/// Adding one half before cutting would round the largest number below one half up, so twice the rest is cut instead.
template <typename Real>
int32_t Rounded(Real x)
{
    const auto whole = static_cast<int32_t>(x);
    const Real rest = x - static_cast<Real>(whole);
    return whole + static_cast<int32_t>(rest + rest);
}

template <typename Value>
Value Load(const uint8_t* bytes)
{
    Value value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

template <typename Value>
void Store(Value value, uint8_t* bytes)
{
    std::memcpy(bytes, &value, sizeof value);
}

// A codec limits values first and then writes them: in one step, the limits would become branches.

struct Unsigned8 {
    using Real = float;
    static constexpr size_t Bytes = 1;
    static float Decode(const uint8_t* bytes) { return static_cast<float>(*bytes - 128) * 0x1p-7F; }
    static Real Limit(float value) { return Limited(value, 0x1p7F); }
    static void Write(Real limited, uint8_t* bytes) { *bytes = static_cast<uint8_t>(Rounded(limited) + 128); }
};

struct Signed16 {
    using Real = float;
    static constexpr size_t Bytes = 2;
    static float Decode(const uint8_t* bytes) { return static_cast<float>(Load<int16_t>(bytes)) * 0x1p-15F; }
    static Real Limit(float value) { return Limited(value, 0x1p15F); }
    static void Write(Real limited, uint8_t* bytes) { Store(static_cast<int16_t>(Rounded(limited)), bytes); }
};

struct Signed24 {
    using Real = float;
    static constexpr size_t Bytes = 3;
    static float Decode(const uint8_t* bytes)
    {
        const uint32_t top = uint32_t{bytes[0]} << 8 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 24;
        return static_cast<float>(static_cast<int32_t>(top) >> 8) * 0x1p-23F;
    }
    static Real Limit(float value) { return Limited(value, 0x1p23F); }
    static void Write(Real limited, uint8_t* bytes)
    {
        const int32_t value = Rounded(limited);
        bytes[0] = static_cast<uint8_t>(value);
        bytes[1] = static_cast<uint8_t>(value >> 8);
        bytes[2] = static_cast<uint8_t>(value >> 16);
    }
};

struct Signed32 {
    using Real = double; // the largest 32-bit value is no float
    static constexpr size_t Bytes = 4;
    static float Decode(const uint8_t* bytes) { return static_cast<float>(Load<int32_t>(bytes)) * 0x1p-31F; }
    static Real Limit(float value) { return Limited(value, 0x1p31); }
    static void Write(Real limited, uint8_t* bytes) { Store(Rounded(limited), bytes); }
};

struct Float32 {
    using Real = float;
    static constexpr size_t Bytes = 4;
    static float Decode(const uint8_t* bytes) { return Load<float>(bytes); }
    static Real Limit(float value)
    {
        constexpr float Most = std::numeric_limits<float>::max();
        value = value == value ? value : 0.0F;
        value = value < -Most ? -Most : value;
        return value > Most ? Most : value;
    }
    static void Write(Real limited, uint8_t* bytes) { Store(limited, bytes); }
};

bool IsFloat(const WAVEFORMATEXTENSIBLE& format)
{
    return format.wFormatTag == WAVE_FORMAT_IEEE_FLOAT ||
           (format.wFormatTag == WAVE_FORMAT_EXTENSIBLE && format.SubFormat == KSDATAFORMAT_SUBTYPE_IEEE_FLOAT);
}

bool IsInteger(const WAVEFORMATEXTENSIBLE& format)
{
    return format.wFormatTag == WAVE_FORMAT_PCM ||
           (format.wFormatTag == WAVE_FORMAT_EXTENSIBLE && format.SubFormat == KSDATAFORMAT_SUBTYPE_PCM);
}

/// Calls `use` with the codec of the format's samples; with nothing when there is none.
template <typename Use>
void WithCodec(const WAVEFORMATEXTENSIBLE& format, Use use)
{
    if (!IsConvertible(format))
        return;
    if (IsFloat(format))
        return use(Float32());
    switch (format.wBitsPerSample) {
    case 8:
        return use(Unsigned8());
    case 16:
        return use(Signed16());
    case 24:
        return use(Signed24());
    default:
        return use(Signed32());
    }
}

/// Samples that lie `stride` samples apart. A `Fixed` stride is known to the compiler.
template <typename Codec, size_t Fixed>
void DecodeChannel(const uint8_t* source, size_t stride, uint64_t frames, float* values)
{
    const size_t step = (Fixed != 0 ? Fixed : stride) * Codec::Bytes;
    for (uint64_t frame = 0; frame < frames; ++frame)
        values[frame] = Codec::Decode(source + frame * step);
}

template <typename Codec>
void DecodeChannel(const uint8_t* source, size_t stride, uint64_t frames, float* values)
{
    if (stride == 1)
        DecodeChannel<Codec, 1>(source, stride, frames, values);
    else if (stride == 2)
        DecodeChannel<Codec, 2>(source, stride, frames, values);
    else
        DecodeChannel<Codec, 0>(source, stride, frames, values);
}

/// Some frames of one channel, ready to be written.
template <typename Codec>
class LimitedValues {
public:
    static constexpr uint64_t Most = 256;

    /// At most `Most` values; without values, silence.
    LimitedValues(const float* values, uint64_t count)
    {
        for (uint64_t i = 0; i < count; ++i)
            m_values[i] = Codec::Limit(values ? values[i] : 0.0F);
    }
    typename Codec::Real operator[](uint64_t i) const { return m_values[i]; }

private:
    std::array<typename Codec::Real, Most> m_values;
};

template <typename Codec>
void EncodeStereo(const float* left, const float* right, uint64_t frames, uint8_t* destination)
{
    const LimitedValues<Codec> limitedLeft(left, frames);
    const LimitedValues<Codec> limitedRight(right, frames);
    for (uint64_t frame = 0; frame < frames; ++frame) {
        Codec::Write(limitedLeft[frame], destination + frame * 2 * Codec::Bytes);
        Codec::Write(limitedRight[frame], destination + (frame * 2 + 1) * Codec::Bytes);
    }
}

template <typename Codec>
void EncodeChannel(const float* values, uint64_t frames, uint8_t* destination, size_t frameBytes)
{
    const LimitedValues<Codec> limited(values, frames);
    for (uint64_t frame = 0; frame < frames; ++frame)
        Codec::Write(limited[frame], destination + frame * frameBytes);
}

/// At most LimitedValues::Most frames.
template <typename Codec>
void Encode(const _SOUNDDATAEX_& sound, uint64_t offset, uint64_t frames, uint8_t* destination, uint32_t channels)
{
    const auto values = [&](uint32_t i) { return i < sound.ChannelCount ? sound.Channels[i] + offset : nullptr; };
    if (channels == 1)
        return EncodeChannel<Codec>(values(0), frames, destination, Codec::Bytes);
    if (channels == 2)
        return EncodeStereo<Codec>(values(0), values(1), frames, destination);
    for (uint32_t i = 0; i < channels; ++i)
        EncodeChannel<Codec>(values(i), frames, destination + i * Codec::Bytes, channels * Codec::Bytes);
}

} // namespace

bool IsConvertible(const WAVEFORMATEXTENSIBLE& format)
{
    const uint32_t bits = format.wBitsPerSample;
    const bool known =
        IsFloat(format) ? bits == 32 : IsInteger(format) && (bits == 8 || bits == 16 || bits == 24 || bits == 32);
    return known && format.nChannels >= 1 && format.nChannels <= _SOUNDDATAEX_::MostChannels &&
           format.nBlockAlign == format.nChannels * bits / 8;
}

void MME2SD_BYSAMPLES(const void* source, uint64_t frames, _SOUNDDATAEX_& sound, const WAVEFORMATEXTENSIBLE& format,
                      uint32_t offset, int32_t channel)
{
    WithCodec(format, [&]<typename Codec>(Codec) {
        const auto* bytes = static_cast<const uint8_t*>(source);
        const uint32_t channels = format.nChannels;
        const uint32_t first = channel < 0 ? 0 : static_cast<uint32_t>(channel);
        const uint32_t wanted = channel < 0 ? channels : std::min(first + 1, channels);
        for (uint32_t from = first; from < wanted && from - first < sound.ChannelCount; ++from)
            DecodeChannel<Codec>(bytes + from * Codec::Bytes, channels, frames, sound.Channels[from - first] + offset);
    });
}

uint64_t MME2SD(const void* source, uint64_t bytes, _SOUNDDATAEX_& sound, const WAVEFORMATEXTENSIBLE& format)
{
    const uint64_t frames = IsConvertible(format) ? bytes / format.nBlockAlign : 0;
    MME2SD_BYSAMPLES(source, frames, sound, format, 0, -1);
    return frames;
}

void SD2MME(const _SOUNDDATAEX_& sound, uint32_t offset, uint64_t frames, void* destination,
            const WAVEFORMATEXTENSIBLE& format)
{
    WithCodec(format, [&]<typename Codec>(Codec) {
        auto* bytes = static_cast<uint8_t*>(destination);
        constexpr uint64_t Most = LimitedValues<Codec>::Most;
        for (uint64_t done = 0; done < frames; done += Most) {
            Encode<Codec>(sound, offset + done, std::min(frames - done, Most), bytes + done * format.nBlockAlign,
                          format.nChannels);
        }
    });
}

void SoundData::Resize(uint32_t channels, uint32_t frames)
{
    assert(channels <= _SOUNDDATAEX_::MostChannels);
    m_values.assign(size_t{channels} * frames, 0.0F);
    m_record = {};
    m_record.ChannelCount = channels;
    m_record.FrameCount = frames;
    for (uint32_t i = 0; i < channels; ++i)
        m_record.Channels[i] = m_values.data() + size_t{i} * frames;
}

} // namespace ek
