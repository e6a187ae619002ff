// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/AboutDialog.h"

#include "app/ModuleIdentity.h"
#include "platform/Text.h"
#include "resources/Strings.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

namespace ek {

namespace {

constexpr char LicenceLink[] = "https://www.gnu.org/licenses/gpl-3.0.html";
constexpr int TextWidth = 380;

QLabel* AddText(QVBoxLayout& layout, const QString& text)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    layout.addWidget(label);
    return label;
}

void AddHeading(QVBoxLayout& layout, const QString& text)
{
    QLabel* label = AddText(layout, text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    label->setFont(font);
}

void AddLink(QVBoxLayout& layout, const QString& address)
{
    auto* label = new QLabel(QStringLiteral("<a href=\"%1\">%1</a>").arg(address));
    label->setOpenExternalLinks(true);
    layout.addWidget(label);
}

QString FormatText(uint32_t stringId, const std::string& argument)
{
    return QString::fromStdString(Format(LoadString(stringId).c_str(), argument.c_str()));
}

} // namespace

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(FormatText(IDS_ABOUT_TITLE, LoadString(IDS_MODULE_NAME)));
    auto* layout = new QVBoxLayout(this);
    AddHeading(*layout, QString::fromStdString(LoadString(IDS_MODULE_NAME)));
    AddText(*layout, QString::fromUtf16(ModuleVersion));
    AddText(*layout, QString::fromUtf16(ModuleCompany) + QString::fromLatin1(", %1").arg(__DATE__ + 7));
    AddText(*layout, FormatText(IDS_BUILD_DATE, __DATE__));
    AddText(*layout, QString::fromStdString(LoadString(IDS_LICENCE)));
    AddLink(*layout, LicenceLink);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    layout->addSpacing(8);
    layout->addWidget(buttons);
    setMinimumWidth(TextWidth);
}

} // namespace ek
