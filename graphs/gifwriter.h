// Writing a picture as a GIF file with giflib, colours kept exact: the 256
// most frequent colours of the picture make the palette as they are (a chart
// has few: its background, plot area, texts and series), every other colour
// (the antialiased edges) takes the nearest palette entry.
#pragma once

#include <QImage>
#include <QString>

#include <cstdint>
#include <vector>

class QIODevice;

namespace velmora {

// The palette and the palette index of each pixel, row by row.
struct IndexedPicture {
    int width = 0, height = 0;
    std::vector<QRgb> palette; // at most 256 entries
    std::vector<std::uint8_t> pixels;
};
IndexedPicture indexColours(const QImage& image);

// Writes `image` as GIF to `device`; false (with `error` set) on failure.
bool writeGif(const QImage& image, QIODevice& device, QString* error = nullptr);

// Writes `image` as the GIF file `fileName` through a temporary file that
// replaces the file only when everything was written: a failure leaves an
// existing file as it was.
bool saveGif(const QImage& image, const QString& fileName, QString* error = nullptr);

} // namespace velmora
