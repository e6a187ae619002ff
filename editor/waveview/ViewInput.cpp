// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ViewInput.h"

#include "servicefuncs/SoundData.h"

#include <algorithm>

namespace ek {

void CViewInput::Start(const WAVEFORMATEXTENSIBLE& format, const PlayRange& range, uint64_t frame, uint32_t now)
{
    m_format = format;
    {
        const std::lock_guard lock(m_mutex);
        m_drained = m_failed = false;
    }
    JumpTo(range, frame, now);
}

bool CViewInput::JumpTo(const PlayRange& range, uint64_t frame, uint32_t now)
{
    const std::lock_guard lock(m_mutex);
    m_range = range;
    m_place = frame;
    m_heard.Clear();
    m_heard.Push(now, frame);
    return !m_drained;
}

void CViewInput::SetChannel(ChannelCode code)
{
    const std::lock_guard lock(m_mutex);
    m_channel = code;
}

uint64_t CViewInput::HeardFrame(uint32_t now) const
{
    const std::lock_guard lock(m_mutex);
    return FrameAtPlace(m_heard.FrameAt(now));
}

void CViewInput::Delay(uint32_t milliseconds)
{
    const std::lock_guard lock(m_mutex);
    m_heard.Delay(milliseconds);
}

bool CViewInput::HasFailed() const
{
    const std::lock_guard lock(m_mutex);
    return m_failed;
}

uint32_t CViewInput::Progress(uint64_t frame, uint32_t fullScale) const
{
    const std::lock_guard lock(m_mutex);
    if (m_range.End <= m_range.Start)
        return 0;
    const auto inside = static_cast<double>(std::clamp(frame, m_range.Start, m_range.End) - m_range.Start);
    return static_cast<uint32_t>(fullScale * inside / static_cast<double>(m_range.End - m_range.Start));
}

void CViewInput::BeginRequest(uint32_t stamp, uint32_t heldBack)
{
    const std::lock_guard lock(m_mutex);
    m_stamp = stamp;
    m_requestOffset = heldBack;
}

uint32_t CViewInput::GetData(_SOUNDDATAEX_* sound)
{
    m_buffer.resize(size_t{sound->FrameCount} * m_format.nBlockAlign);
    uint32_t filled = 0;
    while (filled < sound->FrameCount) {
        const Piece piece = TakePiece(sound->FrameCount - filled);
        if (piece.Count == 0)
            break;
        if (!ReadPiece(piece, filled)) {
            Fail();
            break;
        }
        filled += piece.Count;
    }
    MME2SD_BYSAMPLES(m_buffer.data(), filled, *sound, m_format, 0, -1);
    Silence(*sound);
    return filled;
}

CViewInput::Piece CViewInput::TakePiece(uint32_t most)
{
    const bool loops = m_player && m_player->IsLoop();
    const std::lock_guard lock(m_mutex);
    if (m_drained)
        return {};
    MarkPlace();
    uint64_t frame = FrameAtPlace(m_place);
    if (frame >= m_range.End) {
        m_drained = !loops || m_range.Start >= m_range.End;
        if (m_drained)
            return {};
        frame = m_range.Start;
    }
    const Piece piece{frame, static_cast<uint32_t>(std::min<uint64_t>(most, m_range.End - frame))};
    m_place += piece.Count;
    m_requestOffset += piece.Count;
    return piece;
}

/// The end of a round counts as the range's end, not as the beginning of the next one.
uint64_t CViewInput::FrameAtPlace(uint64_t place) const
{
    if (place <= m_range.End || m_range.Start >= m_range.End)
        return place;
    return m_range.Start + 1 + (place - m_range.End - 1) % (m_range.End - m_range.Start);
}

bool CViewInput::ReadPiece(const Piece& piece, uint32_t at)
{
    const uint64_t frameBytes = m_format.nBlockAlign;
    return m_frames.ReadData(m_buffer.data() + at * frameBytes, piece.Frame * frameBytes, piece.Count * frameBytes);
}

void CViewInput::MarkPlace()
{
    const uint64_t milliseconds = m_requestOffset * 1000 / std::max(m_format.nSamplesPerSec, 1U);
    m_heard.Push(m_stamp + static_cast<uint32_t>(milliseconds), m_place);
}

void CViewInput::Silence(_SOUNDDATAEX_& sound) const
{
    ChannelCode code;
    {
        const std::lock_guard lock(m_mutex);
        code = m_channel;
    }
    const uint32_t heard = GetIndexByChannel(m_format, code);
    for (uint32_t i = 0; code != ChannelAll && i < sound.ChannelCount; ++i) {
        if (i != heard)
            std::fill_n(sound.Channels[i], sound.FrameCount, 0.0F);
    }
}

void CViewInput::Fail()
{
    const std::lock_guard lock(m_mutex);
    m_drained = m_failed = true;
}

} // namespace ek
