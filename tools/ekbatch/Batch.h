// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ConsolePrompts.h"
#include "Script.h"
#include "app/EkEditorApp.h"
#include "devices/AudioDevices.h"
#include "waveedit/WEDoc.h"
#include "waveview/WaveGeometry.h"

#include <ostream>
#include <string>
#include <vector>

namespace ek {

class EditCommands;

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
    struct OpenSound {
        CWEDoc* Document = nullptr;
        WaveGeometry View; ///< selection and cursor
    };

    Outcome Open(const Words& words, std::string& error);
    Outcome New(const Words& words, std::string& error);
    Outcome Info(const Words& words, std::string& error);
    Outcome Save(const Words& words, std::string& error);
    Outcome Close(const Words& words, std::string& error);
    Outcome Activate(const Words& words, std::string& error);

    Outcome Select(const Words& words, std::string& error);
    Outcome Cursor(const Words& words, std::string& error);
    Outcome Copy(const Words& words, std::string& error);
    Outcome Cut(const Words& words, std::string& error);
    Outcome Delete(const Words& words, std::string& error);
    Outcome Paste(const Words& words, std::string& error);
    Outcome PasteMix(const Words& words, std::string& error);
    Outcome Undo(const Words& words, std::string& error);
    Outcome Redo(const Words& words, std::string& error);

    Outcome Play(const Words& words, std::string& error);

    Outcome PlayInto(const OpenSound& sound, const std::string& name, std::string& error);
    Outcome Perform(const OpenSound& sound, const AudioDeviceChoice& device, const std::string& name,
                    std::string& error);
    Outcome ReadTime(const OpenSound& sound, const std::string& word, uint64_t& frame, std::string& error);
    Outcome ReadChannel(const OpenSound& sound, const std::string& word, ChannelCode& code, std::string& error);
    Outcome SelectTimes(OpenSound& sound, const Words& words, ChannelCode code, std::string& error);
    Outcome Edit(bool (EditCommands::*can)() const, const char* nothing, bool (EditCommands::*edit)(),
                 std::string& error);
    Outcome Repeat(const Words& words, size_t steps, bool (EditCommands::*step)(), std::string& error);

    OpenSound* Current(std::string& error);
    void Add(CWEDoc& document);
    void PrintSelection(const WaveGeometry& view);
    Outcome Fail(std::string& error, const std::string& fallback);
    void PassMessagesOn();
    static bool ParseNumber(const std::string& text, uint32_t minimum, uint32_t maximum, uint32_t& value);
    /// Empty when the name is, or when there is no current folder to start from.
    static std::filesystem::path AbsolutePath(const std::string& name);

    struct Verb;
    static const Verb* FindVerb(const std::string& name);

    ConsolePrompts& m_prompts;
    std::ostream& m_output;
    std::ostream& m_messages; ///< what a person would have been shown by a command that succeeded
    CEkEditorApp m_app;
    std::vector<OpenSound> m_sounds; // in opening order
    size_t m_current = 0;            // of them
};

} // namespace ek
