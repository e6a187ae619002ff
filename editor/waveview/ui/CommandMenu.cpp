// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ui/CommandMenu.h"

#include "framework/CmdTarget.h"
#include "resources/Commands.h"
#include "resources/Menus.h"

#include <QMenu>

namespace ek {

namespace {

QString TextOf(const MenuItem& item)
{
    const CommandInfo* info = FindCommand(item.Id);
    const QString text = QString::fromUtf8(item.Text);
    return info && *info->Keys ? text + '\t' + QString::fromUtf8(info->Keys) : text;
}

void Fill(QMenu& menu, std::span<const MenuItem> items, CCmdTarget& target, QWidget& parent,
          const std::function<bool(uint32_t)>& offers)
{
    for (const MenuItem& item : items) {
        if (!item.Submenu().empty()) {
            Fill(*menu.addMenu(QString::fromUtf8(item.Text)), item.Submenu(), target, parent, offers);
            continue;
        }
        CommandUi ui{.Id = item.Id};
        const bool handled = target.OnCmdMsg(item.Id, CN_UPDATE_COMMAND_UI, &ui);
        QAction* action = menu.addAction(TextOf(item));
        action->setEnabled(handled && ui.Enabled && (!offers || offers(item.Id)));
        QObject::connect(action, &QAction::triggered, &parent,
                         [&target, id = item.Id] { target.OnCmdMsg(id, CN_COMMAND, nullptr); });
    }
}

} // namespace

void PopUpCommandMenu(QWidget& parent, CCmdTarget& target, uint32_t menuId, QPoint place,
                      const std::function<bool(uint32_t)>& offers)
{
    auto* menu = new QMenu(&parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    Fill(*menu, LoadMenu(menuId), target, parent, offers);
    menu->popup(place);
}

} // namespace ek
