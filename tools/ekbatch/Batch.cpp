// SPDX-License-Identifier: GPL-3.0-or-later
#include "Batch.h"

#include "Times.h"

#include "framework/DocTemplate.h"
#include "platform/Text.h"

#include <charconv>
#include <map>

namespace ek {

namespace {

constexpr uint32_t MaxRate = 768000;

bool ParseSettings(const std::vector<std::string>& words, size_t first, std::map<std::string, std::string>& settings)
{
    for (size_t i = first; i < words.size(); ++i) {
        const size_t equals = words[i].find('=');
        if (equals == 0 || equals == std::string::npos)
            return false;
        settings[words[i].substr(0, equals)] = words[i].substr(equals + 1);
    }
    return true;
}

/// One line, whatever the name holds: what is not printable stands as \xNN, a backslash as two.
std::string OnOneLine(const std::string& text)
{
    std::string line;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            line += Format("\\x%02X", c);
        else
            line += c == '\\' ? "\\\\" : std::string(1, c);
    }
    return line;
}

} // namespace

bool Batch::ParseNumber(const std::string& text, uint32_t minimum, uint32_t maximum, uint32_t& value)
{
    const char* end = text.data() + text.size();
    const auto [stop, status] = std::from_chars(text.data(), end, value);
    return status == std::errc() && stop == end && value >= minimum && value <= maximum;
}

std::filesystem::path Batch::AbsolutePath(const std::string& name)
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(name, error);
    return error ? std::filesystem::path() : path;
}

struct Batch::Verb {
    const char* Name;
    size_t MinimumWords; ///< the verb itself included
    size_t MaximumWords;
    const char* Usage;
    Outcome (Batch::*Run)(const Words& words, std::string& error);
};

const Batch::Verb* Batch::FindVerb(const std::string& name)
{
    static constexpr size_t many = 100;
    static const Verb verbs[] = {
        {"open", 2, 2, "open PATH", &Batch::Open},
        {"new", 3, 3, "new RATE CHANNELS", &Batch::New},
        {"info", 1, 1, "info", &Batch::Info},
        {"save", 1, many, "save [PATH [key=value ...]]", &Batch::Save},
        {"close", 1, 1, "close", &Batch::Close},
        {"activate", 2, 2, "activate N", &Batch::Activate},
        {"select", 2, 4, "select START END [CHANNEL], or select all [CHANNEL]", &Batch::Select},
        {"cursor", 2, 2, "cursor TIME", &Batch::Cursor},
        {"cut", 1, 1, "cut", &Batch::Cut},
        {"copy", 1, 1, "copy", &Batch::Copy},
        {"paste", 1, 1, "paste", &Batch::Paste},
        {"paste-mix", 1, 1, "paste-mix", &Batch::PasteMix},
        {"delete", 1, 1, "delete", &Batch::Delete},
        {"undo", 1, 2, "undo [N]", &Batch::Undo},
        {"redo", 1, 2, "redo [N]", &Batch::Redo},
        {"play", 1, 2, "play [FILE]", &Batch::Play},
    };
    for (const Verb& verb : verbs) {
        if (name == verb.Name)
            return &verb;
    }
    return nullptr;
}

Batch::Outcome Batch::Run(const ScriptCommand& command, std::string& error)
{
    const Verb* verb = FindVerb(command.Words[0]);
    if (!verb) {
        error = "unknown command \"" + command.Words[0] + "\"";
        return Outcome::BadUsage;
    }
    if (command.Words.size() < verb->MinimumWords || command.Words.size() > verb->MaximumWords) {
        error = std::string("usage: ") + verb->Usage;
        return Outcome::BadUsage;
    }
    const Outcome outcome = (this->*verb->Run)(command.Words, error);
    PassMessagesOn();
    return outcome;
}

void Batch::PassMessagesOn()
{
    if (const std::string messages = m_prompts.TakeMessages(); !messages.empty())
        m_messages << messages << "\n";
}

Batch::Outcome Batch::Fail(std::string& error, const std::string& fallback)
{
    error = m_prompts.TakeMessages();
    if (error.empty())
        error = fallback;
    return Outcome::Failed;
}

Batch::OpenSound* Batch::Current(std::string& error)
{
    if (m_sounds.empty())
        error = "no sound is open";
    return m_sounds.empty() ? nullptr : &m_sounds[m_current];
}

void Batch::Add(CWEDoc& document)
{
    m_current = m_sounds.size();
    m_sounds.push_back({&document, {}});
}

Batch::Outcome Batch::Open(const Words& words, std::string& error)
{
    const std::filesystem::path path = AbsolutePath(words[1]);
    auto* document = path.empty() ? nullptr : dynamic_cast<CWEDoc*>(m_app.OpenDocumentByName(path));
    if (!document)
        return Fail(error, "File \"" + words[1] + "\" could not be opened");
    Add(*document);
    return Outcome::Done;
}

Batch::Outcome Batch::New(const Words& words, std::string& error)
{
    uint32_t rate = 0;
    uint32_t channels = 0;
    if (!ParseNumber(words[1], 1, MaxRate, rate) || !ParseNumber(words[2], 1, MaxChannels, channels)) {
        error = "usage: new RATE CHANNELS (1 to 768000 Hz, 1 to 8 channels)";
        return Outcome::BadUsage;
    }
    auto* document = dynamic_cast<CWEDoc*>(m_app.CreateDocument(m_app.WaveTemplateName(), {}));
    if (!document || !document->SetFormat(MakePcm16Format(rate, channels), nullptr))
        return Fail(error, "a new sound could not be made");
    Add(*document);
    return Outcome::Done;
}

Batch::Outcome Batch::Info(const Words&, std::string& error)
{
    const OpenSound* sound = Current(error);
    if (!sound)
        return Outcome::Failed;
    CWEDoc* document = sound->Document;
    StreamInfo info;
    StreamProperties properties;
    const bool hasFile = !document->Path().empty() && EkGetStreamInfo(document->Path(), info, properties);
    const WAVEFORMATEXTENSIBLE& source = document->Store().SourceFormat();
    m_output << "path: " << OnOneLine(document->Path().string()) << "\n"
             << "format: " << (hasFile ? info.FormatName : "none") << "\n"
             << "rate: " << source.nSamplesPerSec << "\n"
             << "channels: " << source.nChannels << "\n"
             << "bits: " << (hasFile ? info.BitsPerSample : source.wBitsPerSample) << "\n"
             << "frames: " << document->FrameCount() << "\n"
             << "duration: " << document->FormatPosition(document->FrameCount()) << "\n"
             << "modified: " << (document->IsModified() ? "yes" : "no") << "\n";
    PrintSelection(sound->View);
    m_output << std::flush;
    return m_output ? Outcome::Done : Fail(error, "the output could not be written");
}

/// In words that the commands take.
void Batch::PrintSelection(const WaveGeometry& view)
{
    const auto frame = [](uint64_t position) {
        return position == WaveGeometry::NoFrame ? "none" : std::to_string(position) + "f";
    };
    m_output << "cursor: " << frame(view.CursorFrame) << "\n";
    if (view.HasSelection())
        m_output << "selection: " << frame(view.SelectionStart) << " " << frame(view.SelectionEnd) << " "
                 << ScriptNameOf(view.SelectionChannel) << "\n";
    else
        m_output << "selection: none\n";
}

Batch::Outcome Batch::Save(const Words& words, std::string& error)
{
    const OpenSound* sound = Current(error);
    if (!sound)
        return Outcome::Failed;
    CWEDoc* document = sound->Document;
    if (words.size() == 1)
        return document->DoSave() ? Outcome::Done : Fail(error, "the sound was not saved");
    std::map<std::string, std::string> settings;
    if (!ParseSettings(words, 2, settings)) {
        error = "usage: save [PATH [key=value ...]]";
        return Outcome::BadUsage;
    }
    const std::filesystem::path target = AbsolutePath(words[1]);
    if (target.empty())
        return Fail(error, "there is no file \"" + words[1] + "\" to save to");
    m_prompts.PrepareSave(target, std::move(settings));
    return document->SaveAs() ? Outcome::Done : Fail(error, "the sound was not saved");
}

Batch::Outcome Batch::Close(const Words&, std::string& error)
{
    const OpenSound* sound = Current(error);
    if (!sound)
        return Outcome::Failed;
    CWEDoc* document = sound->Document;
    if (!document->SaveModified())
        return Fail(error, "the sound was not closed");
    m_sounds.erase(m_sounds.begin() + static_cast<std::ptrdiff_t>(m_current));
    if (m_current > 0)
        --m_current;
    document->Template()->CloseDocument(*document);
    return Outcome::Done;
}

Batch::Outcome Batch::Activate(const Words& words, std::string& error)
{
    uint32_t number = 0;
    if (!ParseNumber(words[1], 0, UINT32_MAX, number)) {
        error = "usage: activate N";
        return Outcome::BadUsage;
    }
    if (number < 1 || number > m_sounds.size())
        return Fail(error, Format("there is no sound %u, %zu are open", number, m_sounds.size()));
    m_current = number - 1;
    return Outcome::Done;
}

} // namespace ek
