// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/TempFile.h"
#include "platform/Events.h"
#include "platform/Paths.h"

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
    for (uint64_t counter = TickMilliseconds();; ++counter) {
        std::string name = ".";
        name.append(prefix).append(std::to_string(counter)).append(extension);
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
