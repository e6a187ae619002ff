// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MDIClient.h"

#include "debugmanager/DebugManager.h"
#include "platform/ProductSettings.h"
#include "resources/CommandIds.h"
#include "resources/Strings.h"
#include "skincontrols/Skin.h"

#include <QPaintEvent>
#include <QPainter>

namespace ek {

namespace {

constexpr char SettingsSection[] = "Settings";
constexpr char MaximizedKey[] = "TVChildWinState";
constexpr int CascadeStep = 28;
constexpr int CascadePlaces = 8;
constexpr int NameMargin = 18;

QColor Blend(const QColor& from, const QColor& to, double share)
{
    const auto mix = [share](float a, float b) { return static_cast<float>(a + (b - a) * share); };
    return QColor::fromRgbF(mix(from.redF(), to.redF()), mix(from.greenF(), to.greenF()),
                            mix(from.blueF(), to.blueF()));
}

/// Neighbouring parts of `length` for `count` windows, without a gap.
std::pair<int, int> Part(int length, size_t index, size_t count)
{
    const auto at = [&](size_t i) { return static_cast<int>(static_cast<size_t>(length) * i / count); };
    return {at(index), at(index + 1) - at(index)};
}

void StoreMaximized(bool maximized)
{
    const IoStatus stored = SetProductSetting(SettingsSection, MaximizedKey, maximized ? "1" : "0");
    if (!stored.Ok()) {
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to store the setting \"%s\": %s",
                                         MaximizedKey, stored.Text().c_str());
    }
}

} // namespace

CMDIClient::CMDIClient(QWidget* parent)
    : QMdiArea(parent), m_childMaximized(GetProductSetting(SettingsSection, MaximizedKey, "0") == "1")
{
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFrameShape(QFrame::NoFrame);
    LoadSkin();
}

void CMDIClient::LoadSkin()
{
    const QColor workspace = SkinColorOf(COLOR_EDITOR_WORKSPACE);
    setBackground(workspace.rgb() == QColor(Qt::black).rgb() ? palette().brush(QPalette::Dark) : QBrush(workspace));
}

void CMDIClient::AddChild(CMDIChildWnd* child)
{
    const QRect place = NextPlace();
    connect(child, &CMDIChildWnd::Closed, this, [this, child] { OnChildClosed(*child); });
    addSubWindow(child);
    child->setGeometry(place);
    if (m_childMaximized)
        child->showMaximized();
    else
        child->show();
    child->Activate();
}

/// The first window fills the workspace; each further one lies a step lower and further right.
QRect CMDIClient::NextPlace() const
{
    const QSize room = viewport()->size();
    const size_t open = OpenChildren().size();
    if (open == 0)
        return {QPoint(0, 0), room};
    const int step = CascadeStep * static_cast<int>(open % CascadePlaces);
    return {QPoint(step, step), room - QSize(step, step)};
}

std::vector<CMDIChildWnd*> CMDIClient::OpenChildren() const
{
    std::vector<CMDIChildWnd*> open;
    for (QMdiSubWindow* window : subWindowList(QMdiArea::CreationOrder)) {
        auto* child = qobject_cast<CMDIChildWnd*>(window);
        if (child && !child->IsClosing())
            open.push_back(child);
    }
    return open;
}

void CMDIClient::OnChildClosed(const CMDIChildWnd& child)
{
    if (!OpenChildren().empty() || child.isMaximized() == m_childMaximized)
        return;
    m_childMaximized = child.isMaximized();
    StoreMaximized(m_childMaximized);
}

std::span<const CommandEntry> CMDIClient::CommandTable() const
{
    static constexpr CommandEntry table[] = {
        Command<CMDIClient, &CMDIClient::OnNextWindow, &CMDIClient::OnUpdateWindows>(ID_NEXT_WINDOW),
        Command<CMDIClient, &CMDIClient::OnPreviousWindow, &CMDIClient::OnUpdateWindows>(ID_PREVIOUS_WINDOW),
        Command<CMDIClient, &CMDIClient::OnCascade, &CMDIClient::OnUpdateWindows>(ID_WINDOW_CASCADE),
        Command<CMDIClient, &CMDIClient::OnTileHorizontally, &CMDIClient::OnUpdateWindows>(ID_WINDOW_TILE_HORIZONTALLY),
        Command<CMDIClient, &CMDIClient::OnTileVertically, &CMDIClient::OnUpdateWindows>(ID_WINDOW_TILE_VERTICALLY),
    };
    return table;
}

void CMDIClient::OnTileHorizontally()
{
    const auto children = OpenChildren();
    for (size_t i = 0; i < children.size(); ++i) {
        const auto [top, height] = Part(viewport()->height(), i, children.size());
        children[i]->showNormal();
        children[i]->setGeometry(0, top, viewport()->width(), height);
    }
}

void CMDIClient::OnTileVertically()
{
    const auto children = OpenChildren();
    for (size_t i = 0; i < children.size(); ++i) {
        const auto [left, width] = Part(viewport()->width(), i, children.size());
        children[i]->showNormal();
        children[i]->setGeometry(left, 0, width, viewport()->height());
    }
}

void CMDIClient::OnUpdateWindows(CommandUi& ui)
{
    ui.Enabled = !OpenChildren().empty();
}

void CMDIClient::paintEvent(QPaintEvent* event)
{
    QMdiArea::paintEvent(event);
    QPainter painter(viewport());
    painter.setFont(QFont({"Times New Roman", "Liberation Serif", "serif"}, 18, QFont::Bold));
    const QRect place = viewport()->rect().adjusted(NameMargin, NameMargin, -NameMargin, -NameMargin);
    const QString name = QString::fromStdString(LoadString(IDS_MODULE_NAME));
    const QColor workspace = background().color();
    painter.setPen(Blend(workspace, workspace.lightness() < 128 ? Qt::black : Qt::white, 0.35));
    painter.drawText(place.translated(1, 1), Qt::AlignRight | Qt::AlignBottom, name);
    painter.setPen(Blend(workspace, palette().color(QPalette::WindowText), 0.22));
    painter.drawText(place, Qt::AlignRight | Qt::AlignBottom, name);
}

void CMDIClient::resizeEvent(QResizeEvent* event)
{
    const QRect before(QPoint(0, 0), event->oldSize());
    for (CMDIChildWnd* child : OpenChildren()) {
        const QRect place = child->geometry(); // larger than a workspace that is not laid out yet
        if (place.topLeft() == before.topLeft() && place.contains(before) && !child->isMaximized())
            child->resize(event->size());
    }
    QMdiArea::resizeEvent(event);
}

} // namespace ek
