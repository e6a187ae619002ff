// SPDX-License-Identifier: GPL-3.0-or-later
#include "debugmanager/LogFile.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace ek {

namespace fs = std::filesystem;

LogFile::LogFile(fs::path path) : m_path(std::move(path))
{
    std::error_code ignored;
    fs::create_directories(m_path.parent_path(), ignored);
}

LogFile::~LogFile()
{
    Close();
}

void LogFile::Open()
{
    // A pipe in the log's place must not hold the program up.
    m_descriptor = open(m_path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
}

void LogFile::Close()
{
    if (m_descriptor != -1)
        close(std::exchange(m_descriptor, -1));
}

bool LogFile::IsCurrent() const
{
    struct stat opened {};
    struct stat named {};
    return m_descriptor != -1 && fstat(m_descriptor, &opened) == 0 && stat(m_path.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

bool LogFile::HasRoomFor(size_t bytes) const
{
    struct stat status {};
    return fstat(m_descriptor, &status) == 0 &&
           (status.st_size == 0 || static_cast<size_t>(status.st_size) + bytes <= MaxBytes);
}

fs::path LogFile::OldPath(int age) const
{
    fs::path path = m_path;
    return path.replace_filename(m_path.stem().string() + "." + std::to_string(age) + m_path.extension().string());
}

void LogFile::Rotate()
{
    // Of several writers that find the file full, the first to get the lock renames it.
    while (flock(m_descriptor, LOCK_EX) == -1 && errno == EINTR) {
    }
    std::error_code error;
    if (IsCurrent()) {
        fs::rename(OldPath(1), OldPath(2), error);
        fs::rename(m_path, OldPath(1), error);
        // Better without its beginning than without a bound.
        if (error)
            fs::resize_file(m_path, 0, error);
    }
    Close(); // and unlocks
    Open();
}

void LogFile::Append(std::string_view line)
{
    if (!IsCurrent()) {
        Close();
        Open();
    }
    if (m_descriptor != -1 && !HasRoomFor(line.size()))
        Rotate();
    // In one call, so that lines of two writers do not mix.
    if (m_descriptor != -1 && write(m_descriptor, line.data(), line.size()) == -1)
        Close();
}

} // namespace ek
