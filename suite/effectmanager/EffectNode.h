// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/EffectAbstract.h"
#include "effectmanager/EffectMenu.h"
#include "xml/coTree.h"
#include "xml/enXml.h"

#include <memory>
#include <string>

namespace ek {

class CComplexEffect;
class CSimpleEffect;

enum NODE_TYPE : uint32_t {
    NodeRoot = 1,
    NodeFolder = 2,
    NodeComplex = 3,       ///< a chain; the nodes below it are its effects
    NodeLibraryEffect = 4, ///< an effect that the library offers
    NodeUnavailable = 5,   ///< from a file, of an effect that is not installed here; kept for when it is again
    NodeSubEffect = 6,     ///< an effect within a chain
};

/// A node of the effects library. It owns its effect and the nodes below it. CEffectTree moves nodes.
class CEffectNode final : private coTree {
public:
    using NODE_TYPE = ek::NODE_TYPE;
    static constexpr uint32_t NoId = 0xFFFFFFFF; ///< of a node that has never been in a tree

    /// `effect`: a CComplexEffect for NodeComplex, a CSimpleEffect for NodeLibraryEffect and NodeSubEffect, else null.
    CEffectNode(std::string caption, NODE_TYPE type, std::unique_ptr<CEffectAbstract> effect = nullptr);
    ~CEffectNode() override;

    NODE_TYPE GetType() const { return m_type; }
    uint32_t GetId() const { return m_id; } ///< never used twice in one tree
    const std::string& GetCaption() const { return m_caption; }
    void SetCaption(std::string caption);                 ///< of a chain: its title too
    const std::string& GetLink() const { return m_link; } ///< a web address, or empty
    bool IsEditable() const { return m_isEditable; }
    CEffectAbstract* GetEffect() const { return m_effect.get(); }
    CSimpleEffect* GetSimpleEffect() const;   ///< null: it is none
    CComplexEffect* GetComplexEffect() const; ///< null: it is none
    void SetActive(bool active);              ///< its effect

    CEffectNode* FirstChild() const { return Node(coTree::FirstChild()); }
    CEffectNode* LastChild() const { return Node(coTree::LastChild()); }
    CEffectNode* NextSibling() const { return Node(coTree::NextSibling()); }
    CEffectNode* PreviousSibling() const;
    CEffectNode* Parent() const { return Node(coTree::Parent()); }
    bool IsWithin(const CEffectNode* other) const;         ///< below it, or it itself
    CEffectNode* NextInTree(const CEffectNode* top) const; ///< of all nodes below `top`, each before those below it
    CEffectNode* FindNode(uint32_t id);                    ///< this node or one below it; null: none

    /// Adds the chains and the library's effects below this node, folders as popups; those whose id has no command
    /// and folders without effects are left out. With `childrenOnly` false they come in a popup of this node's name.
    void BuildMorphMenu(EffectMenu& menu, bool childrenOnly) const;

private:
    friend class CEffectTree;
    friend class EffectTreeFile;
    static CEffectNode* Node(coTree* node) { return static_cast<CEffectNode*>(node); }
    bool HasMorphItem() const;

    std::string m_caption;
    std::string m_link;
    NODE_TYPE m_type;
    uint32_t m_id = NoId;
    bool m_isEditable;
    std::unique_ptr<CEffectAbstract> m_effect;
    std::unique_ptr<enXml> m_kept; ///< of an unavailable effect: the element that it was read from
};

} // namespace ek
