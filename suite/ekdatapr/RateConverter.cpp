// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/RateConverter.h"

#include <soxr.h>

namespace ek {

namespace {

// Beyond this the converter's inner buffers for one frame of input grow to gigabytes.
constexpr uint64_t MaxRatio = 200000;

} // namespace

std::unique_ptr<RateConverter> RateConverter::Create(uint32_t fromRate, uint32_t toRate, uint32_t channels)
{
    if (toRate / MaxRatio > fromRate)
        return nullptr;
    const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT64_I, SOXR_FLOAT64_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_VHQ, 0);
    soxr_error_t error = nullptr;
    soxr_t converter = soxr_create(fromRate, toRate, channels, &error, &io, &quality, nullptr);
    if (!converter || error)
        return nullptr;
    return std::unique_ptr<RateConverter>(new RateConverter(converter));
}

RateConverter::~RateConverter()
{
    soxr_delete(m_converter);
}

RateConverter::Step RateConverter::Convert(const double* in, size_t inFrames, double* out, size_t outFrames)
{
    Step step;
    soxr_process(m_converter, in, inFrames, &step.Used, out, outFrames, &step.Made);
    return step;
}

void RateConverter::Restart()
{
    soxr_clear(m_converter);
}

uint64_t ConvertedFrames(uint64_t frames, uint32_t fromRate, uint32_t toRate)
{
    if (fromRate == toRate)
        return frames;
    __extension__ using Wide = unsigned __int128;
    return static_cast<uint64_t>((static_cast<Wide>(frames) * toRate + fromRate / 2) / fromRate);
}

} // namespace ek
