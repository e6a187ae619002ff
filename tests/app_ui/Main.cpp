// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv)
{
    const ek::TestFolder home; // settings and log of the person who runs the tests stay out of it
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    return RUN_ALL_TESTS();
}
