// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/HandOver.h"

#include "platform/TempFile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace ek {

namespace {

constexpr std::string_view OpenWord = "open";
constexpr int AnswerLimitSeconds = 10;
constexpr char AcceptedAnswer = 'k';

class Descriptor {
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const { return m_descriptor; }

private:
    int m_descriptor;
};

bool MakeAddress(const std::filesystem::path& path, sockaddr_un& address)
{
    address = {};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.native().size() >= sizeof(address.sun_path))
        return false;
    std::memcpy(address.sun_path, path.c_str(), path.native().size());
    return true;
}

bool IsOwnFolder(const std::filesystem::path& path)
{
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::getuid() &&
           (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

std::filesystem::path RuntimeFolder()
{
    if (const char* folder = std::getenv("XDG_RUNTIME_DIR"); folder && IsOwnFolder(folder))
        return folder;
    const std::filesystem::path folder = TempFolder() / ("ek-wave-editor-" + std::to_string(::getuid()));
    ::mkdir(folder.c_str(), 0700);
    return IsOwnFolder(folder) ? folder : std::filesystem::path();
}

std::string DisplayName()
{
    std::string name;
    for (const char* variable : {"WAYLAND_DISPLAY", "DISPLAY"}) {
        if (const char* value = std::getenv(variable))
            name += std::string("-") + value;
    }
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

bool SendAll(int socket, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t sent = ::send(socket, text.data(), text.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR)
            return false;
        text.remove_prefix(static_cast<size_t>(std::max<ssize_t>(sent, 0)));
    }
    return ::shutdown(socket, SHUT_WR) == 0;
}

bool IsAccepted(int socket)
{
    pollfd wait{.fd = socket, .events = POLLIN, .revents = 0};
    char answer = 0;
    return ::poll(&wait, 1, AnswerLimitSeconds * 1000) == 1 && ::recv(socket, &answer, 1, 0) == 1 &&
           answer == AcceptedAnswer;
}

/// An editor that hangs lets its queue fill up; connecting and sending then end with this limit.
void LimitWaiting(int socket)
{
    const timeval limit{.tv_sec = AnswerLimitSeconds, .tv_usec = 0};
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
}

} // namespace

std::string EncodeHandOver(const std::vector<std::filesystem::path>& files)
{
    std::string text(OpenWord);
    text += '\0';
    for (const std::filesystem::path& file : files)
        text += file.native() + '\0';
    return text;
}

std::optional<std::vector<std::filesystem::path>> DecodeHandOver(std::string_view text)
{
    if (text.empty() || text.back() != '\0')
        return std::nullopt;
    std::vector<std::filesystem::path> fields;
    while (!text.empty()) {
        const size_t end = text.find('\0');
        fields.emplace_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    if (fields.front() != OpenWord)
        return std::nullopt;
    fields.erase(fields.begin());
    if (!std::all_of(fields.begin(), fields.end(), [](const auto& path) { return path.is_absolute(); }))
        return std::nullopt;
    return fields;
}

std::filesystem::path HandOverSocket()
{
    const std::filesystem::path folder = RuntimeFolder();
    return folder.empty() ? folder : folder / ("ek-wave-editor" + DisplayName());
}

HandOverResult SendHandOver(const std::filesystem::path& socket, const std::vector<std::filesystem::path>& files)
{
    sockaddr_un address;
    if (!MakeAddress(socket, address))
        return HandOverResult::Nobody;
    const Descriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    LimitWaiting(connection.Get());
    if (::connect(connection.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        return errno == ENOENT || errno == ECONNREFUSED ? HandOverResult::Nobody : HandOverResult::NoAnswer;
    const bool isAccepted = SendAll(connection.Get(), EncodeHandOver(files)) && IsAccepted(connection.Get());
    return isAccepted ? HandOverResult::Accepted : HandOverResult::NoAnswer;
}

void HandOverListener::Close()
{
    if (m_descriptor < 0)
        return;
    if (IsOwnFile())
        ::unlink(m_path.c_str());
    ::close(std::exchange(m_descriptor, -1));
}

bool HandOverListener::IsOwnFile() const
{
    struct stat status {};
    return ::lstat(m_path.c_str(), &status) == 0 && status.st_dev == m_device && status.st_ino == m_fileNumber;
}

bool HandOverListener::Listen(const std::filesystem::path& socket)
{
    sockaddr_un address;
    if (!MakeAddress(socket, address))
        return false;
    ::unlink(socket.c_str());
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        ::listen(descriptor, 8) != 0) {
        ::close(descriptor);
        return false;
    }
    struct stat status {};
    ::lstat(socket.c_str(), &status);
    m_descriptor = descriptor;
    m_device = status.st_dev;
    m_fileNumber = status.st_ino;
    m_path = socket;
    return true;
}

int HandOverListener::Accept() const
{
    const int connection = ::accept4(m_descriptor, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    ucred peer{};
    socklen_t length = sizeof(peer);
    if (connection < 0 ||
        (::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 && peer.uid == ::getuid()))
        return connection;
    ::close(connection);
    return -1;
}

StartKind JoinRunningEditor(const std::filesystem::path& socket, const std::vector<std::filesystem::path>& files,
                            HandOverListener& listener)
{
    if (socket.empty())
        return StartKind::First;
    // The lock makes asking and taking the place one step. It ends with the descriptor; its file stays.
    const Descriptor lock(::open((socket.native() + ".lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600));
    if (lock.Get() < 0 || ::flock(lock.Get(), LOCK_EX) != 0)
        return StartKind::First;
    const HandOverResult result = SendHandOver(socket, files);
    if (result == HandOverResult::Nobody)
        listener.Listen(socket);
    return result == HandOverResult::Accepted ? StartKind::HandedOver : StartKind::First;
}

} // namespace ek
