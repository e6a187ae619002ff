// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ui/CommandMenu.h"

#include "framework/CmdTarget.h"
#include "resources/Menus.h"

#include <QMenu>

namespace ek {

void PopUpCommandMenu(QWidget& parent, CCmdTarget& target, uint32_t menuId, QPoint place,
                      const std::function<bool(uint32_t)>& offers)
{
    auto* menu = new QMenu(&parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const MenuItem& item : LoadMenu(menuId)) {
        CommandUi ui{.Id = item.Id};
        const bool handled = target.OnCmdMsg(item.Id, CN_UPDATE_COMMAND_UI, &ui);
        QAction* action = menu->addAction(QString::fromUtf8(item.Text));
        action->setEnabled(handled && ui.Enabled && (!offers || offers(item.Id)));
        QObject::connect(action, &QAction::triggered, &parent,
                         [&target, id = item.Id] { target.OnCmdMsg(id, CN_COMMAND, nullptr); });
    }
    menu->popup(place);
}

} // namespace ek
