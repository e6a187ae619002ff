// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace ek {

class CDocument;

/// What documents ask of the program around them; implemented by the main frame. A program without windows has
/// none. User-interface thread.
class DocumentSite {
public:
    virtual void AddRecentFile(const std::filesystem::path& path) = 0;
    virtual void RefreshMenu() = 0;
    /// Gives the keyboard back to the document's view after a dialog.
    virtual void FocusView(CDocument& document) = 0;
    /// Closes the document's window once the present call has returned, and opens `path` instead.
    virtual void ReopenAs(CDocument& document, const std::filesystem::path& path) = 0;

protected:
    ~DocumentSite() = default;
};

void SetDocumentSite(DocumentSite* site);
DocumentSite* CurrentDocumentSite(); ///< may be null

} // namespace ek
