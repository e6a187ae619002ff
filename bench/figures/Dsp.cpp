// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "dsp/Nsp.h"
#include "dsp/Resampler.h"
#include "servicefuncs/Channels.h"

#include <algorithm>
#include <fftw3.h>
#include <memory>
#include <random>

namespace ek::bench {

namespace {

constexpr int Order = 12;
constexpr size_t Length = size_t{1} << Order;
constexpr int Rounds = 30;
constexpr int Repeats = 300;

struct FreeFftw {
    void operator()(void* memory) const { fftwf_free(memory); }
};

/// A real signal, its spectrum and the signal made of that again: by the primitives, and by FFTW alone.
class TransformPair {
public:
    explicit TransformPair(unsigned planning)
        : m_signal(fftwf_alloc_real(Length)), m_spectrum(fftwf_alloc_complex(Length / 2 + 1)),
          m_back(fftwf_alloc_real(Length)),
          m_forward(fftwf_plan_dft_r2c_1d(Length, m_signal.get(), m_spectrum.get(), planning)),
          m_inverse(fftwf_plan_dft_c2r_1d(Length, m_spectrum.get(), m_back.get(), planning))
    {
        std::mt19937 random(1);
        std::generate_n(m_signal.get(), Length, [&] { return static_cast<float>(random()) * 0x1p-32F - 0.5F; });
    }
    ~TransformPair()
    {
        fftwf_destroy_plan(m_forward);
        fftwf_destroy_plan(m_inverse);
    }
    TransformPair(const TransformPair&) = delete;
    TransformPair& operator=(const TransformPair&) = delete;

    double Ratio() const
    {
        double plain = 1e9;
        double own = 1e9;
        for (int round = 0; round < Rounds; ++round) {
            plain = std::min(plain, Seconds([this] { Repeat(&TransformPair::Plain); }));
            own = std::min(own, Seconds([this] { Repeat(&TransformPair::Own); }));
        }
        return own / plain;
    }

private:
    void Repeat(void (TransformPair::*run)() const) const
    {
        for (int i = 0; i < Repeats; ++i)
            (this->*run)();
    }
    void Plain() const
    {
        fftwf_execute(m_forward);
        fftwf_execute(m_inverse);
    }
    void Own() const
    {
        auto* spectrum = reinterpret_cast<ComplexFloat*>(m_spectrum.get());
        nspsRealFftNip(m_signal.get(), spectrum, Order, NspForward);
        nspsCcsFftNip(spectrum, m_back.get(), Order, NspInverse);
    }

    std::unique_ptr<float, FreeFftw> m_signal;
    std::unique_ptr<fftwf_complex, FreeFftw> m_spectrum;
    std::unique_ptr<float, FreeFftw> m_back;
    fftwf_plan m_forward;
    fftwf_plan m_inverse;
};

/// Seconds for an hour of 16-bit stereo, in blocks of 4096 bytes.
double SecondsOfConversion(uint32_t inputRate, uint32_t outputRate)
{
    constexpr uint32_t BlockBytes = 4096;
    constexpr double SoundSeconds = 60;
    const WAVEFORMATEXTENSIBLE input = MakePcm16Format(inputRate, 2);
    const WAVEFORMATEXTENSIBLE output = MakePcm16Format(outputRate, 2);
    IResampler* resampler = nullptr;
    CreateResampler(&resampler);
    uint32_t outputBytes = 0;
    if (!resampler || resampler->Init(&input, BlockBytes, &output, &outputBytes) != StatusOk)
        Fail("no converter");
    std::vector<uint8_t> source(BlockBytes);
    std::mt19937 random(1);
    std::ranges::generate(source, [&] { return static_cast<uint8_t>(random()); });
    std::vector<uint8_t> converted(outputBytes);
    const auto blocks = static_cast<int>(SoundSeconds * inputRate * input.nBlockAlign / BlockBytes);
    double best = 1e9;
    for (int round = 0; round < Rounds; ++round) {
        best = std::min(best, Seconds([&] {
                            uint32_t written = 0;
                            for (int i = 0; i < blocks; ++i)
                                resampler->Process(source.data(), BlockBytes, converted.data(), outputBytes, &written);
                        }));
    }
    resampler->Release();
    return best * 3600 / SoundSeconds;
}

} // namespace

void MeasureDsp(Bench& bench)
{
    bench.Report("real transforms of 4096 there and back / plain FFTW", TransformPair(FFTW_ESTIMATE).Ratio(), 1.15);
    bench.Report("the same / plain FFTW with measured plans", TransformPair(FFTW_MEASURE).Ratio(), 1.15);
    bench.Report("converter, an hour of stereo 44.1 to 48 kHz", SecondsOfConversion(44100, 48000), 1 / 0.15, "s");
    bench.Report("converter, an hour of stereo 48 to 44.1 kHz", SecondsOfConversion(48000, 44100), 1 / 0.15, "s");
}

} // namespace ek::bench
