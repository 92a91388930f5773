// SPDX-License-Identifier: MIT
// Reads arbitrary bytes as a palette; the first byte chooses the format word. A failed read must
// leave the colours alone, no read may change the file, and what was read must come back from the
// one format that is written.
#include "image/paletteobject.h"

#include "require.h"

#include <QBuffer>

#include <algorithm>
#include <iterator>

using namespace Vela;

namespace {

bool read(PaletteObject &palette, QByteArray bytes, const char *word)
{
    const int size = bytes.size();
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadWrite);
    const bool isRead = palette.fromFile(&buffer, word);
    require(bytes.size() == size);
    return isRead;
}

void requireRoundTrip(PaletteObject &palette)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    require(palette.toFile(&buffer, "ACT"));
    RGBA table[256];
    PaletteObject again(&table);
    require(read(again, buffer.data(), "ACT"));
    for (int i = 0; i < 256; ++i) {
        const RGBA color = palette.at(quint8(i));
        require(table[i] == RGBA{color.r, color.g, color.b, 255});
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const char *const words[] = {"PNG", "PCX", "BMP", "GIF", "ACT", "ACO", "PAL", "ASE"};
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data) + 1, int(size) - 1);

    constexpr RGBA mark{1, 2, 3, 4};
    RGBA table[256];
    std::fill(std::begin(table), std::end(table), mark);
    PaletteObject palette(&table);
    int signalCount = 0;
    QObject::connect(&palette, &PaletteObject::changing, [&] { ++signalCount; });
    QObject::connect(&palette, &PaletteObject::changed, [&] { ++signalCount; });
    if (read(palette, bytes, words[data[0] % std::size(words)])) {
        require(signalCount == 2);
        requireRoundTrip(palette);
        return 0;
    }
    require(signalCount == 0);
    require(std::count(std::begin(table), std::end(table), mark) == 256);
    return 0;
}
