// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/WholeFile.h"
#include "platform/TempFile.h"

#include <cerrno>
#include <system_error>

namespace ek {

namespace {

constexpr uint64_t MaxBytes = uint64_t{256} << 20;

std::filesystem::path FollowLinks(const std::filesystem::path& path)
{
    std::error_code error;
    const std::filesystem::path target = std::filesystem::canonical(path, error);
    return error ? path : target;
}

uint32_t ModeFor(const std::filesystem::path& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status))
        return 0600;
    return static_cast<uint32_t>(status.permissions() & std::filesystem::perms::all);
}

IoStatus WriteAndClose(File& file, std::string_view content)
{
    IoStatus status = file.WriteAt(content.data(), content.size(), 0);
    if (status.Ok())
        status = file.Sync();
    const IoStatus closed = file.Close();
    return status.Ok() ? closed : status;
}

} // namespace

IoStatus ReadWholeFile(const std::filesystem::path& path, std::string& content)
{
    File file;
    uint64_t size = 0;
    IoStatus status = file.Open(path, File::Access::Read);
    if (status.Ok())
        status = file.Size(size);
    if (!status.Ok())
        return status;
    if (size > MaxBytes)
        return IoStatus(EFBIG);
    std::string bytes(static_cast<size_t>(size), '\0');
    uint64_t done = 0;
    status = file.ReadAt(bytes.data(), size, 0, done);
    if (!status.Ok())
        return status;
    bytes.resize(static_cast<size_t>(done));
    content = std::move(bytes);
    return {};
}

IoStatus SaveWholeFile(const std::filesystem::path& path, std::string_view content)
{
    const std::filesystem::path target = FollowLinks(path);
    File file;
    std::filesystem::path temporary;
    IoStatus status = CreateTempFile("eksave", ".tmp", target.parent_path(), ModeFor(target), file, temporary);
    if (!status.Ok())
        return status;
    status = WriteAndClose(file, content);
    if (status.Ok())
        status = RenameOver(temporary, target);
    if (!status.Ok())
        (void)RemoveFile(temporary);
    return status;
}

} // namespace ek
