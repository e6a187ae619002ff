// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Module.h"

#include "platform/File.h"
#include "platform/Paths.h"

#include <dlfcn.h>

#include <algorithm>

namespace ek {

namespace {

constexpr char LibraryName[] = "libEkWaveEditor.so";

class SymbolReader {
public:
    explicit SymbolReader(void* library) : m_library(library) {}

    template <class Function>
    void Read(const char* name, Function& function)
    {
        function = reinterpret_cast<Function>(dlsym(m_library, name));
        if (!function && m_missing.empty())
            m_missing = name;
    }

    const std::string& Missing() const { return m_missing; }

private:
    void* m_library;
    std::string m_missing;
};

/// The name of the first function that is missing, or empty.
std::string ReadSymbols(void* library, ModuleExports& exports)
{
    SymbolReader reader(library);
    reader.Read("EkInitialize", exports.Initialize);
    reader.Read("EkGetMenu", exports.GetMenu);
    reader.Read("EkGetAccelTable", exports.GetAccelTable);
    reader.Read("EkChangeState", exports.ChangeState);
    reader.Read("EkFree", exports.Free);
    reader.Read("EkLoadSkin", exports.LoadSkin);
    reader.Read("EkFilterDllMsg", exports.FilterDllMsg);
    reader.Read("EkProcessDllIdle", exports.ProcessDllIdle);
    reader.Read("EkPassMessage", exports.PassMessage);
    reader.Read("EkGetModuleInfo", exports.GetModuleInfo);
    reader.Read("EkOnCmdMsg", exports.OnCmdMsg);
    reader.Read("EkPreTranslateMessage", exports.PreTranslateMessage);
    reader.Read("EkTryClose", exports.TryClose);
    return reader.Missing();
}

} // namespace

std::vector<std::filesystem::path> ModulePlaces()
{
    const std::filesystem::path program = ExecutableFolder();
    return {program / LibraryName, program.parent_path() / "lib" / "ek-wave-editor" / LibraryName};
}

bool LoadModule(const std::vector<std::filesystem::path>& places, ModuleExports& exports, std::string& reason)
{
    const auto place = std::find_if(places.begin(), places.end(), IsFile);
    if (place == places.end()) {
        reason = std::string(LibraryName) + " is missing";
        return false;
    }
    void* library = dlopen(place->c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!library) {
        reason = dlerror();
        return false;
    }
    const std::string missing = ReadSymbols(library, exports);
    if (!missing.empty())
        reason = place->native() + " has no function " + missing;
    return missing.empty();
}

} // namespace ek
