// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/DocumentSite.h"

namespace ek {

namespace {
DocumentSite* g_site = nullptr;
}

void SetDocumentSite(DocumentSite* site)
{
    g_site = site;
}

DocumentSite* CurrentDocumentSite()
{
    return g_site;
}

} // namespace ek
