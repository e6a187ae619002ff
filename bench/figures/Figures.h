// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Bench.h"

namespace ek::bench {

// One function for each figure, or for figures that share a costly preparation; each in its own file.

void MeasureMemory(Bench& bench); ///< of ekbatch
void MeasureWindow(Bench& bench);
void MeasureOpen(Bench& bench);
void MeasureSave(Bench& bench);
void MeasurePeaks(Bench& bench);
void MeasureEdits(Bench& bench); ///< speed, and memory of ekbatch
void MeasureTempSpace(Bench& bench);
void MeasureLongSound(Bench& bench); ///< whether cost per hour stays flat
void MeasureColumns(Bench& bench);
void MeasurePlay(Bench& bench); ///< latency and load of playing
void MeasureDsp(Bench& bench);  ///< transforms and the sample-rate converter

} // namespace ek::bench
