// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <vector>

class QMimeData;

namespace ek {

/// The pictures that a drag may show, by index.
using DragImageList = std::vector<QPixmap>;

/// One 32-bit value on the system clipboard, or in a drag, in a format of this loaded module's own; and the picture
/// that follows a drag. Sound never goes this way. A value is a reference that means something in this process only:
/// whoever reads one looks up whether it still stands for something. User-interface thread.
class CClipboardManager {
public:
    static CClipboardManager& GetInstance(); ///< the first call makes it
    virtual ~CClipboardManager();

    const QString& FormatName() const { return m_format; } ///< another one in each loaded copy of the module

    void ClearClipboard(); ///< the clipboard is the module's then, and empty
    /// Adds the value to the data of a drag; without one (null) it replaces what is on the clipboard.
    void PutValue(uint32_t value, QMimeData* data = nullptr);
    // Of the data, or of the clipboard (null).
    bool HasValue(const QMimeData* data = nullptr) const;
    uint32_t GetValue(const QMimeData* data = nullptr) const; ///< 0: there is none that can be read

    /// Null: none. Ends a drag that is shown. The images go with the application object, which they may not outlive.
    void SetDragImageList(std::unique_ptr<DragImageList> images);
    bool HasDragImage() const { return m_images != nullptr; }

    // The picture is a small widget inside the window that the pointer is over, because not every display lets a
    // program place a window of its own at the pointer. Points are in the window's units. All of these do nothing while
    // no images are set, or for an index that is not in the list.
    void BeginDrag(size_t image, QPoint hotSpot); ///< `hotSpot`: the point of the picture that is at the pointer
    void DragEnter(QWidget& window, QPoint point);
    void DragMove(QPoint point);
    void DragLeave(); ///< the window that was entered last
    void EndDrag();

private:
    CClipboardManager();
    const QMimeData* Source(const QMimeData* data) const;

    const QString m_format;
    std::unique_ptr<DragImageList> m_images;
    QPixmap m_dragged; // null: no drag
    QPoint m_hotSpot;
    QPointer<QWidget> m_picture;
};

} // namespace ek
