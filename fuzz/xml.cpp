// SPDX-License-Identifier: GPL-3.0-or-later
#include "InputFile.h"

#include "xml/enXml.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const InputFile input(data, size);
    ek::enXml root;
    root.LoadFromFile(input.Path());
    return 0;
}
