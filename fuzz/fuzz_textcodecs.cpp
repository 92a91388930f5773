// SPDX-License-Identifier: MIT
#include "frame/textcodecs.h"

#include <QCoreApplication>

#include <cstdint>
#include <cstdlib>

using Vela::TextCodecs;

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

// Reads the bytes in an encoding, -1 to have it detected, and writes what was read. A byte makes a
// few characters at most (Tamil syllables), a character a few bytes (an escape sequence of its
// own).
void readAndWrite(const QByteArray &data, int codec)
{
    const QString text = TextCodecs::stringFromData(data, &codec);
    require(codec >= 0 && codec < TextCodecs::count());
    require(text.size() <= 8 * (data.size() + 1));

    const QByteArray written = TextCodecs::stringToData(text, codec);
    require(written.size() <= 16 * (text.size() + 1));

    // UTF-8 holds every text, but takes a mark at its start for its own.
    if (text.isValidUtf16() && !text.startsWith(QChar::ByteOrderMark)) {
        int utf8 = TextCodecs::index("UTF-8");
        const QByteArray asUtf8 = TextCodecs::stringToData(text, utf8);
        require(TextCodecs::stringFromData(asUtf8, &utf8) == text);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication application(*argc, *argv);
    TextCodecs::initialize();
    return 0;
}

// The first byte picks an encoding; the rest is a file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray file(reinterpret_cast<const char *>(data) + 1, int(size) - 1);
    readAndWrite(file, -1);
    readAndWrite(file, data[0] % TextCodecs::count());
    return 0;
}
