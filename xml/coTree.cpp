// SPDX-License-Identifier: GPL-3.0-or-later
#include "xml/coTree.h"

namespace ek {

coTree::~coTree()
{
    if (m_parent)
        m_parent->RemoveChild(this);
    // A child hands its own children up before it is destroyed, so that the depth of a tree costs no stack.
    while (coTree* const child = m_firstChild) {
        while (coTree* const grandchild = child->m_firstChild)
            AddChild(grandchild);
        RemoveChild(child);
        delete child;
    }
}

void coTree::AddChild(coTree* child, coTree* after)
{
    if (child->m_parent)
        child->m_parent->RemoveChild(child);
    const bool isBehind = after && after->m_parent == this;
    LinkBehind(child, isBehind ? after : m_lastChild);
}

void coTree::LinkBehind(coTree* child, coTree* previous)
{
    coTree*& link = previous ? previous->m_nextSibling : m_firstChild;
    child->m_parent = this;
    child->m_nextSibling = link;
    link = child;
    if (previous == m_lastChild)
        m_lastChild = child;
}

void coTree::RemoveChild(coTree* child)
{
    coTree* previous = nullptr;
    for (coTree* place = m_firstChild; place; previous = place, place = place->m_nextSibling) {
        if (place != child)
            continue;
        (previous ? previous->m_nextSibling : m_firstChild) = child->m_nextSibling;
        if (m_lastChild == child)
            m_lastChild = previous;
        child->m_nextSibling = nullptr;
        child->m_parent = nullptr;
        return;
    }
}

} // namespace ek
