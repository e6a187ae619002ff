// SPDX-License-Identifier: GPL-3.0-or-later
#include "debugmanager/DebugManager.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <mutex>
#include <spdlog/logger.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <utility>

namespace ek {

namespace {

constexpr size_t FileBytes = 2 << 20;
constexpr size_t OldFiles = 2;

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
    const std::string path = folder / "ek-wave-editor" / "editor.log";
    auto sink = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(path, FileBytes, OldFiles);
    auto log = std::make_shared<spdlog::logger>("", std::move(sink));
    log->set_level(spdlog::level::trace);
    // What a crash leaves behind is what the log is for, so no line waits in a buffer.
    log->flush_on(spdlog::level::trace);
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
        log->log(BackEndLevel(line.Level), "{}: {}", line.Source, line.Text);
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
