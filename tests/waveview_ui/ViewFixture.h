// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/Message.h"
#include "resources/CommandIds.h"
#include "skincontrols/Skin.h"
#include "support/RecordingHost.h"
#include "waveview/ui/WEView.h"

#include <gtest/gtest.h>

#include <QMenu>
#include <QScrollBar>
#include <QtTest>

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace ek {

/// A view of a generated sound in a window of its own.
class ViewFixture : public testing::Test, public ViewSite {
public:
    void SetActiveFormat(const WAVEFORMATEXTENSIBLE& format) override { ActiveFormat = format; }
    /// As the main frame does it: a command of the transport goes to the view that plays.
    bool RunCommand(uint32_t id) override
    {
        SendToView(EK_WM_COMMAND, id);
        return true;
    }
    void ShowStatusText(const QString&) override {}
    intptr_t CommandParameter() const override { return reinterpret_cast<intptr_t>(ToolBar); }
    CHostPlayer* Player() const override { return &Host.Player; }

protected:
    static constexpr int WindowWidth = 700;

    /// The value of every sample follows from its frame and channel.
    void Load(
        uint64_t frames, uint32_t channels,
        const std::function<int(uint64_t, uint32_t)>& value =
            [](uint64_t frame, uint32_t) { return static_cast<int>(frame * 7919 % 50'000) - 25'000; },
        uint32_t channelMask = 0)
    {
        std::vector<int16_t> samples;
        for (uint64_t i = 0; i < frames * channels; ++i)
            samples.push_back(static_cast<int16_t>(value(i / channels, static_cast<uint32_t>(i % channels))));
        const uint64_t bytes = samples.size() * sizeof(int16_t);
        Sound.DeleteContents();
        ASSERT_TRUE(Sound.SetFormat(MakePcm16Format(44100, channels, channelMask), nullptr));
        ASSERT_TRUE(Sound.Store().InsertSpace(0, 0, bytes));
        ASSERT_TRUE(Sound.Store().WriteData(samples.data(), 0, bytes));
        ASSERT_TRUE(Sound.Store().BuildPeakCache());
    }

    void Show(int width = WindowWidth, int height = 400)
    {
        View.OnInitialUpdate();
        View.resize(width, height);
        View.show();
        View.grab(); // painted once
    }

    const WaveGeometry& Geometry() const { return View.Geometry(); }
    using Frames = std::pair<uint64_t, uint64_t>;
    Frames Selection() const { return {Geometry().SelectionStart, Geometry().SelectionEnd}; }
    void SendToView(uint32_t id, uintptr_t wParam = 0, intptr_t lParam = 0)
    {
        MessageEvent message(id, wParam, lParam);
        View.OnHostMessage(message);
    }
    bool IsEnabled(uint32_t id)
    {
        CommandUi ui{.Id = id};
        return View.OnCmdMsg(id, CN_UPDATE_COMMAND_UI, &ui) && ui.Enabled;
    }
    QTimer& Timer(const char* name) { return *View.findChild<QTimer*>(name); }
    /// Its time has come, whatever the clock says.
    void Fire(const char* name) { QMetaObject::invokeMethod(&Timer(name), "timeout"); }

    /// A place of the wave panel: device pixels from its left edge, and a share of its height.
    QPoint At(int column, double row) const
    {
        const Rect& wave = View.Places().Wave;
        return QPoint(wave.Left + column, wave.Top + static_cast<int>(row * wave.Height())) / View.DisplayScale();
    }
    void Press(QPoint place, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(&View, Qt::LeftButton, modifiers, place);
    }
    void Move(QPoint place, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        QMouseEvent event(QEvent::MouseMove, place, View.mapToGlobal(place), Qt::NoButton, buttons, {});
        QCoreApplication::sendEvent(&View, &event);
    }
    void Release(QPoint place) { QTest::mouseRelease(&View, Qt::LeftButton, {}, place); }
    void Drag(QPoint from, QPoint to)
    {
        Press(from);
        Move(to);
        Release(to);
    }
    void PointAt(QPoint place) { Move(place, Qt::NoButton); }
    QMenu* MenuAt(QPoint place, QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse)
    {
        delete View.findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
        QContextMenuEvent event(reason, place, View.mapToGlobal(place));
        QCoreApplication::sendEvent(&View, &event);
        return View.findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
    }
    bool Run(uint32_t id)
    {
        CommandUi ui{.Id = id};
        View.OnCmdMsg(id, CN_UPDATE_COMMAND_UI, &ui);
        View.OnCmdMsg(id, CN_COMMAND, nullptr);
        return ui.Enabled;
    }
    QScrollBar& Bar(Qt::Orientation orientation)
    {
        const auto bars = View.findChildren<QScrollBar*>();
        return *(bars[0]->orientation() == orientation ? bars[0] : bars[1]);
    }
    void Wheel(QPointF place, QPoint delta, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget* child = View.childAt(place.toPoint());
        QWidget* target = child ? child : &View;
        QWheelEvent event(target->mapFrom(&View, place), View.mapToGlobal(place), {}, delta, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&event); // only those of the window system pass on to a parent
        qApp->notify(target, &event);
    }
    QPoint MiddleOf(const Rect& rect) const
    {
        return QPoint((rect.Left + rect.Right) / 2, (rect.Top + rect.Bottom) / 2) / View.DisplayScale();
    }
    /// The view's own pixels, drawn without a window.
    QImage DrawnImage()
    {
        QImage image((QSizeF(View.size()) * View.DisplayScale()).toSize(), QImage::Format_RGB32);
        QPainter painter(&image);
        View.Draw(painter, {0, 0, image.width(), image.height()});
        return image;
    }

    WAVEFORMATEXTENSIBLE ActiveFormat;
    mutable RecordingHost Host;
    QWidget* ToolBar = nullptr;
    CWEDoc Sound;
    std::unique_ptr<CWEView> OwnView = std::make_unique<CWEView>(Sound, *this, nullptr);
    CWEView& View = *OwnView;
};

/// What of a window has been painted since the last time.
class PaintedRegion : public QObject {
public:
    explicit PaintedRegion(QWidget& widget) : m_widget(widget) { widget.installEventFilter(this); }
    QRegion Take()
    {
        QEvent request(QEvent::UpdateRequest);
        QCoreApplication::sendEvent(&m_widget, &request);
        return std::exchange(m_region, {});
    }

private:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            m_region += static_cast<QPaintEvent*>(event)->region();
        return false;
    }

    QWidget& m_widget;
    QRegion m_region;
};

} // namespace ek
