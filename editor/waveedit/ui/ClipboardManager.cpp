// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveedit/ui/ClipboardManager.h"

#include "debugmanager/DebugManager.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QLabel>
#include <QMimeData>
#include <QtEndian>

#include <dlfcn.h>

namespace ek {

namespace {

/// Where the module was loaded tells its copies apart.
quintptr LoadAddress()
{
    static const char anchor = 0;
    Dl_info info{};
    dladdr(&anchor, &info);
    return reinterpret_cast<quintptr>(info.dli_fbase);
}

void DropDragImages()
{
    CClipboardManager::GetInstance().SetDragImageList(nullptr);
}

} // namespace

CClipboardManager& CClipboardManager::GetInstance()
{
    static CClipboardManager instance;
    return instance;
}

CClipboardManager::CClipboardManager()
    : m_format(QStringLiteral("NCDF:%1:%2").arg(QString::fromUtf8(ModuleName)).arg(LoadAddress(), 0, 16))
{
    qAddPostRoutine(DropDragImages);
}

CClipboardManager::~CClipboardManager()
{
    qRemovePostRoutine(DropDragImages); // the module may be unloaded before the application goes
}

void CClipboardManager::ClearClipboard()
{
    QGuiApplication::clipboard()->setMimeData(new QMimeData);
}

void CClipboardManager::PutValue(uint32_t value, QMimeData* data)
{
    QMimeData* target = data ? data : new QMimeData;
    QByteArray bytes(sizeof(value), Qt::Uninitialized);
    qToLittleEndian(value, bytes.data());
    target->setData(m_format, bytes);
    if (!data)
        QGuiApplication::clipboard()->setMimeData(target); // takes it
}

const QMimeData* CClipboardManager::Source(const QMimeData* data) const
{
    return data ? data : QGuiApplication::clipboard()->mimeData();
}

bool CClipboardManager::HasValue(const QMimeData* data) const
{
    const QMimeData* source = Source(data);
    return source && source->hasFormat(m_format);
}

uint32_t CClipboardManager::GetValue(const QMimeData* data) const
{
    if (!HasValue(data))
        return 0;
    const QByteArray bytes = Source(data)->data(m_format);
    return bytes.size() == sizeof(uint32_t) ? qFromLittleEndian<uint32_t>(bytes.constData()) : 0;
}

void CClipboardManager::SetDragImageList(std::unique_ptr<DragImageList> images)
{
    EndDrag();
    m_images = std::move(images);
}

void CClipboardManager::BeginDrag(size_t image, QPoint hotSpot)
{
    EndDrag();
    if (!m_images || image >= m_images->size())
        return;
    m_dragged = (*m_images)[image];
    m_hotSpot = hotSpot;
}

void CClipboardManager::DragEnter(QWidget& window, QPoint point)
{
    DragLeave();
    if (m_dragged.isNull())
        return;
    auto* picture = new QLabel(&window);
    picture->setAttribute(Qt::WA_TransparentForMouseEvents);
    picture->setPixmap(m_dragged);
    picture->adjustSize();
    m_picture = picture;
    DragMove(point);
    picture->show();
    picture->raise();
}

void CClipboardManager::DragMove(QPoint point)
{
    if (m_picture)
        m_picture->move(point - m_hotSpot);
}

void CClipboardManager::DragLeave()
{
    delete m_picture;
}

void CClipboardManager::EndDrag()
{
    DragLeave();
    m_dragged = {};
}

} // namespace ek
