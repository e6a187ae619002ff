// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/FileFilter.h"
#include "framework/Prompts.h"

#include <QPointer>
#include <QWidget>

class QFileDialog;

namespace ek {

/// The prompts as dialogs. They belong to the window that is active, or to the main window when none is, or to nobody.
class QtPrompts final : public Prompts {
public:
    void SetMainWindow(QWidget* window) { m_mainWindow = window; }

    MessageAnswer ShowMessage(std::string_view text, MessageButtons buttons, MessageIcon icon) override;
    std::vector<std::filesystem::path> ChooseFilesToOpen(std::string_view filter) override;
    std::optional<std::filesystem::path> ChooseFileToSave(std::string_view filter, std::string_view defaultExtension,
                                                          const std::filesystem::path& suggestion) override;
    bool ChooseSoundFormat(std::string_view extension) override;

private:
    QWidget* Parent() const;
    bool ConfirmReplace(const std::filesystem::path& path) const;
    void Prepare(QFileDialog& dialog, const std::vector<FileType>& types) const;
    void RememberFolder(const QFileDialog& dialog);

    QPointer<QWidget> m_mainWindow;
    QString m_folder; ///< where the last file was chosen
};

} // namespace ek
