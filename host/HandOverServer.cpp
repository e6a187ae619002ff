// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/HandOverServer.h"

#include "host/HandOver.h"

#include <QSocketNotifier>

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace ek {

namespace {

constexpr size_t MessageLimitBytes = 1 << 20;

/// One sender: reads until its end, answers, and is gone.
class HandOverConnection : public QObject {
public:
    HandOverConnection(int descriptor, const HandOverServer::Receiver& receiver, QObject* parent)
        : QObject(parent), m_descriptor(descriptor), m_receiver(receiver), m_notifier(descriptor, QSocketNotifier::Read)
    {
        connect(&m_notifier, &QSocketNotifier::activated, this, [this] { Read(); });
    }

    ~HandOverConnection() override
    {
        m_notifier.setEnabled(false);
        ::close(m_descriptor);
    }

private:
    void Read()
    {
        char buffer[4096];
        const ssize_t count = ::recv(m_descriptor, buffer, sizeof(buffer), 0);
        if (count < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        if (count > 0 && m_text.size() < MessageLimitBytes) {
            m_text.append(buffer, static_cast<size_t>(count));
            return;
        }
        m_notifier.setEnabled(false);
        deleteLater();
        Answer(count == 0 && IsTaken());
    }

    bool IsTaken() const
    {
        const auto files = DecodeHandOver(m_text);
        return files && m_receiver(*files);
    }

    /// One byte always has room in the buffer of a new connection; a sender that has gone needs no answer.
    void Answer(bool isTaken) { ::send(m_descriptor, isTaken ? "k" : "n", 1, MSG_NOSIGNAL); }

    int m_descriptor;
    const HandOverServer::Receiver& m_receiver;
    QSocketNotifier m_notifier;
    std::string m_text;
};

} // namespace

HandOverServer::HandOverServer(const HandOverListener& listener, Receiver receiver)
    : m_listener(listener), m_receiver(std::move(receiver))
{
    if (m_listener.Descriptor() < 0)
        return;
    auto* notifier = new QSocketNotifier(m_listener.Descriptor(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { AcceptNext(); });
}

void HandOverServer::AcceptNext()
{
    if (const int connection = m_listener.Accept(); connection >= 0)
        new HandOverConnection(connection, m_receiver, this);
}

} // namespace ek
