// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <thread>

namespace ek {

/// Fills page-sized buffers in order on a thread of its own, a few ahead of the one who takes them.
class PageReadAhead {
public:
    /// Fills a buffer of PageCache::PageSize bytes and returns how many it filled; fewer end the row. Called on
    /// the thread of the read-ahead only.
    using Fill = std::function<uint64_t(uint8_t* page)>;

    explicit PageReadAhead(Fill fill);
    ~PageReadAhead(); ///< waits for the page in hand
    PageReadAhead(const PageReadAhead&) = delete;
    PageReadAhead& operator=(const PageReadAhead&) = delete;

    /// Waits for the next page; its bytes are valid until the next call. Behind the last page: empty. Throws what the
    /// filling threw.
    std::span<const uint8_t> Next();

private:
    static constexpr uint64_t BufferCount = 3;

    void Run();
    bool WaitForBuffer();
    uint64_t FillGuarded(uint8_t* page);
    void Publish(uint64_t length);

    struct Page {
        std::unique_ptr<uint8_t[]> Bytes;
        uint64_t Length = 0;
    };
    Fill m_fill;
    std::array<Page, BufferCount> m_ring;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    uint64_t m_filled = 0; ///< pages that the thread has finished
    uint64_t m_taken = 0;  ///< pages that were handed out; the last of them is still in use
    bool m_ended = false;
    std::exception_ptr m_error; ///< of the filling
    bool m_stop = false;
    std::thread m_thread;
};

} // namespace ek
