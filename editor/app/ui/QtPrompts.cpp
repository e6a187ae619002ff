// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/QtPrompts.h"

#include "app/ui/DialogHolder.h"
#include "app/ui/SoundFormatDialog.h"
#include "platform/File.h"
#include "platform/Text.h"
#include "resources/Strings.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

#include <algorithm>

namespace ek {

namespace {

constexpr char OpenExtension[] = "wav";

QString ModuleTitle()
{
    return QString::fromStdString(LoadString(IDS_MODULE_NAME));
}

QMessageBox::Icon IconOf(MessageIcon icon)
{
    switch (icon) {
    case MessageIcon::Information:
        return QMessageBox::Information;
    case MessageIcon::Question:
        return QMessageBox::Question;
    case MessageIcon::Error:
        return QMessageBox::Critical;
    default:
        return QMessageBox::NoIcon;
    }
}

/// "WAV (*.wav *.wave)": the form that Qt reads the patterns from.
QString NameFilter(const FileType& type)
{
    QString description = QString::fromStdString(type.Description);
    description.truncate(description.lastIndexOf('(') > 0 ? description.lastIndexOf('(') : description.size());
    QStringList patterns;
    for (const std::string& pattern : type.Patterns)
        patterns.append(QString::fromStdString(pattern));
    return QStringLiteral("%1 (%2)").arg(description.trimmed(), patterns.join(' '));
}

QStringList NameFilters(const std::vector<FileType>& types)
{
    QStringList filters;
    for (const FileType& type : types)
        filters.append(NameFilter(type));
    return filters;
}

/// A dialog that hides the patterns gives the description alone.
size_t ChosenType(const QFileDialog& dialog)
{
    const QString chosen = dialog.selectedNameFilter();
    const QStringList filters = dialog.nameFilters();
    const auto found = std::ranges::find_if(
        filters, [&](const QString& filter) { return filter == chosen || filter.startsWith(chosen + " ("); });
    return static_cast<size_t>(found - filters.begin());
}

std::filesystem::path PathOf(const QString& file)
{
    return QFile::encodeName(file).toStdString();
}

/// A name to start from: that of the file, with another extension when no type can be written under its own.
std::filesystem::path SuggestedName(const std::filesystem::path& suggestion, const std::vector<FileType>& types,
                                    std::string_view defaultExtension)
{
    if (!suggestion.is_absolute())
        return suggestion;
    std::filesystem::path name = suggestion.filename();
    if (CompleteFileName(name, types, 0, defaultExtension) == name)
        return name;
    return name.stem();
}

/// Another type means another extension of the name that is already there.
void FollowChosenType(QFileDialog& dialog, const std::vector<FileType>& types, std::string_view defaultExtension)
{
    const QStringList files = dialog.selectedFiles();
    if (files.isEmpty() || QFileInfo(files.first()).isDir())
        return;
    const std::filesystem::path typed = PathOf(files.first()).filename();
    const bool isKnown = CompleteFileName(typed, types, 0, defaultExtension) == typed;
    const std::filesystem::path stem = isKnown ? typed.stem() : typed;
    const std::filesystem::path name = CompleteFileName(stem, types, ChosenType(dialog), defaultExtension);
    dialog.selectFile(QFile::decodeName(name.c_str()));
}

/// The first type that the file's extension belongs to.
QString FilterFor(const std::filesystem::path& name, const std::vector<FileType>& types)
{
    for (const FileType& type : types) {
        if (CompleteFileName(name, {type}, 0, "") == name)
            return NameFilter(type);
    }
    return types.empty() ? QString() : NameFilter(types.front());
}

/// Completes a typed name that no file has.
class OpenDialog final : public QFileDialog {
public:
    explicit OpenDialog(QWidget* parent) : QFileDialog(parent, QStringLiteral("Open")) {}

    void accept() override
    {
        setDefaultSuffix({});
        const QStringList files = selectedFiles();
        if (std::ranges::any_of(files, [](const QString& file) { return !QFileInfo::exists(file); }))
            setDefaultSuffix(QString::fromLatin1(OpenExtension));
        QFileDialog::accept();
    }
};

} // namespace

QWidget* QtPrompts::Parent() const
{
    if (QWidget* active = QApplication::activeWindow())
        return active;
    return m_mainWindow ? m_mainWindow->window() : nullptr;
}

MessageAnswer QtPrompts::ShowMessage(std::string_view text, MessageButtons buttons, MessageIcon icon)
{
    const auto choice = buttons == MessageButtons::Ok ? QMessageBox::StandardButtons(QMessageBox::Ok)
                                                      : QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    const DialogHolder<QMessageBox> box(IconOf(icon), ModuleTitle(),
                                        QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())), choice,
                                        Parent());
    box->setTextFormat(Qt::PlainText);
    switch (box->exec()) {
    case QMessageBox::Yes:
        return MessageAnswer::Yes;
    case QMessageBox::No:
        return MessageAnswer::No;
    case QMessageBox::Ok:
        return MessageAnswer::Ok;
    default:
        return buttons == MessageButtons::Ok ? MessageAnswer::Ok : MessageAnswer::Cancel;
    }
}

void QtPrompts::Prepare(QFileDialog& dialog, const std::vector<FileType>& types) const
{
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setNameFilters(NameFilters(types));
    if (!m_folder.isEmpty())
        dialog.setDirectory(m_folder);
}

void QtPrompts::RememberFolder(const QFileDialog& dialog)
{
    m_folder = dialog.directory().absolutePath();
}

std::vector<std::filesystem::path> QtPrompts::ChooseFilesToOpen(std::string_view filter)
{
    const DialogHolder<OpenDialog> dialog(Parent());
    dialog->setFileMode(QFileDialog::ExistingFiles);
    Prepare(*dialog, ParseFileFilter(filter));
    if (dialog->exec() != QDialog::Accepted)
        return {};
    RememberFolder(*dialog);
    std::vector<std::filesystem::path> paths;
    for (const QString& file : dialog->selectedFiles())
        paths.push_back(PathOf(file));
    return paths;
}

std::optional<std::filesystem::path> QtPrompts::ChooseFileToSave(std::string_view filter,
                                                                 std::string_view defaultExtension,
                                                                 const std::filesystem::path& suggestion)
{
    const std::vector<FileType> types = ParseFileFilter(filter);
    const std::filesystem::path name = SuggestedName(suggestion, types, defaultExtension);
    const DialogHolder<QFileDialog> dialog(Parent(), QStringLiteral("Save As"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setOption(QFileDialog::DontConfirmOverwrite); // asked below, for the name with its extension
    Prepare(*dialog, types);
    if (suggestion.is_absolute())
        dialog->setDirectory(QFile::decodeName(suggestion.parent_path().c_str()));
    dialog->selectNameFilter(FilterFor(name, types));
    dialog->selectFile(QFile::decodeName(name.c_str()));
    QObject::connect(dialog.Get(), &QFileDialog::filterSelected, dialog.Get(),
                     [&] { FollowChosenType(*dialog, types, defaultExtension); });
    while (dialog.Get() && dialog->exec() == QDialog::Accepted) {
        RememberFolder(*dialog);
        const auto typed = PathOf(dialog->selectedFiles().value(0));
        const auto target = CompleteFileName(typed, types, ChosenType(*dialog), defaultExtension);
        if (!IsFile(target) || ConfirmReplace(target))
            return target;
    }
    return std::nullopt;
}

bool QtPrompts::ConfirmReplace(const std::filesystem::path& path) const
{
    const std::string question = Format(LoadString(IDS_REPLACE_FILE).c_str(), path.filename().c_str());
    const DialogHolder<QMessageBox> box(QMessageBox::Question, ModuleTitle(), QString::fromStdString(question),
                                        QMessageBox::Yes | QMessageBox::No, Parent());
    box->setTextFormat(Qt::PlainText);
    box->setDefaultButton(QMessageBox::No);
    return box->exec() == QMessageBox::Yes;
}

bool QtPrompts::ChooseSoundFormat(std::string_view extension)
{
    const DialogHolder<CPlugInSoundFormat> dialog(std::string(extension), m_mainWindow.data(), Parent());
    return dialog->exec() == QDialog::Accepted;
}

} // namespace ek
