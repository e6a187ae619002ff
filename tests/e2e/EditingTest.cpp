// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditorFixture.h"
#include "Sounds.h"

#include <sndfile.h>

#include <algorithm>

namespace ek {
namespace {

class EditingTest : public EditorFixture {
protected:
    void SelectWithMouse(int fromX, int toX) const
    {
        m_desktop->MovePointer(fromX, 500);
        m_desktop->Press();
        m_desktop->MovePointer((fromX + toX) / 2, 500);
        m_desktop->MovePointer(toX, 500);
        m_desktop->Release();
    }

    /// Until the file at the path is another one.
    bool SaveOver(const std::filesystem::path& path) const
    {
        const ino_t before = FileNumber(path);
        m_desktop->Key("ctrl+s");
        return Eventually([&] { return FileNumber(path) != before; });
    }
};

TEST_F(EditingTest, APartIsCutBroughtBackAndPlayed)
{
    const std::vector<int16_t> sound = MakeSound(6);
    ASSERT_TRUE(WriteSound(Music("edited.wav"), sound));
    ASSERT_TRUE(BringUpEditor({"--audio-file", m_folder / "heard.wav", Music("edited.wav")}));
    ASSERT_TRUE(ShowsFile("edited.wav"));
    ASSERT_TRUE(m_desktop->Focus("Ek Wave Editor"));

    SelectWithMouse(400, 700);
    m_desktop->Key("ctrl+x");
    ASSERT_TRUE(SaveOver(Music("edited.wav")));
    const std::vector<int16_t> cut = ReadSound(Music("edited.wav"), SF_FORMAT_WAV);
    ASSERT_LT(cut.size(), sound.size());
    const auto [kept, removed] = std::ranges::mismatch(cut, sound);
    const std::vector<int16_t> part(removed, removed + static_cast<ptrdiff_t>(sound.size() - cut.size()));
    EXPECT_TRUE(std::equal(kept, cut.end(), removed + static_cast<ptrdiff_t>(part.size()), sound.end()));

    m_desktop->Key("ctrl+z");
    m_desktop->Key("space");
    EXPECT_TRUE(Eventually([&] { return FileNumber(m_folder / "heard.wav") != 0; }));
    EXPECT_EQ(ReadSound(m_folder / "heard.wav", SF_FORMAT_WAV), part) << "what came back is selected";
    ASSERT_TRUE(SaveOver(Music("edited.wav")));
    QuitEditor();
    EXPECT_EQ(ReadSound(Music("edited.wav"), SF_FORMAT_WAV), sound);
    EXPECT_EQ(FilesBelow(m_folder / "temporary"), std::vector<std::string>());
}

} // namespace
} // namespace ek
