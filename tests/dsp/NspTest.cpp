// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Nsp.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <fstream>
#include <gtest/gtest.h>
#include <latch>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <type_traits>
#include <unistd.h>
#include <vector>

namespace ek::test {
namespace {

std::vector<float> Noise(size_t count, uint32_t seed = 1)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> uniform(-1, 1);
    std::vector<float> noise(count);
    std::ranges::generate(noise, [&] { return uniform(random); });
    return noise;
}

std::vector<std::string>& Reports()
{
    static std::vector<std::string> reports;
    return reports;
}

class NspErrorTest : public testing::Test {
protected:
    NspErrorTest()
    {
        Reports().clear();
        nspResetStatus();
        nspSetErrorHandler([](NspStatus status, const char* function, const char* text, const char* file, int line) {
            EXPECT_EQ(status, NspStatusBadArgument);
            EXPECT_EQ(std::string(file).find('/'), std::string::npos);
            EXPECT_GT(line, 0);
            Reports().push_back(std::string(function) + ": " + text);
        });
    }
    ~NspErrorTest() override { nspSetErrorHandler(nullptr); }

    /// The one report of a call.
    template <typename Call>
    std::string ReportOf(Call call)
    {
        call();
        EXPECT_EQ(nspLastStatus(), NspStatusBadArgument);
        nspResetStatus();
        EXPECT_EQ(Reports().size(), 1u);
        std::string report = Reports().empty() ? "" : Reports()[0];
        Reports().clear();
        return report;
    }
};

TEST_F(NspErrorTest, VectorsReportTheirFirstBadArgumentAndDoNothing)
{
    float value = 3;
    ComplexFloat bin = {1, 2};
    EXPECT_EQ(ReportOf([] { nspsbMpy1(2, nullptr, 0); }), "nspsbMpy1: dst==0");
    EXPECT_EQ(ReportOf([&] { nspsbMpy1(2, &value, 0); }), "nspsbMpy1: n<=0");
    EXPECT_EQ(ReportOf([] { nspsbAdd2(nullptr, nullptr, 1); }), "nspsbAdd2: dst==0");
    EXPECT_EQ(ReportOf([&] { nspsbAdd2(nullptr, &value, 0); }), "nspsbAdd2: src==0");
    EXPECT_EQ(ReportOf([&] { nspsbAdd2(&value, &value, -1); }), "nspsbAdd2: n<=0");
    EXPECT_EQ(ReportOf([&] { nspcbMpy2(nullptr, &bin, 1); }), "nspcbMpy2: src==0");
    EXPECT_EQ(ReportOf([&] { nspcbMpy2(&bin, &bin, 0); }), "nspcbMpy2: n<=0");
    EXPECT_EQ(value, 3);
}

TEST_F(NspErrorTest, TransformsReportTheirFirstBadArgumentAndDoNothing)
{
    float signal = 3;
    ComplexFloat bin = {5, 6};
    EXPECT_EQ(ReportOf([&] { nspsRealFftNip(nullptr, nullptr, -1, 0); }), "nspsRealFftNip: inSamps==0");
    EXPECT_EQ(ReportOf([&] { nspsRealFftNip(&signal, nullptr, -1, 0); }), "nspsRealFftNip: outSamps==0");
    EXPECT_EQ(ReportOf([&] { nspsRealFftNip(&signal, &bin, -1, 0); }), "nspsRealFftNip: order<0");
    EXPECT_EQ(ReportOf([&] { nspsCcsFftNip(&bin, &signal, 32, 3); }), "nspsCcsFftNip: order>31");
    EXPECT_EQ(ReportOf([&] { nspsCcsFftNip(&bin, &signal, 0, 16); }),
              "nspsCcsFftNip: (flags & 1)==0 && (flags & 2)==0");
    EXPECT_EQ(ReportOf([&] { nspsCcsFftNip(&bin, &signal, 0, 3); }), "nspsCcsFftNip: (flags & 1) && (flags & 2)");
    EXPECT_EQ(ReportOf([&] { nspsFftSetup(-1); }), "nspsFftSetup: order<0");
    EXPECT_EQ(ReportOf([&] { nspsFftSetup(32); }), "nspsFftSetup: order>31");
    EXPECT_EQ(signal, 3);
    EXPECT_EQ(bin.Re, 5);
}

TEST_F(NspErrorTest, FiltersReportTheirFirstBadArgumentAndStayAsTheyAre)
{
    const float taps[] = {2, 0, 4, 0};
    const float noTaps[] = {1, 0, 0, 1};
    NspIirState state;
    float value = 1;
    EXPECT_EQ(ReportOf([&] { nspsIirInit(2, nullptr, -1, nullptr); }), "nspsIirInit: statePtr==0");
    EXPECT_EQ(ReportOf([&] { nspsIirInit(2, nullptr, -1, &state); }), "nspsIirInit: tapVals==0");
    EXPECT_EQ(ReportOf([&] { nspsIirInit(2, taps, -1, &state); }), "nspsIirInit: order < 0");
    EXPECT_EQ(ReportOf([&] { nspsIirInit(2, noTaps, 1, &state); }), "nspsIirInit: iirType is out of range");
    EXPECT_EQ(ReportOf([&] { nspsIirInit(1, noTaps, 1, &state); }), "nspsIirInit: taps[order+1] equals zero");
    EXPECT_EQ(ReportOf([&] { nspsbIir(nullptr, &value, &value, 1); }), "nspsbIir: statePtr==0");
    EXPECT_EQ(ReportOf([&] { nspsbIir(&state, &value, &value, 1); }), "nspsbIir: IIR filter wasn't initialized");
    EXPECT_EQ(ReportOf([&] { nspIirFree(&state); }), "nspIirFree: IIR filter wasn't initialized");
    nspsIirInit(0, taps, 1, &state);
    EXPECT_EQ(ReportOf([&] { nspsIirInit(1, noTaps, 1, &state); }),
              "nspsIirInit: IIR filter state structure is already initialized! Use nspIirFree to free it");
    nspsbIir(&state, &value, &value, 1);
    EXPECT_EQ(value, 0.5F) << "the first taps, divided by a0";
    nspIirFree(&state);
    nspsIirInit(1, taps, 1, &state);
    EXPECT_EQ(nspLastStatus(), NspStatusOk);
    EXPECT_TRUE(Reports().empty());
}

TEST_F(NspErrorTest, TheStatusIsThatOfTheLibraryAndKeptWithoutAHandler)
{
    nspSetErrorHandler(nullptr);
    std::thread([] { nspsbMpy1(1, nullptr, 1); }).join();
    EXPECT_EQ(nspLastStatus(), NspStatusBadArgument);
    EXPECT_TRUE(Reports().empty());
}

TEST(NspVectorTest, EveryValueIsWorkedOnAndNoneBeyond)
{
    for (const int32_t n : {1, 2, 3, 4, 7, 64, 1001}) {
        const size_t size = static_cast<size_t>(n);
        const std::vector<float> a = Noise(2 * size + 2, 1);
        const std::vector<float> b = Noise(2 * size + 2, 2);
        std::vector<float> product = a;
        std::vector<float> sum = a;
        std::vector<float> turned = a;
        nspsbMpy1(0.3F, product.data(), n);
        nspsbAdd2(b.data(), sum.data(), n);
        nspcbMpy2(reinterpret_cast<const ComplexFloat*>(b.data()), reinterpret_cast<ComplexFloat*>(turned.data()), n);
        for (size_t i = 0; i < a.size(); ++i) {
            EXPECT_EQ(product[i], i < size ? a[i] * 0.3F : a[i]);
            EXPECT_EQ(sum[i], i < size ? a[i] + b[i] : a[i]);
        }
        for (size_t i = 0; i < size; ++i) {
            const auto expected =
                std::complex<double>(a[2 * i], a[2 * i + 1]) * std::complex<double>(b[2 * i], b[2 * i + 1]);
            EXPECT_NEAR(turned[2 * i], expected.real(), 2e-7);
            EXPECT_NEAR(turned[2 * i + 1], expected.imag(), 2e-7);
        }
        EXPECT_EQ(turned[2 * size], a[2 * size]);
    }
}

/// The definition, in double: the bins 0 .. N/2.
std::vector<std::complex<double>> PlainTransform(const float* signal, size_t length)
{
    std::vector<std::complex<double>> bins(length / 2 + 1);
    for (size_t k = 0; k < bins.size(); ++k) {
        for (size_t n = 0; n < length; ++n) {
            const double turn = static_cast<double>(k * n % length) / static_cast<double>(length);
            bins[k] += std::polar<double>(signal[n], -2 * std::numbers::pi * turn);
        }
    }
    return bins;
}

TEST(NspTransformTest, ItMeetsTheDefinitionAtEveryOrderAlignmentAndInPlace)
{
    for (int32_t order = 0; order <= 10; ++order) {
        const size_t length = size_t{1} << order;
        const double tolerance = 1e-6 * std::sqrt(static_cast<double>(length)) + 1e-6;
        for (const size_t shift : {0, 1, 2, 3}) {
            const std::vector<float> before = Noise(length + shift, static_cast<uint32_t>(order));
            const auto expected = PlainTransform(&before[shift], length);
            std::vector<float> signal = before;
            std::vector<float> memory(length + 2 + shift);
            std::vector<float> inPlace(length + 2 + shift);
            std::ranges::copy(before, inPlace.begin());
            auto* spectrum = reinterpret_cast<ComplexFloat*>(&memory[shift]);
            nspsRealFftNip(&signal[shift], spectrum, order, NspForward);
            EXPECT_EQ(signal, before);
            nspsRealFftNip(&inPlace[shift], reinterpret_cast<ComplexFloat*>(&inPlace[shift]), order, NspForward);
            for (size_t k = 0; k < expected.size(); ++k) {
                ASSERT_NEAR(spectrum[k].Re, expected[k].real(), tolerance) << order << " " << k;
                ASSERT_NEAR(spectrum[k].Im, expected[k].imag(), tolerance) << order << " " << k;
                ASSERT_EQ(inPlace[shift + 2 * k], spectrum[k].Re);
                ASSERT_EQ(inPlace[shift + 2 * k + 1], spectrum[k].Im);
            }
            spectrum[0].Im = spectrum[length / 2].Im = order == 0 ? 0 : 7; // of no real signal
            const std::vector<float> spectrumBefore = memory;
            std::vector<float> unscaled = before;
            nspsCcsFftNip(spectrum, &signal[shift], order, NspInverse);
            nspsCcsFftNip(spectrum, &unscaled[shift], order, NspInverse | NspNoScale);
            EXPECT_EQ(memory, spectrumBefore);
            nspsCcsFftNip(reinterpret_cast<ComplexFloat*>(&inPlace[shift]), &inPlace[shift], order, NspInverse);
            for (size_t n = shift; n < length + shift; ++n) {
                ASSERT_NEAR(signal[n], before[n], 1e-6) << order;
                ASSERT_EQ(unscaled[n], signal[n] * static_cast<float>(length)) << order;
                ASSERT_EQ(inPlace[n], signal[n]) << order;
            }
        }
    }
}

TEST(NspTransformTest, AnImpulseIsOneInEveryBinOfALongTransform)
{
    for (const int32_t order : {11, 12, 20}) {
        const size_t length = size_t{1} << order;
        std::vector<float> signal(length);
        signal[0] = 1;
        std::vector<ComplexFloat> spectrum(length / 2 + 1, {9, 9});
        nspsRealFftNip(signal.data(), spectrum.data(), order, NspForward);
        for (const ComplexFloat& bin : spectrum) {
            ASSERT_NEAR(bin.Re, 1, 1e-6);
            ASSERT_NEAR(bin.Im, 0, 1e-6);
        }
        signal = Noise(length);
        std::vector<float> back(length);
        nspsRealFftNip(signal.data(), spectrum.data(), order, NspForward);
        nspsCcsFftNip(spectrum.data(), back.data(), order, NspInverse);
        for (size_t n = 0; n < length; ++n)
            ASSERT_NEAR(back[n], signal[n], 2e-6);
    }
}

TEST(NspTransformTest, ThreadsMayStartTheSameOrderTogether)
{
    constexpr int32_t First = 13; // of orders that no other test has used
    constexpr int32_t Last = 16;
    const std::vector<float> signal = Noise(size_t{1} << Last);
    std::vector<std::vector<float>> results(8);
    std::vector<std::thread> threads;
    threads.reserve(results.size());
    std::latch start(static_cast<ptrdiff_t>(results.size()));
    for (std::vector<float>& result : results) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            for (int32_t order = First; order <= Last; ++order) {
                const size_t length = size_t{1} << order;
                std::vector<float> spectrum(length + 2);
                auto* bins = reinterpret_cast<ComplexFloat*>(spectrum.data());
                nspsRealFftNip(signal.data(), bins, order, NspForward);
                result.insert(result.end(), spectrum.begin(), spectrum.end());
                nspsCcsFftNip(bins, spectrum.data(), order, NspInverse);
                for (size_t n = 0; n < length; ++n)
                    ASSERT_NEAR(spectrum[n], signal[n], 2e-6);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const std::vector<float>& result : results)
        EXPECT_EQ(result, results[0]);
}

TEST(NspTransformDeathTest, WithoutMemoryItReportsThatAndWritesNothing)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer ends the process when memory is refused";
#endif
    const auto transform = [](int32_t order) {
        const rlimit limit = {rlim_t{1} << 30, rlim_t{1} << 30};
        setrlimit(RLIMIT_AS, &limit);
        float signal = 3;
        ComplexFloat bin = {5, 6};
        nspsRealFftNip(&signal, &bin, order, NspForward);
        const bool right = nspLastStatus() == NspStatusOutOfMemory && bin.Re == 5;
        nspsCcsFftNip(&bin, &signal, order, NspInverse);
        std::_Exit(right && signal == 3 ? 0 : 1);
    };
    for (const int32_t order : {28, 31})
        EXPECT_EXIT(transform(order), testing::ExitedWithCode(0), "") << order;
}

TEST(NspTransformDeathTest, AnOrderThatIsSetUpNeedsNoMoreMemoryForItsTables)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer ends the process when memory is refused";
#endif
    const auto transform = [](bool setUp) {
        constexpr int32_t Order = 24;
        std::vector<float> signal((size_t{1} << Order) + 2, 1);
        auto* bins = reinterpret_cast<ComplexFloat*>(signal.data());
        if (setUp)
            nspsFftSetup(Order);
        rlim_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        const rlim_t room = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + (rlim_t{32} << 20);
        const rlimit limit = {room, room};
        setrlimit(RLIMIT_AS, &limit);
        nspsRealFftNip(signal.data(), bins, Order, NspForward);
        std::_Exit(nspLastStatus() == (setUp ? NspStatusOk : NspStatusOutOfMemory) ? 0 : 1);
    };
    EXPECT_EXIT(transform(true), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(transform(false), testing::ExitedWithCode(0), "");
}

static_assert(!std::is_move_constructible_v<NspIirState> && !std::is_move_assignable_v<NspIirState>);

/// A filter of any order whose poles lie well within the unit circle.
std::vector<float> TapsOf(size_t order)
{
    std::vector<float> taps = Noise(2 * (order + 1), static_cast<uint32_t>(order));
    for (size_t k = 1; k <= order; ++k)
        taps[order + 1 + k] *= 0.8F / static_cast<float>(order);
    taps[order + 1] = 1;
    return taps;
}

class NspIirTest : public testing::TestWithParam<int32_t> {
protected:
    NspIirTest() { nspsIirInit(1, m_taps.data(), GetParam(), &m_state); }

    std::vector<float> m_taps = TapsOf(static_cast<size_t>(GetParam()));
    NspIirState m_state;
};

TEST_P(NspIirTest, ItMeetsTheDifferenceEquationHoweverTheStreamIsCut)
{
    const size_t order = static_cast<size_t>(GetParam());
    const std::vector<float> input = Noise(5000);
    std::vector<double> expected(input.size());
    for (size_t n = 0; n < input.size(); ++n) {
        for (size_t k = 0; k <= std::min(order, n); ++k) {
            expected[n] += double{m_taps[k]} * input[n - k];
            if (k > 0)
                expected[n] -= double{m_taps[order + 1 + k]} * expected[n - k];
        }
    }
    std::vector<float> whole(input.size());
    nspsbIir(&m_state, input.data(), whole.data(), 5000);
    for (size_t n = 0; n < input.size(); ++n)
        ASSERT_NEAR(whole[n], expected[n], 1e-5) << n;

    for (float& tap : m_taps)
        tap *= 4; // which a0 takes away again
    nspIirFree(&m_state);
    nspsIirInit(0, m_taps.data(), GetParam(), &m_state);
    std::vector<float> pieces = input;
    std::mt19937 random(1);
    for (size_t done = 0; done < pieces.size();) {
        const size_t count = std::min<size_t>(random() % 100, pieces.size() - done);
        nspsbIir(&m_state, &pieces[done], &pieces[done], static_cast<int32_t>(count));
        done += count;
    }
    EXPECT_EQ(pieces, whole);
}

TEST_P(NspIirTest, SilenceAndNumbersAgainFollowWhateverCameBefore)
{
    for (const float last : {1.0F, std::nanf(""), std::numeric_limits<float>::infinity()}) {
        std::vector<float> stream = Noise(100000);
        stream[100] = last;
        std::fill(stream.begin() + 101, stream.end(), 0.0F);
        nspsbIir(&m_state, stream.data(), stream.data(), 100000);
        EXPECT_EQ(std::count_if(stream.begin() + 101, stream.end(),
                                [](float value) { return std::fpclassify(value) == FP_SUBNORMAL; }),
                  0);
        EXPECT_EQ(stream.back(), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Orders, NspIirTest, testing::Values(0, 1, 2, 3, 6));

} // namespace
} // namespace ek::test
