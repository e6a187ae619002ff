// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/OpenRequest.h"

#include "platform/Text.h"

namespace ek {

namespace {

bool HoldsQuote(const std::filesystem::path& file)
{
    return file.native().find('"') != std::string::npos;
}

bool IsUtf8(const std::filesystem::path& file)
{
    return ToUtf8(ToUtf16(file.native())) == file.native();
}

} // namespace

OpenRequest MakeOpenRequest(const std::vector<std::filesystem::path>& files)
{
    OpenRequest request;
    for (const std::filesystem::path& file : files) {
        if (HoldsQuote(file) || !IsUtf8(file))
            request.Refused.push_back(file);
        else
            request.Text += u" \"" + ToUtf16(file.native()) + u'"';
    }
    if (!request.Text.empty())
        request.Text.insert(0, u"Open");
    return request;
}

std::string RefusalText(const std::filesystem::path& file)
{
    const std::string name = ToUtf8(ToUtf16(file.native()));
    if (HoldsQuote(file))
        return "The name of this file holds a double quote. Open it with File, Open:\n" + name;
    return "The name of this file is not valid UTF-8. Rename it first:\n" + name;
}

} // namespace ek
