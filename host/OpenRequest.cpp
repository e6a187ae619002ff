// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/OpenRequest.h"

#include "platform/File.h"
#include "platform/Text.h"

#include <utility>

namespace ek {

namespace {

/// Empty when nothing speaks against asking for the file.
std::string Refusal(const std::filesystem::path& file)
{
    const std::string name = ToUtf8(ToUtf16(file.native()));
    if (!IsFile(file))
        return "Can't open file " + ToUtf8(ToUtf16(file.filename().native()));
    if (file.native().find('"') != std::string::npos)
        return "The name of this file holds a double quote. Open it with File, Open:\n" + name;
    if (name != file.native())
        return "The name of this file is not valid UTF-8. Rename it first:\n" + name;
    return {};
}

} // namespace

OpenRequest MakeOpenRequest(const std::vector<std::filesystem::path>& files)
{
    OpenRequest request;
    for (const std::filesystem::path& file : files) {
        if (std::string refusal = Refusal(file); !refusal.empty())
            request.Refusals.push_back(std::move(refusal));
        else
            request.Text += u" \"" + ToUtf16(file.native()) + u'"';
    }
    if (!request.Text.empty())
        request.Text.insert(0, u"Open");
    return request;
}

} // namespace ek
