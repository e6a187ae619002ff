// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

/// A file in memory that holds the fuzzer's input and can be opened by its path.
class InputFile {
public:
    InputFile(const uint8_t* data, size_t size) : m_descriptor(memfd_create("input", MFD_CLOEXEC))
    {
        if (m_descriptor < 0 || write(m_descriptor, data, size) != static_cast<ssize_t>(size))
            std::abort();
    }
    ~InputFile() { close(m_descriptor); }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    std::filesystem::path Path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

private:
    int m_descriptor;
};
