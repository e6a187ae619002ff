// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/SpaceRelease.h"

#include <atomic>
#include <condition_variable>
#include <exception>
#include <fcntl.h>
#include <mutex>
#include <thread>
#include <unistd.h>
#include <vector>

namespace ek {

namespace {

/// Closes descriptors on its thread. Those of one moment are few; more than that the caller closes.
class Closer {
public:
    Closer()
    {
        m_descriptors.reserve(MostWaiting);
        m_taken.reserve(MostWaiting);
    }

    void Take(int descriptor)
    {
        if (!Enqueue(descriptor))
            ::close(descriptor);
    }

    uint64_t Closed() const { return m_closed; }

    uint64_t AwaitClosed()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_descriptors.empty() && !m_closing; });
        return m_closed;
    }

    /// Closes what is waiting and ends the thread. What is taken afterwards the caller closes.
    void Stop()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_stop = true;
        }
        m_changed.notify_all();
        if (m_thread.joinable())
            m_thread.join();
    }

private:
    static constexpr size_t MostWaiting = 64;

    bool Enqueue(int descriptor)
    {
        const std::lock_guard lock(m_mutex);
        if (m_stop || m_descriptors.size() == MostWaiting || !Start())
            return false;
        m_descriptors.push_back(descriptor);
        m_changed.notify_all();
        return true;
    }

    bool Start()
    {
        try {
            if (!m_thread.joinable())
                m_thread = std::thread([this] { Run(); });
            return true;
        } catch (const std::exception&) {
            return false;
        }
    }

    void Run()
    {
        std::unique_lock lock(m_mutex);
        while (!m_stop || !m_descriptors.empty()) {
            m_changed.wait(lock, [this] { return m_stop || !m_descriptors.empty(); });
            m_taken.swap(m_descriptors);
            m_closing = true;
            lock.unlock();
            for (const int descriptor : m_taken)
                ::close(descriptor);
            m_closed += m_taken.size();
            m_taken.clear();
            lock.lock();
            m_closing = false;
            m_changed.notify_all();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<int> m_descriptors;
    std::vector<int> m_taken; ///< the thread's own
    bool m_closing = false;
    bool m_stop = false;
    std::atomic<uint64_t> m_closed = 0;
    std::thread m_thread;
};

/// Never destroyed: objects that go after it at the end of the program may still delete files.
union Undying {
    Undying() : Object() {}
    ~Undying() {}
    Closer Object;
};

Closer& TheCloser()
{
    static Undying closer;
    return closer.Object;
}

/// A thread must not outlast its code, which goes at the end of the program or when the library is unloaded.
struct StopAtEnd {
    ~StopAtEnd() { TheCloser().Stop(); }
};
const StopAtEnd g_stopAtEnd;

} // namespace

uint64_t ReleasedSpaces()
{
    return TheCloser().Closed();
}

uint64_t AwaitReleasedSpaces()
{
    return TheCloser().AwaitClosed();
}

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
