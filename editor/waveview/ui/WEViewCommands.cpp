// SPDX-License-Identifier: GPL-3.0-or-later
#include "background/ProgressDlg.h"
#include "resources/CommandIds.h"
#include "waveview/ui/WEView.h"

#include <QToolButton>

namespace ek {

bool CWEView::OnCmdMsg(uint32_t id, CommandCode code, CommandUi* ui)
{
    if (code == CN_COMMAND && IsWorkRunning()) // from a menu that was open when the work began
        return false;
    return CView::OnCmdMsg(id, code, ui);
}

std::span<const CommandEntry> CWEView::CommandTable() const
{
    static constexpr CommandEntry Table[] = {
        Command<CWEView, &CWEView::OnZoomIn, &CWEView::OnUpdateZoomIn>(ID_ZOOM_IN),
        Command<CWEView, &CWEView::OnZoomOut, &CWEView::OnUpdateZoomOut>(ID_ZOOM_OUT),
        Command<CWEView, &CWEView::OnZoomFull, &CWEView::OnUpdateZoomOut>(ID_ZOOM_FULL),
        Command<CWEView, &CWEView::OnFitSelection, &CWEView::OnUpdateFitSelection>(ID_FIT_SELECTION),
        CommandRange<CWEView, &CWEView::OnZoomRatio, &CWEView::OnUpdateZoomRatio>(ID_ZOOM_RATIO_FIRST,
                                                                                  ID_ZOOM_RATIO_LAST),
        Command<CWEView, &CWEView::OnZoomInVertical, &CWEView::OnUpdateZoomInVertical>(ID_ZOOM_IN_VERTICAL),
        Command<CWEView, &CWEView::OnZoomOutVertical, &CWEView::OnUpdateZoomOutVertical>(ID_ZOOM_OUT_VERTICAL),
        Command<CWEView, &CWEView::OnScaleIn, &CWEView::OnUpdateScaleIn>(ID_SCALE_IN),
        Command<CWEView, &CWEView::OnScaleOut, &CWEView::OnUpdateScaleOut>(ID_SCALE_OUT),
        Command<CWEView, &CWEView::OnCenterView, &CWEView::OnUpdateAmplitude>(ID_CENTER_VIEW),
        Command<CWEView, &CWEView::OnScaleFull, &CWEView::OnUpdateAmplitude>(ID_SCALE_FULL),
        Command<CWEView, &CWEView::OnOverview, &CWEView::OnUpdateOverview>(ID_OVERVIEW),
        Command<CWEView, &CWEView::OnUndo, &CWEView::OnUpdateUndo>(ID_EDIT_UNDO),
        Command<CWEView, &CWEView::OnUndoHistory, &CWEView::OnUpdateUndo>(ID_UNDO_HISTORY),
        Command<CWEView, &CWEView::OnRedo, &CWEView::OnUpdateRedo>(ID_EDIT_REDO),
        Command<CWEView, &CWEView::OnRedoHistory, &CWEView::OnUpdateRedo>(ID_REDO_HISTORY),
        Command<CWEView, &CWEView::OnCut, &CWEView::OnUpdateCopy>(ID_EDIT_CUT),
        Command<CWEView, &CWEView::OnCopy, &CWEView::OnUpdateCopy>(ID_EDIT_COPY),
        Command<CWEView, &CWEView::OnDelete, &CWEView::OnUpdateCopy>(ID_DELETE),
        Command<CWEView, &CWEView::OnPaste, &CWEView::OnUpdatePaste>(ID_EDIT_PASTE),
        Command<CWEView, &CWEView::OnPasteMix, &CWEView::OnUpdatePaste>(ID_PASTE_MIX),
        CommandRange<CWEView, &CWEView::OnSelect, &CWEView::OnUpdateSelect>(ID_SELECT_ALL, ID_SELECT_ALL),
        CommandRange<CWEView, &CWEView::OnSelect, &CWEView::OnUpdateSelect>(ID_SELECT_LEFT, ID_SELECT_RIGHT),
        CommandRange<CWEView, &CWEView::OnSelect>(ID_SELECT_BACK_LEFT, ID_SELECT_BACK_CENTER),
        Command<CWEView, &CWEView::OnNextChannel, &CWEView::OnUpdateNextChannel>(ID_NEXT_CHANNEL),
    };
    return Table;
}

void CWEView::OnZoomIn()
{
    m_geometry.ZoomBySteps(-1, std::nullopt);
    ApplyZoom();
}

void CWEView::OnUpdateZoomIn(CommandUi& ui)
{
    ui.Enabled = HasSound() && m_geometry.CanZoomIn();
}

void CWEView::OnZoomOut()
{
    m_geometry.ZoomBySteps(1, std::nullopt);
    ApplyZoom();
}

void CWEView::OnUpdateZoomOut(CommandUi& ui)
{
    ui.Enabled = HasSound() && m_geometry.CanZoomOut();
}

void CWEView::OnZoomFull()
{
    ShowWholeSound();
}

void CWEView::OnFitSelection()
{
    m_geometry.FitSelection();
    ApplyZoom();
}

void CWEView::OnUpdateFitSelection(CommandUi& ui)
{
    ui.Enabled = HasSound() && m_geometry.HasSelection();
}

void CWEView::OnZoomRatio(uint32_t id)
{
    m_geometry.SetZoomRatio(uint32_t{1} << (id - ID_ZOOM_RATIO_FIRST));
    ApplyZoom();
}

void CWEView::OnUpdateZoomRatio(CommandUi& ui)
{
    ui.Enabled = HasSound();
}

void CWEView::OnZoomInVertical()
{
    ApplyLanes(VisibleLanes().ZoomedIn());
}

void CWEView::OnUpdateZoomInVertical(CommandUi& ui)
{
    ui.Enabled = HasChannels() && WaveDocument().VisibleChannelCount > 1;
}

void CWEView::OnZoomOutVertical()
{
    ApplyLanes(VisibleLanes().ZoomedOut(WaveDocument().ChannelCount()));
}

void CWEView::OnUpdateZoomOutVertical(CommandUi& ui)
{
    ui.Enabled = HasChannels() && WaveDocument().VisibleChannelCount < WaveDocument().ChannelCount();
}

void CWEView::OnScaleIn()
{
    WaveDocument().AmplitudeScale = ScaledIn(WaveDocument().AmplitudeScale);
    ApplyAmplitude();
}

void CWEView::OnUpdateScaleIn(CommandUi& ui)
{
    ui.Enabled = HasChannels() && WaveDocument().AmplitudeScale > SmallestAmplitudeScale;
}

void CWEView::OnScaleOut()
{
    WaveDocument().AmplitudeScale = ScaledOut(WaveDocument().AmplitudeScale);
    m_amplitude.Reclamp(Margin());
    ApplyAmplitude();
}

void CWEView::OnUpdateScaleOut(CommandUi& ui)
{
    ui.Enabled = HasChannels() && WaveDocument().AmplitudeScale < LargestAmplitudeScale;
}

void CWEView::OnScaleFull()
{
    WaveDocument().AmplitudeScale = LargestAmplitudeScale;
    OnCenterView();
}

void CWEView::OnCenterView()
{
    m_amplitude.Center();
    ApplyAmplitude();
}

void CWEView::OnUpdateAmplitude(CommandUi& ui)
{
    ui.Enabled = HasChannels();
}

void CWEView::OnOverview()
{
    m_position.Expanded = !m_position.Expanded;
    m_overviewButton->setChecked(m_position.Expanded);
    m_overviewButton->setArrowType(m_position.Expanded ? Qt::UpArrow : Qt::DownArrow);
    LayOut();
    if (m_position.Expanded)
        m_amplitude.Reclamp(Margin());
    Repaint(AllPanels);
}

void CWEView::OnUpdateOverview(CommandUi& ui)
{
    ui.Enabled = WaveDocument().ChannelCount() > 0;
    ui.Checked = m_position.Expanded;
}

} // namespace ek
