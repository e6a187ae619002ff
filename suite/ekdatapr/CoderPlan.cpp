// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/CoderPlan.h"

#include "ekdatapr/ChannelOrder.h"
#include "ekdatapr/CoderSettings.h"
#include "ekdatapr/CoderTypes.h"
#include "ekdatapr/RateConverter.h"
#include "servicefuncs/Channels.h"

#include <algorithm>
#include <limits>
#include <string>

namespace ek {

namespace {

constexpr uint64_t Max32BitBytes = 0xFFFFFFFF;
// Room for everything in a file that is not sound.
constexpr uint64_t HeaderAllowance = uint64_t{1} << 20;

int ContainerOf(int sfFormat)
{
    return sfFormat & SF_FORMAT_TYPEMASK;
}

bool Has32BitSizes(int sfFormat)
{
    const int container = ContainerOf(sfFormat);
    return container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX || container == SF_FORMAT_AIFF;
}

void ReplaceContainer(CoderPlan& plan, int container)
{
    plan.Info.format = container | (plan.Info.format & SF_FORMAT_SUBMASK);
}

bool CanEncode(const CoderPlan& plan)
{
    return sf_format_check(&plan.Info) != 0;
}

/// Takes over how the source was encoded, if files of this type can be so.
bool EncodeAsSource(CoderPlan& plan, const CoderType& type, const StreamFacts& source)
{
    const auto container = std::ranges::find(type.Containers, ContainerOf(source.SfFormat));
    if (container == type.Containers.end() || !FindCoding(source.SfFormat))
        return false;
    CoderPlan wanted = plan;
    wanted.Info.format = source.SfFormat;
    wanted.Info.samplerate =
        static_cast<int>(WritableRate(source.SfFormat, static_cast<uint32_t>(plan.Info.samplerate)));
    if (!CanEncode(wanted))
        return false;
    plan.Info.format = source.SfFormat;
    if (source.Quality >= 0)
        plan.Quality = source.Quality;
    if (source.BitRate > 0)
        plan.BitRate = source.BitRate;
    return true;
}

/// Mono and stereo become each other; any other difference between the sound and the chosen layout is refused.
bool ChooseChannels(CoderPlan& plan, uint32_t chosen)
{
    const auto own = static_cast<uint32_t>(plan.Info.channels);
    if (own == chosen)
        return true;
    if (own > 2 || chosen > 2)
        return false;
    plan.Info.channels = static_cast<int>(chosen);
    plan.Mask = DefaultChannelMask(chosen);
    return true;
}

/// Only the extended kind of WAV says which speakers the channels are for. Ogg has one layout for each count, to which
/// other sound is mixed; its coders treat channels by their speakers, so none can stand for another.
void KeepSpeakers(CoderPlan& plan)
{
    const auto channels = static_cast<uint32_t>(plan.Info.channels);
    const uint32_t fixedMask = FixedChannelOrder(plan.Info.format, channels).Mask;
    if (ContainerOf(plan.Info.format) == SF_FORMAT_OGG && fixedMask != 0)
        plan.Mask = fixedMask;
    if (ContainerOf(plan.Info.format) != SF_FORMAT_WAV || (channels <= 2 && plan.Mask == DefaultChannelMask(channels)))
        return;
    CoderPlan extended = plan;
    ReplaceContainer(extended, SF_FORMAT_WAVEX);
    if (CanEncode(extended))
        plan = extended;
}

/// False when the sound is too long for every kind of the container.
bool MakeRoom(CoderPlan& plan, uint64_t frames)
{
    const double bytesPerFrame = plan.Coding->BytesPerSample * plan.Info.channels;
    const double expected = bytesPerFrame * static_cast<double>(frames) + HeaderAllowance;
    const int container = ContainerOf(plan.Info.format);
    const bool tooLong = Has32BitSizes(plan.Info.format) && expected > static_cast<double>(Max32BitBytes);
    if (tooLong && (container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX))
        ReplaceContainer(plan, SF_FORMAT_RF64);
    plan.MaxBytes = Has32BitSizes(plan.Info.format) ? Max32BitBytes : std::numeric_limits<int64_t>::max();
    return CanEncode(plan) && !(tooLong && Has32BitSizes(plan.Info.format));
}

CoderPlan PlanBySettings(const CoderType& type, const CoderSettings& settings, const WAVEFORMATEXTENSIBLE& format)
{
    CoderPlan plan;
    plan.Info.channels = format.nChannels;
    plan.Info.samplerate = static_cast<int>(format.nSamplesPerSec);
    plan.Info.format = type.Containers.front() | settings.Subtype;
    plan.Mask = format.dwChannelMask != 0 ? format.dwChannelMask : DefaultChannelMask(format.nChannels);
    plan.Quality = settings.Quality;
    plan.BitRate = settings.BitRate;
    plan.OpenAfter = settings.OpenAfter;
    return plan;
}

bool IsWritableFormat(const WAVEFORMATEXTENSIBLE& format)
{
    return format.wBitsPerSample == 16 && format.nChannels >= 1 && format.nChannels <= MaxChannels &&
           format.nBlockAlign == format.nChannels * sizeof(int16_t) && format.nSamplesPerSec >= 1 &&
           format.nSamplesPerSec <= static_cast<uint32_t>(std::numeric_limits<int>::max());
}

} // namespace

std::optional<CoderPlan> MakeCoderPlan(const std::filesystem::path& target, const WAVEFORMATEXTENSIBLE& format,
                                       const StreamProperties* properties, uint64_t frames)
{
    const std::string extension = target.extension().string();
    const CoderType* type = extension.empty() ? nullptr : FindCoderType(extension.substr(1));
    if (!type || !IsWritableFormat(format))
        return {};
    const CoderSettings settings = LoadCoderSettings(*type, extension.substr(1));
    CoderPlan plan = PlanBySettings(*type, settings, format);
    if (!properties && !ChooseChannels(plan, settings.Channels))
        return {};
    if (const std::optional<StreamFacts> source = properties ? Unpack(*properties) : std::nullopt) {
        if (source->Channels >= 1 && source->Channels <= 2)
            (void)ChooseChannels(plan, source->Channels); // a sound with more keeps its own
        EncodeAsSource(plan, *type, *source);
        plan.Tags = source->Tags;
    }
    const auto rate = static_cast<uint32_t>(plan.Info.samplerate);
    const uint32_t writableRate = WritableRate(plan.Info.format, rate);
    plan.Info.samplerate = static_cast<int>(writableRate);
    plan.Coding = FindCoding(plan.Info.format);
    KeepSpeakers(plan);
    if (!MakeRoom(plan, ConvertedFrames(frames, rate, writableRate)))
        return {};
    return plan;
}

} // namespace ek
