// SPDX-License-Identifier: MIT
#include "lantern/definitionfile.h"

#include "lantern/filenames.h"
#include "lantern/line.h"
#include "lantern/sectioncode.h"
#include "lantern/settingcode.h"

#include "code/rootcode.h"
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

bool isSamePath(const FileEntry &a, const FileEntry &b)
{
    return a.path == b.path;
}

} // namespace

DefinitionFile::DefinitionFile(Scope scope)
    : Document(scope)
{
    m_settings = Settings(*root(), scope);
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

void DefinitionFile::lookForFiles()
{
    m_named.clear();
    codeUpdated();
}

void DefinitionFile::reportAt(const FileEntry &entry, const QString &text)
{
    addFailure({Vela::Message::Error, unsigned(entry.line), unsigned(entry.column), text});
}

void DefinitionFile::updateChecks(bool read)
{
    m_areNamed = false;
    m_settings = Settings(*root(), scope());
    spellFiles(read);
    QVector<Vela::Message> messages = m_settings.messages + boxMessages();
    listFiles(messages);
    std::stable_sort(messages.begin(), messages.end(), standsBefore);
    limitMessages(messages);
    setChecks(messages);
    if (m_listener)
        m_listener();
}

// Looks into the folders only where the text names other files than before: it is asked at every
// key that is typed.
void DefinitionFile::spellFiles(bool read)
{
    const QVector<FileEntry> &named = m_settings.files;
    const bool same =
        std::equal(named.begin(), named.end(), m_named.begin(), m_named.end(), isSamePath);
    if (read || !same) {
        const QString folder = archive().absoluteFilePath(fileName());
        FileNames names(archive(), folder);
        m_spelled = named;
        for (FileEntry &entry : m_spelled) {
            const QString spelled = fileName().isEmpty() ? QString() : names.spelled(entry.path);
            entry.missing = spelled.isEmpty();
            // A folder or a pipe is nothing that could be read or copied.
            const bool noFile =
                entry.missing && archive().fileExists(folder + QLatin1Char('/') + entry.path);
            entry.path = noFile ? QString() : entry.missing ? entry.path : spelled;
        }
        m_named = named;
    }
}

// Takes each file once.
void DefinitionFile::listFiles(QVector<Vela::Message> &messages)
{
    m_files.clear();
    if (fileName().isEmpty())
        return;
    QSet<QPair<int, QString>> known;
    for (int i = 0; i < m_spelled.size(); ++i) {
        FileEntry entry = m_settings.files.at(i);
        const QString named = clipped(entry.path);
        const auto warn = [&](const QString &text) {
            messages.append({Vela::Message::Warning, unsigned(entry.line), unsigned(entry.column),
                             text.arg(named)});
        };
        entry.missing = m_spelled.at(i).missing;
        const bool noFile = m_spelled.at(i).path.isEmpty();
        if (!noFile)
            entry.path = m_spelled.at(i).path;
        const int before = known.size();
        known.insert({entry.type, entry.path});
        if (known.size() == before)
            warn(Texts::tr("'%1' is listed twice."));
        else if (entry.missing)
            warn(Texts::tr("The file '%1' does not exist."));
        if (known.size() > before && !noFile)
            m_files.append(entry);
    }
}

// Of a setting that counts once, the last one is the property.
void DefinitionFile::nameSettings() const
{
    m_areNamed = true;
    m_propertyNames.clear();
    m_settingOf.clear();
    QHash<QString, int> counts;
    const QList<Vela::CodeNode *> childs = root()->childs();
    for (const Vela::CodeNode *child : childs) {
        if (child->type() != Vela::CodeNode::Group)
            continue;
        const SectionCode &section = static_cast<const SectionCode &>(*child);
        const QList<Vela::ValueCode *> values = section.values();
        for (Vela::ValueCode *value : values) {
            SettingCode *const setting = static_cast<SettingCode *>(value);
            QString name = section.name() + QLatin1Char('.') + setting->name();
            const int number = ++counts[name];
            if (setting->rule() && setting->rule()->isList && number > 1)
                name += QLatin1Char('.') + QString::number(number);
            if (!m_settingOf.contains(name))
                m_propertyNames.append(name);
            m_settingOf.insert(name, setting);
        }
    }
}

SettingCode *DefinitionFile::settingOf(const QString &name) const
{
    ensureLoaded();
    if (!m_areNamed)
        nameSettings();
    SettingCode *const setting = m_settingOf.value(name);
    // Inside a bracket nodes go before this class hears of it.
    return Vela::CodeNode::isValid(setting) ? setting : nullptr;
}

QStringList DefinitionFile::propertyNames() const
{
    ensureLoaded();
    if (!m_areNamed)
        nameSettings();
    return Document::propertyNames() + m_propertyNames;
}

QVariant DefinitionFile::property(const QString &name) const
{
    const SettingCode *const setting = settingOf(name);
    return setting ? QVariant(setting->text()) : Document::property(name);
}

void DefinitionFile::setProperty(const QString &name, const QVariant &value)
{
    SettingCode *const setting = settingOf(name);
    if (!setting) {
        Document::setProperty(name, value);
        return;
    }
    // A value ends with its line.
    const QString written = value.toString();
    if (written == setting->text() || written.contains(QLatin1Char('\n'))
        || written.contains(QLatin1Char('\r')) || written.contains(QChar(0)))
        return;
    const int end = setting->valueEnd();
    // A comment may stand right behind the closing quote.
    const bool glued = setting->block().text().midRef(end).startsWith(QLatin1Char('#'));
    replaceColumns(*setting, setting->valueStart(), end,
                   quotedIfNeeded(written) + (glued ? QStringLiteral(" ") : QString()));
}

} // namespace Lantern
