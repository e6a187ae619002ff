// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEvent>

#include <cstdint>

namespace ek {

/// Ids of the messages that host and module send each other.
enum MessageId : uint32_t {
    EK_WM_COMMAND = 0x0111,        ///< wParam: a command id
    EK_WM_TAKE_PLAYER = 0x040A,    ///< the player was granted or reconfigured
    EK_WM_RELEASE_PLAYER = 0x040C, ///< give the player back
    EK_WM_SETUP_CAPTURE = 0x041E,  ///< the capture device was granted
    EK_WM_ACTIVATE_MODULE = 0x046E ///< wParam: 1 when the module's page is shown, 0 when it is hidden
};

/// A message between host and module, sent with QCoreApplication::sendEvent. Result is what the receiver
/// answers; an event that nobody took stays ignored with result 0. lParam is a number or, for command 11000,
/// the address of a zero-terminated UTF-16 file name that lives for the time of the call.
class MessageEvent : public QEvent {
public:
    static constexpr QEvent::Type Kind = static_cast<QEvent::Type>(QEvent::User + 0x0111);

    MessageEvent(uint32_t id, uintptr_t wParam, intptr_t lParam) : QEvent(Kind), Id(id), WParam(wParam), LParam(lParam)
    {
    }

    uint32_t Id;
    uintptr_t WParam;
    intptr_t LParam;
    intptr_t Result = 0;
};

} // namespace ek
