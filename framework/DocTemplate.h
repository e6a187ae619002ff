// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Document.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ek {

/// The window of a document, on a screen. Owned by whoever shows it.
class DocumentFrame {
public:
    virtual void Activate() = 0;

protected:
    ~DocumentFrame() = default;
};

/// Makes and owns the documents of one kind. Where a program has windows, it sets a frame maker.
class CDocTemplate {
public:
    using DocumentMaker = std::function<std::unique_ptr<CDocument>()>;
    /// Shows a document in a new window; null: the window could not be made.
    using FrameMaker = std::function<DocumentFrame*(CDocument&)>;

    /// `templateString` has seven fields, each but the last followed by a newline; the second is the name.
    CDocTemplate(std::string_view templateString, DocumentMaker maker);

    const std::string& DocumentName() const { return m_documentName; }
    void SetFrameMaker(FrameMaker maker) { m_frameMaker = std::move(maker); }

    /// Opens the file in a new document, or makes a new empty one when the path is empty, and shows it. Null
    /// when the document refused; the user has been told.
    CDocument* OpenDocumentFile(const std::filesystem::path& path);
    /// Destroys the document; its window is gone already.
    void CloseDocument(CDocument& document);

    const std::vector<std::unique_ptr<CDocument>>& Documents() const { return m_documents; } ///< in opening order

private:
    std::string m_documentName;
    DocumentMaker m_maker;
    FrameMaker m_frameMaker;
    std::vector<std::unique_ptr<CDocument>> m_documents;
};

} // namespace ek
