// SPDX-License-Identifier: GPL-3.0-or-later
#include "servicefuncs/MessageBox.h"

namespace ek {

namespace {
MessageBoxPort* g_port = nullptr;
}

void SetMessageBoxPort(MessageBoxPort* port)
{
    g_port = port;
}

MessageAnswer AfxSCMessageBox(std::string_view text, MessageButtons buttons, MessageIcon icon)
{
    if (g_port)
        return g_port->ShowMessage(text, buttons, icon);
    return buttons == MessageButtons::Ok ? MessageAnswer::Ok : MessageAnswer::Cancel;
}

} // namespace ek
