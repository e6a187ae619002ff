// SPDX-License-Identifier: GPL-3.0-or-later
#include "background/ProgressDlg.h"
#include "framework/ui/CommandActions.h"
#include "resources/CommandIds.h"
#include "resources/Menus.h"
#include "waveedit/ui/UndoPopupDlg.h"
#include "waveview/ui/CommandMenu.h"
#include "waveview/ui/WEView.h"

#include <QToolButton>

namespace ek {

namespace {

constexpr struct {
    uint32_t Command;
    ChannelCode Channel;
} SelectionCommands[] = {
    {ID_SELECT_ALL, ChannelAll},
    {ID_SELECT_LEFT, ChannelLeft},
    {ID_SELECT_RIGHT, ChannelRight},
    {ID_SELECT_FRONT_LEFT, ChannelFrontLeft},
    {ID_SELECT_FRONT_RIGHT, ChannelFrontRight},
    {ID_SELECT_FRONT_CENTER, ChannelFrontCentre},
    {ID_SELECT_BACK_LEFT, ChannelBackLeft},
    {ID_SELECT_BACK_RIGHT, ChannelBackRight},
    {ID_SELECT_BACK_CENTER, ChannelBackCentre},
    {ID_SELECT_SIDE_LEFT, ChannelSideLeft},
    {ID_SELECT_SIDE_RIGHT, ChannelSideRight},
    {ID_SELECT_LOW_FREQUENCY, ChannelLowFrequency},
};

/// The channel that a selection command names; none for any other command.
std::optional<ChannelCode> ChannelOfCommand(uint32_t id)
{
    for (const auto& entry : SelectionCommands) {
        if (entry.Command == id)
            return entry.Channel;
    }
    return std::nullopt;
}

bool HoldsChannel(const WAVEFORMATEXTENSIBLE& format, ChannelCode code)
{
    return code == ChannelAll || GetIndexByChannel(format, code) != NoChannel;
}

/// Where on the screen the button of a command is; the pointer's place when there is none.
QRect PlaceOfButton(const QWidget* toolBar, uint32_t command)
{
    if (toolBar) {
        for (const QToolButton* button : toolBar->findChildren<QToolButton*>()) {
            const QAction* action = button->defaultAction();
            if (action && CommandOf(*action) == command && button->isVisibleTo(toolBar))
                return {button->mapToGlobal(QPoint()), button->size()};
        }
    }
    return {QCursor::pos(), QSize(1, 1)};
}

} // namespace

void CWEView::ShowWaveMenu(QPoint place)
{
    const uint32_t menu = WaveMenuOf(WaveDocument().ChannelCount());
    if (menu == 0)
        return;
    // The commands are always there; running one for a channel that the sound lacks does nothing.
    PopUpCommandMenu(*this, *this, menu, place, [this](uint32_t id) {
        const auto channel = ChannelOfCommand(id);
        return !channel || (HasSound() && HoldsChannel(WaveDocument().Format(), *channel));
    });
}

void CWEView::OnCopy()
{
    EndDrag();
    m_edits.Copy();
}

void CWEView::OnUpdateCopy(CommandUi& ui)
{
    ui.Enabled = HasSound() && m_edits.CanCopy();
}

void CWEView::OnUndoHistory()
{
    ShowHistory(ID_EDIT_UNDO);
}

void CWEView::OnRedoHistory()
{
    ShowHistory(ID_EDIT_REDO);
}

void CWEView::ShowHistory(uint32_t command)
{
    const bool isUndo = command == ID_EDIT_UNDO;
    const CUndoStack& stack = WaveDocument().UndoStack();
    auto* list = new CUndoPopupDlg(isUndo ? stack.FillUndoList() : stack.FillRedoList(),
                                   isUndo ? tr("Edits to undo") : tr("Edits to redo"), this);
    const auto edit = isUndo ? &EditCommands::Undo : &EditCommands::Redo;
    connect(list, &QDialog::accepted, this, [this, list, edit] {
        const auto repeat = [this, edit, count = list->SelectedCount()] { RepeatEdit(edit, count); };
        QMetaObject::invokeMethod(this, repeat, Qt::QueuedConnection); // the list is gone then
    });
    list->PopUp(PlaceOfButton(reinterpret_cast<const QWidget*>(Site().CommandParameter()), command));
}

void CWEView::RepeatEdit(bool (EditCommands::*edit)(), int count)
{
    if (IsWorkRunning())
        return;
    EndDrag();
    m_playback.Stop();
    while (count-- > 0 && (m_edits.*edit)()) {
    }
    if (m_columnsAreOld)
        RefreshColumns();
    LightCursor();
    UpdateMarks();
    UpdatePointerShape();
    Repaint(AllPanels);
}

void CWEView::SelectChannel(ChannelCode code)
{
    if (!HasSound() || !HoldsChannel(WaveDocument().Format(), code))
        return;
    EndDrag();
    m_playback.Stop();
    m_edits.SelectChannel(code);
    LightCursor();
    RepaintMarks();
}

void CWEView::OnSelect(uint32_t id)
{
    if (const auto channel = ChannelOfCommand(id))
        SelectChannel(*channel);
}

void CWEView::OnUpdateSelect(CommandUi& ui)
{
    ui.Enabled = HasSound();
}

void CWEView::OnNextChannel()
{
    switch (m_geometry.SelectionChannel) {
    case ChannelLeft:
        SetSelectionChannel(ChannelRight);
        break;
    case ChannelRight:
        SetSelectionChannel(ChannelAll);
        break;
    default:
        SetSelectionChannel(ChannelLeft);
    }
    LightCursor();
    RepaintMarks();
    Repaint(WaveMask); // the cursor spans other lanes
}

void CWEView::OnUpdateNextChannel(CommandUi& ui)
{
    ui.Enabled = HasSound() && WaveDocument().ChannelCount() == 2;
}

} // namespace ek
