// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ConsolePrompts.h"
#include "Script.h"
#include "app/EkEditorApp.h"
#include "waveedit/WEDoc.h"

#include <ostream>
#include <string>

namespace ek {

/// Runs commands on the documents of the editor.
class Batch {
public:
    Batch(ConsolePrompts& prompts, std::ostream& output, std::ostream& messages)
        : m_prompts(prompts), m_output(output), m_messages(messages)
    {
    }

    enum class Outcome { Done, Failed, BadUsage };
    /// `error` is what to tell the user when the outcome is not Done.
    Outcome Run(const ScriptCommand& command, std::string& error);

private:
    using Words = std::vector<std::string>;
    Outcome Open(const Words& words, std::string& error);
    Outcome New(const Words& words, std::string& error);
    Outcome Info(const Words& words, std::string& error);
    Outcome Save(const Words& words, std::string& error);
    Outcome Close(const Words& words, std::string& error);
    CWEDoc* Current(std::string& error);
    Outcome Fail(std::string& error, const std::string& fallback);
    void PassMessagesOn();

    struct Verb;
    static const Verb* FindVerb(const std::string& name);

    ConsolePrompts& m_prompts;
    std::ostream& m_output;
    std::ostream& m_messages; ///< what a person would have been shown by a command that succeeded
    CEkEditorApp m_app;
    std::vector<CWEDoc*> m_documents; // in opening order; the last one is current
};

} // namespace ek
