// SPDX-License-Identifier: GPL-3.0-or-later
#include "xml/enXml.h"
#include "platform/Text.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace ek {

enXml* enXml::FindChild(std::string_view name) const
{
    enXml* child = FirstChild();
    while (child && !EqualsIgnoreCase(child->m_name, name))
        child = child->NextSibling();
    return child;
}

const enXml::Attribute* enXml::FindAttribute(std::string_view name) const
{
    const auto found = std::find_if(m_attributes.begin(), m_attributes.end(), [name](const Attribute& attribute) {
        return EqualsIgnoreCase(attribute.first, name);
    });
    return found == m_attributes.end() ? nullptr : &*found;
}

bool enXml::GetAttribute(std::string_view name, std::string& value) const
{
    const Attribute* const found = FindAttribute(name);
    if (found)
        value = found->second;
    return found != nullptr;
}

bool enXml::GetAttributeInt(std::string_view name, int& value) const
{
    const Attribute* const found = FindAttribute(name);
    if (!found)
        return false;
    const long long number = std::strtoll(found->second.c_str(), nullptr, 10);
    using Limits = std::numeric_limits<int>;
    value = static_cast<int>(std::clamp<long long>(number, Limits::min(), Limits::max()));
    return true;
}

void enXml::AddAttribute(std::string_view name, std::string_view value)
{
    m_attributes.emplace_back(name, value);
}

} // namespace ek
