// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/AudioDevices.h"

#include "devices/AudioBackend.h"
#include "devices/CardDevices.h"
#include "devices/FileDevice.h"
#include "devices/NullDevice.h"
#include "devices/RtStream.h"

#include <chrono>
#include <functional>
#include <utility>

namespace ek {

namespace {

/// Looks at the systems that the choice stands for, of "auto" at those that are there, until one of them will do.
void TrySystems(const std::string& chosen, bool forCapture,
                const std::function<bool(const std::string& system)>& isUsed)
{
    if (chosen != "auto") {
        isUsed(chosen);
        return;
    }
    for (const std::string& system : ListCardSystems())
        if (IsSystemThere(system, forCapture) && isUsed(system))
            return;
}

/// Of several systems that refuse, `trouble` tells of the first.
template <typename Device, typename Make>
std::unique_ptr<Device> OpenCard(const AudioDeviceChoice& choice, const StreamWish& wish, bool forCapture, Make make,
                                 std::string& trouble)
{
    std::unique_ptr<Device> device;
    std::string firstTrouble;
    TrySystems(choice.System, forCapture, [&](const std::string& system) {
        std::string reason;
        device = make(system, choice.Device, wish, reason);
        if (!device && firstTrouble.empty())
            firstTrouble = reason;
        return device != nullptr;
    });
    trouble = firstTrouble; // also when another system plays instead
    return device;
}

class SystemBackend final : public AudioBackend {
public:
    ~SystemBackend() override
    {
        // Libraries are about to be taken down; but a server that does not answer must not keep the program alive.
        AwaitLookUps(std::chrono::milliseconds(500));
    }

    int64_t NowMicroseconds() override { return MonotonicMicroseconds(); }

    std::unique_ptr<OutputDevice> OpenOutput(const AudioDeviceChoice& choice, const StreamWish& wish,
                                             std::string& trouble) override
    {
        if (choice.System == "file")
            return MakeFileOutput(wish, choice.File, trouble);
        std::unique_ptr<OutputDevice> device;
        if (choice.System != "null")
            device = OpenCard<OutputDevice>(choice, wish, false, MakeCardOutput, trouble);
        const bool mayBeSilent = choice.System == "null" || choice.System == "auto";
        return device || !mayBeSilent ? std::move(device) : OpenNullOutput(wish);
    }

    std::unique_ptr<OutputDevice> OpenNullOutput(const StreamWish& wish) override
    {
        return MakeNullOutput(wish, MakeSystemClock());
    }

    std::unique_ptr<InputDevice> OpenInput(const AudioDeviceChoice& choice, const StreamWish& wish,
                                           std::string& trouble) override
    {
        if (choice.System == "file")
            return MakeFileInput(choice.File, MakeSystemClock(), trouble);
        if (choice.System == "null")
            return MakeNullInput(wish, MakeSystemClock());
        // Silence in place of a device that is missing would be found out after the recording.
        auto device = OpenCard<InputDevice>(choice, wish, true, MakeCardInput, trouble);
        if (!device && trouble.empty())
            trouble = "There is no recording device.";
        return device;
    }
};

} // namespace

std::vector<std::string> ListAudioSystems()
{
    std::vector<std::string> systems = ListCardSystems();
    systems.insert(systems.begin(), "auto");
    systems.emplace_back("null");
    return systems;
}

std::vector<AudioDeviceInfo> ListAudioDevices(const std::string& system, bool forCapture)
{
    std::vector<AudioDeviceInfo> list;
    TrySystems(system, forCapture, [&](const std::string& name) {
        list = ListCards(name, forCapture);
        return true;
    });
    return list;
}

AudioBackend& SystemAudioBackend()
{
    static SystemBackend backend;
    return backend;
}

} // namespace ek
