// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/HostSkin.h"

#include "platform/Text.h"
#include "skincontrols/Skin.h"
#include "skinmanager/SkinColors.h"

#include <QApplication>
#include <QColor>
#include <QWidget>

namespace ek {

namespace {

QColor NamedColor(std::string_view name)
{
    return SkinColorOf(SkinColorId(name).value());
}

/// Flat bars that part themselves from the work by one quiet line.
constexpr char StyleSheetText[] = R"(
QMenuBar { background: %menu; color: %menutext; padding: 1px 4px; }
QMenuBar::item { padding: 4px 9px; border-radius: 4px; background: transparent; }
QMenuBar::item:selected, QMenuBar::item:pressed { background: %hover; color: %menutext; }
QMenuBar::item:disabled { color: %gray; }
QMenu { background: %menu; color: %menutext; border: 1px solid %line; padding: 4px; }
QMenu::item { padding: 5px 28px 5px 24px; border-radius: 4px; }
QMenu::item:selected { background: %highlight; color: %highlighttext; }
QMenu::item:disabled { color: %gray; background: transparent; }
QMenu::separator { height: 1px; background: %line; margin: 4px 8px; }
QMenu::indicator { width: 16px; height: 16px; left: 5px; }
QToolBar { background: %face; border: none; border-top: 1px solid %line; border-bottom: 1px solid %line;
           padding: 3px 5px; spacing: 2px; }
QToolBar::separator { width: 1px; background: %line; margin: 4px 5px; }
QToolBar QToolButton { border: none; border-radius: 4px; padding: 4px; background: transparent; }
QToolBar QToolButton:hover { background: %hover; }
QToolBar QToolButton:pressed, QToolBar QToolButton:checked { background: %pressed; }
QToolBar QToolButton[popupMode="1"] { padding-right: 15px; }
QToolBar QToolButton[popupMode="2"]::menu-indicator { image: none; }
QToolBar QToolButton::menu-button { border: none; width: 13px; }
QToolBar QToolButton::menu-arrow { width: 7px; height: 7px; }
QStatusBar { background: %face; color: %facetext; border-top: 1px solid %line; }
QStatusBar::item { border: none; }
QToolTip { background: %infoback; color: %infotext; border: 1px solid %line; padding: 3px 5px; }
)";

QString MakeStyleSheet()
{
    // The longer of two names that begin alike comes first.
    static constexpr std::pair<const char*, std::string_view> variables[] = {
        {"%menutext", "COLOR_MENUTEXT"},   {"%menu", "COLOR_MENU"},
        {"%gray", "COLOR_GRAYTEXT"},       {"%highlighttext", "COLOR_HIGHLIGHTTEXT"},
        {"%highlight", "COLOR_HIGHLIGHT"}, {"%line", "COLOR_BTNSHADOW"},
        {"%facetext", "COLOR_BTNTEXT"},    {"%face", "COLOR_BTNFACE"},
        {"%hover", "COLOR_3DLIGHT"},       {"%pressed", "COLOR_SCROLLBAR"},
        {"%infoback", "COLOR_INFOBK"},     {"%infotext", "COLOR_INFOTEXT"},
    };
    QString text = QString::fromLatin1(StyleSheetText);
    for (const auto& [variable, colorName] : variables)
        text.replace(QLatin1String(variable), NamedColor(colorName).name());
    return text;
}

} // namespace

HostSkin::~HostSkin()
{
    SetCurrentSkin(nullptr);
}

void HostSkin::SkinWindow(QWidget* window, int recursive)
{
    if (!window)
        return;
    window->setPalette(QApplication::palette());
    for (QWidget* child : recursive ? window->findChildren<QWidget*>() : QList<QWidget*>())
        child->setPalette(QApplication::palette());
}

const enXml* HostSkin::GetSkinXml(const char16_t* moduleName, const char16_t* elementName)
{
    return m_skin.Element(ToUtf8(moduleName), ToUtf8(elementName));
}

void HostSkin::Use(Skin skin)
{
    m_skin = std::move(skin);
    SetCurrentSkin(this);
    QPalette palette = SkinPalette();
    palette.setColor(QPalette::Link, NamedColor("COLOR_HOTLIGHT"));
    palette.setColor(QPalette::LinkVisited, NamedColor("COLOR_HOTLIGHT"));
    QApplication::setPalette(palette);
    qApp->setStyleSheet(MakeStyleSheet());
}

} // namespace ek
