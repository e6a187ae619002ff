// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace ek {

/// Objects behind numbers that callers hold; 0 is none. Any thread; an object itself is used by one at a time.
template <typename Object>
class HandleTable {
public:
    uint32_t Add(std::unique_ptr<Object> object)
    {
        if (!object)
            return 0;
        const std::lock_guard lock(m_mutex);
        while (m_next == 0 || m_objects.contains(m_next))
            ++m_next;
        m_objects[m_next] = std::move(object);
        return m_next++;
    }

    /// Null for a number that is not in use.
    Object* Find(uint32_t handle)
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_objects.find(handle);
        return found == m_objects.end() ? nullptr : found->second.get();
    }

    std::unique_ptr<Object> Take(uint32_t handle)
    {
        const std::lock_guard lock(m_mutex);
        auto node = m_objects.extract(handle);
        return node ? std::move(node.mapped()) : nullptr;
    }

private:
    std::mutex m_mutex;
    std::map<uint32_t, std::unique_ptr<Object>> m_objects;
    uint32_t m_next = 1;
};

} // namespace ek
