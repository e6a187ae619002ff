// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/EkDataPr.h"
#include "support/TestFolder.h"

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace ek {

/// Interleaved 16-bit frames and what they are.
struct Sound {
    uint32_t Rate = 44100;
    uint32_t Channels = 2;
    std::vector<int16_t> Values;

    uint64_t Frames() const { return Values.size() / Channels; }
    std::vector<double> Channel(uint32_t channel) const; ///< full scale is 1
    bool operator==(const Sound&) const = default;
};

/// A sine of a frequency of its own in each channel: 200 Hz, 300 Hz, ...
Sound MakeTones(uint32_t rate, uint32_t channels, uint64_t frames, double amplitude = 0.5);
Sound MakeNoiseSound(uint32_t channels, uint64_t frames);

/// A folder and a small vocabulary for whole files.
class CodecFixture : public testing::Test {
protected:
    using Options = std::map<std::string, std::string>;

    std::filesystem::path Path(const std::string& name) const { return m_folder.Path() / name; }

    /// Sets options for the extension of `name`; the layout is that of the sound unless the options say otherwise.
    void Choose(const std::string& name, uint32_t channels, Options options = {});
    /// A file made with the settings last chosen, or with properties.
    bool Write(const std::string& name, const Sound& sound, const StreamProperties* properties = nullptr,
               const StreamProperties* tags = nullptr);
    /// A file of any type that the sound library knows, made by it alone.
    void WriteByLibrary(const std::string& name, int sfFormat, uint32_t rate, uint32_t channels,
                        const std::vector<double>& values);

    Sound Read(const std::string& name); ///< in the file's own format; 8-bit sound as 16-bit
    Sound ReadAs(const std::string& name, uint32_t rate, uint32_t channels);
    WAVEFORMATEXTENSIBLE FormatOf(const std::string& name);
    StreamProperties PropertiesOf(const std::string& name);
    std::string TypeOf(const std::string& name); ///< the format name of its stream information
    bool Opens(const std::string& name);         ///< in every way there is

    TestFolder m_folder;
};

/// All frames from `first` on in reads of `framesPerRead`.
std::vector<int16_t> ReadAll(DecoderHandle decoder, uint32_t channels, uint64_t framesPerRead = 1000,
                             uint64_t first = 0);

/// Amplitude of a frequency in a signal, by projection on it; the ends are left out.
double AmplitudeOf(const std::vector<double>& signal, double frequency, uint32_t rate);

} // namespace ek
