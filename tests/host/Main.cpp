// SPDX-License-Identifier: GPL-3.0-or-later
#include "Scratch.h"

#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv)
{
    // Settings and logs of the person who runs the tests stay out of it.
    const ek::Scratch home;
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
        setenv(variable, home.Path().c_str(), 1);
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
