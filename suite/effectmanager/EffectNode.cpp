// SPDX-License-Identifier: GPL-3.0-or-later
#include "effectmanager/EffectNode.h"
#include "effectmanager/ComplexEffect.h"
#include "effectmanager/SimpleEffect.h"

namespace ek {

CEffectNode::CEffectNode(std::string caption, NODE_TYPE type, std::unique_ptr<CEffectAbstract> effect)
    : m_caption(std::move(caption)), m_type(type), m_isEditable(type != NodeRoot && type != NodeLibraryEffect),
      m_effect(std::move(effect))
{
}

CEffectNode::~CEffectNode() = default;

void CEffectNode::SetCaption(std::string caption)
{
    if (CComplexEffect* chain = GetComplexEffect())
        chain->SetTitle(caption);
    m_caption = std::move(caption);
}

CSimpleEffect* CEffectNode::GetSimpleEffect() const
{
    return dynamic_cast<CSimpleEffect*>(m_effect.get());
}

CComplexEffect* CEffectNode::GetComplexEffect() const
{
    return dynamic_cast<CComplexEffect*>(m_effect.get());
}

void CEffectNode::SetActive(bool active)
{
    if (m_effect)
        m_effect->SetActive(active);
}

CEffectNode* CEffectNode::PreviousSibling() const
{
    CEffectNode* previous = nullptr;
    for (CEffectNode* node = Parent() ? Parent()->FirstChild() : nullptr; node && node != this;
         node = node->NextSibling())
        previous = node;
    return previous;
}

bool CEffectNode::IsWithin(const CEffectNode* other) const
{
    const CEffectNode* node = this;
    while (node && node != other)
        node = node->Parent();
    return node != nullptr;
}

CEffectNode* CEffectNode::NextInTree(const CEffectNode* top) const
{
    if (FirstChild())
        return FirstChild();
    const CEffectNode* node = this;
    while (node != top && !node->NextSibling())
        node = node->Parent();
    return node == top ? nullptr : node->NextSibling();
}

CEffectNode* CEffectNode::FindNode(uint32_t id)
{
    CEffectNode* node = this;
    while (node && node->m_id != id)
        node = node->NextInTree(this);
    return node;
}

bool CEffectNode::HasMorphItem() const
{
    const CEffectNode* node = this;
    while (node && node->m_type != NodeComplex && node->m_type != NodeLibraryEffect)
        node = node->NextInTree(this);
    return node != nullptr;
}

void CEffectNode::BuildMorphMenu(EffectMenu& menu, bool childrenOnly) const
{
    if (!childrenOnly && (m_type == NodeComplex || m_type == NodeLibraryEffect)) {
        if (m_id <= MorphCommandLast - MorphCommandFirst)
            menu.AddItem(MorphCommandFirst + m_id, m_caption);
        return;
    }
    if (!HasMorphItem())
        return;
    EffectMenu& inner = childrenOnly ? menu : menu.AddPopup(m_caption);
    for (const CEffectNode* child = FirstChild(); child; child = child->NextSibling())
        child->BuildMorphMenu(inner, false);
}

} // namespace ek
