// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/CmdTarget.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace ek {

class CDocTemplate;
class CDocument;

/// What changed in a document, where and by how much.
struct DocumentChange {
    enum class Kind {
        Reset,    ///< another sound: format, length and display state are all new
        Frames,   ///< [StartFrame, StartFrame + OldLength) became [StartFrame, StartFrame + NewLength)
        Title,    ///< path or title
        Modified, ///< the modified flag
    };
    Kind What = Kind::Reset;
    uint64_t StartFrame = 0;
    uint64_t OldLength = 0;
    uint64_t NewLength = 0;
};

/// A view of a document. It removes itself before it dies.
class DocumentObserver {
public:
    virtual void OnDocumentChanged(const DocumentChange& change) = 0;

protected:
    ~DocumentObserver() = default;
};

/// A document: path, title, modified flag, observers. It knows no widget. User-interface thread.
class CDocument : public CCmdTarget {
public:
    virtual bool OnNewDocument(); ///< base: empties, unmodified; true
    virtual bool OnOpenDocument(const std::filesystem::path& path) = 0;
    virtual bool OnSaveDocument(const std::filesystem::path& path) = 0;
    virtual void DeleteContents() {}
    virtual bool DoSave() = 0;
    virtual bool SaveAs() = 0;
    /// Asks whether to save a modified document; false: keep it open.
    virtual bool SaveModified() = 0;

    const std::filesystem::path& Path() const { return m_path; } ///< empty: never saved
    void SetPath(const std::filesystem::path& path);
    const std::string& Title() const { return m_title; }
    void SetTitle(const std::string& title);
    /// What a window shows: the file name of the path, or the title, or "Untitled".
    std::string DisplayName() const;

    bool IsModified() const { return m_modified; }
    void SetModified(bool modified);

    void AddObserver(DocumentObserver& observer);
    void RemoveObserver(DocumentObserver& observer);
    void Notify(const DocumentChange& change);

    CDocTemplate* Template() const { return m_template; } ///< the owner
    void SetTemplate(CDocTemplate* owner) { m_template = owner; }

private:
    std::filesystem::path m_path;
    std::string m_title;
    bool m_modified = false;
    std::vector<DocumentObserver*> m_observers;
    CDocTemplate* m_template = nullptr;
};

} // namespace ek
