// SPDX-License-Identifier: GPL-3.0-or-later
#include "debugmanager/DebugManager.h"
#include "debugmanager/LogFile.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <mutex>
#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>
#include <utility>

namespace ek {

namespace {

/// Knows no lock of its own: the manager's is held.
class LogFileSink : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
public:
    explicit LogFileSink(std::filesystem::path path) : m_file(std::move(path)) {}

protected:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        spdlog::memory_buf_t line;
        formatter_->format(message, line);
        m_file.Append({line.data(), line.size()});
    }
    // What a crash leaves behind is what the log is for, so no line waits in a buffer.
    void flush_() override {}

private:
    LogFile m_file;
};

/// One line of the log whatever the text holds: a file's name may contain a line break.
std::string OnOneLine(std::string_view text)
{
    std::string line;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n')
            line += "\\n";
        else if (byte < 0x20 || byte == 0x7F)
            line += Format("\\x%02X", byte);
        else
            line += c;
    }
    return line;
}

spdlog::level::level_enum BackEndLevel(int level)
{
    switch (level) {
    case LogError:
        return spdlog::level::err;
    case LogTree:
        return spdlog::level::trace;
    default:
        return spdlog::level::info;
    }
}

std::shared_ptr<spdlog::logger> OpenLog()
{
    const std::filesystem::path folder = StateHome();
    if (folder.empty())
        return nullptr;
    auto sink = std::make_shared<LogFileSink>(folder / "ek-wave-editor" / "editor.log");
    auto log = std::make_shared<spdlog::logger>("", std::move(sink));
    log->set_level(spdlog::level::trace);
    log->set_pattern("%Y-%m-%d %H:%M:%S.%e %l %v");
    log->set_error_handler([](const std::string&) {});
    return log;
}

} // namespace

struct CDebugManager::Impl {
    std::mutex Mutex;
    bool Opened = false;
    std::shared_ptr<spdlog::logger> Log; // null when it could not be opened
    bool Collecting = false;
    std::vector<Line> Lines;

    void Add(const Line& line);
    spdlog::logger* OpenedLog();
};

spdlog::logger* CDebugManager::Impl::OpenedLog()
{
    if (!std::exchange(Opened, true))
        Log = OpenLog();
    return Log.get();
}

void CDebugManager::Impl::Add(const Line& line)
{
    const std::lock_guard lock(Mutex);
    if (Collecting)
        Lines.push_back(line);
    if (spdlog::logger* const log = OpenedLog())
        log->log(BackEndLevel(line.Level), "{}: {}", OnOneLine(line.Source), OnOneLine(line.Text));
}

CDebugManager::CDebugManager() : m_impl(std::make_unique<Impl>()) {}

CDebugManager::~CDebugManager() = default;

void CDebugManager::Write(const char* source, int level, const char* format, va_list arguments)
{
    try {
        m_impl->Add({.Source = source, .Level = level, .Text = FormatV(format, arguments)});
    } catch (...) {
        // A line that cannot be written is lost; work that wanted to tell of itself goes on.
    }
}

void CDebugManager::WriteLogMessage(const char* source, int level, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    Write(source, level, format, arguments);
    va_end(arguments);
}

void CDebugManager::WriteLogMessage(const char* source, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    Write(source, LogInformation, format, arguments);
    va_end(arguments);
}

void CDebugManager::CollectLines()
{
    const std::lock_guard lock(m_impl->Mutex);
    m_impl->Collecting = true;
}

std::vector<CDebugManager::Line> CDebugManager::TakeLines()
{
    const std::lock_guard lock(m_impl->Mutex);
    return std::exchange(m_impl->Lines, {});
}

CDebugManager& enDebugManager()
{
    // Never destroyed: objects that die at exit still write lines.
    static CDebugManager& manager = *new CDebugManager;
    return manager;
}

} // namespace ek
