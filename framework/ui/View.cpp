// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/ui/View.h"

namespace ek {

CView::CView(CDocument& document, ViewSite& site, QWidget* parent) : QWidget(parent), m_document(document), m_site(site)
{
    m_document.AddObserver(*this);
}

CView::~CView()
{
    m_document.RemoveObserver(*this);
}

} // namespace ek
