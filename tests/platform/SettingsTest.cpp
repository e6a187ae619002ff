// SPDX-License-Identifier: GPL-3.0-or-later
#include "FaultyFileCalls.h"
#include "ScratchFolder.h"
#include "platform/IniFile.h"
#include "platform/Paths.h"
#include "platform/ProductSettings.h"

#include <gtest/gtest.h>
#include <random>
#include <thread>
#include <vector>

namespace ek::test {
namespace {

using namespace std::string_literals;

std::string RandomValue(std::mt19937& random)
{
    static const std::vector<std::string> pieces = {"\n", "\r", "\"", "\\", "=", ";", "#", "[",  "]",
                                                    " ",  "\t", "n",  "r",  "a", "é", "🎵", "\0"s};
    std::string value;
    for (size_t length = random() % 8; length > 0; --length)
        value += pieces[random() % pieces.size()];
    return value;
}

TEST(IniFileTest, EveryValueComesBackExactly)
{
    const ScratchFolder folder;
    std::mt19937 random(1);
    IniFile written;
    std::vector<std::string> values = {std::string(100000, 'x'), "C:\\new\\rest", "\"quoted\"", "\"open", "\\n", ""};
    while (values.size() < 2000)
        values.push_back(RandomValue(random));
    for (size_t i = 0; i < values.size(); ++i)
        written.Set("Section [" + std::to_string(i % 7) + "]", "key " + std::to_string(i), values[i]);
    ASSERT_TRUE(written.Save(folder / "made" / "on the way" / "a.ini").Ok());
    IniFile read;
    ASSERT_TRUE(read.Load(folder / "made" / "on the way" / "a.ini"));
    for (size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(read.Get("Section [" + std::to_string(i % 7) + "]", "key " + std::to_string(i)), values[i]) << i;
}

TEST(IniFileTest, AFileWrittenByHandIsUnderstood)
{
    const ScratchFolder folder;
    WriteText(folder / "a.ini", "\xEF\xBB\xBF; a comment\r\nloose = 1\r\n\r\n [ General ] \r\n# another\r\n"
                                "Name=Ek = Zint; 5.0\r\nname = second\r\nno value\r\n= no key\r\n[broken\r\n"
                                "Quoted = \"two words\"\r\nTail = \"one\" and two\r\nEmpty=\r\nLast = end");
    IniFile file;
    ASSERT_TRUE(file.Load(folder / "a.ini"));
    EXPECT_EQ(file.Get("", "loose"), "1");
    EXPECT_EQ(file.Get("GENERAL", "NAME"), "Ek = Zint; 5.0");
    EXPECT_EQ(file.Get("General", "Quoted"), "two words");
    EXPECT_EQ(file.Get("General", "Tail"), "\"one\" and two");
    EXPECT_EQ(file.Get("General", "Empty", "fallback"), "");
    EXPECT_EQ(file.Get("General", "Last"), "end");
    EXPECT_EQ(file.Get("General", "no value"), std::nullopt);
    EXPECT_EQ(file.Get("Nowhere", "Name", "fallback"), "fallback");
}

TEST(IniFileTest, AMissingFileIsEmptyAndAnUnreadableOneChangesNothing)
{
    const ScratchFolder folder;
    IniFile file;
    file.Set("a", "b", "c");
    EXPECT_FALSE(file.Load(folder.Path()));
    EXPECT_EQ(file.Get("a", "b"), "c");
    EXPECT_TRUE(file.Load(folder / "none"));
    EXPECT_EQ(file.Get("a", "b"), std::nullopt);
    WriteText(folder / "file", "");
    EXPECT_FALSE(file.Save(folder / "file" / "a.ini").Ok()) << "the folder's name is taken by a file";
}

class PathsTest : public testing::Test {
protected:
    ScratchFolder m_folder;
    ScopedVariable m_data{"XDG_DATA_HOME", m_folder.Path().c_str()};
    ScopedVariable m_config{"XDG_CONFIG_HOME", m_folder.Path().c_str()};
};

TEST_F(PathsTest, BaseFoldersFollowTheEnvironmentAndDefaultToTheHomeFolder)
{
    EXPECT_EQ(DataHome(), m_folder.Path());
    const ScopedVariable home("HOME", "/home/someone");
    const ScopedVariable relative("XDG_DATA_HOME", "relative/name");
    const ScopedVariable none("XDG_CONFIG_HOME", nullptr);
    const ScopedVariable empty("XDG_STATE_HOME", "");
    EXPECT_EQ(DataHome(), "/home/someone/.local/share");
    EXPECT_EQ(ConfigHome(), "/home/someone/.config");
    EXPECT_EQ(StateHome(), "/home/someone/.local/state");
}

TEST_F(PathsTest, UserDataFilesLieUnderTheProductWhoseFolderIsMade)
{
    const std::filesystem::path product = m_folder / "Quolm" / "Ek Quintaphonica Zint 5.0";
    EXPECT_EQ(GetUserDataFilePath("a.ini"), product / "a.ini");
    EXPECT_TRUE(std::filesystem::is_directory(product));
    EXPECT_EQ(GetUserDataFilePath("").string(), product.string() + "/");
    EXPECT_EQ(GetUserDataFilePath("a.ini", "Other"), m_folder / "Quolm" / "Other" / "a.ini");
    EXPECT_EQ(GetUserDataFilePath(nullptr), "");
    WriteText(m_folder / "Quolm" / "taken", "");
    EXPECT_EQ(GetUserDataFilePath("a.ini", "taken"), "") << "a file has the folder's name";
}

TEST_F(PathsTest, TheProductNameComesFromTheFileBesideTheProgram)
{
    if (std::getenv("EK_TEST_IS_COPY")) {
        EXPECT_EQ(GetUserDataFilePath("a").parent_path().filename(), std::string(99, 'n'));
        EXPECT_EQ(ResolveModulePath("a"), ExecutableFolder() / "a");
        EXPECT_EQ(ResolveModulePath("/absolute/name"), "/absolute/name");
        return;
    }
    // In a copy of this program, so that no other program of this folder ever sees the file.
    const ScopedVariable isCopy("EK_TEST_IS_COPY", "1");
    std::filesystem::copy_file("/proc/self/exe", m_folder / "copy");
    WriteText(m_folder / "appdatadefault.ini", "[General]\nName=" + std::string(120, 'n') + "\n");
    const std::string copy = m_folder / "copy";
    EXPECT_EQ(std::system((copy + " --gtest_filter=*TheProductNameComes* >/dev/null").c_str()), 0);
}

TEST_F(PathsTest, LanguageFilesLieUnderTheShortNameOfTheLanguage)
{
    const std::filesystem::path product = m_folder / "Quolm" / "Ek Quintaphonica Zint 5.0";
    EXPECT_EQ(GetLanguageFilePath("Language", "effects_editor.xml"),
              product / "Language" / "eng" / "effects_editor.xml");
    WriteText(product / "Language.ini", "[Language]\nShortName = deutschdeutschdeutsch\n");
    EXPECT_EQ(GetLanguageFilePath(nullptr, "a.xml"), product / "deutschdeutschdeutsc" / "a.xml");
    EXPECT_EQ(GetLanguageFilePath("Language", nullptr), "");
}

TEST_F(PathsTest, ProductSettingsAreStoredAtOnceByAllThreads)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread] {
            for (int i = 0; i < 10; ++i) {
                const std::string key = std::to_string(thread) + "." + std::to_string(i);
                EXPECT_TRUE(SetProductSetting("Providers\\wav", key, key).Ok());
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    IniFile file;
    ASSERT_TRUE(file.Load(m_folder / "Quolm" / "Ek Quintaphonica" / "Ek Quintaphonica Zint 5.0.ini"));
    for (int i = 0; i < 40; ++i) {
        const std::string key = std::to_string(i / 10) + "." + std::to_string(i % 10);
        EXPECT_EQ(file.Get("Providers\\wav", key), key);
        EXPECT_EQ(GetProductSetting("providers\\WAV", key, ""), key);
    }
    EXPECT_EQ(GetProductSetting("Providers\\wav", "none", "fallback"), "fallback");
}

TEST_F(PathsTest, ASettingIsNotStoredOverAFileThatCannotBeRead)
{
    ASSERT_TRUE(SetProductSetting("a", "kept", "1").Ok());
    {
        FaultyFileCalls calls;
        const ScopedFileCalls scope(calls);
        calls.FailCall("PRead", EIO);
        EXPECT_FALSE(SetProductSetting("a", "b", "c").Ok());
    }
    EXPECT_EQ(GetProductSetting("a", "kept", ""), "1");
}

} // namespace
} // namespace ek::test
