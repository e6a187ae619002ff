// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdarg>
#include <memory>
#include <string>
#include <vector>

namespace ek {

enum LogLevel : int { LogTree = -1, LogError = 1, LogInformation = 2 };

/// The log: lines with time, source and level in StateHome()/ek-wave-editor/editor.log, rotated by size. Each copy of
/// it, in a host and in its modules, and each process writes the same file. Control characters are written as \n or
/// \xNN. A log that cannot be opened loses its lines; it never disturbs the program. Any thread except the sound
/// card's.
class CDebugManager {
public:
    CDebugManager();
    ~CDebugManager();
    CDebugManager(const CDebugManager&) = delete;
    CDebugManager& operator=(const CDebugManager&) = delete;

    /// `format` is printf's, with "%I64x" and its like for 64-bit arguments.
    void WriteLogMessage(const char* source, int level, const char* format, ...);
    void WriteLogMessage(const char* source, const char* format, ...);

    struct Line {
        std::string Source;
        int Level;
        std::string Text;
    };
    /// For tests: from now on lines are also collected. TakeLines returns and forgets them.
    void CollectLines();
    std::vector<Line> TakeLines();

private:
    void Write(const char* source, int level, const char* format, va_list arguments);
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

/// The one log of the process.
CDebugManager& enDebugManager();

/// The module's name: its source in the log, its section in the settings, its name towards the host.
inline constexpr char ModuleName[] = "Ek Wave Editor";

} // namespace ek
