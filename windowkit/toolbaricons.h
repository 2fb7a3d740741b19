// The pictures of the main window's toolbar buttons.
#pragma once

#include <QIcon>
#include <QString>

namespace velmora {

// The 16 x 16 picture of the button with the given key (New, Save, Print,
// Sample, Graph); an empty picture for any other key.
QIcon toolbarIcon(const QString& key);

} // namespace velmora
