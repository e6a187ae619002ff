// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"
#include "storage/PageCache.h"
#include "storage/Replacement.h"
#include "support/FaultyFileCalls.h"

#include <array>
#include <cerrno>
#include <thread>

namespace ek {
namespace {

constexpr uint64_t Page = PageCache::PageSize;

class PagesTest : public StoreTest {
protected:
    void MakePages(uint64_t count)
    {
        Replacement room(m_files, 0, 0, count * Page);
        ASSERT_TRUE(room.AppendZeros(count * Page) && room.Complete());
        room.Commit();
        m_pages.Reset();
    }
    std::vector<uint64_t> ResidentIndexes() const
    {
        std::vector<uint64_t> indexes;
        for (const PageCache::ResidentPage& page : m_pages.Resident())
            indexes.push_back(page.Index);
        return indexes;
    }

    TempFileList m_files;
    PageCache m_pages{m_files};
};

TEST_F(PagesTest, TheLeastRecentlyUsedPageMakesRoom)
{
    MakePages(12);
    for (uint64_t index = 0; index < 10; ++index)
        ASSERT_NE(m_pages.Page(index, false), nullptr);
    m_pages.Page(9, false);
    m_pages.Page(0, false);
    EXPECT_EQ(ResidentIndexes(), (std::vector<uint64_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 0}));
    m_pages.Page(11, false);
    EXPECT_EQ(ResidentIndexes(), (std::vector<uint64_t>{2, 3, 4, 5, 6, 7, 8, 9, 0, 11}));
}

TEST_F(PagesTest, OnlyChangedPagesAreWritten)
{
    FaultyFileCalls calls("ekewdme", FaultyFileCalls::Writes);
    MakePages(12);
    m_pages.Page(0, true)[5] = 77;
    for (uint64_t index = 0; index < 12; ++index)
        m_pages.Page(index, false);
    EXPECT_EQ(calls.CallCount(), 1U);
    EXPECT_EQ(m_pages.Page(0, false)[5], 77);
    EXPECT_TRUE(m_pages.Flush());
    EXPECT_EQ(calls.CallCount(), 1U);
}

TEST_F(PagesTest, APageThatCannotBeWrittenIsKeptAndWrittenLater)
{
    FaultyFileCalls calls("ekewdme", FaultyFileCalls::Writes);
    MakePages(12);
    m_pages.Page(0, true)[0] = 1;
    for (uint64_t index = 1; index < 10; ++index)
        m_pages.Page(index, false);
    calls.FailFrom(1, ENOSPC);
    EXPECT_NE(m_pages.Page(10, false), nullptr); // reading goes on in the place of an unchanged page
    EXPECT_EQ(ResidentIndexes(), (std::vector<uint64_t>{0, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    for (const uint64_t index : ResidentIndexes())
        m_pages.Page(index, true);
    EXPECT_EQ(m_pages.Page(11, false), nullptr);
    EXPECT_FALSE(m_pages.Flush());
    EXPECT_EQ(m_pages.Resident().size(), 10U);
    calls.StopFailing();
    EXPECT_TRUE(m_pages.Flush());
    EXPECT_EQ(m_pages.Page(0, false)[0], 1);
}

TEST_F(StoreTest, TwoThreadsReadAndWriteMorePagesThanAreInMemory)
{
    constexpr uint64_t Pages = 12;
    CWaveData store;
    store.SetFormat(MakePcm16Format(44100, 1), nullptr);
    ASSERT_TRUE(store.InsertSpace(0, 0, Pages * Page));
    std::array<uint64_t, 2> wrong{};
    const auto work = [&](size_t thread) {
        for (uint64_t step = 0; step < 2 * Pages; ++step) {
            const uint64_t offset = (step * 5 % Pages) * Page + thread * Page / 2;
            const std::vector<int16_t> written = MakeNoise(static_cast<uint32_t>(step * 2 + thread), 5000);
            std::vector<int16_t> read(written.size());
            store.WriteData(written.data(), offset, 10000);
            wrong[thread] += !store.ReadData(read.data(), offset, 10000) || read != written;
        }
    };
    std::thread other(work, 1);
    work(0);
    other.join();
    EXPECT_EQ(wrong, (std::array<uint64_t, 2>{}));
}

TEST_F(StoreTest, AnEmptyStoreReadsNothingAndSaysSo)
{
    CWaveData store;
    int16_t value = 7;
    EXPECT_TRUE(store.ReadData(&value, 0, 0));
    EXPECT_FALSE(store.ReadData(&value, 0, 1));
    EXPECT_EQ(value, 7);
    EXPECT_EQ(store.SampleAt(0), 0);
    EXPECT_EQ(LoggedTexts(),
              std::vector<std::string>{"Error! Trying to read data beyond the limit of data pages!. Position: 0"});
}

TEST_F(StoreTest, ARangeBeyondTheEndIsDoneUpToTheEnd)
{
    CWaveData store;
    Fill(store, {1, MakeRamp(1000)});
    std::vector<int16_t> values(10, -1);
    EXPECT_FALSE(store.ReadData(values.data(), 1990, 20));
    EXPECT_EQ(values, (std::vector<int16_t>{995, 996, 997, 998, 999, -1, -1, -1, -1, -1}));
    EXPECT_FALSE(store.WriteData(values.data(), 1998, 4));
    EXPECT_EQ(store.SampleAt(999), 995);
    EXPECT_EQ(LoggedTexts().back(), "Error! Trying to write data beyond the limit of data pages!. Position: 7ce");
}

TEST_F(StoreTest, EditsBeyondTheEndAreRefused)
{
    CWaveData store;
    const SoundModel model{1, MakeRamp(1000)};
    Fill(store, model);
    EXPECT_FALSE(store.RemoveData(1000, 2002));
    EXPECT_FALSE(store.InsertSpace(2002, 2002, 100));
    EXPECT_EQ(LoggedTexts().back(), "Error! Failed to find temporary file by offset 7d2.");
    ExpectSameSound(store, model);
}

TEST_F(StoreTest, NewRoomIsSilentAllocatedAndInFilesOfOnePage)
{
    CWaveData store;
    store.SetFormat(MakePcm16Format(44100, 2), nullptr);
    ASSERT_TRUE(store.InsertSpace(0, 0, 2 * Page + 400));
    ASSERT_EQ(store.TempFiles().size(), 3U);
    EXPECT_EQ(store.TempFiles().front().Length, Page);
    EXPECT_EQ(store.TempFiles().back().Length, 400U);
    EXPECT_EQ(ReadAll(store), std::vector<int16_t>(Page + 200));
    EXPECT_EQ(m_folder.TempFileCount(), 3U);
    store.Close();
    EXPECT_EQ(m_folder.TempFileCount(), 0U);
}

TEST_F(StoreTest, WhatIsCutGoesAlongAndWhatFitsIsJoined)
{
    const auto layout = [](const CWaveData& store) {
        std::vector<std::pair<uint64_t, uint64_t>> files;
        for (const TempFileEntry& entry : store.TempFiles())
            files.emplace_back(entry.Start, entry.Length);
        return files;
    };
    using Layout = std::vector<std::pair<uint64_t, uint64_t>>;
    CWaveData store;
    SoundModel model{1, MakeNoise(1, 1000000)};
    Fill(store, model);
    EXPECT_EQ(layout(store), (Layout{{0, Page}, {Page, 279680}}));
    ASSERT_TRUE(store.InsertSpace(200, 200, 1000));
    model.Insert(100, std::vector<int16_t>(500));
    EXPECT_EQ(layout(store), (Layout{{0, 200}, {200, Page}, {Page + 200, 280480}}));
    ASSERT_TRUE(store.RemoveData(100, 300));
    model.Remove(50, 150);
    EXPECT_EQ(layout(store), (Layout{{0, Page}, {Page, 280480}}));
    ExpectSameSound(store, model);
}

TEST_F(StoreTest, RoomMayLieAnywhereInTheRangeThatIsOverwritten)
{
    CWaveData store;
    Fill(store, {1, MakeRamp(3000)});
    ASSERT_TRUE(store.InsertSpace(2000, 2000, 400)); // files now end at 1000, 1200 and 3200
    ASSERT_TRUE(store.InsertSpace(1000, 5000, 600)); // from one file into another
    EXPECT_EQ(store.FrameCount(), 3500U);
    EXPECT_EQ(ReadFrames(store, 0, 500), MakeRamp(500));
    EXPECT_EQ(ReadFrames(store, 2800, 3500), MakeRamp(700, 2300));
}

TEST_F(StoreTest, AnEightBitFormatIsHeldAsSixteenBit)
{
    WAVEFORMATEXTENSIBLE format = MakePcm16Format(8000, 2);
    format.wBitsPerSample = 8;
    format.nBlockAlign = 2;
    format.nAvgBytesPerSec = 16000;
    StreamProperties properties;
    properties.Bytes[7] = 9;
    CWaveData store;
    EXPECT_TRUE(store.SetFormat(format, &properties));
    EXPECT_EQ(store.SourceFormat(), format);
    EXPECT_EQ(store.WorkingFormat(), MakePcm16Format(8000, 2));
    EXPECT_EQ(store.StreamProps(), properties);
}

TEST_F(StoreTest, AFormatThatCannotBeStoredIsRefusedAndChangesNothing)
{
    const WAVEFORMATEXTENSIBLE good = MakePcm16Format(44100, 2);
    std::vector<WAVEFORMATEXTENSIBLE> refused(5, good);
    refused[0] = MakePcm16Format(44100, 9);
    refused[1].wBitsPerSample = 24;
    refused[1].nBlockAlign = 6;
    refused[2].nBlockAlign = 2;
    refused[3].nSamplesPerSec = 0;
    refused[4] = {};
    CWaveData store;
    EXPECT_FALSE(store.InsertSpace(0, 0, 4)) << "no format yet";
    ASSERT_TRUE(store.SetFormat(good, nullptr));
    for (const WAVEFORMATEXTENSIBLE& format : refused)
        EXPECT_FALSE(store.SetFormat(format, nullptr));
    EXPECT_EQ(store.WorkingFormat(), good);
}

class StreamTest : public StoreTest {
protected:
    void SetUp() override { ASSERT_TRUE(m_file.CreateNew(m_folder.Path() / "record").Ok()); }

    /// Whether a store can be filled from what stands in the file; it must be empty otherwise.
    bool Loads()
    {
        CWaveData store;
        uint64_t position = 0;
        const bool loaded = store.ReadFromStream(m_file, position);
        EXPECT_EQ(store.FrameCount() != 0, loaded);
        EXPECT_EQ(store.TempFiles().empty(), !loaded);
        return loaded;
    }

    File m_file;
};

TEST_F(StreamTest, ARecordIsTwoFormatsThePropertiesTheCountAndTheBytes)
{
    CWaveData store;
    const SoundModel model{2, MakeNoise(4, 100000)};
    Fill(store, model);
    uint64_t position = 16;
    ASSERT_TRUE(store.WriteToStream(m_file, position));
    EXPECT_EQ(position, 16 + 40 + 40 + 4100 + 8 + 200000U);

    uint8_t count[8];
    ASSERT_TRUE(m_file.ReadAllAt(count, 8, 16 + 4180).Ok());
    EXPECT_EQ(count[0] + 256 * count[1], 50000);

    CWaveData loaded;
    uint64_t readPosition = 16;
    ASSERT_TRUE(loaded.ReadFromStream(m_file, readPosition));
    EXPECT_EQ(readPosition, position);
    EXPECT_EQ(loaded.SourceFormat(), store.SourceFormat());
    ExpectSameSound(loaded, model);
    ExpectSamePeaks(loaded, model);
}

TEST_F(StreamTest, ARecordThatIsEmptyCutOrAbsurdLeavesTheStoreEmpty)
{
    CWaveData store;
    store.SetFormat(MakePcm16Format(44100, 2), nullptr);
    uint64_t position = 0;
    ASSERT_TRUE(store.WriteToStream(m_file, position));
    EXPECT_FALSE(Loads());

    const uint64_t frames = 1000;
    ASSERT_TRUE(m_file.WriteAt(&frames, 8, 4180).Ok());
    ASSERT_TRUE(m_file.Resize(4188 + 3999).Ok());
    EXPECT_FALSE(Loads());
    ASSERT_TRUE(m_file.Resize(4188 + 4000).Ok());
    EXPECT_TRUE(Loads());

    const uint64_t absurd = uint64_t{1} << 62; // times four bytes a frame is 0 in 64 bits
    ASSERT_TRUE(m_file.WriteAt(&absurd, 8, 4180).Ok());
    EXPECT_FALSE(Loads());
    const uint16_t noBlockAlign = 0;
    ASSERT_TRUE(m_file.WriteAt(&frames, 8, 4180).Ok());
    ASSERT_TRUE(m_file.WriteAt(&noBlockAlign, 2, 40 + 12).Ok());
    EXPECT_FALSE(Loads());
    EXPECT_EQ(m_folder.TempFileCount(), 0U);
}

} // namespace
} // namespace ek
