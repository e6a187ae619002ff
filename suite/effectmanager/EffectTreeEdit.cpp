// SPDX-License-Identifier: GPL-3.0-or-later
#include "effectmanager/EffectTree.h"
#include "effectmanager/EffectTreeFile.h"
#include "effectmanager/SimpleEffect.h"

namespace ek {

bool CEffectTree::CheckInsertion(const CEffectNode* target, NODE_TYPE type) const
{
    if (!target)
        return false;
    const NODE_TYPE place = target->GetType();
    const bool isFolder = place == NodeRoot || place == NodeFolder;
    switch (type) {
    case NodeFolder:
        return isFolder;
    case NodeSubEffect:
        return place == NodeComplex;
    case NodeComplex:
    case NodeLibraryEffect:
    case NodeUnavailable:
        return isFolder || place == NodeComplex;
    case NodeRoot:
        break;
    }
    return false;
}

INSERT_MODE CEffectTree::CheckTransference(const CEffectNode* node, const CEffectNode* target) const
{
    if (!node || !target || target->IsWithin(node) || !CheckInsertion(target, node->GetType()))
        return InsertImpossible;
    const bool goesIntoChain = node->GetType() == NodeLibraryEffect && target->GetType() == NodeComplex;
    return goesIntoChain ? InsertCopy : InsertMove;
}

INSERT_ACTION CEffectTree::TransferNode(CEffectNode* node, CEffectNode* target, CEffectNode* after, bool copy)
{
    const std::lock_guard lock(m_lock);
    const INSERT_MODE mode = CheckTransference(node, target);
    if (after && after->Parent() != target)
        after = nullptr;
    if (mode == InsertImpossible)
        return InsertedNothing;
    if (copy || mode == InsertCopy) {
        std::unique_ptr<CEffectNode> copied = EffectTreeFile(*this).Copy(*node, target->GetType() == NodeComplex);
        if (!copied)
            return InsertedNothing;
        Adopt(copied.release(), *target, after);
        return InsertedCopy;
    }
    const CEffectNode* const behind = after ? after : target->LastChild();
    if (node->Parent() == target && (behind == node || behind == node->PreviousSibling()))
        return InsertedNothing;
    Adopt(node, *target, after);
    return InsertedMoved;
}

/// Puts the node into its place, out of the one where it was.
void CEffectTree::Adopt(CEffectNode* node, CEffectNode& parent, CEffectNode* after)
{
    m_entry.Change([&] {
        CEffectNode* const before = node->Parent();
        parent.AddChild(node, after);
        LinkChain(before);
        LinkChain(&parent);
        LinkChainsIn(*node);
    });
    for (CEffectNode* each = node; each; each = each->NextInTree(node)) {
        if (each->m_id == CEffectNode::NoId)
            each->m_id = m_nextId++;
    }
    UpdateLatency();
}

void CEffectTree::LinkChainsIn(const CEffectNode& top)
{
    for (const CEffectNode* node = &top; node; node = node->NextInTree(&top))
        LinkChain(node);
}

void CEffectTree::LinkChain(const CEffectNode* node)
{
    CComplexEffect* const chain = node ? node->GetComplexEffect() : nullptr;
    if (!chain)
        return;
    std::vector<CEffectAbstract*> effects;
    for (const CEffectNode* child = node->FirstChild(); child; child = child->NextSibling()) {
        if (child->GetEffect())
            effects.push_back(child->GetEffect());
    }
    chain->SetEffects(std::move(effects));
}

bool CEffectTree::CheckMovingUp(const CEffectNode* node) const
{
    return node && node->PreviousSibling();
}

bool CEffectTree::CheckMovingDown(const CEffectNode* node) const
{
    return node && node->NextSibling();
}

bool CEffectTree::MoveUpNode(CEffectNode* node)
{
    return CheckMovingUp(node) && MoveDownNode(node->PreviousSibling());
}

bool CEffectTree::MoveDownNode(CEffectNode* node)
{
    const std::lock_guard lock(m_lock);
    if (!CheckMovingDown(node))
        return false;
    Adopt(node, *node->Parent(), node->NextSibling());
    return true;
}

bool CEffectTree::CheckDeletion(const CEffectNode* node) const
{
    if (!node || node->GetType() == NodeRoot)
        return false;
    const CEffectNode* each = node;
    while (each && each->GetType() != NodeLibraryEffect)
        each = each->NextInTree(node);
    return each == nullptr;
}

bool CEffectTree::RemoveNode(CEffectNode* node, bool keep)
{
    const std::lock_guard lock(m_lock);
    if (!CheckDeletion(node) || !node->Parent())
        return false;
    for (const CEffectNode* each = node; each; each = each->NextInTree(node)) {
        if (each->GetEffect() && each->GetEffect() == m_entry.InUse())
            m_entry.Use(nullptr);
    }
    m_entry.Change([&] {
        CEffectNode* const parent = node->Parent();
        parent->RemoveChild(node);
        LinkChain(parent);
    });
    UpdateLatency();
    if (!keep)
        delete node;
    return true;
}

} // namespace ek
