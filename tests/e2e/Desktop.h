// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Process.h"

#include <QImage>
#include <QRect>

#include <filesystem>
#include <memory>
#include <string>

namespace ek {

/// A screen of 1280 x 900 that nobody sees, with a mouse and a keyboard, and folders of its own for what runs on it.
/// There is no window manager: windows lie where they put themselves, the newest on top.
class Desktop {
public:
    explicit Desktop(const std::filesystem::path& folder);

    bool Start(); ///< false when the X server does not come up

    /// For what is run from now on.
    void SetVariable(const std::string& name, const std::string& value) { m_environment[name] = value; }
    std::unique_ptr<Process> Run(const std::vector<std::string>& arguments, const std::string& name) const;

    /// The visible window whose title contains the text; empty when there is none.
    std::string FindWindow(const std::string& title) const;
    bool HasWindow(const std::string& title) const { return !FindWindow(title).empty(); }
    /// Waits for the window and gives it the keyboard.
    bool Focus(const std::string& title) const;
    /// Also windows without a title, such as menus.
    std::string WindowUnderPointer() const;
    QRect Area(const std::string& window) const; ///< on the screen
    bool MoveWindow(const std::string& title, int x, int y, int width, int height) const;

    void MovePointer(int x, int y) const;
    void Press() const;
    void Release() const;
    void Click(int x, int y) const;
    void TurnWheelUp(int notches) const;
    void Key(const std::string& keys) const; ///< "ctrl+o", "Return"
    void Type(const std::string& text) const;

    QImage Picture() const;

private:
    std::string Xdotool(const std::vector<std::string>& arguments) const;

    std::filesystem::path m_folder;
    Environment m_environment;
    std::unique_ptr<Process> m_server;
};

} // namespace ek
