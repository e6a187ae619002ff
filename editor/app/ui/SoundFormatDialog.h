// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

#include <string>

namespace ek {

/// "Sound Format": the settings panel of one coder with OK and Cancel. OK keeps the settings for the next file.
class CPlugInSoundFormat final : public QDialog {
    Q_OBJECT
public:
    /// `extension` without its dot. Requests that the panel sends up to the host go through `mainWindow`.
    CPlugInSoundFormat(std::string extension, QWidget* mainWindow, QWidget* parent);

    void accept() override;

protected:
    bool event(QEvent* event) override;

private:
    std::string m_extension;
    QWidget* m_mainWindow;
};

} // namespace ek
