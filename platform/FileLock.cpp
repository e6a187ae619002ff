// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/FileLock.h"
#include "platform/FileCalls.h"

#include <cerrno>
#include <fcntl.h>

namespace ek {

FileLock::FileLock(const std::filesystem::path& path)
{
    constexpr int Flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK;
    m_descriptor = CurrentFileCalls().Open(path.c_str(), Flags, 0600);
    int result = m_descriptor;
    while (result != -1 && (result = CurrentFileCalls().Lock(m_descriptor)) == -1 && errno == EINTR)
        result = m_descriptor;
    if (result == -1)
        m_status = IoStatus(errno);
}

FileLock::~FileLock()
{
    if (m_descriptor != -1)
        CurrentFileCalls().Close(m_descriptor);
}

} // namespace ek
