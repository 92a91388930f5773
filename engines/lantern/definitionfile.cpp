// SPDX-License-Identifier: MIT
#include "lantern/definitionfile.h"

#include "lantern/filenames.h"

#include "frame/archive.h"

#include <QCoreApplication>
#include <QSet>

#include <algorithm>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

bool standsBefore(const Vela::Message &a, const Vela::Message &b)
{
    return qMakePair(a.line, a.column) < qMakePair(b.line, b.column);
}

} // namespace

DefinitionFile::DefinitionFile(Scope scope)
    : TextFile("lantern")
    , m_scope(scope)
    , m_definition(QString())
    , m_settings(m_definition, scope)
{
}

const Settings &DefinitionFile::settings() const
{
    ensureLoaded();
    return m_settings;
}

const QVector<FileEntry> &DefinitionFile::files() const
{
    ensureLoaded();
    return m_files;
}

void DefinitionFile::setListener(const std::function<void()> &listener)
{
    m_listener = listener;
}

void DefinitionFile::reportAt(const FileEntry &entry, const QString &text)
{
    textMessages().add(Vela::Message::Error, text, unsigned(entry.line), unsigned(entry.column));
}

void DefinitionFile::textChanged()
{
    m_definition = Definition(text());
    m_settings = Settings(m_definition, m_scope);
    nameProperties();

    QVector<Vela::Message> messages = m_definition.messages + m_settings.messages;
    m_files.clear();
    if (!fileName().isEmpty()) {
        m_files = spelledFiles(archive(), archive().absoluteFilePath(fileName()), m_settings.files,
                               messages);
    }
    std::stable_sort(messages.begin(), messages.end(), standsBefore);
    limitMessages(messages);
    for (const Vela::Message &message : qAsConst(messages))
        textMessages().add(message.type, message.text, message.line, message.column);
    if (m_listener)
        m_listener();
}

// Of a setting that counts once, the last one is the property.
void DefinitionFile::nameProperties()
{
    m_propertyNames.clear();
    m_settingOf.clear();
    QHash<QString, int> counts;
    for (int i = 0; i < m_definition.settings.size(); ++i) {
        const Setting &setting = m_definition.settings.at(i);
        QString name = setting.section + QLatin1Char('.') + setting.key;
        const int number = ++counts[name];
        const bool list = setting.section == QLatin1String("files")
            || setting.section == QLatin1String("projects");
        if (list && number > 1)
            name += QLatin1Char('.') + QString::number(number);
        if (!m_settingOf.contains(name))
            m_propertyNames.append(name);
        m_settingOf.insert(name, i);
    }
}

QStringList DefinitionFile::propertyNames() const
{
    ensureLoaded();
    return TextFile::propertyNames() + m_propertyNames;
}

QVariant DefinitionFile::property(const QString &name) const
{
    ensureLoaded();
    const int setting = m_settingOf.value(name, -1);
    return setting < 0 ? TextFile::property(name)
                       : QVariant(m_definition.settings.at(setting).value);
}

void DefinitionFile::setProperty(const QString &name, const QVariant &value)
{
    ensureLoaded();
    const int index = m_settingOf.value(name, -1);
    if (index < 0) {
        TextFile::setProperty(name, value);
        return;
    }
    const Setting &setting = m_definition.settings.at(index);
    // A value ends with its line.
    const QString written = value.toString();
    if (written == setting.value || written.contains(QLatin1Char('\n'))
        || written.contains(QLatin1Char('\r')) || written.contains(QChar(0)))
        return;
    TextContent changed = content();
    const int behind = setting.valueOffset + setting.valueLength;
    const bool glued =
        behind < changed.text().size() && changed.text().at(behind) == QLatin1Char('#');
    changed.replace(setting.valueOffset, setting.valueLength,
                    quotedIfNeeded(written) + (glued ? QStringLiteral(" ") : QString()));
    change(changed);
}

QVector<FileEntry> spelledFiles(Vela::Archive &archive, const QString &folder,
                                const QVector<FileEntry> &files, QVector<Vela::Message> &messages)
{
    QVector<FileEntry> result;
    QSet<QPair<int, QString>> known;
    FileNames names(archive, folder);
    for (FileEntry entry : files) {
        const QString spelled = names.spelled(entry.path);
        const QString named = clipped(entry.path);
        const auto warn = [&](const QString &text) {
            messages.append({Vela::Message::Warning, unsigned(entry.line), unsigned(entry.column),
                             text.arg(named)});
        };
        entry.missing = spelled.isEmpty();
        if (!entry.missing)
            entry.path = spelled;
        // A folder or a pipe is nothing that could be read or copied.
        const bool noFile =
            entry.missing && archive.fileExists(folder + QLatin1Char('/') + entry.path);
        const int before = known.size();
        known.insert({entry.type, entry.path});
        if (known.size() == before)
            warn(Texts::tr("'%1' is listed twice."));
        else if (entry.missing)
            warn(Texts::tr("The file '%1' does not exist."));
        if (known.size() > before && !noFile)
            result.append(entry);
    }
    return result;
}

} // namespace Lantern
