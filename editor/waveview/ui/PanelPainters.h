// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "waveview/Lanes.h"
#include "waveview/OverviewStrip.h"
#include "waveview/ui/ViewColors.h"

#include <QPainter>

#include <span>
#include <vector>

namespace ek {

// The drawing of the panels. The painter's unit is a device pixel; only what its clip leaves open is computed.

inline QRect ToQRect(const Rect& rect)
{
    return {rect.Left, rect.Top, rect.Width(), rect.Height()};
}

/// Everything that the wave panel shows, as plain data.
struct WavePicture {
    WAVEFORMATEXTENSIBLE Format;
    uint32_t FirstChannel = 0;
    std::vector<std::span<const PeakPair>> Lanes; ///< the columns of each lane from the top on; none: no sound
    uint32_t AmplitudeScale = 100;
    int VerticalOffset = 0;
    int Margin = 5;             ///< see LanePicture
    int64_t SelectionLeft = -1; ///< offsets from the panel's left edge, half-open; both -1: no selection
    int64_t SelectionRight = -1;
    ChannelCode SelectionChannel = ChannelAll;
    int64_t CursorOffset = -1; ///< from the panel's left edge; it may lie outside the panel
    bool CursorLit = false;    ///< the cursor blinks
};

/// The lanes with waveform, selection and cursor; the workspace colour where there is no sound. Draws nothing in a
/// rectangle less than 3 pixels high or wide.
void DrawWave(QPainter& painter, const Rect& panel, const ViewColors& colors, const WavePicture& picture);

/// The rectangle that the lit cursor inverts; empty when the cursor is outside the panel or on a hidden channel.
Rect CursorRect(const Rect& panel, const WavePicture& picture);

/// The strip that stands for the whole sound, with the box of the visible range and the cursor.
void DrawOverview(QPainter& painter, const OverviewStrip& strip, const ViewColors& colors,
                  const WaveGeometry& geometry);

} // namespace ek
