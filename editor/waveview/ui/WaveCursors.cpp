// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ui/WaveCursors.h"

#include "resources/Cursors.h"

#include <QPainter>
#include <QSvgRenderer>

#include <array>
#include <cmath>

// The drawings are linked into a static library; without this call the linker would leave them out.
static void InitCursorResources()
{
    Q_INIT_RESOURCE(cursors);
}

namespace ek {

namespace {

constexpr std::array<uint32_t, 14> CursorsByChannel = {CURSOR_LEFT,
                                                       CURSOR_RIGHT,
                                                       CURSOR_ALL_CHANNELS,
                                                       CURSOR_LOW_FREQUENCY,
                                                       CURSOR_FRONT_LEFT,
                                                       CURSOR_FRONT_RIGHT,
                                                       CURSOR_FRONT_CENTRE,
                                                       CURSOR_BACK_LEFT,
                                                       CURSOR_BACK_RIGHT,
                                                       CURSOR_BACK_CENTRE,
                                                       CURSOR_SIDE_LEFT,
                                                       CURSOR_SIDE_RIGHT,
                                                       CURSOR_FRONT_LEFT_OF_CENTRE,
                                                       CURSOR_FRONT_RIGHT_OF_CENTRE};
static_assert(CursorsByChannel[ChannelAll] == CURSOR_ALL_CHANNELS);

} // namespace

uint32_t CursorOfChannel(ChannelCode code)
{
    return CursorsByChannel[code];
}

QCursor LoadCursor(uint32_t id, double scale)
{
    const CursorInfo* info = FindCursor(id);
    if (!info)
        return Qt::ArrowCursor;
    InitCursorResources();
    const int size = static_cast<int>(std::ceil(CursorSize * scale));
    QPixmap picture(size, size);
    picture.fill(Qt::transparent);
    QSvgRenderer drawing(QStringLiteral(":/ek/cursors/%1.svg").arg(QString::fromUtf8(info->Image)));
    QPainter painter(&picture);
    drawing.render(&painter, QRectF(0, 0, CursorSize * scale, CursorSize * scale));
    painter.end();
    picture.setDevicePixelRatio(scale);
    return QCursor(picture, info->HotX, info->HotY);
}

} // namespace ek
