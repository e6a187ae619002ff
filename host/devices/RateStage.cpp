// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/RateStage.h"

#include <soxr.h>

namespace ek {

namespace {

constexpr size_t PieceFrames = 4096;
// Beyond this the converter's inner buffers grow out of all proportion.
constexpr uint32_t MaxRatio = 1000;

} // namespace

void RateStage::Delete::operator()(soxr* converter) const
{
    soxr_delete(converter);
}

RateStage::RateStage(uint32_t fromRate, uint32_t toRate, uint32_t channels)
    : m_fromRate(fromRate), m_toRate(toRate), m_channels(channels)
{
    if (fromRate == toRate || fromRate / MaxRatio > toRate || toRate / MaxRatio > fromRate)
        return;
    soxr_error_t error = nullptr;
    m_converter.reset(soxr_create(fromRate, toRate, channels, &error, nullptr, nullptr, nullptr));
    if (error)
        m_converter.reset();
}

RateStage::Result RateStage::Convert(const float* frames, uint32_t count)
{
    if (!m_converter)
        return {frames, frames ? count : 0};
    size_t made = 0;
    size_t used = 0;
    for (;;) {
        m_out.resize((made + PieceFrames) * m_channels);
        size_t usedNow = 0;
        size_t madeNow = 0;
        const float* in = frames ? frames + used * m_channels : nullptr;
        soxr_process(m_converter.get(), in, count - used, &usedNow, m_out.data() + made * m_channels, PieceFrames,
                     &madeNow);
        used += usedNow;
        made += madeNow;
        if (madeNow < PieceFrames && (!frames || used == count || usedNow + madeNow == 0))
            return {m_out.data(), static_cast<uint32_t>(made)};
    }
}

uint32_t RateStage::DelayFrames() const
{
    return m_converter ? static_cast<uint32_t>(soxr_delay(m_converter.get())) : 0;
}

} // namespace ek
