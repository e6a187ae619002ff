// SPDX-License-Identifier: GPL-3.0-or-later
#include "skincontrols/Skin.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

#include <memory>

namespace ek {

namespace {

constexpr double DisabledOpacity = 0.35;

/// Draws the SVG anew at every size, so that the icon is sharp at every display scale.
class SvgIconEngine final : public QIconEngine {
public:
    explicit SvgIconEngine(std::shared_ptr<QSvgRenderer> renderer) : m_renderer(std::move(renderer)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        painter->save();
        if (mode == QIcon::Disabled)
            painter->setOpacity(DisabledOpacity);
        m_renderer->render(painter, rect);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QIconEngine* clone() const override { return new SvgIconEngine(*this); }

private:
    std::shared_ptr<QSvgRenderer> m_renderer;
};

} // namespace

QIcon MakeIcon(const QString& svgFile, const QColor& color)
{
    QFile file(svgFile);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const auto renderer =
        std::make_shared<QSvgRenderer>(file.readAll().replace("currentColor", color.name().toLatin1()));
    renderer->setAspectRatioMode(Qt::KeepAspectRatio);
    return renderer->isValid() ? QIcon(new SvgIconEngine(renderer)) : QIcon();
}

} // namespace ek
