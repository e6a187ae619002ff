// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/SaveTarget.h"

#include <cerrno>
#include <system_error>

namespace ek {

std::filesystem::path FollowLinks(const std::filesystem::path& path)
{
    constexpr int LinkLimit = 40; // as the system's; a longer way is a circle, which no open will follow
    std::error_code error;
    std::filesystem::path target = std::filesystem::absolute(path, error);
    for (int links = 0; links < LinkLimit && std::filesystem::is_symlink(target, error); ++links)
        target = target.parent_path() / std::filesystem::read_symlink(target, error);
    return target;
}

IoStatus MayReplace(const std::filesystem::path& target)
{
    File file;
    const IoStatus opened = file.Open(target, File::Access::ReadWrite);
    if (!opened.Ok())
        return opened.Errno() == ENOENT ? IoStatus() : opened;
    return file.Close();
}

} // namespace ek
