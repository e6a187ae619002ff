// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Unattended.h"

#include "host/HostWindow.h"
#include "host/Options.h"
#include "host/Picture.h"
#include "host/Tour.h"
#include "host/UnattendedDialogs.h"

#include <cstdio>

namespace ek {

namespace {

bool Tell(const QStringList& complaints)
{
    for (const QString& complaint : complaints)
        std::fprintf(stderr, "%s\n", qPrintable(complaint));
    return !complaints.isEmpty();
}

bool TakeScreenshot(HostWindow& window, const UnattendedDialogs& dialogs, const Options& options)
{
    const bool isRefused = Tell(window.OpenFilesNow(options.Files));
    const bool isDisturbed = Tell(dialogs.Complaints());
    if (!SavePicture(window, options.Screenshot)) {
        std::fprintf(stderr, "%s could not be written\n", options.Screenshot.c_str());
        return false;
    }
    return !isRefused && !isDisturbed;
}

bool WalkTour(HostWindow& window, UnattendedDialogs& dialogs, const Options& options)
{
    if (options.Files.size() != 1) {
        std::fprintf(stderr, "A tour needs one sound file.\n");
        return false;
    }
    std::error_code error;
    std::filesystem::create_directories(options.Tour, error);
    if (error) {
        std::fprintf(stderr, "%s: %s\n", options.Tour.c_str(), error.message().c_str());
        return false;
    }
    return Tour(window, dialogs, options.Tour).Run(options.Files.front());
}

} // namespace

int RunUnattended(HostWindow& window, const Options& options)
{
    window.resize(options.WindowSize.first, options.WindowSize.second);
    window.show();
    window.Settle();
    UnattendedDialogs dialogs;
    const bool done =
        options.Tour.empty() ? TakeScreenshot(window, dialogs, options) : WalkTour(window, dialogs, options);
    window.close();
    return done ? 0 : 1;
}

} // namespace ek
