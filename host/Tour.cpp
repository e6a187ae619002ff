// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Tour.h"

#include "host/HostWindow.h"
#include "host/Picture.h"
#include "host/SkinChoice.h"
#include "host/UnattendedDialogs.h"

#include "platform/File.h"
#include "platform/Text.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDeadlineTimer>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QWheelEvent>
#include <QWindow>

#include <cstdio>

namespace ek {

namespace {

constexpr uint32_t ZoomIn = 1025;
constexpr uint32_t ZoomFull = 1028;
constexpr uint32_t ZoomInVertical = 1056;
constexpr uint32_t ZoomOutVertical = 1057;
constexpr uint32_t ScaleIn = 1304;
constexpr uint32_t ScaleOut = 1305;
constexpr int WheelNotch = 120;
constexpr uint64_t HeardMillisecondsOfTour = 500;
constexpr int PlayPatienceMilliseconds = 10000;

void PressKey(QObject* receiver, int key, Qt::KeyboardModifiers modifiers, const QString& text = {})
{
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QCoreApplication::sendEvent(receiver, &press);
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    QCoreApplication::sendEvent(receiver, &release);
}

void Type(QLineEdit& edit, const QString& text)
{
    edit.selectAll();
    for (const QChar letter : text)
        PressKey(&edit, 0, Qt::NoModifier, letter);
}

QAbstractButton* OkButton(const QDialog& dialog)
{
    if (auto* box = dialog.findChild<QDialogButtonBox*>())
        return box->button(QDialogButtonBox::Ok);
    for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
        if (button->isDefault())
            return button;
    }
    return nullptr;
}

} // namespace

Tour::Tour(HostWindow& window, UnattendedDialogs& dialogs, std::filesystem::path folder)
    : m_window(window), m_dialogs(dialogs), m_folder(std::move(folder))
{
}

bool Tour::Run(const std::filesystem::path& file)
{
    const auto command = [this](uint32_t id) { return [this, id] { return m_window.RunCommand(id); }; };
    const auto wear = [this](const char* skin) {
        return [this, skin] {
            m_window.Skins().Wear(skin);
            return true;
        };
    };
    const Step steps[] = {
        {"open", "Open a sound", [this, file] { return Open(file); }},
        {"zoom-in", "Zoom in", command(ZoomIn)},
        {"wheel", "Zoom in further with the wheel", [this] { return TurnWheel(6, 0.5); }},
        {"samples", "Zoom in to single samples", [this] { return TurnWheel(12, 0.5); }},
        {"scale", "Enlarge the waveform", command(ScaleIn)},
        {"scale-back", "Back to its size", command(ScaleOut)},
        {"one-channel", "Show one channel", command(ZoomInVertical)},
        {"all-channels", "Show all channels", command(ZoomOutVertical)},
        {"zoom-full", "Show the whole sound", command(ZoomFull)},
        {"play", "Play it", [this] { return Play(); }},
        {"stop", "Stop playing", [this] { return Stop(); }},
        {"dark", "Put on the dark skin", wear("Dark")},
        {"light", "Put on the light skin", wear("Light")},
        {"saved-flac", "Save it as FLAC", [this] { return SaveAs("tour.flac"); }},
        {"saved-ogg", "Save it as Ogg Vorbis", [this] { return SaveAs("tour.ogg"); }},
    };
    for (const Step& step : steps) {
        if (!Take(step))
            return false;
    }
    return true;
}

bool Tour::Take(const Step& step)
{
    const qsizetype complaints = m_dialogs.Complaints().size();
    std::printf("%s\n", step.Text);
    std::fflush(stdout);
    bool done = step.Do();
    for (const QString& complaint : m_dialogs.Complaints().mid(complaints)) {
        std::fprintf(stderr, "  the editor said: %s\n", qPrintable(complaint));
        done = false;
    }
    const std::filesystem::path picture = NextPicture(step.Name);
    done = SavePicture(m_window, picture) && done;
    if (!done)
        std::fprintf(stderr, "  this did not succeed: %s\n", step.Text);
    return done;
}

std::filesystem::path Tour::NextPicture(const char* name)
{
    std::filesystem::path picture = m_folder / Format("%02d-%s.png", ++m_pictures, name);
    std::printf("  %s\n", picture.filename().c_str());
    return picture;
}

bool Tour::SaveDialogPicture(QDialog& dialog, const char* name)
{
    return dialog.grab().save(QString::fromStdString(NextPicture(name).native()), "PNG");
}

bool Tour::Open(const std::filesystem::path& file)
{
    return m_window.OpenFilesNow({file}).isEmpty() && m_window.RunCommand(ZoomFull);
}

bool Tour::TurnWheel(int notches, double positionInWidth)
{
    m_window.Settle();
    const QPointF position(m_window.width() * positionInWidth, m_window.height() * 0.5);
    for (int i = 0; i < notches; ++i) {
        QWheelEvent wheel(position, m_window.mapToGlobal(position), QPoint(), QPoint(0, WheelNotch), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_window.windowHandle(), &wheel);
    }
    return true;
}

/// Until some of it was heard.
bool Tour::Play()
{
    if (!m_window.RunCommand(TransportPlay))
        return false;
    const HostPlayer& player = m_window.Audio().Player();
    QDeadlineTimer patience(PlayPatienceMilliseconds);
    while (player.HeardMilliseconds() < HeardMillisecondsOfTour && !patience.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
    return player.HeardMilliseconds() >= HeardMillisecondsOfTour;
}

bool Tour::Stop()
{
    return m_window.RunCommand(TransportStop) && m_window.Audio().State().IsStopped();
}

bool Tour::SaveAs(const char* fileName)
{
    const std::filesystem::path target = m_folder / fileName;
    if (IsFile(target) && !RemoveFile(target).Ok())
        return false;
    m_dialogs.SetAnswer([this, target](QDialog& dialog) { return AnswerSaving(dialog, target); });
    PressKey(m_window.windowHandle(), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    m_dialogs.SetAnswer(nullptr);
    return IsFile(target);
}

/// The dialog takes a typed name for what it is only while the field has the keyboard, and while it still reads its
/// folder it may put its own suggestion back; so the name is typed and confirmed on different visits.
bool Tour::AnswerFileName(QDialog& dialog, const QString& name)
{
    auto* edit = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    if (!edit)
        return false;
    if (!edit->hasFocus()) {
        dialog.activateWindow();
        edit->setFocus();
    } else if (edit->text() != name) {
        Type(*edit, name);
    } else {
        m_answered = &dialog;
        SaveDialogPicture(dialog, "save-as");
        PressKey(edit, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
    }
    return true;
}

bool Tour::AnswerSaving(QDialog& dialog, const std::filesystem::path& target)
{
    if (m_answered == &dialog)
        return false;
    if (qobject_cast<QFileDialog*>(&dialog))
        return AnswerFileName(dialog, QString::fromStdString(target.native()));
    QAbstractButton* ok = OkButton(dialog);
    if (!ok)
        return false;
    m_answered = &dialog;
    SaveDialogPicture(dialog, "sound-format");
    ok->click();
    return true;
}

} // namespace ek
