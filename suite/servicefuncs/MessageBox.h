// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace ek {

enum class MessageButtons { Ok, YesNoCancel };
enum class MessageIcon { None, Information, Question, Error };
enum class MessageAnswer { Ok, Yes, No, Cancel };

/// Where message boxes go: a dialog, a console or a test's script.
class MessageBoxPort {
public:
    virtual ~MessageBoxPort() = default;
    virtual MessageAnswer ShowMessage(std::string_view text, MessageButtons buttons, MessageIcon icon) = 0;
};

/// Null is allowed: texts are then dropped and the answer is Ok, or Cancel where there is a choice.
void SetMessageBoxPort(MessageBoxPort* port);

/// Shows a message to the user and waits for the answer. User-interface thread.
MessageAnswer AfxSCMessageBox(std::string_view text, MessageButtons buttons = MessageButtons::Ok,
                              MessageIcon icon = MessageIcon::None);

} // namespace ek
