// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/NspError.h"

#include "dsp/NspChecks.h"

#include <atomic>
#include <cstring>

namespace ek {

namespace {

std::atomic<NspStatus> lastStatus = NspStatusOk;
std::atomic<NspErrorHandler> errorHandler = nullptr;

const char* WithoutFolders(const char* path)
{
    const char* slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

} // namespace

NspStatus nspLastStatus()
{
    return lastStatus;
}

void nspResetStatus()
{
    lastStatus = NspStatusOk;
}

NspErrorHandler nspSetErrorHandler(NspErrorHandler handler)
{
    return errorHandler.exchange(handler);
}

void NspReport(NspStatus status, const char* function, const char* text, const char* file, int line)
{
    lastStatus = status;
    if (const NspErrorHandler handler = errorHandler)
        handler(status, function, text, WithoutFolders(file), line);
}

bool NspRefused(const char* function, std::initializer_list<NspCheck> checks, const char* file, int line)
{
    for (const NspCheck& check : checks) {
        if (check.Violated) {
            NspReport(NspStatusBadArgument, function, check.Text, file, line);
            return true;
        }
    }
    return false;
}

} // namespace ek
