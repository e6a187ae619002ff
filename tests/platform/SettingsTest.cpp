// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/IniFile.h"
#include "platform/Paths.h"
#include "platform/ProductSettings.h"
#include "support/FaultyFileCalls.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
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
    const TestFolder folder;
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
    const TestFolder folder;
    WriteTextFile(folder / "a.ini", "\xEF\xBB\xBF; a comment\r\nloose = 1\r\n\r\n [ General ] \r\n# another\r\n"
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
    const TestFolder folder;
    IniFile file;
    file.Set("a", "b", "c");
    EXPECT_FALSE(file.Load(folder.Path()));
    EXPECT_EQ(file.Get("a", "b"), "c");
    EXPECT_TRUE(file.Load(folder / "none"));
    EXPECT_EQ(file.Get("a", "b"), std::nullopt);
    WriteTextFile(folder / "file", "");
    EXPECT_FALSE(file.Save(folder / "file" / "a.ini").Ok()) << "the folder's name is taken by a file";
}

class PathsTest : public testing::Test {
protected:
    TestFolder m_folder;
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
    WriteTextFile(m_folder / "Quolm" / "taken", "");
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
    // In a copy of this program, so that no other program of this folder ever sees the file; where programs may run.
    const ScopedVariable isCopy("EK_TEST_IS_COPY", "1");
    const TestFolder folder(ExecutableFolder());
    std::filesystem::copy_file("/proc/self/exe", folder / "copy");
    WriteTextFile(folder / "appdatadefault.ini", "[General]\nName=" + std::string(120, 'n') + "\n");
    const std::string copy = folder / "copy";
    EXPECT_EQ(std::system((copy + " --gtest_filter=*TheProductNameComes* >/dev/null").c_str()), 0);
}

TEST_F(PathsTest, LanguageFilesLieUnderTheShortNameOfTheLanguage)
{
    const std::filesystem::path product = m_folder / "Quolm" / "Ek Quintaphonica Zint 5.0";
    EXPECT_EQ(GetLanguageFilePath("Language", "effects_editor.xml"),
              product / "Language" / "eng" / "effects_editor.xml");
    WriteTextFile(product / "Language.ini", "[Language]\nShortName = deutschdeutschdeutsch\n");
    EXPECT_EQ(GetLanguageFilePath(nullptr, "a.xml"), product / "deutschdeutschdeutsc" / "a.xml");
    EXPECT_EQ(GetLanguageFilePath("Language", nullptr), "");
}

void StoreFromTwoThreads(const std::string& prefix)
{
    std::vector<std::thread> threads;
    for (const char* const thread : {"a", "b"}) {
        threads.emplace_back([key = prefix + thread] {
            for (int i = 0; i < 20; ++i)
                EXPECT_TRUE(SetProductSetting("Providers\\wav", key + std::to_string(i), key).Ok());
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(PathsTest, ProductSettingsOfAllThreadsAndProcessesAreStoredAtOnce)
{
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    StoreFromTwoThreads(child == 0 ? "child" : "parent");
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    IniFile file;
    ASSERT_TRUE(file.Load(m_folder / "Quolm" / "Ek Quintaphonica" / "Ek Quintaphonica Zint 5.0.ini"));
    for (const char* const thread : {"childa", "childb", "parenta", "parentb"}) {
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ(file.Get("Providers\\wav", thread + std::to_string(i)), thread);
            EXPECT_EQ(GetProductSetting("providers\\WAV", thread + std::to_string(i), ""), thread);
        }
    }
    EXPECT_EQ(GetProductSetting("Providers\\wav", "none", "fallback"), "fallback");
}

TEST_F(PathsTest, ASettingIsNotStoredOverAFileThatCannotBeRead)
{
    ASSERT_TRUE(SetProductSetting("a", "kept", "1").Ok());
    {
        FaultyFileCalls calls({}, FaultyFileCalls::Reads);
        calls.FailCall(1, EIO);
        EXPECT_FALSE(SetProductSetting("a", "b", "c").Ok());
    }
    EXPECT_EQ(GetProductSetting("a", "kept", ""), "1");
}

} // namespace
} // namespace ek::test
