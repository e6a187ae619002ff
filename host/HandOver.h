// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ek {

/// What a second start sends to the running editor: the word "open", then the absolute path of each file, every
/// field ended by a zero byte, which no file name can hold. Without files the editor only comes to the front.
std::string EncodeHandOver(const std::vector<std::filesystem::path>& files);

/// No value when the text is not such a message, or is cut off, or holds a path that is not absolute.
std::optional<std::vector<std::filesystem::path>> DecodeHandOver(std::string_view text);

/// The socket of the editor that runs for this user on this display. Empty when no folder can be had that is
/// this user's alone.
std::filesystem::path HandOverSocket();

enum class HandOverResult {
    Nobody,   ///< nobody listens at the socket
    Accepted, ///< the editor that listens has the files
    NoAnswer  ///< somebody listens, but refuses or does not answer in time; the place is taken
};

/// Sends the files to the editor that listens at the socket.
HandOverResult SendHandOver(const std::filesystem::path& socket, const std::vector<std::filesystem::path>& files);

/// The listening end of a socket; its file goes with it, unless another socket has taken the place.
class HandOverListener {
public:
    HandOverListener() = default;
    ~HandOverListener() { Close(); }
    HandOverListener(const HandOverListener&) = delete;
    HandOverListener& operator=(const HandOverListener&) = delete;

    /// Takes the place of a socket that nobody listens at any more. False when that fails.
    bool Listen(const std::filesystem::path& socket);
    void Close();
    int Descriptor() const { return m_descriptor; } ///< negative while not listening

    /// The next sender that waits, or -1: nobody, or another user's process. The caller owns the descriptor.
    int Accept() const;

private:
    bool IsOwnFile() const;

    int m_descriptor = -1;
    uint64_t m_device = 0; ///< with the number, which file is the own one
    uint64_t m_fileNumber = 0;
    std::filesystem::path m_path;
};

enum class StartKind {
    First,     ///< no editor has taken the files; the listener listens if the place was free
    HandedOver ///< the running editor has the files
};

/// Decides between the two so that of several editors started at once exactly one is the first. Where the running
/// editor gives no answer or the listener cannot listen, this is a first start too, one that hears of no others.
StartKind JoinRunningEditor(const std::filesystem::path& socket, const std::vector<std::filesystem::path>& files,
                            HandOverListener& listener);

} // namespace ek
