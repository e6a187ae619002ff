// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/ui/MDIChildWnd.h"

namespace ek {

class CWEDoc;
class ViewSite;

/// The window of a wave document.
class CWEFrame final : public CMDIChildWnd {
    Q_OBJECT
public:
    CWEFrame(CWEDoc& document, ViewSite& site);

    void OnActivate(bool active) override; ///< also makes the document's format the active one

private:
    CWEDoc& m_document;
    ViewSite& m_site;
};

} // namespace ek
