// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/DocTemplate.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ek {

/// The application object of the module and of ekbatch: the document templates and the documents. One per
/// process. It knows no widget; a program with windows sets the templates' frame makers.
class CEkEditorApp : public CCmdTarget {
public:
    CEkEditorApp();
    ~CEkEditorApp() override; ///< the sound clipboard is emptied
    CEkEditorApp(const CEkEditorApp&) = delete;
    CEkEditorApp& operator=(const CEkEditorApp&) = delete;

    const std::string& WaveTemplateName() const { return m_waveTemplateName; }             ///< "Wave Editor"
    const std::string& MultitrackTemplateName() const { return m_multitrackTemplateName; } ///< "Multi Track"
    CDocTemplate* FindTemplate(std::string_view documentName) const;                       ///< null: not registered

    /// Opens the file with the template that its extension asks for: ".mts" (any case) the multitrack one, any
    /// other the wave one. Null when it could not be opened; the user has been told.
    CDocument* OpenDocumentByName(const std::filesystem::path& path);
    /// The same with a named template; without a path a new empty document.
    CDocument* CreateDocument(std::string_view templateName, const std::filesystem::path& path);

    /// All open documents, in the order of the templates and then of their opening.
    std::vector<CDocument*> Documents() const;

    /// The filter of the open dialog, from the types of the codec library with "*.mts" added; empty when there is none.
    static std::string OpenFileFilter(bool withAllFiles);

private:
    std::string m_waveTemplateName;
    std::string m_multitrackTemplateName;
    std::vector<std::unique_ptr<CDocTemplate>> m_templates;
};

} // namespace ek
