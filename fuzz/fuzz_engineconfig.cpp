// SPDX-License-Identifier: MIT
// Reads arbitrary bytes as an engine's configuration, writes what was read and reads that again:
// the second reading must find the same instances.
#include "engine/engineprivate.h"

#include <QBuffer>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <cstdlib>

namespace {

bool load(Vela::EnginePrivate &engine, const QByteArray &xml)
{
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    return engine.load(&reader);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Vela::EnginePrivate engine(QStringLiteral("fuzz"));
    load(engine, QByteArray(reinterpret_cast<const char *>(data), int(size)));

    QByteArray xml;
    QXmlStreamWriter writer(&xml);
    writer.writeStartDocument();
    if (!engine.save(&writer))
        return 0;
    writer.writeEndDocument();

    Vela::EnginePrivate again(QStringLiteral("fuzz"));
    if (load(again, xml) && again.count() != engine.count())
        std::abort();
    return 0;
}
