// SPDX-License-Identifier: GPL-3.0-or-later
#include "Batch.h"
#include "Times.h"

#include "platform/Text.h"
#include "waveview/EditCommands.h"

namespace ek {

namespace {

constexpr uint32_t MostSteps = 1'000'000;
constexpr char TimeForms[] = "seconds (12.5), h:mm:ss,mmm, frames (44100f) or end";

} // namespace

Batch::Outcome Batch::ReadTime(const OpenSound& sound, const std::string& word, uint64_t& frame, std::string& error)
{
    const CWEDoc& document = *sound.Document;
    const auto parsed = ParseTime(word, document.Format().nSamplesPerSec, document.FrameCount());
    if (!parsed) {
        error = "\"" + word + "\" is no time; a time is " + TimeForms;
        return Outcome::BadUsage;
    }
    if (*parsed > document.FrameCount()) {
        error = word + " lies beyond the end of the sound, " + document.FormatPosition(document.FrameCount());
        return Outcome::Failed;
    }
    frame = *parsed;
    return Outcome::Done;
}

Batch::Outcome Batch::ReadChannel(const OpenSound& sound, const std::string& word, ChannelCode& code,
                                  std::string& error)
{
    const auto parsed = ParseChannel(word);
    if (!parsed) {
        error = "\"" + word + "\" is no channel";
        return Outcome::BadUsage;
    }
    if (*parsed != ChannelAll && GetIndexByChannel(sound.Document->Format(), *parsed) == NoChannel) {
        error = "the sound has no channel " + word;
        return Outcome::Failed;
    }
    code = *parsed;
    return Outcome::Done;
}

Batch::Outcome Batch::Select(const Words& words, std::string& error)
{
    OpenSound* sound = Current(error);
    if (!sound)
        return Outcome::Failed;
    const bool all = words[1] == "all";
    const size_t times = all ? 2 : 3;
    if (words.size() < times || words.size() > times + 1) {
        error = "usage: select START END [CHANNEL], or select all [CHANNEL]";
        return Outcome::BadUsage;
    }
    ChannelCode code = ChannelAll;
    if (words.size() > times) {
        if (const Outcome outcome = ReadChannel(*sound, words[times], code, error); outcome != Outcome::Done)
            return outcome;
    }
    if (!all)
        return SelectTimes(*sound, words, code, error);
    EditCommands(*sound->Document, sound->View).SelectChannel(code);
    return Outcome::Done;
}

Batch::Outcome Batch::SelectTimes(OpenSound& sound, const Words& words, ChannelCode code, std::string& error)
{
    uint64_t start = 0;
    uint64_t end = 0;
    if (const Outcome outcome = ReadTime(sound, words[1], start, error); outcome != Outcome::Done)
        return outcome;
    if (const Outcome outcome = ReadTime(sound, words[2], end, error); outcome != Outcome::Done)
        return outcome;
    if (start > end)
        return Fail(error, words[1] + " lies after " + words[2]);
    // As after a drag from one to the other.
    sound.View.SelectionStart = start;
    sound.View.SelectionEnd = sound.View.CursorFrame = end;
    sound.View.SelectionChannel = code;
    return Outcome::Done;
}

Batch::Outcome Batch::Cursor(const Words& words, std::string& error)
{
    OpenSound* sound = Current(error);
    if (!sound)
        return Outcome::Failed;
    uint64_t frame = 0;
    const Outcome outcome = ReadTime(*sound, words[1], frame, error);
    if (outcome == Outcome::Done)
        sound->View.SelectionStart = sound->View.SelectionEnd = sound->View.CursorFrame = frame;
    return outcome;
}

/// `nothing` is the complaint when there is nothing to do it with.
Batch::Outcome Batch::Edit(bool (EditCommands::*can)() const, const char* nothing, bool (EditCommands::*edit)(),
                           std::string& error)
{
    OpenSound* sound = Current(error);
    if (!sound)
        return Outcome::Failed;
    EditCommands commands(*sound->Document, sound->View);
    if (!(commands.*can)())
        return Fail(error, nothing);
    return (commands.*edit)() ? Outcome::Done : Fail(error, "the sound was not changed");
}

Batch::Outcome Batch::Copy(const Words&, std::string& error)
{
    return Edit(&EditCommands::CanCopy, "nothing is selected", &EditCommands::Copy, error);
}

Batch::Outcome Batch::Cut(const Words&, std::string& error)
{
    return Edit(&EditCommands::CanCopy, "nothing is selected", &EditCommands::Cut, error);
}

Batch::Outcome Batch::Delete(const Words&, std::string& error)
{
    return Edit(&EditCommands::CanCopy, "nothing is selected", &EditCommands::Delete, error);
}

Batch::Outcome Batch::Paste(const Words&, std::string& error)
{
    return Edit(&EditCommands::CanPaste, "nothing was copied", &EditCommands::Paste, error);
}

Batch::Outcome Batch::PasteMix(const Words&, std::string& error)
{
    return Edit(&EditCommands::CanPaste, "nothing was copied", &EditCommands::PasteMix, error);
}

/// `steps` edits are there to be gone through; the words may ask for fewer, and without a number for one.
Batch::Outcome Batch::Repeat(const Words& words, size_t steps, bool (EditCommands::*step)(), std::string& error)
{
    uint32_t wanted = 1;
    if (words.size() > 1 && !ParseNumber(words[1], 1, MostSteps, wanted)) {
        error = "usage: " + words[0] + " [N]";
        return Outcome::BadUsage;
    }
    if (wanted > steps)
        return Fail(error, Format("there are %zu edits to %s", steps, words[0].c_str()));
    OpenSound* sound = Current(error);
    for (uint32_t i = 0; i < wanted; ++i) {
        if (!(EditCommands(*sound->Document, sound->View).*step)())
            return Fail(error, "the sound was not changed");
    }
    return Outcome::Done;
}

Batch::Outcome Batch::Undo(const Words& words, std::string& error)
{
    const OpenSound* sound = Current(error);
    if (!sound)
        return Outcome::Failed;
    return Repeat(words, sound->Document->UndoStack().FillUndoList().size(), &EditCommands::Undo, error);
}

Batch::Outcome Batch::Redo(const Words& words, std::string& error)
{
    const OpenSound* sound = Current(error);
    if (!sound)
        return Outcome::Failed;
    return Repeat(words, sound->Document->UndoStack().FillRedoList().size(), &EditCommands::Redo, error);
}

} // namespace ek
