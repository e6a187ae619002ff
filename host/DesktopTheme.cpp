// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/DesktopTheme.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QPalette>

namespace ek {

namespace {

constexpr QLatin1String Service("org.freedesktop.portal.Desktop");
constexpr QLatin1String Path("/org/freedesktop/portal/desktop");
constexpr QLatin1String Interface("org.freedesktop.portal.Settings");
constexpr QLatin1String Group("org.freedesktop.appearance");
constexpr QLatin1String Key("color-scheme");
constexpr uint PreferDark = 1;
constexpr uint PreferLight = 2;

bool IsPlatformDark()
{
    const QPalette palette = QApplication::palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

/// The portal wraps the value in one variant more than it has to.
QVariant Unwrap(QVariant value)
{
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

DesktopTheme::DesktopTheme(bool ask) : m_isDark(IsPlatformDark())
{
    if (ask && QDBusConnection::sessionBus().isConnected())
        Ask();
}

void DesktopTheme::Ask()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    qRegisterMetaType<QDBusVariant>(); // a slot with a type that is not registered yet is not connected
    bus.connect(Service, Path, Interface, QStringLiteral("SettingChanged"), this,
                SLOT(OnSettingChanged(QString, QString, QDBusVariant)));
    QDBusMessage read = QDBusMessage::createMethodCall(Service, Path, Interface, QStringLiteral("Read"));
    read << QString(Group) << QString(Key);
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(read), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isValid())
            TakeScheme(Unwrap(reply.value().variant()));
        watcher->deleteLater();
    });
}

void DesktopTheme::OnSettingChanged(const QString& group, const QString& key, const QDBusVariant& value)
{
    if (group == Group && key == Key)
        TakeScheme(Unwrap(value.variant()));
}

void DesktopTheme::TakeScheme(const QVariant& scheme)
{
    const uint wish = scheme.toUInt();
    if ((wish != PreferDark && wish != PreferLight) || m_isDark == (wish == PreferDark))
        return;
    m_isDark = wish == PreferDark;
    emit Changed();
}

} // namespace ek
