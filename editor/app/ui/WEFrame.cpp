// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/WEFrame.h"

#include "waveedit/WEDoc.h"
#include "waveview/ui/WEView.h"

namespace ek {

CWEFrame::CWEFrame(CWEDoc& document, ViewSite& site) : CMDIChildWnd(document), m_document(document), m_site(site)
{
    SetView(new CWEView(document, site, this));
}

void CWEFrame::OnActivate(bool active)
{
    if (active)
        m_site.SetActiveFormat(m_document.Format());
    CMDIChildWnd::OnActivate(active);
}

} // namespace ek
