// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/ui/CoderPanel.h"
#include "ekdatapr/EkDataPr.h"
#include "support/TestFolder.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <algorithm>
#include <gtest/gtest.h>

namespace ek {

namespace {

/// A window with the panel of one coder, and the settings in a folder of their own.
class CoderPanelTest : public testing::Test {
protected:
    QWidget* Panel() { return m_window.findChild<QWidget*>("CoderPanel"); }
    template <typename Field>
    Field* Find(const char* key)
    {
        return m_window.findChild<Field*>(key);
    }
    static std::string Value(const char* extension, const std::string& key)
    {
        for (const CoderOption& option : EkGetCoderOptions(extension)) {
            if (option.Key == key)
                return option.Value;
        }
        return {};
    }

    TestFolder m_folder;
    QWidget m_window;
};

TEST_F(CoderPanelTest, ShowsTheSettingsInForceAndKeepsWhatIsChosen)
{
    std::string error;
    ASSERT_TRUE(EkSetCoderOptions("ogg", {{"quality", "0.25"}, {"channels", "Mono"}, {"openafter", "1"}}, error));
    ASSERT_TRUE(EkCoderShowSettings("ogg", &m_window, true));
    ASSERT_NE(Panel(), nullptr);
    EXPECT_EQ(Panel()->parentWidget(), &m_window);
    EXPECT_EQ(Find<QDoubleSpinBox>("quality")->value(), 0.25);
    EXPECT_EQ(Find<QComboBox>("channels")->currentText(), "Mono");
    EXPECT_TRUE(Find<QCheckBox>("openafter")->isChecked());

    Find<QDoubleSpinBox>("quality")->setValue(0.75);
    Find<QComboBox>("channels")->setCurrentIndex(5);
    Find<QCheckBox>("openafter")->setChecked(false);
    EXPECT_EQ(Value("ogg", "channels"), "Mono"); // not before the panel goes
    ASSERT_TRUE(EkCoderShowSettings("ogg", &m_window, false));
    EXPECT_EQ(Panel(), nullptr);
    EXPECT_EQ(Value("ogg", "quality"), "0.75");
    EXPECT_EQ(Value("ogg", "channels"), "5.1 Surround Mode");
    EXPECT_EQ(Value("ogg", "openafter"), "0");
}

TEST_F(CoderPanelTest, NumbersAreStoredWithAPointInEveryLanguage)
{
    m_window.setLocale(QLocale(QLocale::German));
    ASSERT_TRUE(EkCoderShowSettings("ogg", &m_window, true));
    Find<QDoubleSpinBox>("quality")->setValue(0.35);
    EXPECT_EQ(Find<QDoubleSpinBox>("quality")->text(), "0,35");
    EXPECT_TRUE(EkCoderShowSettings("ogg", &m_window, false));
    EXPECT_EQ(Value("ogg", "quality"), "0.35");
}

TEST_F(CoderPanelTest, EveryFieldOfEveryCoderIsReachedByAKeyAndExplained)
{
    for (const char* extension : {"wav", "flac", "ogg", "opus", "mp3"}) {
        ASSERT_TRUE(EkCoderShowSettings(extension, &m_window, true));
        for (const CoderOption& option : EkGetCoderOptions(extension)) {
            auto* field = Find<QWidget>(option.Key.c_str());
            ASSERT_EQ(field != nullptr, option.Choices.size() != 1) << extension << option.Key;
            if (!field)
                continue; // nothing to choose
            EXPECT_FALSE(field->toolTip().isEmpty());
            EXPECT_NE(field->focusPolicy() & Qt::TabFocus, 0);
            const auto labels = Panel()->findChildren<QLabel*>();
            const bool hasBuddy =
                std::ranges::any_of(labels, [&](const QLabel* label) { return label->buddy() == field; });
            EXPECT_TRUE(hasBuddy || qobject_cast<QCheckBox*>(field)) << extension << option.Key;
        }
        EXPECT_TRUE(EkCoderShowSettings(extension, &m_window, false));
    }
}

TEST_F(CoderPanelTest, ThereIsNoPanelForATypeThatIsNotWritten)
{
    EXPECT_FALSE(EkCoderShowSettings("txt", &m_window, true));
    EXPECT_FALSE(EkCoderShowSettings("wav", &m_window, false));
    EXPECT_FALSE(EkCoderShowSettings("wav", nullptr, true));
    EXPECT_TRUE(m_window.children().isEmpty());
}

} // namespace

} // namespace ek

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
