// SPDX-License-Identifier: MIT
#include "lantern/settings.h"

#include "lantern/definition.h"

#include "project/project.h"

#include <QCoreApplication>
#include <QDir>
#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <iterator>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

enum class Value { Name, Author, Kind, Version, Size, Scale, File };

// One row for each setting of the grammar.
struct Rule
{
    const char *section;
    const char *key;
    Value value;
    int fileType; // of a File
    bool closed;
};

constexpr Rule gameRules[] = {
    {"game", "name", Value::Name, 0, false},
    {"game", "author", Value::Author, 0, false},
    {"game", "requires", Value::Version, 0, false},
    {"stage", "size", Value::Size, 0, false},
    {"stage", "scale", Value::Scale, 0, false},
    {"projects", "open", Value::File, Vela::Project::Main, false},
    {"projects", "closed", Value::File, Vela::Project::Main, true},
    {"files", "sprites", Value::File, Vela::Project::Sprites, false},
    {"files", "sounds", Value::File, Vela::Project::Sounds, false},
    {"files", "animations", Value::File, Vela::Project::Animations, false},
    {"files", "scripts", Value::File, Vela::Project::Scripts, false},
};

constexpr Rule projectRules[] = {
    {"project", "name", Value::Name, 0, false},
    {"project", "author", Value::Author, 0, false},
    {"project", "kind", Value::Kind, 0, false},
    {"project", "requires", Value::Version, 0, false},
    {"stage", "size", Value::Size, 0, false},
    {"stage", "scale", Value::Scale, 0, false},
    {"files", "sprites", Value::File, Vela::Project::Sprites, false},
    {"files", "sounds", Value::File, Vela::Project::Sounds, false},
    {"files", "animations", Value::File, Vela::Project::Animations, false},
    {"files", "scripts", Value::File, Vela::Project::Scripts, false},
};

// Wrong values can be as long as the file; no right one is longer than this.
constexpr int longestValue = 64;

bool readSize(const QString &text, QSize &size)
{
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,5})\\s*x\\s*([0-9]{1,5})$"));
    constexpr int largest = 16384;
    const QRegularExpressionMatch match = form.match(text.left(longestValue + 1));
    const QSize read(match.captured(1).toInt(), match.captured(2).toInt());
    if (read.width() < 1 || read.height() < 1 || read.width() > largest || read.height() > largest)
        return false;
    size = read;
    return true;
}

bool readScale(const QString &text, QPointF &scale)
{
    static const QRegularExpression form(QStringLiteral(
        "^([0-9]{1,2}(?:\\.[0-9]{1,6})?)(?:\\s*x\\s*([0-9]{1,2}(?:\\.[0-9]{1,6})?))?$"));
    constexpr double smallest = 1.0 / 64;
    constexpr double largest = 64;
    const QRegularExpressionMatch match = form.match(text.left(longestValue + 1));
    const double x = match.captured(1).toDouble();
    const double y = match.captured(2).isEmpty() ? x : match.captured(2).toDouble();
    if (x < smallest || y < smallest || x > largest || y > largest)
        return false;
    scale = QPointF(x, y);
    return true;
}

// Returns the path with "/", or an empty string for one that leaves the folder.
QString readPath(const QString &text)
{
    constexpr int longestPath = 4096;
    if (text.size() > longestPath || text.contains(QChar(0)))
        return QString();
    const QString path =
        QDir::cleanPath(QString(text).replace(QLatin1Char('\\'), QLatin1Char('/')));
    const bool leaves = path.startsWith(QLatin1Char('/')) || path == QLatin1String("..")
        || path.startsWith(QLatin1String("../")) || path == QLatin1String(".")
        || (path.size() > 1 && path.at(1) == QLatin1Char(':'));
    return leaves ? QString() : path;
}

class Reader
{
public:
    Reader(Settings &result, Scope scope)
        : m_result(result)
        , m_scope(scope)
    {
    }

    void read(const Definition &definition);

private:
    bool isKnownSection(const QString &kind) const;
    const Rule *ruleFor(const Setting &setting) const;
    void checkSections(const Definition &definition);
    void readSetting(const Setting &setting);
    void readValue(const Setting &setting, const Rule &rule);
    void readKind(const Setting &setting);
    void readVersion(const Setting &setting);
    void readFile(const Setting &setting, const Rule &rule);
    void wrong(const Setting &setting, const QString &text);
    void add(Vela::Message::Type type, int line, int column, const QString &text);

    const Rule *begin() const
    {
        return m_scope == Scope::Game ? std::begin(gameRules) : std::begin(projectRules);
    }
    const Rule *end() const
    {
        return m_scope == Scope::Game ? std::end(gameRules) : std::end(projectRules);
    }
    QString mainSection() const
    {
        return m_scope == Scope::Game ? QStringLiteral("game") : QStringLiteral("project");
    }

    Settings &m_result;
    const Scope m_scope;
    QHash<const Rule *, int> m_lines; // where each setting was first made
    QSet<QString> m_projectFolders;
};

void Reader::read(const Definition &definition)
{
    checkSections(definition);
    for (const Setting &setting : definition.settings)
        readSetting(setting);
}

bool Reader::isKnownSection(const QString &kind) const
{
    return std::any_of(begin(), end(),
                       [&kind](const Rule &rule) { return kind == QLatin1String(rule.section); });
}

const Rule *Reader::ruleFor(const Setting &setting) const
{
    const Rule *found = std::find_if(begin(), end(), [&setting](const Rule &rule) {
        return setting.key == QLatin1String(rule.key)
            && setting.section == QLatin1String(rule.section);
    });
    return found == end() ? nullptr : found;
}

void Reader::checkSections(const Definition &definition)
{
    bool hasMain = false;
    for (const Section &section : definition.sections) {
        hasMain = hasMain || section.kind == mainSection();
        if (Definition::isReservedSection(section.kind)) {
            add(Vela::Message::Information, section.line, section.column,
                Texts::tr("The section '%1' is reserved for a later version; it is not read.")
                    .arg(section.kind));
        } else if (section.kind.isEmpty()) {
            continue;
        } else if (!isKnownSection(section.kind)) {
            add(Vela::Message::Warning, section.line, section.column,
                Texts::tr("The section '%1' is unknown.").arg(clipped(section.kind)));
        } else if (!section.name.isEmpty()) {
            add(Vela::Message::Warning, section.line, section.column,
                Texts::tr("The section '%1' takes no name.").arg(section.kind));
        }
    }
    if (!hasMain)
        add(Vela::Message::Error, 0, 0,
            Texts::tr("The section '%1' is missing.").arg(mainSection()));
}

void Reader::readSetting(const Setting &setting)
{
    const Rule *rule = ruleFor(setting);
    if (!rule) {
        if (isKnownSection(setting.section)) {
            add(Vela::Message::Warning, setting.line, setting.column,
                Texts::tr("The section '%1' has no setting '%2'.")
                    .arg(setting.section, clipped(setting.key)));
        }
        return;
    }
    // The grammar's own check has told about a missing value already.
    if (setting.value.isEmpty() && setting.valueLength == 0)
        return;
    if (rule->value != Value::File && m_lines.contains(rule)) {
        add(Vela::Message::Warning, setting.line, setting.column,
            Texts::tr("'%1' was set on line %2 already; this value counts.")
                .arg(setting.key)
                .arg(m_lines.value(rule) + 1));
    }
    m_lines.insert(rule, setting.line);
    readValue(setting, *rule);
}

void Reader::readValue(const Setting &setting, const Rule &rule)
{
    switch (rule.value) {
    case Value::Name:
        m_result.name = setting.value;
        break;
    case Value::Author:
        m_result.author = setting.value;
        break;
    case Value::Kind:
        readKind(setting);
        break;
    case Value::Version:
        readVersion(setting);
        break;
    case Value::Size:
        if (!readSize(setting.value, m_result.stageSize))
            wrong(setting, Texts::tr("'%1' is no size such as 320 x 180."));
        break;
    case Value::Scale:
        if (!readScale(setting.value, m_result.stageScale))
            wrong(setting, Texts::tr("'%1' is no scale such as 2 or 1.5 x 2."));
        break;
    case Value::File:
        readFile(setting, rule);
        break;
    }
}

void Reader::readKind(const Setting &setting)
{
    for (int type = CharacterProject; type < ProjectTypeCount; ++type) {
        if (setting.value.compare(projectTypeWord(type), Qt::CaseInsensitive) == 0) {
            m_result.projectType = type;
            return;
        }
    }
    wrong(setting,
          Texts::tr("'%1' is no kind of project: write character, stage, screen or shared."));
}

void Reader::readVersion(const Setting &setting)
{
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,4})(?:\\.([0-9]{1,4}))?$"));
    const QRegularExpressionMatch match = form.match(setting.value.left(longestValue + 1));
    if (!match.hasMatch()) {
        wrong(setting, Texts::tr("'%1' is no version such as 1.0."));
        return;
    }
    m_result.version = setting.value;
    const QPair<int, int> needed(match.captured(1).toInt(), match.captured(2).toInt());
    if (needed > qMakePair(engineMajor, engineMinor)) {
        add(Vela::Message::Warning, setting.line, setting.valueColumn,
            Texts::tr(
                "Written for Lantern %1, and this is %2.%3: some of it may not be understood.")
                .arg(setting.value)
                .arg(engineMajor)
                .arg(engineMinor));
    }
}

void Reader::readFile(const Setting &setting, const Rule &rule)
{
    const QString path = readPath(setting.value);
    if (path.isEmpty()) {
        wrong(setting, Texts::tr("'%1' is no path inside the folder of this file."));
        return;
    }
    if (rule.fileType == Vela::Project::Main) {
        const int slash = path.lastIndexOf(QLatin1Char('/'));
        const QString folder = path.left(slash).toCaseFolded();
        if (slash < 0 || m_projectFolders.contains(folder)) {
            wrong(setting, Texts::tr("'%1' has no folder of its own, as each project needs."));
            return;
        }
        m_projectFolders.insert(folder);
    }
    m_result.files.append(
        {rule.fileType, rule.closed, path, setting.line, setting.valueColumn, false});
}

void Reader::wrong(const Setting &setting, const QString &text)
{
    add(Vela::Message::Error, setting.line, setting.valueColumn, text.arg(clipped(setting.value)));
}

void Reader::add(Vela::Message::Type type, int line, int column, const QString &text)
{
    m_result.messages.append({type, unsigned(line), unsigned(column), text});
    limitMessages(m_result.messages);
}

} // namespace

QString projectTypeWord(int type)
{
    static constexpr const char *words[ProjectTypeCount] = {"game", "character", "stage", "screen",
                                                            "shared"};
    return type >= 0 && type < ProjectTypeCount ? QString::fromLatin1(words[type]) : QString();
}

Settings::Settings(const Definition &definition, Scope scope)
{
    if (scope == Scope::Game)
        projectType = GameProject;
    Reader(*this, scope).read(definition);
}

} // namespace Lantern
