// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// The codec library: all reading and writing of audio files. A decoder or coder handle of 0 means failure.
// Handles may be used from any one thread at a time.

namespace ek {

/// What the codec library wants to remember of a file: coder settings and text tags, packed; opaque to callers.
struct StreamProperties {
    std::array<uint8_t, 4100> Bytes{};
    bool operator==(const StreamProperties&) const = default;
};

struct StreamInfo {
    uint32_t Size = 2088; ///< set by the caller
    uint32_t Channels = 0;
    uint32_t Rate = 0;
    uint32_t BitsPerSample = 0;
    uint64_t Frames = 0;        ///< as promised; 0 also when the file does not tell
    char FormatName[2064] = {}; ///< for a person, UTF-8: "WAV (Microsoft), signed 16 bit PCM"
};
static_assert(sizeof(StreamInfo) == 2088);

using DecoderHandle = uint32_t;
using CoderHandle = uint32_t;

/// False when the file cannot be read as sound: no such file, an unknown type, no channels or more than eight,
/// a rate outside 1 to 768000 Hz.
bool EkGetStreamInfo(const std::filesystem::path& path, StreamInfo& info, StreamProperties& properties);

/// `native`: `format` receives the file's own format, and the data comes as 16-bit unless the file holds
/// 8-bit sound (8-bit unsigned then). Otherwise `format` says how the data is to be delivered: 16-bit, with the
/// rate and the channels converted. `frames` receives the promised length in frames of the delivered rate, 0 when
/// the file does not tell.
/// Where a source holds more than 16 bits it is dithered (triangular) to 16; full scale saturates, NaN is 0.
DecoderHandle EkOpenFile(const std::filesystem::path& path, WAVEFORMATEXTENSIBLE& format, uint64_t& frames,
                         bool native);
/// Frames delivered from `firstFrame` on; fewer than asked ends the stream, whatever length was promised. Never
/// writes beyond `bufferBytes`.
uint64_t EkGetFileData(DecoderHandle decoder, uint64_t firstFrame, uint64_t frames, void* buffer, uint64_t bufferBytes);
/// True when a call on the file failed, so that the sound may go on where a short read ended it.
bool EkDecoderFailed(DecoderHandle decoder);
void EkCloseFile(DecoderHandle decoder);

/// A new file at `target`, which must not exist yet, of the type that its extension (or, with `properties`, the
/// source's own container where the extension allows it) names. `format` is the 16-bit format of the data to come.
/// Without `properties` the settings last chosen for the extension hold, channel layout included (mono and stereo
/// are converted into each other). On failure nothing is left at `target`.
CoderHandle EkCoderCreateFile(const std::filesystem::path& target, const WAVEFORMATEXTENSIBLE& format,
                              const StreamProperties* properties, uint8_t* openAfter, const uint64_t& frames);
/// Gives the new file the text tags that `source` holds, as far as the container can, in place of those of the
/// properties it was created with; before any data.
void EkCoderSetTags(CoderHandle coder, const StreamProperties& source);
bool EkCoderAddFileData(CoderHandle coder, uint64_t frames, const void* data, uint64_t bytes);
/// Completes and syncs the file. False when anything of it could not be written; the handle is gone either way.
bool EkCoderCloseFile(CoderHandle coder);

/// "All Supported Files|*.wav;*.flac|WAV (*.wav)|*.wav|...|", UTF-8. The first pair covers all types.
std::string EkGetSupportedFileExtensions();
/// The writable types in the same form, one pair a type, without a pair for all.
std::string EkGetSupportedCoderExtensions();

/// One setting of a coder, for its panel and for scripts: key "subtype" with choices "pcm_16", "pcm_24", ...,
/// "quality" 0..1, "bitrate" in kbit/s, "channels" with the layouts' names, "openafter" "0" or "1".
struct CoderOption {
    std::string Key;
    std::string Label; ///< for a person
    struct Choice {
        std::string Value;
        std::string Label;
    };
    std::vector<Choice> Choices{}; ///< empty: a number from Minimum to Maximum
    double Minimum = 0;
    double Maximum = 0;
    std::string Value{}; ///< as it is set now
};

/// The options of the coder for an extension (without dot, any case), with the values in force. Empty when there is no
/// such coder.
std::vector<CoderOption> EkGetCoderOptions(std::string_view extension);
/// Keeps values for the next files made without properties, all at once. Where the settings cannot be written the
/// values hold for this process. False, and nothing kept, when a key or a value is not the coder's; `error` then says
/// why, for a person.
bool EkSetCoderOptions(std::string_view extension, const std::map<std::string, std::string>& values,
                       std::string& error);
/// The channel layout in force for an extension; empty when there is no such coder.
std::string EkCoderChannelLayout(std::string_view extension);

/// The text tags that the properties hold: title, artist, album, track, date, genre, comment, copyright.
std::map<std::string, std::string> EkGetTags(const StreamProperties& properties);

/// "Mono" .. "7.1 Surround Mode" for 1 to 8 channels; 0 for a name that is none of them.
const char* ChannelLayoutName(uint32_t channels);
uint32_t ChannelLayoutCount(std::string_view name);

} // namespace ek
