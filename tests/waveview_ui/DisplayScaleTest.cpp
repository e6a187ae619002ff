// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewFixture.h"

#include "resources/CommandIds.h"

#include <QProcess>
#include <QToolButton>

namespace ek {
namespace {

constexpr char WantedScale[] = "EK_TEST_DISPLAY_SCALE";

/// These run at the scale of the process: here at 1, and once more in a process for each other scale.
class AtThisScale : public ViewFixture {
    void SetUp() override
    {
        if (qEnvironmentVariableIsSet(WantedScale)) {
            ASSERT_EQ(View.devicePixelRatioF(), qgetenv(WantedScale).toDouble());
        }
    }
};

TEST_F(AtThisScale, WhatIsOnTheScreenIsWhatWasDrawnPixelByPixel)
{
    Load(5000, 2);
    QWidget window; // an odd place in a window, which need not be a whole device pixel
    View.setParent(&window);
    View.OnInitialUpdate();
    View.setGeometry(3, 5, 601, 403);
    window.resize(650, 450);
    window.show();
    Run(ID_ZOOM_RATIO_FIRST);
    const double scale = window.devicePixelRatioF();
    EXPECT_EQ(View.DisplayScale(), scale);
    const QImage drawn = DrawnImage();
    const QImage screen = window.grab().toImage().convertToFormat(QImage::Format_RGB32);
    View.setParent(nullptr);
    EXPECT_NEAR(View.Places().Wave.Width(), (601 - 28 - 14) * scale, 10);
    EXPECT_EQ(Sound.Columns().ColumnCount(), static_cast<uint32_t>(View.Places().Wave.Width()));
    const QPoint origin(qRound(3 * scale), qRound(5 * scale));
    for (const Rect& part : {View.Places().Wave, View.Places().Amplitude, View.Places().Overview}) {
        const QRect rect = ToQRect(part);
        EXPECT_EQ(screen.copy(rect.translated(origin)), drawn.copy(rect));
    }
}

TEST_F(AtThisScale, TheMouseHitsWhatItPointsAt)
{
    Load(200'000, 1);
    Show();
    Run(ID_ZOOM_RATIO_FIRST);
    QTest::mouseClick(&View, Qt::LeftButton, {}, {350, 8});
    const Rect& strip = View.Places().Overview;
    const double share = (350 - 28) * View.DisplayScale() / (strip.Width() - View.Places().OverviewInset);
    EXPECT_NEAR(static_cast<double>(Geometry().CursorFrame), share * 200'000, 400);
    Wheel({40, 200}, {0, 120}); // right of the amplitude panel
    EXPECT_EQ(Sound.AmplitudeScale, 100u);
    Wheel({27, 200}, {0, 120});
    EXPECT_EQ(Sound.AmplitudeScale, 80u);
}

TEST_F(AtThisScale, NoControlCoversAPanel)
{
    Load(5000, 2);
    for (int size = 300; size < 308; ++size) {
        Show(size, size);
        const DevicePixels device{View.DisplayScale()};
        for (const auto* child : View.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (qobject_cast<const QToolButton*>(child))
                continue; // lies on the tool panel
            const QRectF place(child->geometry());
            const double tolerance = 1e-6;
            EXPECT_TRUE(place.left() * device.Scale >= View.Places().Wave.Right - tolerance ||
                        place.top() * device.Scale >= View.Places().Wave.Bottom - tolerance)
                << child->metaObject()->className() << " at " << size;
        }
    }
}

class DisplayScale : public testing::TestWithParam<const char*> {};

TEST_P(DisplayScale, TheViewIsExact)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_SCALE_FACTOR", GetParam());
    environment.insert(WantedScale, GetParam());
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QCoreApplication::applicationFilePath(), {"--gtest_filter=AtThisScale.*", "--gtest_color=no"});
    ASSERT_TRUE(process.waitForFinished(300'000));
    const QByteArray output = process.readAll();
    EXPECT_EQ(process.exitCode(), 0) << output.toStdString();
    EXPECT_GT(output.count("       OK ] AtThisScale."), 0) << output.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Scales, DisplayScale, testing::Values("1.25", "1.5", "1.75", "2"));

} // namespace
} // namespace ek
