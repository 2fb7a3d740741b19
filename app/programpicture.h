// The program's picture (splash, about and main windows): a drop of water
// over a pH scale, drawn at the size asked for.
#pragma once

#include <QPixmap>
#include <QSize>

namespace velmora {

QPixmap programPicture(QSize size);

} // namespace velmora
