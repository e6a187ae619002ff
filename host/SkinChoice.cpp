// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/SkinChoice.h"

#include "host/DesktopTheme.h"
#include "host/HostServices.h"
#include "host/HostSkin.h"
#include "host/SkinFile.h"

#include "debugmanager/DebugManager.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>

namespace ek {

namespace {

constexpr char SettingKey[] = "Skin";

void Log(const std::vector<std::string>& lines)
{
    for (const std::string& line : lines)
        enDebugManager().WriteLogMessage("Host", LogError, "%s", line.c_str());
}

} // namespace

SkinChoice::SkinChoice(HostSkin& skin, HostServices& services, DesktopTheme& desktop, const std::string& skinOfThisRun,
                       QWidget* window)
    : QObject(window), m_skin(skin), m_services(services), m_desktop(desktop), m_skins(FindSkins(SkinFolders())),
      m_menu(new QMenu(tr("Skin"), window)), m_choices(new QActionGroup(m_menu)),
      m_chosen(skinOfThisRun.empty() ? services.ReadOwnSetting(SettingKey) : skinOfThisRun)
{
    AddChoice(tr("Follow Desktop"), {});
    m_menu->addSeparator();
    for (const auto& [name, file] : m_skins)
        AddChoice(QString::fromStdString(name), name);
    connect(&m_desktop, &DesktopTheme::Changed, this, &SkinChoice::FollowDesktop);
    if (m_chosen.empty())
        FollowDesktop();
    else
        Wear(m_chosen);
}

void SkinChoice::AddChoice(const QString& text, const std::string& name)
{
    QAction* action = m_menu->addAction(text);
    action->setCheckable(true);
    action->setChecked(name == m_chosen);
    m_choices->addAction(action);
    connect(action, &QAction::triggered, this, [this, name] { Choose(name); });
}

void SkinChoice::Choose(const std::string& name)
{
    m_chosen = name;
    m_services.WriteOwnSetting(SettingKey, name);
    if (name.empty())
        FollowDesktop();
    else
        Wear(name);
}

void SkinChoice::FollowDesktop()
{
    if (m_chosen.empty())
        Wear(m_desktop.IsDark() ? "Dark" : "Light");
}

void SkinChoice::Wear(const std::string& name)
{
    const auto found = m_skins.find(name);
    std::vector<std::string> complaints;
    if (found == m_skins.end()) {
        complaints.push_back("Error: there is no skin named \"" + name + "\", the built-in colours are used");
        m_skin.Use(Skin());
    } else {
        m_skin.Use(Skin::Load(found->second, complaints));
    }
    Log(complaints);
    m_worn = name;
    emit Changed();
}

} // namespace ek
