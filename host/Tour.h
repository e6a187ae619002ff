// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>
#include <QPointer>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <functional>

class QDialog;

namespace ek {

class HostWindow;
class UnattendedDialogs;

/// Walks through the editor as a person would: opens a file, zooms, plays, changes the skin, saves in other formats.
/// Leaves numbered pictures and the saved sounds in a folder, and says on stdout what it does.
class Tour {
public:
    /// All of them outlive the tour; the folder exists.
    Tour(HostWindow& window, UnattendedDialogs& dialogs, std::filesystem::path folder);

    /// False when a step did not succeed; stderr says which.
    bool Run(const std::filesystem::path& file);

private:
    struct Step {
        const char* Name; ///< also of the picture
        const char* Text;
        std::function<bool()> Do;
    };
    bool Take(const Step& step);
    bool SaveDialogPicture(QDialog& dialog, const char* name);

    bool Open(const std::filesystem::path& file);
    bool TurnWheel(int notches, double positionInWidth);
    bool Play();
    bool Stop();
    bool SaveAs(const char* fileName);
    bool AnswerFileName(QDialog& dialog, const QString& name);
    bool AnswerSaving(QDialog& dialog, const std::filesystem::path& target);
    std::filesystem::path NextPicture(const char* name);

    HostWindow& m_window;
    UnattendedDialogs& m_dialogs;
    std::filesystem::path m_folder;
    QPointer<QDialog> m_answered;
    int m_pictures = 0;
};

} // namespace ek
