// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "waveview/LaneDrawing.h"

#include <QColor>

namespace ek {

/// The colours that the view's panels draw with.
struct ViewColors {
    QColor Wave;
    QColor FullScaleLines; ///< also the zero line
    QColor WaveBackground;
    QColor Workspace; ///< right of the data, and without a sound
    QColor PositionSelection;
    QColor PanelLines;
    QColor Gradient1;
    QColor Gradient2;
    QColor Face; ///< of scroll bars and labels

    static ViewColors FromSkin();
    LaneColors OfLane() const { return {Wave.rgb(), FullScaleLines.rgb(), WaveBackground.rgb()}; }
    bool operator==(const ViewColors&) const = default;
};

} // namespace ek
