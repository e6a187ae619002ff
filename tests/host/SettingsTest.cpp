// SPDX-License-Identifier: GPL-3.0-or-later
#include "Scratch.h"

#include "host/HostServices.h"
#include "host/SettingsStore.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <array>

namespace ek {
namespace {

constexpr char16_t Section[] = u"Ek Wave Editor";

TEST(SettingsTest, AwkwardValuesComeBackAsTheyWere)
{
    const Scratch folder;
    const std::filesystem::path file = folder / "deep/er/settings.ini";
    const std::u16string values[] = {
        u"",
        u" ",
        u" both ",
        u"a\nb",
        u"a\r\nb\n",
        u"[section]",
        u"key=value",
        u"; remark",
        u"# remark",
        u"a ; b",
        u"\"",
        u"\"quoted\"",
        u"'single'",
        u"\\",
        u"end\\",
        u"\ttab",
        u"/music/a \"b\".wav",
        u"\u00e4\u4e2d\u6587",
        u"\U0001F3B5",
        u"%s%n",
        std::u16string(5000, u'x'),
    };
    {
        SettingsStore store(file);
        HostServices services(store);
        for (size_t i = 0; i < std::size(values); ++i)
            services.WriteSetting(Section, (u"Key" + std::u16string(1, u'A' + i)).c_str(), values[i].c_str());
        services.SaveSettings();
    }
    SettingsStore store(file);
    HostServices services(store);
    for (size_t i = 0; i < std::size(values); ++i) {
        std::array<char16_t, 6000> buffer{};
        const std::u16string key = u"Key" + std::u16string(1, u'A' + i);
        ASSERT_EQ(services.ReadSetting(Section, key.c_str(), buffer.data(), buffer.size()), 1) << i;
        EXPECT_EQ(std::u16string(buffer.data()), values[i]) << i;
    }
}

TEST(SettingsTest, ALongValueIsCutToTheBufferAndAMissingOneLeavesItAlone)
{
    SettingsStore store{{}};
    HostServices services(store);
    services.WriteSetting(Section, u"Plain", u"abcdef");
    services.WriteSetting(Section, u"Pair", u"abc\U0001F3B5");
    std::array<char16_t, 8> buffer{};
    const auto read = [&](const char16_t* key, uint32_t maxChars) {
        buffer.fill(u'#');
        const int found = services.ReadSetting(Section, key, buffer.data(), maxChars);
        return std::pair(found, std::u16string(buffer.data(), buffer.size()));
    };
    EXPECT_EQ(read(u"Plain", 4), std::pair(1, std::u16string(u"abc\0####", 8)));
    EXPECT_EQ(read(u"Pair", 5), std::pair(1, std::u16string(u"abc\0####", 8)));
    EXPECT_EQ(read(u"Plain", 0), std::pair(0, std::u16string(8, u'#')));
    EXPECT_EQ(read(u"Missing", 8), std::pair(0, std::u16string(8, u'#')));
}

TEST(SettingsTest, AChangeIsSavedWhenTheEventLoopIsReached)
{
    const Scratch folder;
    SettingsStore store(folder / "settings.ini");
    HostServices services(store);
    services.WriteSetting(Section, u"Key", u"one");
    services.WriteSetting(Section, u"Key", u"two");
    EXPECT_FALSE(std::filesystem::exists(folder / "settings.ini"));
    QCoreApplication::processEvents();
    EXPECT_EQ(SettingsStore(folder / "settings.ini").Get("Ek Wave Editor", "Key"), "two");
}

TEST(SettingsTest, TwoEditorsDoNotUndoEachOthersSettings)
{
    const Scratch folder;
    SettingsStore first(folder / "settings.ini");
    SettingsStore second(folder / "settings.ini");
    first.Set("Host", "Skin", "Dark");
    second.Set("Ek Wave Editor", "RecentFile1", "/a.wav");
    ASSERT_TRUE(first.Save().Ok());
    ASSERT_TRUE(second.Save().Ok());
    const SettingsStore both(folder / "settings.ini");
    EXPECT_EQ(both.Get("Host", "Skin"), "Dark");
    EXPECT_EQ(both.Get("Ek Wave Editor", "RecentFile1"), "/a.wav");
}

TEST(SettingsTest, AFailureToSaveIsToldOnceAndNothingIsLost)
{
    const Scratch folder;
    const std::filesystem::path obstacle = folder.Write("config", "a file where the folder should be");
    SettingsStore store(obstacle / "settings.ini");
    HostServices services(store);
    int told = 0;
    QObject::connect(&services, &HostServices::StatusText, [&told] { ++told; });
    services.WriteSetting(Section, u"First", u"1");
    services.SaveSettings();
    services.WriteSetting(Section, u"Second", u"2");
    services.SaveSettings();
    EXPECT_EQ(told, 1);

    std::filesystem::remove(obstacle);
    services.SaveSettings();
    const SettingsStore saved(obstacle / "settings.ini");
    EXPECT_EQ(saved.Get("Ek Wave Editor", "First"), "1");
    EXPECT_EQ(saved.Get("Ek Wave Editor", "Second"), "2");
}

TEST(SettingsTest, AFileThatCannotBeReadIsNotReplaced)
{
    const Scratch folder;
    std::filesystem::create_directory(folder / "settings.ini");
    SettingsStore store(folder / "settings.ini");
    store.Set("Host", "Skin", "Dark");
    EXPECT_FALSE(store.Save().Ok());
    EXPECT_TRUE(std::filesystem::is_directory(folder / "settings.ini"));
    EXPECT_TRUE(store.NeedsSaving());
}

} // namespace
} // namespace ek
