// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/File.h"
#include "platform/FileCalls.h"
#include "platform/SpaceRelease.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/resource.h>
#include <system_error>
#include <utility>
#include <vector>

namespace ek {

namespace {

// One transfer of the system moves less than 2 GiB.
constexpr uint64_t MaxTransfer = uint64_t{1} << 30;
constexpr uint32_t PermissionBits = 0777; // not those that lend the identity of an owner who may be another now
constexpr size_t CopyBufferBytes = size_t{1} << 20;

template <typename Call>
auto Retried(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

bool IsWantOfRoom(int error)
{
    return error == ENOSPC || error == EDQUOT || error == EMFILE;
}

/// A deleted file may hold its space and its descriptor for a moment still, which must not be what a call fails for.
template <typename Call>
auto WithRoom(Call call)
{
    const uint64_t released = ReleasedSpaces();
    auto result = Retried(call);
    if (result != -1 || !IsWantOfRoom(errno))
        return result;
    const int error = errno;
    if (AwaitReleasedSpaces() != released)
        return Retried(call);
    errno = error;
    return result;
}

template <typename Result>
IoStatus StatusOf(Result result)
{
    return result == -1 ? IoStatus(errno) : IoStatus();
}

bool FitsOffset(uint64_t value)
{
    return value <= static_cast<uint64_t>(std::numeric_limits<off_t>::max());
}

IoStatus OpenDescriptor(const std::filesystem::path& path, int flags, mode_t mode, int& descriptor)
{
    descriptor = WithRoom([&] { return CurrentFileCalls().Open(path.c_str(), flags | O_CLOEXEC, mode); });
    return StatusOf(descriptor);
}

IoStatus CloseDescriptor(int descriptor)
{
    // The descriptor is gone even when a signal interrupted the call; closing again could hit another file.
    if (CurrentFileCalls().Close(descriptor) == -1 && errno != EINTR)
        return IoStatus(errno);
    return {};
}

IoStatus CheckRegular(int descriptor)
{
    struct stat status {};
    if (CurrentFileCalls().FStat(descriptor, &status) == -1)
        return IoStatus(errno);
    if (S_ISREG(status.st_mode))
        return {};
    return IoStatus(S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
}

/// Copies inside the kernel from the current offsets on, as far as that goes.
IoStatus CopyInKernel(int from, int to, uint64_t& done)
{
    for (;;) {
        const ssize_t copied = WithRoom([&] { return CurrentFileCalls().CopyRange(from, to, MaxTransfer); });
        if (copied == 0)
            return {};
        if (copied > 0) {
            done += static_cast<uint64_t>(copied);
            continue;
        }
        const int error = errno;
        const bool unsupported = error == EXDEV || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP;
        return unsupported ? IoStatus() : IoStatus(error);
    }
}

IoStatus CopyByHand(const File& from, File& to, uint64_t position)
{
    std::vector<char> buffer(CopyBufferBytes);
    for (;;) {
        uint64_t done = 0;
        if (const IoStatus status = from.ReadAt(buffer.data(), buffer.size(), position, done); !status.Ok())
            return status;
        if (done == 0)
            return {};
        if (const IoStatus status = to.WriteAt(buffer.data(), done, position); !status.Ok())
            return status;
        position += done;
    }
}

IoStatus CopyContent(const File& from, File& to)
{
    uint64_t done = 0;
    if (const IoStatus status = CopyInKernel(from.Descriptor(), to.Descriptor(), done); !status.Ok())
        return status;
    // Some file systems report an early end to the kernel's copy, so the end of the file is always found by reading.
    return CopyByHand(from, to, done);
}

IoStatus SyncFolder(int descriptor)
{
    // Not every file system can sync a folder; those that cannot say EINVAL.
    if (Retried([&] { return CurrentFileCalls().FSync(descriptor); }) == -1 && errno != EINVAL)
        return IoStatus(errno);
    return {};
}

IoStatus FirstError(IoStatus first, IoStatus second)
{
    return first.Ok() ? second : first;
}

} // namespace

std::string IoStatus::Text() const
{
    return std::generic_category().message(m_errno);
}

File::~File()
{
    (void)Close();
}

File::File(File&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

File& File::operator=(File&& other) noexcept
{
    if (this != &other) {
        (void)Close();
        m_descriptor = std::exchange(other.m_descriptor, -1);
    }
    return *this;
}

IoStatus File::Open(const std::filesystem::path& path, Access access)
{
    (void)Close();
    // A pipe without a writer would hold the program up; for a regular file the flag has no meaning.
    const int flags = (access == Access::Read ? O_RDONLY : O_RDWR) | O_NONBLOCK;
    IoStatus status = OpenDescriptor(path, flags, 0, m_descriptor);
    if (status.Ok())
        status = CheckRegular(m_descriptor);
    if (!status.Ok())
        (void)Close();
    return status;
}

IoStatus File::CreateNew(const std::filesystem::path& path, uint32_t mode)
{
    (void)Close();
    return OpenDescriptor(path, O_RDWR | O_CREAT | O_EXCL, static_cast<mode_t>(mode), m_descriptor);
}

IoStatus File::Close()
{
    return IsOpen() ? CloseDescriptor(std::exchange(m_descriptor, -1)) : IoStatus();
}

IoStatus File::ReadAt(void* buffer, uint64_t length, uint64_t position, uint64_t& done) const
{
    done = 0;
    while (done < length) {
        const auto part = static_cast<size_t>(std::min(length - done, MaxTransfer));
        char* const place = static_cast<char*>(buffer) + done;
        const auto offset = static_cast<off_t>(position + done);
        const ssize_t got = Retried([&] { return CurrentFileCalls().PRead(m_descriptor, place, part, offset); });
        if (got == -1)
            return IoStatus(errno);
        if (got == 0)
            break;
        done += static_cast<uint64_t>(got);
    }
    return {};
}

IoStatus File::ReadAllAt(void* buffer, uint64_t length, uint64_t position) const
{
    uint64_t done = 0;
    const IoStatus status = ReadAt(buffer, length, position, done);
    if (!status.Ok())
        return status;
    return done == length ? IoStatus() : IoStatus(EIO);
}

IoStatus File::WriteAt(const void* data, uint64_t length, uint64_t position)
{
    uint64_t done = 0;
    while (done < length) {
        const auto part = static_cast<size_t>(std::min(length - done, MaxTransfer));
        const char* const place = static_cast<const char*>(data) + done;
        const auto offset = static_cast<off_t>(position + done);
        const ssize_t put = WithRoom([&] { return CurrentFileCalls().PWrite(m_descriptor, place, part, offset); });
        if (put == -1)
            return IoStatus(errno);
        if (put == 0)
            return IoStatus(EIO); // no progress and no reason: trying again might never end
        done += static_cast<uint64_t>(put);
    }
    return {};
}

IoStatus File::Resize(uint64_t size)
{
    if (!FitsOffset(size))
        return IoStatus(EFBIG);
    return StatusOf(Retried([&] { return CurrentFileCalls().FTruncate(m_descriptor, static_cast<off_t>(size)); }));
}

IoStatus File::Allocate(uint64_t size)
{
    if (size == 0)
        return {};
    if (!FitsOffset(size))
        return IoStatus(EFBIG);
    return StatusOf(WithRoom([&] {
        errno = CurrentFileCalls().FAllocate(m_descriptor, static_cast<off_t>(size));
        return errno == 0 ? 0 : -1;
    }));
}

IoStatus File::Size(uint64_t& size) const
{
    struct stat status {};
    if (CurrentFileCalls().FStat(m_descriptor, &status) == -1)
        return IoStatus(errno);
    size = static_cast<uint64_t>(status.st_size);
    return {};
}

IoStatus File::Mode(uint32_t& mode) const
{
    struct stat status {};
    if (CurrentFileCalls().FStat(m_descriptor, &status) == -1)
        return IoStatus(errno);
    mode = status.st_mode & PermissionBits;
    return {};
}

IoStatus File::SetMode(uint32_t mode)
{
    return StatusOf(Retried([&] { return CurrentFileCalls().FChMod(m_descriptor, static_cast<mode_t>(mode)); }));
}

IoStatus File::Sync()
{
    return StatusOf(Retried([&] { return CurrentFileCalls().FSync(m_descriptor); }));
}

void File::StartWriteback(uint64_t position, uint64_t length)
{
    CurrentFileCalls().StartWriteback(m_descriptor, static_cast<off_t>(position), static_cast<off_t>(length));
}

IoStatus RemoveFile(const std::filesystem::path& path)
{
    return StatusOf(CurrentFileCalls().Unlink(path.c_str()));
}

IoStatus RenameOver(const std::filesystem::path& from, const std::filesystem::path& to, IoStatus* synced)
{
    // Opened before the rename, so that no failure but that of the sync itself comes after it.
    const std::filesystem::path folder = to.has_parent_path() ? to.parent_path() : std::filesystem::path(".");
    int descriptor = -1;
    const IoStatus opened = OpenDescriptor(folder, O_RDONLY | O_DIRECTORY, 0, descriptor);
    // A folder may be writable without being readable; then only the sync is out of reach.
    if (!opened.Ok() && opened.Errno() != EACCES)
        return opened;
    const IoStatus renamed = StatusOf(CurrentFileCalls().Rename(from.c_str(), to.c_str()));
    IoStatus folderStatus;
    if (opened.Ok()) {
        if (renamed.Ok())
            folderStatus = SyncFolder(descriptor);
        folderStatus = FirstError(folderStatus, CloseDescriptor(descriptor));
    }
    if (synced)
        *synced = folderStatus;
    return renamed;
}

IoStatus CopyFileTo(const std::filesystem::path& from, const std::filesystem::path& to)
{
    File source;
    if (const IoStatus status = source.Open(from, File::Access::Read); !status.Ok())
        return status;
    uint32_t mode = 0;
    if (const IoStatus status = source.Mode(mode); !status.Ok())
        return status;
    std::error_code ignored;
    if (std::filesystem::equivalent(from, to, ignored))
        return IoStatus(EINVAL); // emptying the target would empty the source
    if (const IoStatus status = RemoveFile(to); !status.Ok() && status.Errno() != ENOENT)
        return status;
    File target;
    if (const IoStatus status = target.CreateNew(to); !status.Ok())
        return status;
    IoStatus status = CopyContent(source, target);
    if (status.Ok())
        status = target.SetMode(mode);
    status = FirstError(status, target.Close());
    if (!status.Ok())
        (void)RemoveFile(to);
    return status;
}

bool IsFile(const std::filesystem::path& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

bool IsFolder(const std::filesystem::path& path)
{
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

void RaiseOpenFileLimit()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == -1)
        return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace ek
