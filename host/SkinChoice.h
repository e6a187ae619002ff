// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

#include <filesystem>
#include <map>
#include <string>

class QActionGroup;
class QMenu;

namespace ek {

class DesktopTheme;
class HostServices;
class HostSkin;

/// Which skin is worn: the stored choice, the menu that changes it, and the desktop's wish where nothing is chosen.
class SkinChoice : public QObject {
    Q_OBJECT

public:
    /// Wears the stored choice, or `skinOfThisRun` when it is not empty.
    SkinChoice(HostSkin& skin, HostServices& services, DesktopTheme& desktop, const std::string& skinOfThisRun,
               QWidget* window);

    QMenu* Menu() const { return m_menu; }
    bool Has(const std::string& name) const { return m_skins.contains(name); }
    const std::string& WornSkin() const { return m_worn; }
    /// A skin that is not there gives the built-in colours and a line in the log. Not stored.
    void Wear(const std::string& name);

signals:
    void Changed(); ///< another skin is worn

private:
    void AddChoice(const QString& text, const std::string& name);
    void Choose(const std::string& name);
    void FollowDesktop();

    HostSkin& m_skin;
    HostServices& m_services;
    DesktopTheme& m_desktop;
    std::map<std::string, std::filesystem::path> m_skins;
    QMenu* m_menu;
    QActionGroup* m_choices;
    std::string m_chosen; ///< empty: the desktop's
    std::string m_worn;
};

} // namespace ek
