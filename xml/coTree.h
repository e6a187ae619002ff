// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace ek {

/// A node of an intrusive tree. A node owns its children: destroying it unlinks it from its parent and destroys
/// all nodes below it, each with its own children gone before it. Children are heap objects.
class coTree {
public:
    coTree() = default;
    virtual ~coTree();
    coTree(const coTree&) = delete;
    coTree& operator=(const coTree&) = delete;

    /// Takes ownership of `child`, out of its present parent if it has one, and puts it directly behind `after`
    /// when that is one of the children, else at the end. `child` is not this node or one above it.
    void AddChild(coTree* child, coTree* after = nullptr);
    /// Gives the child back to the caller; nothing changes when it is not a child of this node.
    void RemoveChild(coTree* child);

    coTree* FirstChild() const { return m_firstChild; }
    coTree* NextSibling() const { return m_nextSibling; }
    coTree* Parent() const { return m_parent; }
    coTree* LastChild() const { return m_lastChild; }

private:
    void LinkBehind(coTree* child, coTree* previous);

    coTree* m_firstChild = nullptr;
    coTree* m_nextSibling = nullptr;
    coTree* m_parent = nullptr;
    coTree* m_lastChild = nullptr;
};

} // namespace ek
