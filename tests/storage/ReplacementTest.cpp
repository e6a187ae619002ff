// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Replacement.h"
#include "StoreTest.h"
#include "support/FaultyFileCalls.h"

#include <algorithm>
#include <random>

namespace ek {
namespace {

constexpr uint64_t Largest = TempFileList::LargestFile;

class ReplacementTest : public StoreTest {
protected:
    void Replace(uint64_t from, uint64_t to, const std::vector<uint8_t>& bytes)
    {
        Replacement replacement(m_files, from, to, bytes.size());
        ASSERT_TRUE(replacement.Append(bytes.data(), bytes.size()) && replacement.Complete());
        replacement.Commit();
        const auto place = m_model.begin() + static_cast<ptrdiff_t>(from);
        m_model.insert(m_model.erase(place, m_model.begin() + static_cast<ptrdiff_t>(to)), bytes.begin(), bytes.end());
    }

    void ExpectModel()
    {
        std::vector<uint8_t> bytes(m_files.Length());
        ASSERT_TRUE(m_files.Read(bytes.data(), 0, bytes.size()));
        ASSERT_TRUE(bytes == m_model);
    }

    /// Of two files side by side none could hold both.
    void ExpectDenseFiles()
    {
        const TempFileList::List& files = m_files.Entries();
        for (auto file = files.begin(); file != files.end() && std::next(file) != files.end(); ++file)
            ASSERT_GT(file->Length + std::next(file)->Length, Largest);
        ASSERT_TRUE(std::ranges::all_of(files, [](const TempFileEntry& file) { return file.Length <= Largest; }));
        ASSERT_EQ(m_folder.TempFileCount(), files.size());
    }

    std::vector<uint8_t> Bytes(uint64_t count) { return std::vector<uint8_t>(count, static_cast<uint8_t>(m_random())); }

    TempFileList m_files;
    std::vector<uint8_t> m_model;
    std::mt19937_64 m_random{7};
};

TEST_F(ReplacementTest, ManySmallAndLargeEditsLeaveFewFiles)
{
    Replace(0, 0, Bytes(5 * Largest + 100));
    for (int step = 0; step < 500; ++step) {
        SCOPED_TRACE(step);
        const uint64_t from = m_random() % 4 != 0 ? m_random() % (m_model.size() + 1)
                                                  : m_random() % (m_model.size() / Largest + 1) * Largest;
        const uint64_t longest = m_random() % 8 == 0 ? 2 * Largest : 5;
        const uint64_t to = std::min<uint64_t>(m_model.size(), from + m_random() % longest);
        Replace(from, to, Bytes(m_random() % (m_model.size() > 8 * Largest ? 2 : longest)));
        ExpectDenseFiles();
        if (step % 50 == 0)
            ExpectModel();
    }
    ExpectModel();
    Replace(0, m_model.size(), {});
    EXPECT_EQ(m_folder.TempFileCount(), 0U);
}

TEST_F(ReplacementTest, AnEditCopiesNoMoreThanAFewFiles)
{
    Replace(0, 0, Bytes(20 * Largest));
    for (const uint64_t from : {Largest / 2, 10 * Largest - 1, 10 * Largest, 20 * Largest - 100}) {
        FaultyFileCalls calls("ekewdme", FaultyFileCalls::Reads | FaultyFileCalls::Opens);
        Replace(from, from + 5, Bytes(3));
        EXPECT_LE(calls.CallCount(), 20U);
    }
    ExpectModel();
}

TEST_F(ReplacementTest, WithoutCommitNothingIsLeftOfIt)
{
    Replace(0, 0, Bytes(3 * Largest));
    const std::filesystem::path first = m_files.Entries().front().Name;
    {
        Replacement dropped(m_files, 100, 2 * Largest + 5, 4 * Largest);
        const std::vector<uint8_t> bytes = Bytes(4 * Largest);
        ASSERT_TRUE(dropped.Append(bytes.data(), bytes.size()) && dropped.Complete());
        EXPECT_GT(m_folder.TempFileCount(), m_files.Entries().size());
    }
    EXPECT_EQ(m_files.Entries().front().Name, first);
    ExpectModel();
    ExpectDenseFiles();
}

TEST_F(ReplacementTest, MoreOrLessThanWasPlannedIsTaken)
{
    Replace(0, 0, Bytes(3 * Largest));
    for (const uint64_t planned : {uint64_t{0}, 5 * Largest}) {
        Replacement replacement(m_files, Largest - 50, 2 * Largest, planned);
        const std::vector<uint8_t> bytes = Bytes(Largest / 2);
        ASSERT_TRUE(replacement.Append(bytes.data(), bytes.size()) && replacement.AppendZeros(40));
        replacement.EndAtProgress();
        ASSERT_TRUE(replacement.Complete());
        replacement.Commit();
        const auto place = m_model.begin() + static_cast<ptrdiff_t>(Largest - 50);
        std::fill_n(std::ranges::copy(bytes, place).out, 40, uint8_t{0});
        ExpectModel();
    }
}

} // namespace
} // namespace ek
