// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/FileLock.h"
#include "platform/FileCalls.h"

#include <cerrno>
#include <fcntl.h>

namespace ek {

FileLock::FileLock(const std::filesystem::path& path)
    : m_descriptor(CurrentFileCalls().Open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600))
{
    while (m_descriptor != -1 && CurrentFileCalls().Lock(m_descriptor) == -1 && errno == EINTR) {
    }
}

FileLock::~FileLock()
{
    if (m_descriptor != -1)
        CurrentFileCalls().Close(m_descriptor);
}

} // namespace ek
