// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/WaveGeometry.h"

#include <algorithm>
#include <bit>

namespace ek {

namespace {

constexpr uint32_t AutoScrollColumns = 10;

int64_t Signed(uint64_t value)
{
    return static_cast<int64_t>(value);
}

} // namespace

int64_t WaveGeometry::FrameToX(uint64_t frame) const
{
    return Signed(frame - FirstVisibleFrame) / FramesPerPixel + WavePanelLeft;
}

uint64_t WaveGeometry::XToFrame(int64_t x) const
{
    return static_cast<uint64_t>(
        std::max<int64_t>(0, (x - WavePanelLeft) * int64_t{FramesPerPixel} + Signed(FirstVisibleFrame)));
}

std::pair<uint64_t, uint64_t> WaveGeometry::OrderedSelection() const
{
    return std::minmax(SelectionStart, SelectionEnd);
}

void WaveGeometry::SetLength(uint64_t frames)
{
    Length = frames;
    SelectionStart = std::min(SelectionStart, frames);
    SelectionEnd = std::min(SelectionEnd, frames);
    if (CursorFrame != NoFrame)
        CursorFrame = std::min(CursorFrame, frames);
}

void WaveGeometry::BeginSelection(int64_t x)
{
    SelectionStart = std::min(XToFrame(x), Length);
    DragSelectionTo(SelectionStart);
}

void WaveGeometry::ExtendSelection(int64_t x)
{
    const uint64_t frame = std::min(XToFrame(x), Length);
    const auto [start, end] = OrderedSelection();
    if (HasSelection())
        SelectionStart = frame < start + (end - start) / 2 ? end : start;
    else
        SelectionStart = CursorFrame != NoFrame ? CursorFrame : frame;
    DragSelectionTo(frame);
}

void WaveGeometry::DragSelection(int64_t x)
{
    const int64_t inside = std::clamp(x, WavePanelLeft, WavePanelLeft + std::max<int64_t>(0, WavePanelWidth));
    DragSelectionTo(std::min({XToFrame(inside), FirstVisibleFrame + Span(), Length}));
}

uint64_t WaveGeometry::Span() const
{
    return WavePanelWidth > 0 ? static_cast<uint64_t>(WavePanelWidth) * FramesPerPixel : 0;
}

uint64_t WaveGeometry::ColumnCount() const
{
    return Length / FramesPerPixel + (Length % FramesPerPixel != 0);
}

uint64_t WaveGeometry::MaxPosition() const
{
    const uint64_t width = WavePanelWidth > 0 ? static_cast<uint64_t>(WavePanelWidth) : 0;
    const uint64_t columns = ColumnCount();
    return columns > width ? columns - width : 0;
}

void WaveGeometry::SetPosition(uint64_t column)
{
    FirstVisibleFrame = std::min(column, MaxPosition()) * FramesPerPixel;
}

void WaveGeometry::ScrollBy(int64_t columns)
{
    if (IsUsable())
        SetPosition(static_cast<uint64_t>(std::max<int64_t>(0, Signed(Position()) + columns)));
}

uint64_t WaveGeometry::LineStep() const
{
    const int64_t step = WavePanelWidth / 20;
    return step >= 2 ? static_cast<uint64_t>(step) : 1;
}

void WaveGeometry::MoveFirst(int64_t frames)
{
    FirstVisibleFrame = static_cast<uint64_t>(std::max<int64_t>(0, Signed(FirstVisibleFrame) + frames));
}

bool WaveGeometry::ZoomInOnce(std::optional<int64_t> anchorX)
{
    if (FramesPerPixel < 2)
        return false;
    if (anchorX)
        MoveFirst((*anchorX - WavePanelLeft + 1) * int64_t{FramesPerPixel} / 2);
    FramesPerPixel /= 2;
    return true;
}

bool WaveGeometry::ZoomOutOnce(std::optional<int64_t> anchorX)
{
    if (Span() > Length || FramesPerPixel >= MaxFramesPerPixel)
        return false;
    if (anchorX)
        MoveFirst(-(*anchorX - WavePanelLeft + 1) * int64_t{FramesPerPixel});
    FramesPerPixel *= 2;
    return true;
}

void WaveGeometry::ZoomBySteps(int steps, std::optional<int64_t> anchorX)
{
    if (!IsUsable())
        return;
    if (steps > 0) {
        while (steps-- > 0 && ZoomOutOnce(anchorX)) {
        }
    } else {
        while (steps++ < 0 && ZoomInOnce(anchorX)) {
        }
        if (FirstVisibleFrame + Span() > Length)
            FirstVisibleFrame = Length > Span() ? Length - Span() : 0;
    }
    Align();
}

void WaveGeometry::SetZoomRatio(uint32_t framesPerPixel)
{
    if (!IsUsable())
        return;
    FramesPerPixel = framesPerPixel;
    Align();
}

bool WaveGeometry::OffersRatio(uint32_t framesPerPixel) const
{
    return IsUsable() && static_cast<uint64_t>(WavePanelWidth) * framesPerPixel / 2 <= Length;
}

void WaveGeometry::ZoomToShow(uint64_t frames)
{
    const int bits = std::bit_width(frames / static_cast<uint64_t>(WavePanelWidth));
    FramesPerPixel = bits < 31 ? uint32_t{1} << bits : MaxFramesPerPixel;
}

void WaveGeometry::ZoomFull()
{
    if (!IsUsable())
        return;
    ZoomToShow(Length);
    Align();
}

void WaveGeometry::FitSelection()
{
    if (!IsUsable() || !HasSelection())
        return;
    const auto [start, end] = OrderedSelection();
    ZoomToShow(end - start);
    const int64_t span = Signed(Span());
    int64_t first = std::max<int64_t>(0, Signed(start) - (span - Signed(end - start)) / 2);
    if (first + span >= Signed(Length))
        first = std::max<int64_t>(0, Signed(Length) - span - 1);
    FirstVisibleFrame = static_cast<uint64_t>(first);
    Align();
}

bool WaveGeometry::EnsureCursorVisible(bool follow)
{
    const uint64_t span = Span();
    if (!IsUsable() || CursorFrame == NoFrame || Length <= span)
        return false;
    const uint64_t visible = follow ? span / 2 : span;
    if (CursorFrame >= FirstVisibleFrame && CursorFrame < FirstVisibleFrame + visible)
        return false;
    const int64_t left = Signed(CursorFrame) - WavePanelWidth * int64_t{FramesPerPixel / 2};
    const uint64_t before = FirstVisibleFrame;
    FirstVisibleFrame = static_cast<uint64_t>(std::clamp<int64_t>(left, 0, Signed(Length - span)));
    Align();
    return FirstVisibleFrame != before;
}

void WaveGeometry::TrackPlayback(uint64_t from, uint64_t to)
{
    const double span = static_cast<double>(Span());
    const double oldOffset = static_cast<double>(Signed(from - FirstVisibleFrame));
    const double newOffset = static_cast<double>(Signed(to - FirstVisibleFrame));
    if (oldOffset <= 0.55 * span && newOffset >= 0.45 * span)
        FollowPlayback = true;
}

std::optional<uint64_t> WaveGeometry::AutoScroll(int64_t x)
{
    const uint64_t span = Span();
    if (!IsUsable() || span >= Length)
        return std::nullopt;
    const int64_t step = int64_t{AutoScrollColumns} * FramesPerPixel;
    if (x < WavePanelLeft) {
        MoveFirst(-step);
        Align();
        return FirstVisibleFrame;
    }
    if (x < WavePanelLeft + WavePanelWidth)
        return std::nullopt;
    MoveFirst(step);
    FirstVisibleFrame = std::min(FirstVisibleFrame, Length - span + 1);
    const uint64_t end = FirstVisibleFrame + span - 1;
    Align();
    return end;
}

} // namespace ek
