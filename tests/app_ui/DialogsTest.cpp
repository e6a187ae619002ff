// SPDX-License-Identifier: GPL-3.0-or-later
#include "FrameFixture.h"

#include "app/ui/QtPrompts.h"
#include "app/ui/SoundFormatDialog.h"
#include "background/ui/QtProgressPresenter.h"
#include "ekdatapr/EkDataPr.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <deque>

namespace ek {
namespace {

/// Does one thing after the other to the modal dialogs that come up, each as soon as its dialog is there.
class DialogUser : public QObject {
public:
    DialogUser()
    {
        connect(&m_timer, &QTimer::timeout, this, &DialogUser::Look);
        m_timer.start(1);
    }

    template <class Dialog>
    void Then(std::function<void(Dialog&)> act)
    {
        m_steps.push_back([act = std::move(act)](QWidget* widget) {
            auto* dialog = qobject_cast<Dialog*>(widget);
            if (dialog)
                act(*dialog);
            return dialog != nullptr;
        });
    }

    bool IsDone() const { return m_steps.empty(); }

private:
    void Look()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (m_steps.empty() || !modal || !modal->isVisible() || m_busy)
            return;
        m_busy = true;
        if (m_steps.front()(modal))
            m_steps.pop_front();
        m_busy = false;
    }

    std::deque<std::function<bool(QWidget*)>> m_steps;
    bool m_busy = false;
    QTimer m_timer;
};

class PromptsTest : public testing::Test {
protected:
    static constexpr char Filter[] = "WAV (*.wav)|*.wav|FLAC (*.flac)|*.flac|";

    void AnswerBox(QMessageBox::StandardButton button)
    {
        m_user.Then<QMessageBox>([this, button](QMessageBox& box) {
            m_texts.push_back(box.text().toStdString());
            box.button(button)->click();
        });
    }

    void SaveAs(const QString& name, const QString& nameFilter = {})
    {
        m_user.Then<QFileDialog>([name, nameFilter](QFileDialog& dialog) {
            if (!nameFilter.isEmpty()) {
                dialog.selectNameFilter(nameFilter);
                emit dialog.filterSelected(nameFilter);
            }
            if (!name.isEmpty())
                dialog.findChild<QLineEdit*>("fileNameEdit")->setText(name);
            static_cast<QDialog&>(dialog).accept();
        });
    }

    std::optional<std::filesystem::path> AskSave(const std::string& suggestion)
    {
        return m_prompts.ChooseFileToSave(Filter, "wav", m_folder.Path() / suggestion);
    }

    TestFolder m_folder;
    QtPrompts m_prompts;
    DialogUser m_user;
    std::vector<std::string> m_texts;
};

TEST_F(PromptsTest, ABoxShowsItsTextPlainAndGivesTheAnswer)
{
    m_user.Then<QMessageBox>([](QMessageBox& box) {
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        box.button(QMessageBox::No)->click();
    });
    m_user.Then<QMessageBox>([](QMessageBox& box) { box.reject(); });
    const auto ask = [this] {
        return m_prompts.ShowMessage("Save <b>a&b</b>?", MessageButtons::YesNoCancel, MessageIcon::Question);
    };
    EXPECT_EQ(ask(), MessageAnswer::No);
    EXPECT_EQ(ask(), MessageAnswer::Cancel);
}

TEST_F(PromptsTest, ANameGetsTheExtensionOfTheChosenType)
{
    SaveAs("take 1.2");
    EXPECT_EQ(AskSave("old.wav"), m_folder.Path() / "take 1.2.wav");
    SaveAs("take", "FLAC (*.flac)");
    EXPECT_EQ(AskSave("old.wav"), m_folder.Path() / "take.flac");
    SaveAs("", "FLAC (*.flac)");
    EXPECT_EQ(AskSave("song.wav"), m_folder.Path() / "song.flac") << "the name follows the type";
    SaveAs("");
    EXPECT_EQ(AskSave("tune.mod"), m_folder.Path() / "tune.wav") << "a type that can be written";
    m_user.Then<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(AskSave("old.wav"), std::nullopt);
}

TEST_F(PromptsTest, ReplacingAFileIsConfirmedUnderItsFullName)
{
    WriteWav(m_folder.Path() / "there.wav", 1, MakeRamp(10));
    SaveAs("there");
    AnswerBox(QMessageBox::No);
    SaveAs("there");
    AnswerBox(QMessageBox::Yes);
    EXPECT_EQ(AskSave("old.wav"), m_folder.Path() / "there.wav");
    EXPECT_EQ(m_texts, (Names(2, "there.wav already exists.\nDo you want to replace it?")));
    EXPECT_TRUE(m_user.IsDone());
}

TEST_F(PromptsTest, SeveralFilesAreChosenByTheFilter)
{
    const auto one = m_folder.Path() / "one.wav";
    const auto two = m_folder.Path() / "two.flac";
    WriteWav(one, 1, MakeRamp(10));
    WriteWav(two, 1, MakeRamp(10));
    m_user.Then<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.nameFilters(), (QStringList{"All (*.wav *.flac)", "WAV (*.wav)"}));
        dialog.setDirectory(QString::fromStdString(m_folder.Path().string()));
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText("\"one.wav\" \"two.flac\"");
        static_cast<QDialog&>(dialog).accept();
    });
    EXPECT_EQ(m_prompts.ChooseFilesToOpen("All|*.wav;*.flac|WAV (*.wav)|*.wav||"),
              (std::vector<std::filesystem::path>{one, two}));
}

TEST_F(PromptsTest, ATypedNameWithoutFileFindsTheSoundOfThatName)
{
    for (const char* name : {"take.wav", "plain"})
        WriteWav(m_folder.Path() / name, 1, MakeRamp(10));
    const auto open = [&](const QString& typed) {
        m_user.Then<QFileDialog>([&, typed](QFileDialog& dialog) {
            dialog.setDirectory(QString::fromStdString(m_folder.Path().string()));
            dialog.findChild<QLineEdit*>("fileNameEdit")->setText(typed);
            static_cast<QDialog&>(dialog).accept();
        });
        return m_prompts.ChooseFilesToOpen("All|*.wav|");
    };
    EXPECT_EQ(open("take"), std::vector{m_folder.Path() / "take.wav"});
    EXPECT_EQ(open("plain"), std::vector{m_folder.Path() / "plain"}) << "a file as it is";
}

TEST_F(PromptsTest, ABoxThatGoesWithItsWindowIsAnsweredLikeOneThatIsClosed)
{
    auto* window = new QWidget;
    m_prompts.SetMainWindow(window);
    m_user.Then<QMessageBox>([window](QMessageBox& box) {
        EXPECT_EQ(box.parentWidget(), window);
        delete window;
    });
    EXPECT_EQ(m_prompts.ShowMessage("Save?", MessageButtons::YesNoCancel, MessageIcon::Question),
              MessageAnswer::Cancel);
}

class ProgressTest : public testing::Test {
protected:
    ProgressTest() { m_window.show(); }
    ~ProgressTest() override { SetProgressPresenter(nullptr); }

    /// Runs a worker that ends when it is cancelled or when the test lets it go.
    WorkResult Wait(bool cancellable)
    {
        return RunInBackground("Caption", cancellable, [this](CProgressDlg& progress) {
            progress.SetPos(37);
            while (!progress.IsCancelled() && !m_release.IsSet())
                std::this_thread::yield();
            return progress.IsCancelled() ? WorkResult::Cancelled : WorkResult::Failed;
        });
    }

    QLineEdit m_window;
    ManualResetEvent m_release;
    DialogUser m_user;
};

TEST_F(ProgressTest, InputIsHeldOffWhileTheDialogIsNotUpYet)
{
    QtProgressPresenter presenter(std::chrono::hours(1));
    SetProgressPresenter(&presenter);
    bool saw = false;
    QTimer::singleShot(0, &m_window, [&] {
        saw = true;
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        QTest::keyClicks(&m_window, "typed");
        QTest::mouseClick(&m_window, Qt::LeftButton);
        m_release.Set();
    });
    EXPECT_EQ(Wait(true), WorkResult::Failed);
    EXPECT_TRUE(saw);
    EXPECT_EQ(m_window.text(), "");
    QTest::keyClicks(&m_window, "typed");
    EXPECT_EQ(m_window.text(), "typed") << "and let through again afterwards";
}

TEST_F(ProgressTest, EscapeCancelsWorkThatCanBeCancelled)
{
    QtProgressPresenter presenter(std::chrono::milliseconds(0));
    SetProgressPresenter(&presenter);
    m_user.Then<QDialog>([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Caption");
        EXPECT_TRUE(dialog.findChild<QPushButton*>()->isVisible());
        QTest::keyClick(&dialog, Qt::Key_Escape);
        EXPECT_TRUE(dialog.isVisible()) << "until the worker has stopped";
    });
    EXPECT_EQ(Wait(true), WorkResult::Cancelled);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(ProgressTest, OtherWorkShowsNoCancelAndDoesNotMindEscape)
{
    QtProgressPresenter presenter(std::chrono::milliseconds(0));
    SetProgressPresenter(&presenter);
    presenter.SetMainWindow(&m_window);
    QApplication::setActiveWindow(nullptr);
    m_user.Then<QDialog>([this](QDialog& dialog) {
        EXPECT_EQ(dialog.parentWidget(), &m_window) << "though another program is in use";
        EXPECT_FALSE(dialog.findChild<QPushButton*>()->isVisible());
        QTest::keyClick(&dialog, Qt::Key_Escape);
        EXPECT_FALSE(dialog.close());
        EXPECT_TRUE(dialog.isVisible());
        m_release.Set();
    });
    EXPECT_EQ(Wait(false), WorkResult::Failed);
}

TEST_F(ProgressTest, QuittingTheProgramCancelsTheWork)
{
    QtProgressPresenter presenter(std::chrono::hours(1));
    SetProgressPresenter(&presenter);
    WorkResult result = WorkResult::Failed;
    QTimer::singleShot(0, &m_window, [&] {
        QTimer::singleShot(0, &m_window, [] { QCoreApplication::exit(); });
        result = Wait(true);
    });
    QApplication::exec();
    EXPECT_EQ(result, WorkResult::Cancelled);
}

TEST_F(ProgressTest, AMessageThatComesUpMeanwhileCanBeAnswered)
{
    QtProgressPresenter presenter(std::chrono::hours(1));
    SetProgressPresenter(&presenter);
    QTimer::singleShot(0, &m_window, [this] {
        QMessageBox box(&m_window);
        QTimer::singleShot(0, &box, [&box] { QTest::keyClick(&box, Qt::Key_Escape); });
        box.addButton(QMessageBox::Cancel);
        EXPECT_EQ(box.exec(), QMessageBox::Cancel);
        m_release.Set();
    });
    EXPECT_EQ(Wait(true), WorkResult::Failed);
}

TEST(SoundFormatTest, RequestsOfThePanelGoToTheMainWindow)
{
    MessageKeeper mainWindow;
    CPlugInSoundFormat dialog("wav", &mainWindow, nullptr);
    MessageEvent request(EK_WM_COMMAND, ID_HOST_REQUEST_ROUTED, 99);
    QCoreApplication::sendEvent(&dialog, &request);
    MessageEvent other(EK_WM_COMMAND, ID_FILE_OPEN, 0);
    QCoreApplication::sendEvent(&dialog, &other);
    EXPECT_EQ(mainWindow.Messages, (std::vector<MessageKeeper::Message>{{EK_WM_COMMAND, ID_HOST_REQUEST_ROUTED, 99}}));
}

TEST(SoundFormatTest, OkKeepsTheSettingsAndCancelDoesNot)
{
    const TestFolder folder;
    const auto setting = [] { return EkGetCoderOptions("wav").at(0).Value; };
    const std::string before = setting();
    const auto change = [&](CPlugInSoundFormat& dialog) {
        auto* choice = dialog.findChild<QComboBox*>();
        ASSERT_NE(choice, nullptr);
        choice->setCurrentIndex(choice->currentIndex() == 0 ? 1 : 0);
    };
    CPlugInSoundFormat cancelled("wav", nullptr, nullptr);
    change(cancelled);
    cancelled.reject();
    EXPECT_EQ(setting(), before);
    CPlugInSoundFormat kept("wav", nullptr, nullptr);
    change(kept);
    kept.accept();
    EXPECT_NE(setting(), before);
}

} // namespace
} // namespace ek
