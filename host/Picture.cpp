// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Picture.h"

#include "host/HostWindow.h"

#include <QPixmap>

namespace ek {

bool SavePicture(HostWindow& window, const std::filesystem::path& file)
{
    window.Settle();
    return window.grab().save(QString::fromStdString(file.native()), "PNG");
}

} // namespace ek
