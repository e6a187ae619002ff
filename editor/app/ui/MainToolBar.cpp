// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MainToolBar.h"

#include "platform/Paths.h"
#include "resources/Commands.h"
#include "resources/Menus.h"
#include "skincontrols/Skin.h"
#include "xml/enXml.h"

namespace ek {

namespace {

constexpr int ImageSize = 16;
constexpr uint32_t ButtonTextColor = 18; // COLOR_BTNTEXT

ButtonTexts TextsOf(uint32_t id)
{
    QString toolTip = QString::fromStdString(CommandToolTip(id));
    const CommandInfo* info = FindCommand(id);
    if (info && *info->Keys)
        toolTip += QStringLiteral(" (%1)").arg(QString::fromUtf8(info->Keys));
    return {toolTip, QString::fromStdString(CommandStatusText(id))};
}

QIcon IconFromFile(const QString& file, const QColor& color)
{
    return file.endsWith(".svg", Qt::CaseInsensitive) ? MakeIcon(file, color) : QIcon(file);
}

} // namespace

MainToolBar::MainToolBar(CommandRouter& router, QWidget* parent) : CommandToolBar("Main", router, parent)
{
    setIconSize(QSize(ImageSize, ImageSize));
    for (const uint32_t id : LoadToolBar(TOOLBAR_MAIN)) {
        if (id == 0)
            addSeparator();
        else if (id == ID_EDIT_UNDO || id == ID_EDIT_REDO)
            AddHistoryCommand(id, id == ID_EDIT_UNDO ? ID_UNDO_HISTORY : ID_REDO_HISTORY, TextsOf(id));
        else
            AddCommand(id, TextsOf(id));
    }
    LoadImages(nullptr);
}

void MainToolBar::LoadImages(const enXml* element)
{
    QColor color = SkinColorOf(ButtonTextColor);
    std::string own;
    if (element && element->GetAttribute("color", own) && QColor::isValidColor(QString::fromStdString(own)))
        color = QColor(QString::fromStdString(own));
    for (const uint32_t id : LoadToolBar(TOOLBAR_MAIN)) {
        if (const CommandInfo* info = FindCommand(id))
            SetCommandIcon(id, MakeIcon(QStringLiteral(":/ek/icons/%1.svg").arg(QString::fromUtf8(info->Icon)), color));
    }
    if (element)
        LoadOwnImages(*element, color);
}

void MainToolBar::LoadOwnImages(const enXml& element, const QColor& color)
{
    for (const enXml* image = element.FirstChild(); image; image = image->NextSibling()) {
        int command = 0;
        std::string file;
        if (!image->GetAttributeInt("command", command) || !image->GetAttribute("file", file))
            continue;
        const QIcon icon = IconFromFile(QString::fromStdString(ResolveModulePath(file).string()), color);
        if (!icon.pixmap(ImageSize).isNull())
            SetCommandIcon(static_cast<uint32_t>(command), icon);
    }
}

} // namespace ek
