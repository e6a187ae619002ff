// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/SpaceRelease.h"

#include <condition_variable>
#include <fcntl.h>
#include <mutex>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace ek {

namespace {

/// Closes descriptors on its thread. Those of one moment are few; more than that the caller closes.
class Closer {
public:
    Closer() { m_descriptors.reserve(MostWaiting); }
    ~Closer()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_stop = true;
        }
        m_changed.notify_one();
        if (m_thread.joinable())
            m_thread.join();
    }
    Closer(const Closer&) = delete;
    Closer& operator=(const Closer&) = delete;

    void Take(int descriptor)
    {
        if (!Enqueue(descriptor))
            ::close(descriptor);
    }

private:
    static constexpr size_t MostWaiting = 64;

    bool Enqueue(int descriptor)
    {
        const std::lock_guard lock(m_mutex);
        if (m_stop || m_descriptors.size() == MostWaiting || !Start())
            return false;
        m_descriptors.push_back(descriptor);
        m_changed.notify_one();
        return true;
    }

    bool Start()
    {
        try {
            if (!m_thread.joinable())
                m_thread = std::thread([this] { Run(); });
            return true;
        } catch (const std::system_error&) {
            return false;
        }
    }

    void Run()
    {
        std::vector<int> taken;
        taken.reserve(MostWaiting);
        std::unique_lock lock(m_mutex);
        while (!m_stop || !m_descriptors.empty()) {
            m_changed.wait(lock, [this] { return m_stop || !m_descriptors.empty(); });
            taken.swap(m_descriptors);
            lock.unlock();
            for (const int descriptor : taken)
                ::close(descriptor);
            taken.clear();
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<int> m_descriptors;
    bool m_stop = false;
    std::thread m_thread;
};

Closer& TheCloser()
{
    static Closer closer;
    return closer;
}

} // namespace

DeferredSpaceRelease::DeferredSpaceRelease(const File& file)
    : m_descriptor(file.IsOpen() ? ::fcntl(file.Descriptor(), F_DUPFD_CLOEXEC, 0) : -1)
{
}

DeferredSpaceRelease::~DeferredSpaceRelease()
{
    if (m_descriptor >= 0)
        TheCloser().Take(m_descriptor);
}

} // namespace ek
