// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusVariant>
#include <QObject>

namespace ek {

/// Whether the desktop is dark: what its settings portal says, and until that has answered, or where there is none,
/// what the colours of the platform suggest.
class DesktopTheme : public QObject {
    Q_OBJECT

public:
    /// To be made before the application's palette is changed. Without `ask` the portal is left alone.
    explicit DesktopTheme(bool ask);

    bool IsDark() const { return m_isDark; }

signals:
    void Changed();

private slots:
    void OnSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void Ask();
    void TakeScheme(const QVariant& scheme);

    bool m_isDark;
};

} // namespace ek
