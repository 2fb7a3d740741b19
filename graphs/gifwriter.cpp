#include "graphs/gifwriter.h"

#include "platform/platform.h"

#include <QBuffer>
#include <QHash>
#include <QIODevice>

#include <gif_lib.h>

#include <algorithm>
#include <climits>
#include <utility>

namespace velmora {

namespace {

int distance2(QRgb a, QRgb b) {
    const int dr = qRed(a) - qRed(b), dg = qGreen(a) - qGreen(b), db = qBlue(a) - qBlue(b);
    return dr * dr + dg * dg + db * db;
}

int writeToDevice(GifFileType* gif, const GifByteType* data, int length) {
    auto* device = static_cast<QIODevice*>(gif->UserData);
    return int(device->write(reinterpret_cast<const char*>(data), length));
}

QString gifError(int code) {
    const char* text = GifErrorString(code);
    return QString::fromLatin1(text ? text : "GIF error");
}

} // namespace

IndexedPicture indexColours(const QImage& source) {
    const QImage image = source.convertToFormat(QImage::Format_RGB32);
    IndexedPicture out;
    out.width = image.width();
    out.height = image.height();

    // How often each colour occurs.
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        QRgb last = 0;
        int* lastCount = nullptr;
        for (int x = 0; x < image.width(); ++x) {
            const QRgb c = line[x] | 0xff000000u;
            if (!lastCount || c != last) {
                last = c;
                lastCount = &counts[c];
            }
            ++*lastCount;
        }
    }
    std::vector<std::pair<int, QRgb>> byCount;
    byCount.reserve(std::size_t(counts.size()));
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        byCount.emplace_back(it.value(), it.key());
    std::sort(byCount.begin(), byCount.end(), [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first > b.first : a.second < b.second;
    });

    // The palette: the most frequent colours as they are.
    QHash<QRgb, int> indexOf;
    const std::size_t kept = std::min<std::size_t>(byCount.size(), 256);
    for (std::size_t i = 0; i < kept; ++i) {
        out.palette.push_back(byCount[i].second);
        indexOf.insert(byCount[i].second, int(i));
    }
    // The others: the nearest entry, found once a colour.
    for (std::size_t i = kept; i < byCount.size(); ++i) {
        const QRgb c = byCount[i].second;
        int best = 0, bestDistance = INT_MAX;
        for (std::size_t j = 0; j < kept && bestDistance > 0; ++j) {
            const int d = distance2(c, out.palette[j]);
            if (d < bestDistance) {
                bestDistance = d;
                best = int(j);
            }
        }
        indexOf.insert(c, best);
    }

    out.pixels.resize(std::size_t(out.width) * std::size_t(out.height));
    std::uint8_t* p = out.pixels.data();
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        QRgb last = 0;
        std::uint8_t lastIndex = 0;
        bool have = false;
        for (int x = 0; x < image.width(); ++x) {
            const QRgb c = line[x] | 0xff000000u;
            if (!have || c != last) {
                last = c;
                lastIndex = std::uint8_t(indexOf.value(c));
                have = true;
            }
            *p++ = lastIndex;
        }
    }
    return out;
}

bool writeGif(const QImage& image, QIODevice& device, QString* error) {
    const auto fail = [error](const QString& why) {
        if (error) *error = why;
        return false;
    };
    if (image.isNull()) return fail(QStringLiteral("no picture"));
    IndexedPicture picture = indexColours(image);

    // giflib wants a power of two entries; the rest stay black.
    int mapSize = 2;
    while (mapSize < int(picture.palette.size()))
        mapSize *= 2;
    ColorMapObject* map = GifMakeMapObject(mapSize, nullptr);
    if (!map) return fail(QStringLiteral("out of memory"));
    for (int i = 0; i < mapSize; ++i) {
        const QRgb c = i < int(picture.palette.size()) ? picture.palette[std::size_t(i)] : 0;
        map->Colors[i] =
            GifColorType{GifByteType(qRed(c)), GifByteType(qGreen(c)), GifByteType(qBlue(c))};
    }

    int code = 0;
    GifFileType* gif = EGifOpen(&device, writeToDevice, &code);
    if (!gif) {
        GifFreeMapObject(map);
        return fail(gifError(code));
    }
    bool ok = EGifPutScreenDesc(gif, picture.width, picture.height, 8, 0, map) == GIF_OK &&
              EGifPutImageDesc(gif, 0, 0, picture.width, picture.height, false, nullptr) == GIF_OK;
    for (int y = 0; ok && y < picture.height; ++y)
        ok = EGifPutLine(gif, picture.pixels.data() + std::size_t(y) * std::size_t(picture.width),
                         picture.width) == GIF_OK;
    const int writeError = gif->Error;
    GifFreeMapObject(map);
    if (EGifCloseFile(gif, &code) != GIF_OK) {
        ok = false;
    } else {
        code = writeError;
    }
    return ok ? true : fail(gifError(code));
}

bool saveGif(const QImage& image, const QString& fileName, QString* error) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!writeGif(image, buffer, error)) return false;
    return replaceFile(fileName, buffer.data(), error);
}

} // namespace velmora
