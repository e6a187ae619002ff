// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "storage/WaveData.h"

#include <sys/stat.h>

namespace ek::bench {

void MeasureTempSpace(Bench& bench)
{
    CWaveData store;
    if (!store.OpenFile(bench.Sound()))
        Fail("cannot open the sound");
    uint64_t bytes = 0;
    for (const TempFileEntry& entry : store.TempFiles()) {
        struct stat status {};
        stat(entry.Name.c_str(), &status);
        bytes += static_cast<uint64_t>(status.st_blocks) * 512;
    }
    bench.Report("temporary disk space / bytes of sound",
                 static_cast<double>(bytes) / static_cast<double>(store.ByteLength()), 1.01);
}

} // namespace ek::bench
