// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/TempFile.h"
#include "platform/Events.h"
#include "platform/Paths.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace ek {

namespace {

bool IsTaken(const std::filesystem::path& path)
{
    // A link that leads nowhere takes its name too.
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

/// The clock's ticks, or where they do not go on, one more than the last time: a long sound makes thousands of names,
/// and none of them has to be passed over again.
uint64_t NextCounter()
{
    static std::atomic<uint64_t> last = 0;
    uint64_t previous = last;
    uint64_t next = 0;
    do {
        next = std::max(TickMilliseconds(), previous + 1);
    } while (!last.compare_exchange_weak(previous, next));
    return next;
}

std::filesystem::path WithoutTrailingSeparator(const std::filesystem::path& folder)
{
    return folder.has_filename() || !folder.has_relative_path() ? folder : folder.parent_path();
}

} // namespace

std::filesystem::path TempFolder()
{
    const char* const wanted = std::getenv("TMPDIR");
    std::error_code error;
    if (wanted && IsFolder(wanted))
        return WithoutTrailingSeparator(std::filesystem::absolute(wanted, error));
    // Not /tmp: it is often held in memory, where a recording of hours must not go.
    const std::filesystem::path usual = "/var/tmp";
    return IsFolder(usual) ? usual : ExecutableFolder();
}

std::filesystem::path MakeTempFileName(std::string_view prefix, std::string_view extension)
{
    return MakeTempFileName(prefix, extension, TempFolder());
}

std::filesystem::path MakeTempFileName(std::string_view prefix, std::string_view extension,
                                       const std::filesystem::path& folder)
{
    for (;;) {
        std::string name = ".";
        name.append(prefix).append(std::to_string(NextCounter())).append(extension);
        std::filesystem::path path = folder / name;
        if (!IsTaken(path))
            return path;
    }
}

IoStatus CreateTempFile(std::string_view prefix, std::string_view extension, File& file, std::filesystem::path& path)
{
    return CreateTempFile(prefix, extension, TempFolder(), 0600, file, path);
}

IoStatus CreateTempFile(std::string_view prefix, std::string_view extension, const std::filesystem::path& folder,
                        uint32_t mode, File& file, std::filesystem::path& path)
{
    for (;;) {
        path = MakeTempFileName(prefix, extension, folder);
        const IoStatus status = file.CreateNew(path, mode);
        if (status.Errno() != EEXIST)
            return status;
    }
}

} // namespace ek
