// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ui/TimeScaleStatic.h"

#include <QMouseEvent>

namespace ek {

CTimeScaleStatic::CTimeScaleStatic(QWidget* parent, std::function<void(QPoint)> showMenu)
    : QLabel(parent), m_showMenu(std::move(showMenu))
{
    setAlignment(Qt::AlignCenter);
    setAutoFillBackground(true);
    setContextMenuPolicy(Qt::PreventContextMenu);
    setAccessibleName(tr("Zoom ratio"));
    SetRatio(1);
}

void CTimeScaleStatic::SetRatio(uint32_t framesPerPixel)
{
    setText(QStringLiteral("1:%1").arg(framesPerPixel));
}

void CTimeScaleStatic::mousePressEvent(QMouseEvent* event)
{
    m_showMenu(event->globalPosition().toPoint());
}

} // namespace ek
