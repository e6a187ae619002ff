// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/OpenRequest.h"

#include "platform/File.h"
#include "platform/Text.h"

namespace ek {

namespace {

bool IsUtf8(const std::filesystem::path& file)
{
    return ToUtf8(ToUtf16(file.native())) == file.native();
}

/// Empty when nothing speaks against asking for the file.
std::string_view Refusal(const std::filesystem::path& file)
{
    if (!IsFile(file))
        return "There is no file of this name:";
    if (file.native().find('"') != std::string::npos)
        return "The name of this file holds a double quote. Open it with File, Open:";
    if (!IsUtf8(file))
        return "The name of this file is not valid UTF-8. Rename it first:";
    return {};
}

} // namespace

OpenRequest MakeOpenRequest(const std::vector<std::filesystem::path>& files)
{
    OpenRequest request;
    for (const std::filesystem::path& file : files) {
        const std::u16string name = ToUtf16(file.native());
        if (const std::string_view refusal = Refusal(file); !refusal.empty())
            request.Refusals.push_back(std::string(refusal) + '\n' + ToUtf8(name));
        else
            request.Text += u" \"" + name + u'"';
    }
    if (!request.Text.empty())
        request.Text.insert(0, u"Open");
    return request;
}

} // namespace ek
