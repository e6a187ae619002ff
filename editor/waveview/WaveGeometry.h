// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "servicefuncs/Channels.h"

#include <cstdint>
#include <optional>
#include <tuple>
#include <utility>

namespace ek {

/// What a view shows of a sound: its horizontal zoom and position, the selection and the cursor, and every conversion
/// between frames and pixel columns. x is in device pixels of the view.
///
/// Nothing is zoomed or scrolled while there is no sound (Length 0) or no room (WavePanelWidth below 1). After each
/// operation that zooms or scrolls, FirstVisibleFrame is a multiple of FramesPerPixel and the last column of the
/// sound is not left of the panel's right edge unless the whole sound fits.
struct WaveGeometry {
    static constexpr uint64_t NoFrame = ~uint64_t{0};
    static constexpr uint32_t MaxFramesPerPixel = uint32_t{1} << 31;

    uint64_t Length = 0; ///< frames; 0 also while the document is not ready
    int64_t WavePanelLeft = 0;
    int64_t WavePanelWidth = 0;

    uint64_t FirstVisibleFrame = 0; ///< at the left edge of the wave panel
    uint32_t FramesPerPixel = 1;    ///< a power of two
    uint64_t SelectionStart = 0;    ///< equal ends: no selection; unordered while the mouse drags
    uint64_t SelectionEnd = 0;
    ChannelCode SelectionChannel = ChannelAll;
    uint64_t CursorFrame = NoFrame;
    bool FollowPlayback = false; ///< the view moves with the playing cursor

    /// x of a frame, rounded toward the panel's left edge; also for frames that are not visible.
    int64_t FrameToX(uint64_t frame) const;
    /// First frame of the column at x, also right of the panel or beyond the end; 0 for columns before the sound.
    uint64_t XToFrame(int64_t x) const;

    bool HasSelection() const { return SelectionStart != SelectionEnd; }
    std::pair<uint64_t, uint64_t> OrderedSelection() const;
    uint64_t Span() const; ///< frames that fit in the panel
    /// Another length: what lay beyond the new end moves to it.
    void SetLength(uint64_t frames);

    // Selecting with the mouse at x. The cursor is where the pointer is; the ends are put in order when the button is
    // released.
    void BeginSelection(int64_t x);
    /// Starts at the farther end of the selection that there is, else at the cursor, else as BeginSelection.
    void ExtendSelection(int64_t x);
    void DragSelection(int64_t x); ///< x beyond the panel counts as its edge
    void DragSelectionTo(uint64_t frame) { SelectionEnd = CursorFrame = frame; }
    void OrderSelection() { std::tie(SelectionStart, SelectionEnd) = OrderedSelection(); }

    // Position in columns, as a scroll bar shows it.
    uint64_t ColumnCount() const; ///< of the whole sound
    uint64_t MaxPosition() const; ///< 0 when all columns fit
    uint64_t Position() const { return FirstVisibleFrame / FramesPerPixel; }
    void SetPosition(uint64_t column); ///< clamped to 0 .. MaxPosition()
    void ScrollBy(int64_t columns);
    uint64_t LineStep() const;
    /// Brings FirstVisibleFrame to a whole column inside the sound.
    void Align() { SetPosition(Position()); }

    // Zoom.
    bool CanZoomIn() const { return FramesPerPixel > 1; }
    bool CanZoomOut() const { return Length > 0 && Span() <= Length; }
    /// Halves (steps below 0) or doubles FramesPerPixel once a step, as far as that is possible; the frame at the
    /// anchor, when there is one, stays about where it is.
    void ZoomBySteps(int steps, std::optional<int64_t> anchorX);
    void SetZoomRatio(uint32_t framesPerPixel);
    /// Whether a choice of ratios offers this one: the sound would fill half of the panel at least.
    bool OffersRatio(uint32_t framesPerPixel) const;
    void ZoomFull();
    void FitSelection();

    /// Scrolls so that the cursor is visible, or with `follow` in the left half; true when the view moved.
    bool EnsureCursorVisible(bool follow);
    /// Starts following when the playing cursor passes the middle on its way from one frame to the other.
    void TrackPlayback(uint64_t from, uint64_t to);
    /// One step of scrolling while the mouse at x drags a selection beyond an edge: the frame that the selection then
    /// ends at; none when the pointer is inside or everything fits.
    std::optional<uint64_t> AutoScroll(int64_t x);

private:
    bool IsUsable() const { return Length > 0 && WavePanelWidth > 0; }
    bool ZoomInOnce(std::optional<int64_t> anchorX);
    bool ZoomOutOnce(std::optional<int64_t> anchorX);
    void MoveFirst(int64_t frames);
    void ZoomToShow(uint64_t frames);
};

} // namespace ek
