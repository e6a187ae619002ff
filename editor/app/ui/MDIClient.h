// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/CmdTarget.h"
#include "framework/ui/MDIChildWnd.h"

#include <QMdiArea>

namespace ek {

/// The workspace of the document windows. It arranges them, and remembers across sessions whether the last one to
/// close was maximized: the next one opens the same way.
class CMDIClient final : public QMdiArea, public CCmdTarget {
    Q_OBJECT
public:
    explicit CMDIClient(QWidget* parent);

    /// Takes the window, gives it its place, shows and activates it. A window that fills the workspace goes on filling
    /// it when the workspace is resized.
    void AddChild(CMDIChildWnd* child);
    void LoadSkin();

    std::span<const CommandEntry> CommandTable() const override;

protected:
    void paintEvent(QPaintEvent* event) override; ///< the module's name in the empty workspace
    void resizeEvent(QResizeEvent* event) override;

private:
    std::vector<CMDIChildWnd*> OpenChildren() const;
    QRect NextPlace() const;
    void OnChildClosed(const CMDIChildWnd& child);

    void OnNextWindow() { activateNextSubWindow(); }
    void OnPreviousWindow() { activatePreviousSubWindow(); }
    void OnCascade() { cascadeSubWindows(); }
    void OnTileHorizontally();
    void OnTileVertically();
    void OnUpdateWindows(CommandUi& ui);

    bool m_childMaximized;
};

} // namespace ek
