// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/Message.h"
#include "host/Module.h"

#include <QMenu>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace ek {

class CHostFrame;

/// A frame that records the messages of the host, and says that it took them.
class StubFrame : public QWidget {
public:
    using QWidget::QWidget;

    struct Message {
        uint32_t Id;
        uintptr_t WParam;
        intptr_t LParam;
        bool operator==(const Message&) const = default;
    };
    std::vector<Message> Messages;
    std::function<void(const Message& message)> OnMessage;

protected:
    bool event(QEvent* event) override;
};

/// A module that records what the host asks of it. Its menus go when it is freed. One at a time.
class StubModule {
public:
    StubModule();
    ~StubModule();

    ModuleExports Exports;
    std::vector<std::string> Calls;
    std::vector<std::u16string> Requests;
    std::vector<uint32_t> Commands;
    std::set<uint32_t> Disabled;
    std::set<uint32_t> Checked;
    std::set<uint32_t> Unknown; ///< commands that nobody handles
    std::vector<Accelerator> Keys;
    int TakenKey = 0; ///< the key that the module keeps for itself
    int KeysSeen = 0;
    int IdleCalls = 0;
    std::function<void()> OnTryClose;
    bool MayClose = true;
    bool Refuses = false;

    CHostFrame* Host = nullptr;
    QPointer<StubFrame> Frame;
    std::unique_ptr<QMenu> Menu;
    QMenu* FileMenu;
    QMenu* ViewMenu;
};

} // namespace ek
