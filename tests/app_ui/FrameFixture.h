// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/EkEditorApp.h"
#include "app/ui/MainFrame.h"
#include "background/ui/QtProgressPresenter.h"
#include "resources/CommandIds.h"
#include "support/RecordingHost.h"
#include "support/ScriptedPrompts.h"
#include "support/Signals.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QVBoxLayout>

namespace ek {

using Names = std::vector<std::string>;

/// A widget of the host's that keeps the commands it gets.
class MessageKeeper : public QWidget {
public:
    using QWidget::QWidget;
    using Message = std::tuple<uint32_t, uintptr_t, intptr_t>; ///< id, wParam, lParam

    std::vector<Message> Messages;

protected:
    bool event(QEvent* event) override
    {
        if (event->type() != MessageEvent::Kind)
            return QWidget::event(event);
        const auto& message = static_cast<const MessageEvent&>(*event);
        Messages.emplace_back(message.Id, message.WParam, message.LParam);
        event->accept();
        return true;
    }
};

/// The real main frame on a page of a host's window.
class FrameFixture : public testing::Test {
protected:
    FrameFixture()
    {
        SetProgressPresenter(&m_presenter); // long work runs an event loop here, as it does for a person
        auto* layout = new QVBoxLayout(m_page);
        layout->setContentsMargins(0, 0, 0, 0);
        m_window.resize(1000, 700);
        m_page->setGeometry(m_window.rect());
        m_frame = new CMainFrame(m_page, m_app, &m_host);
        layout->addWidget(m_frame);
        m_frame->ChangeState(true);
        m_window.show();
        Settle();
        m_host.Calls.Take();
    }

    ~FrameFixture() override
    {
        delete m_frame;
        SetProgressPresenter(nullptr);
    }

    std::filesystem::path MakeSound(const std::string& name, size_t frames = 3000) const
    {
        std::filesystem::path path = m_folder.Path() / name;
        WriteWav(path, 2, MakeRamp(frames * 2));
        return path;
    }

    CDocument* Open(const std::string& name, bool modified = false)
    {
        EXPECT_TRUE(m_frame->OpenFile(MakeSound(name)));
        m_app.Documents().back()->SetModified(modified);
        return m_app.Documents().back();
    }

    bool Run(uint32_t id) { return m_frame->HandleCommand(id, CN_COMMAND, nullptr); }

    bool IsEnabled(uint32_t id)
    {
        CommandUi ui{.Id = id};
        return m_frame->HandleCommand(id, CN_UPDATE_COMMAND_UI, &ui) && ui.Enabled;
    }

    QMenu* SubMenu(qsizetype position) { return m_frame->Menu()->actions().at(position)->menu(); }

    Names DocumentNames() const
    {
        Names names;
        for (const CDocument* document : m_app.Documents())
            names.push_back(document->DisplayName());
        return names;
    }

    void Settle()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    TestFolder m_folder;
    ScriptedPrompts m_prompts;
    QtProgressPresenter m_presenter{std::chrono::hours(1)};
    RecordingHost m_host;
    CEkEditorApp m_app;
    MessageKeeper m_window;
    QWidget* m_page = new QWidget(&m_window);
    QPointer<CMainFrame> m_frame;
};

} // namespace ek
