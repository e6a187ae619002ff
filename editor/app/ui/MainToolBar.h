// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/ui/CommandToolBar.h"

namespace ek {

class enXml;

/// The tool bar at the top of the main frame.
class MainToolBar final : public CommandToolBar {
public:
    MainToolBar(CommandRouter& router, QWidget* parent);

    /// Draws the images in the colour of the skin. `element`, the skin's description of this bar, may be null; else its
    /// attribute "color" (#rrggbb) gives another colour, and children <Image command="57601" file="..."/> give other
    /// images; a file that cannot be read leaves the built-in one.
    void LoadImages(const enXml* element);

private:
    void LoadOwnImages(const enXml& element, const QColor& color);
};

} // namespace ek
