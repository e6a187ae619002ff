// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/EkEditorApp.h"

#include "app/FileFilter.h"
#include "ekdatapr/EkDataPr.h"
#include "platform/Text.h"
#include "resources/Strings.h"
#include "servicefuncs/MessageBox.h"
#include "waveedit/WEDoc.h"

#include <algorithm>

namespace ek {

namespace {

constexpr char SessionExtension[] = ".mts";

std::string TemplateName(uint32_t stringId)
{
    return CDocTemplate(LoadString(stringId), {}).DocumentName();
}

} // namespace

CEkEditorApp::CEkEditorApp()
    : m_waveTemplateName(TemplateName(IDS_WAVE_TEMPLATE)),
      m_multitrackTemplateName(TemplateName(IDS_MULTITRACK_TEMPLATE))
{
    SoundClipboard(); // what is made before a static object dies after it
    m_templates.push_back(
        std::make_unique<CDocTemplate>(LoadString(IDS_WAVE_TEMPLATE), [] { return std::make_unique<CWEDoc>(); }));
}

CEkEditorApp::~CEkEditorApp()
{
    SoundClipboard().Free();
}

CDocTemplate* CEkEditorApp::FindTemplate(std::string_view documentName) const
{
    const auto found = std::ranges::find(m_templates, documentName,
                                         [](const auto& held) -> const std::string& { return held->DocumentName(); });
    return found == m_templates.end() ? nullptr : found->get();
}

CDocument* CEkEditorApp::OpenDocumentByName(const std::filesystem::path& path)
{
    const bool isSession = EqualsIgnoreCase(path.extension().string(), SessionExtension);
    return CreateDocument(isSession ? m_multitrackTemplateName : m_waveTemplateName, path);
}

CDocument* CEkEditorApp::CreateDocument(std::string_view templateName, const std::filesystem::path& path)
{
    if (CDocTemplate* found = FindTemplate(templateName))
        return found->OpenDocumentFile(path);
    if (!path.empty()) {
        const std::string format = LoadString(IDS_CANNOT_OPEN_FILE);
        AfxSCMessageBox(Format(format.c_str(), path.filename().c_str()), MessageButtons::Ok, MessageIcon::Error);
    }
    return nullptr;
}

std::vector<CDocument*> CEkEditorApp::Documents() const
{
    std::vector<CDocument*> all;
    for (const auto& held : m_templates) {
        for (const auto& document : held->Documents())
            all.push_back(document.get());
    }
    return all;
}

std::string CEkEditorApp::OpenFileFilter(bool withAllFiles)
{
    return MakeOpenFileFilter(EkGetSupportedFileExtensions(), withAllFiles);
}

} // namespace ek
