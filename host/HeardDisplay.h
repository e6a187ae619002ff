// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include <cstdint>

namespace ek {

/// Shows how long something has been heard. A label would lay out the whole bar again with every change.
class HeardDisplay final : public QWidget {
    Q_OBJECT

public:
    explicit HeardDisplay(QWidget* parent);

    void Show(uint64_t milliseconds);
    const QString& Text() const { return m_text; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
};

/// "h:mm:ss,mmm"
QString HeardText(uint64_t milliseconds);

} // namespace ek
