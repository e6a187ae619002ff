// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/FileDrop.h"

#include "platform/File.h"

#include <QUrl>

#include <algorithm>

namespace ek {

namespace {

std::filesystem::path PathOf(const QUrl& url)
{
    return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

} // namespace

bool OffersFiles(const QMimeData& data)
{
    const QList<QUrl> urls = data.urls();
    return std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); });
}

bool AcceptFileDrag(QDropEvent& event)
{
    if (!OffersFiles(*event.mimeData()) || !(event.possibleActions() & Qt::CopyAction)) {
        event.ignore();
        return false;
    }
    event.setDropAction(Qt::CopyAction);
    event.accept();
    return true;
}

std::vector<std::filesystem::path> DroppedFiles(const QMimeData& data)
{
    std::vector<std::filesystem::path> files;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile() && !IsFolder(PathOf(url)))
            files.push_back(PathOf(url));
    }
    return files;
}

} // namespace ek
