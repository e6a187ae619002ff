// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "waveview/ui/WEView.h"

#include <gtest/gtest.h>

#include <QScrollBar>
#include <QtTest>

#include <functional>
#include <vector>

namespace ek {

/// A view of a generated sound in a window of its own.
class ViewFixture : public testing::Test, public ViewSite {
public:
    void SetActiveFormat(const WAVEFORMATEXTENSIBLE& format) override { ActiveFormat = format; }
    bool RunCommand(uint32_t) override { return false; }
    void ShowStatusText(const QString&) override {}

protected:
    static constexpr int WindowWidth = 700;

    /// The value of every sample follows from its frame and channel.
    void Load(
        uint64_t frames, uint32_t channels,
        const std::function<int(uint64_t, uint32_t)>& value = [](uint64_t frame, uint32_t) {
            return static_cast<int>(frame * 7919 % 50'000) - 25'000;
        })
    {
        std::vector<int16_t> samples;
        for (uint64_t i = 0; i < frames * channels; ++i)
            samples.push_back(static_cast<int16_t>(value(i / channels, static_cast<uint32_t>(i % channels))));
        const uint64_t bytes = samples.size() * sizeof(int16_t);
        Sound.DeleteContents();
        ASSERT_TRUE(Sound.SetFormat(MakePcm16Format(44100, channels), nullptr));
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
    CWEDoc Sound;
    CWEView View{Sound, *this, nullptr};
};

} // namespace ek
