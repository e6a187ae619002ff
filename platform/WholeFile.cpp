// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/WholeFile.h"
#include "platform/SaveTarget.h"
#include "platform/TempFile.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace ek {

namespace {

constexpr uint64_t MaxBytes = uint64_t{256} << 20;

/// The mode that the target has, or is to have when it is a new file.
uint32_t ModeFor(const std::filesystem::path& target)
{
    constexpr uint32_t PrivateMode = 0600;
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(target, error);
    // Not the bits that lend an owner's identity: the new file's owner may be another.
    return std::filesystem::exists(status) ? static_cast<uint32_t>(status.permissions()) & 0777 : PrivateMode;
}

IoStatus WriteAndClose(File& file, std::string_view content, uint32_t mode)
{
    IoStatus status = file.WriteAt(content.data(), content.size(), 0);
    if (status.Ok())
        status = file.SetMode(mode);
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
    if (const IoStatus status = MayReplace(target); !status.Ok())
        return status;
    File file;
    std::filesystem::path temporary;
    IoStatus status = CreateTempFile("eksave", ".tmp", target.parent_path(), 0600, file, temporary);
    if (!status.Ok())
        return status;
    status = WriteAndClose(file, content, ModeFor(target));
    IoStatus synced;
    if (status.Ok())
        status = RenameOver(temporary, target, &synced);
    if (status.Ok())
        return synced;
    (void)RemoveFile(temporary);
    return status;
}

} // namespace ek
