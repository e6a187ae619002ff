// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/SoundFormatDialog.h"

#include "ek/Message.h"
#include "ekdatapr/ui/CoderPanel.h"
#include "resources/CommandIds.h"
#include "resources/Strings.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QVBoxLayout>

namespace ek {

CPlugInSoundFormat::CPlugInSoundFormat(std::string extension, QWidget* mainWindow, QWidget* parent)
    : QDialog(parent), m_extension(std::move(extension)), m_mainWindow(mainWindow)
{
    setWindowTitle(QString::fromStdString(LoadString(IDS_SOUND_FORMAT)));
    auto* panelPlace = new QWidget(this);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    EkCoderShowSettings(m_extension, panelPlace, true);
    auto* layout = new QVBoxLayout(this);
    if (auto* panel = panelPlace->findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        layout->addWidget(panel);
    layout->addWidget(buttons);
    panelPlace->hide();
}

void CPlugInSoundFormat::accept()
{
    EkCoderShowSettings(m_extension, this, false);
    QDialog::accept();
}

bool CPlugInSoundFormat::event(QEvent* event)
{
    if (event->type() != MessageEvent::Kind)
        return QDialog::event(event);
    auto& message = static_cast<MessageEvent&>(*event);
    const bool isRequest = message.Id == EK_WM_COMMAND && message.WParam >= ID_HOST_REQUEST_FIRST &&
                           message.WParam <= ID_HOST_REQUEST_LAST;
    if (!isRequest || !m_mainWindow)
        return QDialog::event(event);
    return QCoreApplication::sendEvent(m_mainWindow, &message);
}

} // namespace ek
