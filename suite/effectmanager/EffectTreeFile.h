// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/EffectNode.h"

#include <memory>
#include <vector>

namespace ek {

class CEffectTree;

/// The library as XML. Below "EffectsTree" stand
///   Folder   Caption, Link, Editable (0 or 1); its nodes
///   Complex  Caption, Editable, Active (0 or 1); its effects
///   Effect   Library (the name of the effect), Caption, Active, Preset (a number, -1: none), State; for each parameter
///            an element Parameter with Name and Value
/// What else stands there, and effects that are not installed, are kept and written as they were read.
class EffectTreeFile {
public:
    static constexpr char RootName[] = "EffectsTree";

    explicit EffectTreeFile(const CEffectTree& tree) : m_tree(tree) {}

    /// The nodes below the root element, in their order.
    std::vector<std::unique_ptr<CEffectNode>> Read(const enXml& xml, bool isInChain) const;
    static void Write(const CEffectNode& parent, enXml& xml); ///< the nodes below the parent
    /// Gives the unavailable nodes below `top` the effects that have been installed since they were read.
    void MakeAvailable(CEffectNode& top) const;
    /// Without ids, and in folders without the effects that the library offers; null for one that is not for a chain.
    std::unique_ptr<CEffectNode> Copy(const CEffectNode& node, bool isForChain) const;

private:
    static void WriteNode(const CEffectNode& node, enXml& xml);
    void ReadChildren(const enXml& element, CEffectNode& parent) const;
    std::unique_ptr<CEffectNode> ReadNode(const enXml& element, bool isInChain) const;
    std::unique_ptr<CEffectAbstract> ReadEffect(const enXml& element) const;

    const CEffectTree& m_tree;
};

} // namespace ek
