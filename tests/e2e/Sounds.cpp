// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sounds.h"

#include <sndfile.h>

#include <random>

namespace ek {

std::vector<int16_t> MakeSound(unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<int16_t> samples(4 * Rate);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<int16_t>(static_cast<int>(random() % 16384) - 8192);
    return samples;
}

bool WriteSound(const std::filesystem::path& path, const std::vector<int16_t>& samples)
{
    SF_INFO info{};
    info.samplerate = Rate;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    const auto count = static_cast<sf_count_t>(samples.size());
    return file && sf_write_short(file, samples.data(), count) == count && sf_close(file) == 0;
}

std::vector<int16_t> ReadSound(const std::filesystem::path& path, int type)
{
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file)
        return {};
    std::vector<int16_t> samples;
    if (info.format == (type | SF_FORMAT_PCM_16) && info.channels == 2 && info.samplerate == Rate) {
        samples.resize(static_cast<size_t>(info.frames * 2));
        samples.resize(static_cast<size_t>(sf_read_short(file, samples.data(), info.frames * 2)));
    }
    sf_close(file);
    return samples;
}

} // namespace ek
