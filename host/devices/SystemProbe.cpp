// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/RtStream.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

namespace ek {

namespace {

std::string Variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

bool SocketAnswers(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0)
        return false;
    const bool answers = connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(descriptor);
    return answers;
}

/// Asked here, since a client of that server may start one when there is none.
bool IsPulseThere()
{
    const std::string server = Variable("PULSE_SERVER");
    if (!server.empty()) {
        constexpr std::string_view Local = "unix:";
        if (server.starts_with(Local))
            return SocketAnswers(server.substr(Local.size()));
        return server.starts_with('/') ? SocketAnswers(server) : true; // another machine's: the library will see
    }
    const std::string runtime = Variable("PULSE_RUNTIME_PATH");
    const std::string session = Variable("XDG_RUNTIME_DIR");
    return SocketAnswers(runtime.empty() ? runtime : runtime + "/native") ||
           SocketAnswers(session.empty() ? session : session + "/pulse/native") ||
           SocketAnswers("/run/user/" + std::to_string(getuid()) + "/pulse/native") ||
           SocketAnswers("/var/run/pulse/native");
}

/// Names like pcmC0D0p: of a card, for playback; c for capture.
bool IsAlsaThere(bool forCapture)
{
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/snd", error)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with("pcm") && name.ends_with(forCapture ? 'c' : 'p'))
            return true;
    }
    return false;
}

} // namespace

bool IsSystemThere(const std::string& system, bool forCapture)
{
    if (system == "pulse")
        return IsPulseThere();
    if (system == "alsa")
        return IsAlsaThere(forCapture);
    return !ListCards(system, forCapture).empty();
}

} // namespace ek
