// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/ui/CoderPanel.h"

#include "ekdatapr/EkDataPr.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <memory>

namespace ek {

namespace {

constexpr const char* PanelName = "CoderPanel";

QString ToolTipFor(const std::string& key)
{
    if (key == "subtype")
        return QStringLiteral("How each sample is stored in the file");
    if (key == "quality")
        return QStringLiteral("Higher values sound better and make larger files");
    if (key == "bitrate")
        return QStringLiteral("Higher rates sound better and make larger files");
    if (key == "channels")
        return QStringLiteral("Layout of the channels in the file. Mono and stereo are converted into each other");
    return QStringLiteral("Open the new file in the editor once it is written");
}

bool IsSwitch(const CoderOption& option)
{
    return option.Choices.size() == 2 && option.Choices[0].Value == "0" && option.Choices[1].Value == "1";
}

QWidget* MakeSwitch(const CoderOption& option)
{
    auto* box = new QCheckBox(QLatin1Char('&') + QString::fromStdString(option.Label));
    box->setChecked(option.Value == "1");
    return box;
}

QWidget* MakeChoice(const CoderOption& option)
{
    auto* box = new QComboBox;
    for (const CoderOption::Choice& choice : option.Choices)
        box->addItem(QString::fromStdString(choice.Label), QString::fromStdString(choice.Value));
    box->setCurrentIndex(box->findData(QString::fromStdString(option.Value)));
    return box;
}

QWidget* MakeNumber(const CoderOption& option)
{
    const bool isFraction = option.Maximum <= 1;
    auto* box = new QDoubleSpinBox;
    box->setDecimals(isFraction ? 2 : 0);
    box->setRange(option.Minimum, option.Maximum);
    box->setSingleStep(isFraction ? 0.05 : 8);
    box->setValue(QByteArray::fromStdString(option.Value).toDouble());
    return box;
}

QWidget* MakeField(const CoderOption& option)
{
    QWidget* field = IsSwitch(option)         ? MakeSwitch(option)
                     : option.Choices.empty() ? MakeNumber(option)
                                              : MakeChoice(option);
    field->setObjectName(QString::fromStdString(option.Key));
    field->setToolTip(ToolTipFor(option.Key));
    return field;
}

std::string ValueOf(const QWidget& field)
{
    if (const auto* box = qobject_cast<const QCheckBox*>(&field))
        return box->isChecked() ? "1" : "0";
    if (const auto* box = qobject_cast<const QComboBox*>(&field))
        return box->currentData().toString().toStdString();
    const auto* box = qobject_cast<const QDoubleSpinBox*>(&field);
    // Settings have a decimal point in every language.
    return box ? QByteArray::number(box->value(), 'f', box->decimals()).toStdString() : std::string();
}

bool ShowPanel(std::string_view extension, QWidget& window)
{
    const std::vector<CoderOption> options = EkGetCoderOptions(extension);
    if (options.empty())
        return false;
    auto* panel = new QWidget(&window);
    panel->setObjectName(PanelName);
    auto* form = new QFormLayout(panel);
    form->setContentsMargins(0, 0, 0, 0);
    for (const CoderOption& option : options) {
        if (option.Choices.size() == 1)
            continue; // nothing to choose
        QWidget* field = MakeField(option);
        if (IsSwitch(option))
            form->addRow(field);
        else
            form->addRow(QLatin1Char('&') + QString::fromStdString(option.Label) + QLatin1Char(':'), field);
    }
    panel->adjustSize();
    panel->show();
    return true;
}

bool KeepPanel(std::string_view extension, QWidget& window)
{
    const std::unique_ptr<QWidget> panel(window.findChild<QWidget*>(PanelName));
    if (!panel)
        return false;
    std::map<std::string, std::string> values;
    for (const CoderOption& option : EkGetCoderOptions(extension)) {
        if (const auto* field = panel->findChild<QWidget*>(QString::fromStdString(option.Key)))
            values[option.Key] = ValueOf(*field);
    }
    std::string error;
    return EkSetCoderOptions(extension, values, error);
}

} // namespace

bool EkCoderShowSettings(std::string_view extension, QWidget* window, bool show)
{
    return window && (show ? ShowPanel(extension, *window) : KeepPanel(extension, *window));
}

} // namespace ek
