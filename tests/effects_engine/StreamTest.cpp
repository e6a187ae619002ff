// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEffects.h"

#include <gtest/gtest.h>

#include <thread>

namespace ek::test {
namespace {

/// A tree with the test effects, and nodes of them in a chain.
class StreamTest : public testing::Test {
protected:
    StreamTest()
    {
        m_tree.AddProvider(MakeTestProvider());
        m_tree.ScanAllSpecialEffects();
    }
    ~StreamTest() override { m_tree.SetAudioInput(nullptr); }

    CEffectNode* MakeChain(std::initializer_list<const char*> effects)
    {
        auto* const chain = new CEffectNode("Chain", NodeComplex, std::make_unique<CComplexEffect>("Chain"));
        EXPECT_EQ(m_tree.TransferNode(chain, &m_tree.GetRootNode()), InsertedMoved);
        for (const char* name : effects)
            AddTo(chain, name);
        return chain;
    }
    CEffectNode* AddTo(CEffectNode* chain, const char* name, float gain = 1)
    {
        auto effect = std::make_unique<CSimpleEffect>(m_tree.FindEffectByDllName(std::string("test.") + name));
        effect->SetSettings({{gain}, {}});
        auto* const node = new CEffectNode(name, NodeSubEffect, std::move(effect));
        EXPECT_EQ(m_tree.TransferNode(node, chain), InsertedMoved);
        return node;
    }
    tEffError Open(SoundSource& source, uint32_t channels, uint32_t rate = 44100)
    {
        m_tree.SetAudioInput(&source);
        return m_tree.OpenStream(FloatFormat(channels, rate));
    }

    CEffectTree m_tree{"Effects Library"};
    TreeStream m_stream{m_tree};
};

TEST_F(StreamTest, WithoutEffectsSoundIsTheSameToTheBitInBlocksOfAnySize)
{
    for (const bool isLimited : {false, true}) {
        for (uint32_t channels = 1; channels <= 8; ++channels) {
            for (const size_t frames : {size_t{0}, size_t{1}, size_t{66}, size_t{67}, size_t{20000}}) {
                const Sound sound = Noise(channels, channels, frames, 0x1.fffffep-1F);
                SoundSource source(sound);
                ASSERT_EQ(Open(source, channels), EffectSuccess);
                if (isLimited)
                    CEffectManager::InitializeLimiter(FloatFormat(channels));
                EXPECT_EQ(PullAll(m_stream, channels, channels), sound) << channels << " channels, " << frames;
                m_tree.CloseStream();
            }
        }
    }
}

TEST_F(StreamTest, WhatEffectsHoldBackComesOutAtItsPlace)
{
    CEffectNode* const chain = MakeChain({"late", "gain", "later"});
    ASSERT_EQ(m_tree.SetSoundMorphEffect(chain->GetEffect()), EffectSuccess);
    for (const size_t frames :
         {size_t{0}, size_t{1}, size_t{49}, size_t{382}, size_t{383}, size_t{384}, size_t{9999}}) {
        const Sound sound = Noise(5, 2, frames);
        SoundSource source(sound);
        ASSERT_EQ(Open(source, 2), EffectSuccess);
        EXPECT_EQ(m_tree.Latency(), 383u);
        CEffectManager::InitializeLimiter(FloatFormat(2));
        const uint32_t latency = m_tree.Latency();
        EXPECT_EQ(latency, 383u + 66u);
        const auto check = [&](const Sound& soFar) {
            EXPECT_EQ(m_tree.Latency(), latency);
            EXPECT_EQ(source.Pulled(), std::min(frames, soFar[0].size() + latency));
        };
        EXPECT_EQ(PullAll(m_stream, 2, 3, 400, check), sound) << frames;
        source.Seek(0);
        EXPECT_EQ(PullAll(m_stream, 2, 4, 50), sound) << frames << ", heard again on the open stream";
    }
}

TEST_F(StreamTest, AnEffectMayChangeTheLength)
{
    CEffectNode* const chain = MakeChain({"late", "twice"});
    m_tree.SetSoundMorphEffect(chain->GetEffect());
    const Sound sound = Noise(6, 1, 3000);
    SoundSource source(sound);
    ASSERT_EQ(Open(source, 1), EffectSuccess);
    const Sound heard = PullAll(*m_tree.GetTreeEntryPoint(), 1);
    ASSERT_EQ(heard[0].size(), 6000u);
    for (size_t i = 0; i < heard[0].size(); ++i)
        ASSERT_EQ(heard[0][i], sound[0][i / 2]) << i;
}

TEST_F(StreamTest, EffectsThatDoNotFitAreRefusedWithTheirReason)
{
    const struct {
        const char* Effect;
        uint32_t Channels;
        tEffError Error;
    } cases[] = {{"stereo", 1, EffectStereoOnly},
                 {"stereo", 2, EffectSuccess},
                 {"stereo", 6, EffectStereoOnly},
                 {"monostereo", 1, EffectSuccess},
                 {"monostereo", 3, EffectMonoOrStereoOnly},
                 {"none", 2, EffectFailed},
                 {"throws", 2, EffectFailed},
                 {"gain", 8, EffectSuccess},
                 {"gain", 9, EffectFailed},
                 {"gain", 0, EffectFailed}};
    for (const auto& [effect, channels, error] : cases) {
        m_tree.CloseStream();
        CEffectNode* const chain = MakeChain({"late", effect, "gain"});
        m_tree.SetSoundMorphEffect(chain->GetEffect());
        const Sound sound = Noise(7, std::max(channels, 1U), 500);
        SoundSource source(sound);
        EXPECT_EQ(Open(source, channels), error) << effect << channels;
        EXPECT_EQ(m_tree.IsStreamOpened(), error == EffectSuccess);
        EXPECT_EQ(chain->FirstChild()->GetEffect()->IsStreamOpened(), error == EffectSuccess);
        if (error == EffectSuccess || channels == 0 || channels > 8)
            continue;
        EXPECT_EQ(PullAll(m_stream, channels), Sound(channels)) << "nothing without an open stream";
        m_tree.SwitchOffEffects();
        ASSERT_EQ(Open(source, channels), EffectSuccess);
        EXPECT_EQ(m_tree.SetSoundMorphEffect(chain->GetEffect()), error) << "refused in the middle of a stream too";
        EXPECT_EQ(PullAll(m_stream, channels), sound);
    }
}

TEST_F(StreamTest, ARefusingEffectThatIsSwitchedOffIsPassedOver)
{
    CEffectNode* const chain = MakeChain({"stereo"});
    chain->FirstChild()->SetActive(false);
    m_tree.SetSoundMorphEffect(chain->GetEffect());
    const Sound sound = Noise(8, 1, 3000);
    SoundSource source(sound);
    ASSERT_EQ(Open(source, 1), EffectSuccess);
    const auto switchOn = [&](const Sound&) { chain->FirstChild()->SetActive(true); };
    EXPECT_EQ(PullAll(m_stream, 1, 1, 500, switchOn), sound);
}

/// Each change leaves the sound as it is but for a gain, which tells what is heard from where on.
TEST_F(StreamTest, ChangesInTheMiddleOfAStreamLoseNoFrameAndTakeEffectWithTheNextBlock)
{
    CEffectNode* const chain = MakeChain({"late"});
    CEffectNode* const half = AddTo(chain, "later", 0.5F);
    CEffectNode* const other = MakeChain({});
    AddTo(other, "gain", 2);
    AddTo(other, "late", 2);
    const float one = 1;
    const std::pair<std::function<void()>, float> changes[] = {
        {[&] { m_tree.SetSoundMorphEffect(chain->GetEffect()); }, 0.5F},
        {[&] { half->SetActive(false); }, one},
        {[&] { m_tree.SetSoundMorphEffect(other->GetEffect()); }, 4.0F},
        {[&] { m_tree.GetTreeEntryPoint()->SetActive(false); }, one},
        {[&] { m_tree.GetTreeEntryPoint()->SetActive(true); }, 4.0F},
        {[&] { m_tree.MoveDownNode(other->FirstChild()); }, 4.0F},
        {[&] { m_tree.RemoveNode(other->FirstChild(), false); }, 2.0F},
        {[&] { AddTo(other, "later", 0.25F); }, 2.0F},
        {[&] { EXPECT_EQ(m_tree.UpdateEffect(other->FirstChild()), EffectSuccess); }, 0.5F},
        {[&] { m_tree.TransferNode(half, other, nullptr, true); }, 0.5F},
        {[&] { other->LastChild()->SetActive(true), m_tree.UpdateEffect(other); }, 0.25F},
        {[&] {
             m_tree.SetSoundEffectSettings(*other->LastChild()->GetSimpleEffect(), {{2}, {}});
         },
         one},
        {[&] { m_tree.RemoveNode(other, false); }, one},
    };
    const Sound sound = Noise(9, 2, 40000);
    SoundSource source(sound);
    ASSERT_EQ(Open(source, 2), EffectSuccess);
    std::vector<float> expected(sound[0].size());
    float gain = 1;
    size_t done = 0;
    size_t begin = 0;
    const auto between = [&](const Sound& soFar) {
        const size_t end = soFar[0].size();
        ASSERT_EQ(source.Pulled(), std::min(sound[0].size(), end + m_tree.Latency())) << done;
        for (; begin < end; ++begin)
            expected[begin] = sound[0][begin] * gain;
        if (done < std::size(changes) && end > (done + 1) * 2500) {
            changes[done].first();
            gain = changes[done++].second;
        }
    };
    const Sound heard = PullAll(m_stream, 2, 10, 450, between);
    ASSERT_EQ(done, std::size(changes));
    for (; begin < expected.size(); ++begin)
        expected[begin] = sound[0][begin] * gain;
    EXPECT_EQ(heard[0], expected);
    EXPECT_EQ(m_tree.GetSoundMorphEffect(), nullptr);
}

TEST_F(StreamTest, AfterARestartNothingHeldBackIsHeard)
{
    CEffectNode* const chain = MakeChain({"late"});
    m_tree.SetSoundMorphEffect(chain->GetEffect());
    const Sound sound = Noise(11, 1, 5000);
    SoundSource source(sound);
    ASSERT_EQ(Open(source, 1), EffectSuccess);
    CEffectManager::InitializeLimiter(FloatFormat(1));
    bool isEnd = false;
    EXPECT_EQ(PullBlock(m_stream, 1, 1000, isEnd)[0], std::vector(sound[0].begin(), sound[0].begin() + 1000));
    source.Seek(3000);
    m_tree.RestartStream();
    EXPECT_EQ(PullAll(m_stream, 1)[0], std::vector(sound[0].begin() + 3000, sound[0].end()));
}

TEST_F(StreamTest, TheLimiterActsOnTheStreamThatIsOpenAndGoesWithIt)
{
    const Sound sound = Scaled(Noise(12, 2, 4000, 1.0F), 3.0F);
    SoundSource source(sound);
    CEffectManager::InitializeLimiter(FloatFormat(2));
    ASSERT_EQ(Open(source, 2), EffectSuccess);
    CEffectManager::InitializeLimiter(FloatFormat(1));
    EXPECT_EQ(m_tree.Latency(), 0u) << "another format";
    CEffectManager::InitializeLimiter(FloatFormat(2));
    EXPECT_NE(PullAll(m_stream, 2), sound);
    source.Seek(0);
    ASSERT_EQ(Open(source, 2), EffectSuccess);
    EXPECT_EQ(PullAll(m_stream, 2), sound);
}

TEST_F(StreamTest, AnEffectOnItsOwnServesAsASource)
{
    CEffectNode* const chain = MakeChain({});
    AddTo(chain, "gain", -1);
    CEffectNode* const node = AddTo(chain, "late", 0.5F);
    const Sound sound = Noise(13, 2, 3000);
    SoundSource source(sound);
    const WAVEFORMATEXTENSIBLE format = FloatFormat(2);
    m_tree.SetSoundMorphEffect(chain->GetEffect());
    node->GetEffect()->SetPrev(&source);
    ASSERT_EQ(node->GetEffect()->OpenStream(&format), EffectSuccess);
    EXPECT_EQ(PullAll(*node->GetEffect(), 2), Scaled(sound, 0.5F));
    source.Seek(0);
    ASSERT_EQ(Open(source, 2), EffectSuccess);
    bool isEnd = false;
    EXPECT_EQ(PullBlock(m_stream, 1, 10, isEnd), Sound(1)) << "no room for the second channel";
    EXPECT_EQ(PullAll(m_stream, 2), Scaled(sound, -0.5F)) << "and then in its chain again";
}

TEST_F(StreamTest, AnEffectInUseWithoutItsChainStaysInUseWhenTheChainIsEdited)
{
    CEffectNode* const chain = MakeChain({"later"});
    CEffectNode* const node = AddTo(chain, "late", 0.5F);
    ASSERT_EQ(m_tree.SetSoundMorphEffect(node->GetEffect()), EffectSuccess);
    const Sound sound = Noise(16, 1, 5000);
    SoundSource source(sound);
    ASSERT_EQ(Open(source, 1), EffectSuccess);
    const auto edit = [&](const Sound& soFar) {
        soFar[0].size() % 2 ? m_tree.MoveUpNode(node) : m_tree.MoveDownNode(node);
    };
    EXPECT_EQ(PullAll(m_stream, 1, 17, 300, edit), Scaled(sound, 0.5F));
}

/// Run under a thread checker: blocks on one thread, changes of every kind on another.
TEST_F(StreamTest, BlocksAndChangesKeepOutOfEachOthersWay)
{
    CEffectNode* const chain = MakeChain({"late", "later"});
    CEffectNode* const effect = AddTo(chain, "gain");
    const Sound sound = Noise(14, 2, 200000);
    SoundSource source(sound);
    ASSERT_EQ(Open(source, 2), EffectSuccess);
    CEffectManager::InitializeLimiter(FloatFormat(2));
    std::atomic<bool> isDone{false};
    Sound heard;
    std::thread pump([&] {
        heard = PullAll(m_stream, 2, 15, 300);
        isDone = true;
    });
    for (uint32_t i = 0; !isDone; ++i) {
        m_tree.LockMorphStream();
        m_tree.SetSoundMorphEffect(nullptr);
        m_tree.UpdateEffect(effect);
        m_tree.SetSoundMorphEffect(i % 3 ? chain->GetEffect() : effect->GetEffect());
        m_tree.UnlockMorphStream();
        effect->SetActive(i % 2 != 0);
        m_tree.MoveUpNode(effect);
        m_tree.SetSoundEffectSettings(*effect->GetSimpleEffect(), {{1.0F}, {}});
        m_tree.MoveDownNode(effect);
        EXPECT_LE(m_tree.Latency(), 2 * 383u + 66u);
    }
    pump.join();
    EXPECT_EQ(heard, sound);
}

} // namespace
} // namespace ek::test
