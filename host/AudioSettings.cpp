// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/AudioSettings.h"

#include "host/HostServices.h"

#include <algorithm>
#include <charconv>

namespace ek {

namespace {

constexpr char SystemKey[] = "AudioSystem";
constexpr char OutputKey[] = "AudioOutput";
constexpr char InputKey[] = "AudioInput";
constexpr char LatencyKey[] = "AudioLatency";
constexpr uint32_t LongestLatency = 2000;

uint32_t ParseLatency(const std::string& text)
{
    uint32_t milliseconds = 0;
    const char* end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, milliseconds);
    return error == std::errc() && last == end ? std::min(milliseconds, LongestLatency) : 0;
}

} // namespace

AudioDeviceChoice AudioChoice::Input() const
{
    const bool isFile = Output.System == "file";
    return {.System = isFile ? "null" : Output.System,
            .Device = isFile ? std::string() : InputDevice,
            .LatencyMilliseconds = Output.LatencyMilliseconds,
            .File = {}};
}

AudioChoice LoadAudioChoice(const HostServices& services)
{
    AudioChoice choice;
    const std::vector<std::string> systems = ListAudioSystems();
    const std::string system = services.ReadOwnSetting(SystemKey);
    if (std::ranges::find(systems, system) == systems.end())
        return choice;
    choice.Output.System = system;
    choice.Output.Device = services.ReadOwnSetting(OutputKey);
    choice.Output.LatencyMilliseconds = ParseLatency(services.ReadOwnSetting(LatencyKey));
    choice.InputDevice = services.ReadOwnSetting(InputKey);
    return choice;
}

void StoreAudioChoice(HostServices& services, const AudioChoice& choice)
{
    services.WriteOwnSetting(SystemKey, choice.Output.System);
    services.WriteOwnSetting(OutputKey, choice.Output.Device);
    services.WriteOwnSetting(LatencyKey, std::to_string(choice.Output.LatencyMilliseconds));
    services.WriteOwnSetting(InputKey, choice.InputDevice);
}

} // namespace ek
