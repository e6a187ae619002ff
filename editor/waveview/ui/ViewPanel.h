// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "waveview/ui/PanelPainters.h"

namespace ek {

/// A part of a view that draws itself from a document and from what the view tells it. It lives in the view, which
/// owns the colours; the document may be null.
template <class Document>
class CViewPanel {
public:
    CViewPanel(Document* document, const ViewColors& colors) : m_document(document), m_colors(colors) {}
    virtual ~CViewPanel() = default;

    const Rect& Area() const { return m_area; }
    void SetArea(const Rect& area) { m_area = area; }

    virtual void Draw(QPainter& painter) const { DrawRect(painter, m_area); }
    virtual void DrawRect(QPainter& painter, const Rect& rect) const = 0;

protected:
    Document* Doc() const { return m_document; }
    const ViewColors& Colors() const { return m_colors; }

private:
    Document* m_document;
    const ViewColors& m_colors;
    Rect m_area;
};

} // namespace ek
