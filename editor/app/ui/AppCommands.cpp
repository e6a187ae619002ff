// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/AppCommands.h"

#include "app/EkEditorApp.h"
#include "app/ui/MainFrame.h"
#include "framework/Prompts.h"
#include "resources/CommandIds.h"
#include "resources/Strings.h"

namespace ek {

std::span<const CommandEntry> AppCommands::CommandTable() const
{
    static constexpr CommandEntry table[] = {
        Command<AppCommands, &AppCommands::OnNew, &AppCommands::OnUpdateNew>(ID_FILE_NEW),
        Command<AppCommands, &AppCommands::OnNewMultitrack, &AppCommands::OnUpdateNewMultitrack>(ID_NEW_MULTITRACK),
        Command<AppCommands, &AppCommands::OnOpen>(ID_FILE_OPEN),
    };
    return table;
}

void AppCommands::OnNew()
{
    if (m_frame.CommandModifiers() & Qt::ShiftModifier)
        OnNewMultitrack();
    else
        m_frame.NewDocument(m_frame.App().WaveTemplateName());
}

/// Asked for whenever the program is idle, which keeps the host's transport buttons current too.
void AppCommands::OnUpdateNew(CommandUi&)
{
    m_frame.UpdateTransport();
}

void AppCommands::OnNewMultitrack()
{
    const std::string& name = m_frame.App().MultitrackTemplateName();
    if (m_frame.App().FindTemplate(name))
        m_frame.NewDocument(name);
    else
        m_frame.ShowStatusText(QString::fromStdString(LoadString(IDS_NO_MULTITRACK)));
}

void AppCommands::OnUpdateNewMultitrack(CommandUi& ui)
{
    ui.Enabled = m_frame.App().FindTemplate(m_frame.App().MultitrackTemplateName()) != nullptr;
}

void AppCommands::OnOpen()
{
    const std::string filter = CEkEditorApp::OpenFileFilter(false);
    if (filter.empty())
        return;
    m_frame.OpenFiles(CurrentPrompts().ChooseFilesToOpen(filter));
    m_frame.RefreshMenu();
}

} // namespace ek
