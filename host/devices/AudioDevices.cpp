// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/AudioDevices.h"

#include "devices/AudioBackend.h"
#include "devices/CardDevices.h"
#include "devices/FileDevice.h"
#include "devices/NullDevice.h"
#include "devices/RtStream.h"
#include "platform/Events.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace ek {

namespace {

/// The systems that the choice stands for: of "auto" those that are there.
std::vector<std::string> SystemsOf(const std::string& chosen, bool forCapture)
{
    if (chosen != "auto")
        return {chosen};
    std::vector<std::string> systems = ListCardSystems();
    std::erase_if(systems, [forCapture](const std::string& name) { return !IsSystemThere(name, forCapture); });
    return systems;
}

/// Empty where there is none that could be followed.
std::string DefaultCardName(const std::string& chosen)
{
    const std::vector<std::string> systems = SystemsOf(chosen, false);
    if (systems.empty())
        return {};
    for (const AudioDeviceInfo& card : ListCards(systems.front(), false))
        if (card.IsDefault)
            return card.Name;
    return {};
}

class SystemBackend final : public AudioBackend {
public:
    ~SystemBackend() override
    {
        // Libraries are about to be taken down; but a server that does not answer must not keep the program alive.
        constexpr std::chrono::milliseconds Patience{500};
        if (m_query)
            (void)m_query->Done.WaitFor(Patience);
    }

    int64_t NowMicroseconds() override { return MonotonicMicroseconds(); }

    std::unique_ptr<OutputDevice> OpenOutput(const AudioDeviceChoice& choice, const StreamWish& wish,
                                             std::string& trouble) override
    {
        if (choice.System == "file")
            return MakeFileOutput(wish, choice.File, trouble);
        if (choice.System != "null")
            for (const std::string& system : SystemsOf(choice.System, false))
                if (auto device = MakeCardOutput(system, choice.Device, wish, trouble))
                    return device;
        return choice.System == "null" || choice.System == "auto" ? OpenNullOutput(wish) : nullptr;
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
        trouble = "There is no recording device.";
        for (const std::string& system : SystemsOf(choice.System, true))
            if (auto device = MakeCardInput(system, choice.Device, wish, trouble))
                return device;
        return nullptr;
    }

    bool HasMoved(const AudioDeviceChoice& choice, const std::string& name) override
    {
        if (!choice.Device.empty() || choice.System == "null" || choice.System == "file")
            return false;
        // On a thread of its own, which nobody joins: a server that does not answer must not stop the window.
        if (m_query && !m_query->Done.IsSet())
            return false;
        const bool hasMoved = m_query && m_query->Choice == choice && !m_query->Name.empty() && m_query->Name != name;
        m_query = std::make_shared<Query>();
        m_query->Choice = choice;
        std::thread([query = m_query] {
            query->Name = DefaultCardName(query->Choice.System);
            query->Done.Set();
        }).detach();
        return hasMoved;
    }

private:
    /// For the name of the device that is now the default one.
    struct Query {
        AudioDeviceChoice Choice;
        std::string Name; ///< once it is done
        ManualResetEvent Done;
    };

    std::shared_ptr<Query> m_query;
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
    const std::vector<std::string> systems = SystemsOf(system, forCapture);
    return systems.empty() ? std::vector<AudioDeviceInfo>() : ListCards(systems.front(), forCapture);
}

AudioBackend& SystemAudioBackend()
{
    static SystemBackend backend;
    return backend;
}

} // namespace ek
