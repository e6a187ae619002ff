// SPDX-License-Identifier: GPL-3.0-or-later
#include "Desktop.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace ek {

namespace {

/// The number that the server chose and wrote, once it takes connections.
std::string ReadDisplay(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    std::string line;
    return std::getline(stream, line) && !stream.eof() ? ":" + line : std::string();
}

} // namespace

Desktop::Desktop(const std::filesystem::path& folder) : m_folder(folder)
{
    for (const char* name : {"home", "runtime", "temporary"}) {
        std::filesystem::create_directories(folder / name);
        std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
    }
    const std::string home = folder / "home";
    m_environment = {
        {"HOME", home},
        {"XDG_CONFIG_HOME", home + "/config"},
        {"XDG_DATA_HOME", home + "/data"},
        {"XDG_STATE_HOME", home + "/state"},
        {"XDG_CACHE_HOME", home + "/cache"},
        {"XDG_RUNTIME_DIR", folder / "runtime"},
        {"TMPDIR", folder / "temporary"},
        {"QT_QPA_PLATFORM", "xcb"},
        {"LC_ALL", "C.UTF-8"},
        {"WAYLAND_DISPLAY", ""},
        {"QT_SCALE_FACTOR", ""},
        {"QT_QPA_PLATFORMTHEME", ""},
        {"DBUS_SESSION_BUS_ADDRESS", "disabled:"},
    };
}

bool Desktop::Start()
{
    const std::filesystem::path number = m_folder / "display";
    m_server =
        Run({"sh", "-c", "exec Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>" + number.native()}, "xvfb");
    if (!Eventually([&] { return m_server->HasEnded() || !ReadDisplay(number).empty(); }))
        return false;
    m_environment["DISPLAY"] = ReadDisplay(number);
    return !m_server->HasEnded();
}

std::unique_ptr<Process> Desktop::Run(const std::vector<std::string>& arguments, const std::string& name) const
{
    return std::make_unique<Process>(arguments, m_environment, m_folder / (name + ".output"));
}

std::string Desktop::Xdotool(const std::vector<std::string>& arguments) const
{
    std::vector<std::string> all{"xdotool"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const std::unique_ptr<Process> process = Run(all, "xdotool");
    Eventually([&] { return process->HasEnded(); });
    return process->ExitStatus() == 0 ? process->Output() : std::string();
}

std::string Desktop::FindWindow(const std::string& title) const
{
    std::istringstream windows(Xdotool({"search", "--onlyvisible", "--name", title}));
    std::string window;
    std::getline(windows, window);
    return window;
}

bool Desktop::Focus(const std::string& title) const
{
    return Eventually([&] {
        const std::string window = FindWindow(title);
        if (window.empty())
            return false;
        Xdotool({"windowfocus", window});
        return Xdotool({"getwindowfocus", "-f"}) == window + "\n";
    });
}

std::string Desktop::WindowUnderPointer() const
{
    const std::string text = Xdotool({"getmouselocation", "--shell"});
    const std::string name = "WINDOW=";
    const size_t start = text.find(name);
    return start == std::string::npos ? std::string()
                                      : text.substr(start + name.size(), text.find('\n', start) - start - name.size());
}

QRect Desktop::Area(const std::string& window) const
{
    std::istringstream lines(Xdotool({"getwindowgeometry", "--shell", window}));
    std::map<std::string, int> values;
    for (std::string line; std::getline(lines, line);) {
        const size_t equals = line.find('=');
        values[line.substr(0, equals)] = std::atoi(line.c_str() + equals + 1);
    }
    return {values["X"], values["Y"], values["WIDTH"], values["HEIGHT"]};
}

bool Desktop::MoveWindow(const std::string& title, int x, int y, int width, int height) const
{
    const std::string window = FindWindow(title);
    Xdotool({"windowmove", window, std::to_string(x), std::to_string(y)});
    Xdotool({"windowsize", window, std::to_string(width), std::to_string(height)});
    const std::string size = "Geometry: " + std::to_string(width) + "x" + std::to_string(height);
    return Eventually([&] { return Xdotool({"getwindowgeometry", window}).find(size) != std::string::npos; });
}

void Desktop::MovePointer(int x, int y) const
{
    Xdotool({"mousemove", std::to_string(x), std::to_string(y)});
}

void Desktop::Press() const
{
    Xdotool({"mousedown", "1"});
}

void Desktop::Release() const
{
    Xdotool({"mouseup", "1"});
}

void Desktop::Click(int x, int y) const
{
    MovePointer(x, y);
    Press();
    Release();
}

void Desktop::TurnWheelUp(int notches) const
{
    for (int i = 0; i < notches; ++i)
        Xdotool({"click", "4"});
}

void Desktop::Key(const std::string& keys) const
{
    Xdotool({"key", keys});
}

void Desktop::Type(const std::string& text) const
{
    Xdotool({"type", text});
}

QImage Desktop::Picture() const
{
    const std::string file = m_folder / "screen.png";
    const std::unique_ptr<Process> grab = Run({EK_BIN_DIR "/e2e-helper", "grab", file}, "grab");
    Eventually([&] { return grab->HasEnded(); });
    return QImage(QString::fromStdString(file)).convertToFormat(QImage::Format_RGB32);
}

} // namespace ek
