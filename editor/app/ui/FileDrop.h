// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDropEvent>
#include <QMimeData>

#include <filesystem>
#include <vector>

namespace ek {

/// Whether the drag offers files; only then may it be dropped.
bool OffersFiles(const QMimeData& data);

/// Accepts the drag with the copy effect when it offers files that may be copied, and refuses anything else.
bool AcceptFileDrag(QDropEvent& event);

/// The files in the order of the list, without folders. A name keeps its bytes, whatever they mean.
std::vector<std::filesystem::path> DroppedFiles(const QMimeData& data);

} // namespace ek
