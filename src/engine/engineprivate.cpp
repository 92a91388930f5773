// SPDX-License-Identifier: MIT
#include "engine/engineprivate.h"

#include "engine/engine.h"
#include "frame/fileutils.h"
#include "frame/interface.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QRegularExpression>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace Vela {

class EnginePrivateData
{
public:
    QMap<QString, QVariant> options;
};

namespace {

// The host's texts for a configuration that cannot be read.
enum HostText { BrokenConfigurationTitle = 0, BrokenConfigurationMessage = 1 };

const QString nameKey = QStringLiteral("name");
const QString valueKey = QStringLiteral("value");

QString optionToText(const QVariant &value)
{
    switch (int(value.type())) {
    case QMetaType::QRect: {
        const QRect rect = value.toRect();
        return QStringLiteral("%1,%2,%3,%4")
            .arg(rect.left())
            .arg(rect.top())
            .arg(rect.width())
            .arg(rect.height());
    }
    case QMetaType::QColor: {
        const QColor color = value.value<QColor>();
        return QStringLiteral("%1,%2,%3").arg(color.red()).arg(color.green()).arg(color.blue());
    }
    default:
        return value.toString();
    }
}

QVariant optionFromText(const QString &text)
{
    static const QRegularExpression numbers(
        QStringLiteral("^(\\d+)\\,(\\d+)\\,(\\d+)(?:\\,(\\d+))?$"));
    const QRegularExpressionMatch match = numbers.match(text);
    if (!match.hasMatch())
        return text;
    const int count = match.lastCapturedIndex();
    int number[4] = {};
    for (int i = 0; i < count; ++i) {
        bool fits = false;
        number[i] = match.capturedRef(i + 1).toInt(&fits);
        if (!fits)
            return text;
    }
    if (count == 4)
        return QRect(number[0], number[1], number[2], number[3]);
    const QColor color(number[0], number[1], number[2]);
    return color.isValid() ? QVariant(color) : QVariant(text);
}

// Reads one "engine" element, up to its end.
EngineInstances::Info readInstance(QXmlStreamReader *reader)
{
    EngineInstances::Info info;
    info.name = reader->attributes().value(nameKey).toString();
    while (!reader->atEnd()) {
        const QXmlStreamReader::TokenType token = reader->readNext();
        if (token == QXmlStreamReader::EndElement && reader->name() == QLatin1String("engine"))
            break;
        if (token != QXmlStreamReader::StartElement || reader->name() != QLatin1String("param"))
            continue;
        const QXmlStreamAttributes attributes = reader->attributes();
        const QStringRef name = attributes.value(nameKey);
        const QString value = attributes.value(valueKey).toString();
        if (name == QLatin1String("exe"))
            info.exe = value;
        else if (name == QLatin1String("icon"))
            info.icon = value;
        else if (name == QLatin1String("params"))
            info.params = value;
    }
    return info;
}

void writeElement(QXmlStreamWriter *writer, const QString &element, const QString &name,
                  const QString &value)
{
    writer->writeEmptyElement(element);
    writer->writeAttribute(nameKey, name);
    writer->writeAttribute(valueKey, value);
}

QWidget *dialogParent()
{
    const Interface *host = Interface::instance();
    return host ? host->mainWindow() : nullptr;
}

void showFileError(const QString &text)
{
    QMessageBox::critical(dialogParent(), EnginePrivate::tr("Configuration error!"), text);
}

} // namespace

EnginePrivate::EnginePrivate(const QString &engineName)
    : EngineInstances(engineName)
    , d(new EnginePrivateData)
{
}

EnginePrivate::~EnginePrivate() = default;

void EnginePrivate::registerCustomOptions(QWidget *)
{
}

void EnginePrivate::registerScriptClasses(sol::state &)
{
}

Debugger *EnginePrivate::debugger()
{
    return nullptr;
}

Emulator *EnginePrivate::emulator()
{
    return nullptr;
}

bool EnginePrivate::load()
{
    if (configPath().isEmpty())
        return true;
    QFile file(configPath());
    if (!file.exists())
        return true;
    if (!file.open(QIODevice::ReadOnly)) {
        showFileError(tr("Can't open engine configuration from '%1'!").arg(file.fileName()));
        return false;
    }
    QXmlStreamReader reader(&file);
    reader.setNamespaceProcessing(false);
    const bool loaded = load(&reader);
    const Interface *host = Interface::instance();
    if (!loaded && host) {
        QMessageBox::critical(host->mainWindow(), host->translate(BrokenConfigurationTitle),
                              host->translate(BrokenConfigurationMessage)
                                  .arg(reader.errorString())
                                  .arg(reader.lineNumber())
                                  .arg(reader.columnNumber()),
                              QMessageBox::Ok);
    }
    return loaded;
}

bool EnginePrivate::load(QXmlStreamReader *reader)
{
    clear();
    QList<Info> instances;
    while (!reader->atEnd()) {
        const QXmlStreamReader::TokenType token = reader->readNext();
        if (token == QXmlStreamReader::EndElement
            && reader->name() == QLatin1String("configuration"))
            break;
        if (token != QXmlStreamReader::StartElement)
            continue;
        if (reader->name() == QLatin1String("engine")) {
            instances.append(readInstance(reader));
        } else if (reader->name() == QLatin1String("config")) {
            const QXmlStreamAttributes attributes = reader->attributes();
            d->options.insert(attributes.value(nameKey).toString(),
                              optionFromText(attributes.value(valueKey).toString()));
        }
    }
    append(instances);
    return !reader->hasError();
}

bool EnginePrivate::save()
{
    if (configPath().isEmpty())
        return true;
    // The old file stands until the new one is complete.
    QSaveFile file(configPath());
    if (!QFile::exists(file.fileName()))
        QDir().mkpath(QFileInfo(file.fileName()).absolutePath());
    bool saved = file.open(QIODevice::WriteOnly);
    if (saved) {
        QXmlStreamWriter writer(&file);
        writer.setAutoFormatting(true);
        writer.writeStartDocument();
        const bool written = save(&writer);
        writer.writeEndDocument();
        // Behind a character that XML cannot hold the writer leaves names and values out.
        saved = written && commitFile(file);
    }
    if (!saved)
        showFileError(tr("Can't save engine configuration to '%1'!").arg(file.fileName()));
    return saved;
}

bool EnginePrivate::save(QXmlStreamWriter *writer)
{
    writer->writeStartElement(QStringLiteral("configuration"));
    for (int row = 0; row < count(); ++row) {
        const Info info = at(unsigned(row));
        writer->writeStartElement(QStringLiteral("engine"));
        writer->writeAttribute(nameKey, info.name);
        writeElement(writer, QStringLiteral("param"), QStringLiteral("exe"), info.exe);
        writeElement(writer, QStringLiteral("param"), QStringLiteral("icon"), info.icon);
        writeElement(writer, QStringLiteral("param"), QStringLiteral("params"), info.params);
        writer->writeEndElement();
    }
    for (auto option = d->options.cbegin(); option != d->options.cend(); ++option)
        writeElement(writer, QStringLiteral("config"), option.key(), optionToText(option.value()));
    writer->writeEndElement();
    return !writer->hasError();
}

QVariant EnginePrivate::option(const QString &key, const QVariant &defaultValue) const
{
    const auto found = d->options.constFind(key);
    if (found != d->options.constEnd())
        return found.value();
    const Interface *host = Interface::instance();
    return host ? host->option(key, defaultValue) : defaultValue;
}

void EnginePrivate::setOption(const QString &key, const QVariant &value)
{
    d->options.insert(key, value);
}

Engine *EnginePrivate::publicEngine()
{
    return static_cast<Engine *>(this);
}

} // namespace Vela
