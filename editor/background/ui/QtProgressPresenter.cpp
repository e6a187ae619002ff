// SPDX-License-Identifier: GPL-3.0-or-later
#include "background/ui/QtProgressPresenter.h"

#include "background/ui/ProgressDialog.h"

#include <QApplication>
#include <QEventLoop>

#include <memory>

namespace ek {

namespace {

bool IsInput(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return true;
    case QEvent::Close:
        return event.spontaneous();
    default:
        return false;
    }
}

/// Holds input off from every window for as long as no modal dialog does that; a dialog that comes up later knows its
/// own rules.
class InputBarrier final : public QObject {
public:
    InputBarrier() { qApp->installEventFilter(this); }

    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        const bool isTarget = receiver->isWidgetType() || receiver->isWindowType();
        if (!isTarget || !IsInput(*event) || QApplication::activeModalWidget() != m_modalBefore)
            return false;
        event->ignore();
        return true;
    }

private:
    const QWidget* m_modalBefore = QApplication::activeModalWidget();
};

} // namespace

WorkResult QtProgressPresenter::Show(CProgressDlg& progress)
{
    QEventLoop loop;
    std::unique_ptr<ProgressDialog> dialog;
    const InputBarrier barrier;
    progress.OnFinish([&loop] { QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection); });
    QTimer appearance;
    appearance.setSingleShot(true);
    QObject::connect(&appearance, &QTimer::timeout, &loop, [&] {
        dialog = std::make_unique<ProgressDialog>(progress, QApplication::activeWindow());
        dialog->show();
    });
    appearance.start(m_delay);
    progress.Begin();
    if (!progress.HasResult())
        loop.exec();
    // The loop also ends when the program quits. The worker has left Finish, and with it the loop, after this.
    const WorkResult result = progress.WaitResult();
    progress.End();
    return result;
}

} // namespace ek
