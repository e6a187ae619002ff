// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Program.h"

int main(int argc, char** argv)
{
    return ek::RunProgram(argc, argv);
}
