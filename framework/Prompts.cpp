// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/Prompts.h"

#include <cassert>

namespace ek {

namespace {
Prompts* g_prompts = nullptr;
}

void SetPrompts(Prompts* prompts)
{
    g_prompts = prompts;
    SetMessageBoxPort(prompts);
}

Prompts& CurrentPrompts()
{
    assert(g_prompts && "SetPrompts is called before any document is made");
    return *g_prompts;
}

} // namespace ek
