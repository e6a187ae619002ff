// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <filesystem>
#include <functional>
#include <vector>

namespace ek {

class HandOverListener;

/// Receives what further starts hand over, in the event loop. Each sender is answered as soon as its message is
/// complete, before the files are opened; also one that is refused, which then opens its files itself.
class HandOverServer : public QObject {
public:
    /// False when the files are not taken. Called before the answer.
    using Receiver = std::function<bool(const std::vector<std::filesystem::path>&)>;

    /// The listener outlives the server. Without a socket the server does nothing.
    HandOverServer(const HandOverListener& listener, Receiver receiver);

private:
    void AcceptNext();

    const HandOverListener& m_listener;
    Receiver m_receiver;
};

} // namespace ek
