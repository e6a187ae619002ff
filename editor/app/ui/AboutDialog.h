// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

namespace ek {

/// What this module is, which version, and under which licence.
class AboutDialog final : public QDialog {
public:
    explicit AboutDialog(QWidget* parent);
};

} // namespace ek
