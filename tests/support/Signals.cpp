// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Signals.h"

#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace ek {

namespace {

template <class Number>
std::string LittleEndian(Number number)
{
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

void WritePcm(const std::filesystem::path& path, uint32_t channels, uint32_t rate, uint32_t bytesPerValue,
              std::span<const std::byte> data)
{
    const auto frameBytes = static_cast<uint16_t>(channels * bytesPerValue);
    const auto bytes = static_cast<uint32_t>(data.size());
    std::string header = "RIFF" + LittleEndian(bytes + bytes % 2 + 36) + "WAVEfmt " + LittleEndian(uint32_t{16});
    header += LittleEndian(uint16_t{1}) + LittleEndian(static_cast<uint16_t>(channels)) + LittleEndian(rate);
    header += LittleEndian(rate * frameBytes) + LittleEndian(frameBytes);
    header += LittleEndian(static_cast<uint16_t>(bytesPerValue * 8)) + "data" + LittleEndian(bytes);
    std::ofstream file(path, std::ios::binary);
    file.write(header.data(), static_cast<std::streamsize>(header.size()));
    file.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(bytes));
    if (bytes % 2 != 0)
        file.put(0);
}

} // namespace

std::vector<int16_t> MakeNoise(uint32_t seed, size_t values)
{
    std::mt19937 random(seed);
    std::vector<int16_t> noise(values);
    for (int16_t& value : noise)
        value = static_cast<int16_t>(random() >> 16);
    return noise;
}

std::vector<int16_t> MakeRamp(size_t values, int first, int step)
{
    std::vector<int16_t> ramp(values);
    for (size_t i = 0; i < values; ++i)
        ramp[i] = static_cast<int16_t>(first + static_cast<int64_t>(i) * step);
    return ramp;
}

void WriteWav(const std::filesystem::path& path, uint32_t channels, std::span<const int16_t> values, uint32_t rate)
{
    WritePcm(path, channels, rate, 2, std::as_bytes(values));
}

void WriteWav8(const std::filesystem::path& path, uint32_t channels, std::span<const uint8_t> values, uint32_t rate)
{
    WritePcm(path, channels, rate, 1, std::as_bytes(values));
}

std::vector<char> ReadBytes(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace ek
