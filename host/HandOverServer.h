// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <filesystem>
#include <functional>
#include <vector>

namespace ek {

class HandOverListener;

/// Receives what further starts hand over, in the event loop. Each sender is answered as soon as its message is
/// complete, before the files are opened.
class HandOverServer : public QObject {
public:
    using Receiver = std::function<void(const std::vector<std::filesystem::path>&)>;

    /// The listener outlives the server. Without a socket the server does nothing.
    HandOverServer(const HandOverListener& listener, Receiver receiver);

private:
    void AcceptNext();

    const HandOverListener& m_listener;
    Receiver m_receiver;
};

} // namespace ek
