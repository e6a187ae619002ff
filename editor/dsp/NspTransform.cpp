// SPDX-License-Identifier: GPL-3.0-or-later
//
// The N real values are taken as N/2 complex ones, whose transform FFTW computes; one pass over pairs of bins makes the
// spectrum of the real signal out of it, or back (Press et al., Numerical Recipes, section 12.3). That is faster than
// FFTW's own real transforms, unless they are planned by trying them out, which takes fractions of a second. It also
// works in place in the output, so that the input is never destroyed.
#include "dsp/Nsp.h"
#include "dsp/NspChecks.h"

#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <fftw3.h>
#include <mutex>
#include <new>
#include <numbers>

namespace ek {

namespace {

constexpr int32_t HighestOrder = 31;

struct FreeFftw {
    void operator()(float* memory) const { fftwf_free(memory); }
};
using FftwBuffer = std::unique_ptr<float[], FreeFftw>;

FftwBuffer Allocate(size_t values)
{
    return FftwBuffer(static_cast<float*>(fftwf_malloc(values * sizeof(float))));
}

using Four __attribute__((vector_size(16))) = float;

template <typename Value>
Value Read(const float* values)
{
    Value value;
    std::memcpy(&value, values, sizeof value);
    return value;
}

template <typename Value>
void Write(Value value, float* values)
{
    std::memcpy(values, &value, sizeof value);
}

/// Neighbouring bins of a spectrum, real and imaginary parts apart. The mirrored functions take the bins in memory in
/// falling order.
template <typename Value>
struct Bins;

template <>
struct Bins<float> {
    static constexpr size_t Count = 1;
    static Bins Load(const float* bins) { return {bins[0], bins[1]}; }
    static Bins LoadMirrored(const float* bins) { return Load(bins); }
    void Store(float* bins) const
    {
        bins[0] = Re;
        bins[1] = Im;
    }
    void StoreMirrored(float* bins) const { Store(bins); }

    float Re;
    float Im;
};

template <>
struct Bins<Four> {
    static constexpr size_t Count = 4;
    static Bins Load(const float* bins)
    {
        const auto first = Read<Four>(bins);
        const auto last = Read<Four>(bins + 4);
        return {__builtin_shufflevector(first, last, 0, 2, 4, 6), __builtin_shufflevector(first, last, 1, 3, 5, 7)};
    }
    static Bins LoadMirrored(const float* bins)
    {
        const auto first = Read<Four>(bins);
        const auto last = Read<Four>(bins + 4);
        return {__builtin_shufflevector(first, last, 6, 4, 2, 0), __builtin_shufflevector(first, last, 7, 5, 3, 1)};
    }
    void Store(float* bins) const
    {
        Write<Four>(__builtin_shufflevector(Re, Im, 0, 4, 1, 5), bins);
        Write<Four>(__builtin_shufflevector(Re, Im, 2, 6, 3, 7), bins + 4);
    }
    void StoreMirrored(float* bins) const
    {
        Write<Four>(__builtin_shufflevector(Re, Im, 3, 7, 2, 6), bins);
        Write<Four>(__builtin_shufflevector(Re, Im, 1, 5, 0, 4), bins + 4);
    }

    Four Re;
    Four Im;
};

/// Everything that transforms of one order share. The complex values are `Half` pairs of floats.
class Transform {
public:
    /// Null when there is no memory.
    static Transform* Create(int32_t order)
    {
        std::unique_ptr<Transform> transform(new (std::nothrow) Transform);
        return transform && transform->Plan(size_t{1} << order) ? transform.release() : nullptr;
    }
    ~Transform()
    {
        fftwf_destroy_plan(m_forward);
        fftwf_destroy_plan(m_inverse);
    }
    Transform(const Transform&) = delete;
    Transform& operator=(const Transform&) = delete;

    size_t Half() const { return m_half; }
    void ToSpectrum(float* work, float scale) const;
    void FromSpectrum(const float* spectrum, float* work, float scale) const;

private:
    Transform() = default;
    bool Plan(size_t length);
    template <typename Value>
    void Recombine(const float* in, float* out, size_t first, float scale, float direction) const;
    void RecombineAll(const float* in, float* out, float scale, float direction) const;

    size_t m_half = 0;
    fftwf_plan m_forward = nullptr;
    fftwf_plan m_inverse = nullptr;
    std::unique_ptr<float[]> m_twiddleRe; ///< of -i e^(-2 pi i k / N) for the bins k = 0 .. N/4
    std::unique_ptr<float[]> m_twiddleIm;
};

bool Transform::Plan(size_t length)
{
    m_half = length / 2;
    const size_t twiddles = m_half / 2 + 1;
    m_twiddleRe.reset(new (std::nothrow) float[twiddles]);
    m_twiddleIm.reset(new (std::nothrow) float[twiddles]);
    // FFTW ends the process when it gets no memory. An array of this size, which is freed after planning, is more than
    // it then asks for, and a plan that is only estimated does not touch it.
    const FftwBuffer probe = Allocate(length);
    if (!m_twiddleRe || !m_twiddleIm || !probe)
        return false;
    for (size_t k = 0; k < twiddles; ++k) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(length);
        m_twiddleRe[k] = static_cast<float>(-std::sin(angle));
        m_twiddleIm[k] = static_cast<float>(-std::cos(angle));
    }
    auto* values = reinterpret_cast<fftwf_complex*>(probe.get());
    const auto count = static_cast<int>(m_half);
    m_forward = fftwf_plan_dft_1d(count, values, values, FFTW_FORWARD, FFTW_ESTIMATE);
    m_inverse = fftwf_plan_dft_1d(count, values, values, FFTW_BACKWARD, FFTW_ESTIMATE);
    return m_forward && m_inverse;
}

/// Makes the bins from `first` on and their mirror images out of the same bins of `in`, which may be `out`. `direction`
/// is 1 towards the spectrum of the real signal, -1 back.
template <typename Value>
void Transform::Recombine(const float* in, float* out, size_t first, float scale, float direction) const
{
    const size_t mirrored = m_half - first - (Bins<Value>::Count - 1);
    const Bins<Value> low = Bins<Value>::Load(in + 2 * first);
    const Bins<Value> high = Bins<Value>::LoadMirrored(in + 2 * mirrored);
    const Bins<Value> sum = {(low.Re + high.Re) * scale, (low.Im - high.Im) * scale};
    const Bins<Value> difference = {low.Re - high.Re, low.Im + high.Im};
    const Value re = Read<Value>(&m_twiddleRe[first]) * scale;
    const Value im = Read<Value>(&m_twiddleIm[first]) * (scale * direction);
    const Bins<Value> turned = {re * difference.Re - im * difference.Im, re * difference.Im + im * difference.Re};
    Bins<Value>{sum.Re + turned.Re, sum.Im + turned.Im}.Store(out + 2 * first);
    Bins<Value>{sum.Re - turned.Re, turned.Im - sum.Im}.StoreMirrored(out + 2 * mirrored);
}

/// All bins but 0 and N/2, which are their own mirror images.
void Transform::RecombineAll(const float* in, float* out, float scale, float direction) const
{
    const size_t middle = m_half / 2;
    size_t bin = 1;
    for (; bin + Bins<Four>::Count <= middle; bin += Bins<Four>::Count)
        Recombine<Four>(in, out, bin, scale, direction);
    for (; bin <= middle; ++bin)
        Recombine<float>(in, out, bin, scale, direction);
}

void Transform::ToSpectrum(float* work, float scale) const
{
    auto* values = reinterpret_cast<fftwf_complex*>(work);
    fftwf_execute_dft(m_forward, values, values);
    const float re = work[0] * scale;
    const float im = work[1] * scale;
    RecombineAll(work, work, scale / 2, 1);
    float* last = work + 2 * m_half;
    work[0] = re + im;
    last[0] = re - im;
    work[1] = last[1] = 0;
}

void Transform::FromSpectrum(const float* spectrum, float* work, float scale) const
{
    const float first = spectrum[0] * scale;
    const float last = spectrum[2 * m_half] * scale;
    RecombineAll(spectrum, work, scale, -1);
    work[0] = first + last;
    work[1] = first - last;
    auto* values = reinterpret_cast<fftwf_complex*>(work);
    fftwf_execute_dft(m_inverse, values, values);
}

/// The transforms used so far. Plans may be executed by several threads at once, but made by one only: no other part of
/// the process may plan single-precision transforms of FFTW at the same time.
class TransformCache {
public:
    TransformCache() = default;
    ~TransformCache()
    {
        for (const auto& transform : m_transforms)
            delete transform.load();
    }
    TransformCache(const TransformCache&) = delete;
    TransformCache& operator=(const TransformCache&) = delete;

    const Transform* Get(int32_t order)
    {
        std::atomic<Transform*>& transform = m_transforms[static_cast<size_t>(order)];
        if (const Transform* ready = transform.load(std::memory_order_acquire))
            return ready;
        const std::scoped_lock lock(m_planning);
        if (!transform)
            transform.store(Transform::Create(order), std::memory_order_release);
        return transform;
    }

private:
    std::array<std::atomic<Transform*>, HighestOrder + 1> m_transforms{};
    std::mutex m_planning;
};

/// Null, and reported, when there is no memory.
const Transform* TransformOf(const char* function, int32_t order)
{
    static TransformCache cache;
    const Transform* const transform = cache.Get(order);
    if (!transform)
        NspReport(NspStatusOutOfMemory, function, "insufficiency of memory for transform");
    return transform;
}

bool Refused(const char* function, const void* in, const void* out, int32_t order, int32_t flags)
{
    const bool forward = (flags & NspForward) != 0;
    const bool inverse = (flags & NspInverse) != 0;
    return NspRefused(function, {{in == nullptr, "inSamps==0"},
                                 {out == nullptr, "outSamps==0"},
                                 {order < 0, "order<0"},
                                 {order > HighestOrder, "order>31"},
                                 {!forward && !inverse, "(flags & 1)==0 && (flags & 2)==0"},
                                 {forward && inverse, "(flags & 1) && (flags & 2)"}});
}

float ScaleOf(int32_t order, int32_t flags)
{
    return (flags & NspInverse) != 0 && (flags & NspNoScale) == 0 ? std::ldexp(1.0F, -order) : 1.0F;
}

/// Runs `work` on `values` floats that are aligned as the plans expect it: on `out` itself or on a buffer that is then
/// copied there.
template <typename Work>
void OnAligned(const char* function, float* out, size_t values, Work work)
{
    if (fftwf_alignment_of(out) == 0)
        return work(out);
    const FftwBuffer buffer = Allocate(values);
    if (!buffer)
        return NspReport(NspStatusOutOfMemory, function, "insufficiency of memory for transform");
    work(buffer.get());
    std::memcpy(out, buffer.get(), values * sizeof(float));
}

} // namespace

void nspsFftSetup(int32_t order)
{
    if (NspRefused(__func__, {{order < 0, "order<0"}, {order > HighestOrder, "order>31"}}))
        return;
    if (order > 0)
        TransformOf(__func__, order);
}

void nspsRealFftNip(const float* inSamps, ComplexFloat* outSamps, int32_t order, int32_t flags)
{
    if (Refused(__func__, inSamps, outSamps, order, flags))
        return;
    const float scale = ScaleOf(order, flags);
    if (order == 0) {
        *outSamps = {*inSamps * scale, 0};
        return;
    }
    const Transform* transform = TransformOf(__func__, order);
    if (!transform)
        return;
    const size_t length = 2 * transform->Half();
    OnAligned(__func__, reinterpret_cast<float*>(outSamps), length + 2, [&](float* work) {
        std::memmove(work, inSamps, length * sizeof(float));
        transform->ToSpectrum(work, scale);
    });
}

void nspsCcsFftNip(const ComplexFloat* inSamps, float* outSamps, int32_t order, int32_t flags)
{
    if (Refused(__func__, inSamps, outSamps, order, flags))
        return;
    const float scale = ScaleOf(order, flags);
    if (order == 0) {
        *outSamps = inSamps->Re * scale;
        return;
    }
    const Transform* transform = TransformOf(__func__, order);
    if (!transform)
        return;
    OnAligned(__func__, outSamps, 2 * transform->Half(),
              [&](float* work) { transform->FromSpectrum(reinterpret_cast<const float*>(inSamps), work, scale); });
}

} // namespace ek
