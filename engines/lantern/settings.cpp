// SPDX-License-Identifier: MIT
#include "lantern/settings.h"

#include "lantern/documentmessages.h"
#include "lantern/line.h"
#include "lantern/schema.h"
#include "lantern/sectioncode.h"
#include "lantern/settingcode.h"
#include "lantern/values.h"

#include "code/rootcode.h"
#include "project/project.h"

#include <QCoreApplication>
#include <QHash>
#include <QSet>
#include <QStringList>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

class Reader
{
public:
    Reader(Settings &result, Scope scope)
        : m_result(result)
        , m_scope(scope)
    {
    }

    void read(const Vela::RootCode &root);

private:
    void readSection(const SectionCode &section);
    void readSetting(const SettingCode &setting, const Rule &rule);
    void readValue(const SettingCode &setting, const Rule &rule);
    void checkVersion(const SettingCode &setting);
    void readFile(const SettingCode &setting, const Rule &rule);
    void add(Vela::Message::Type type, int line, int column, const QString &text);

    Settings &m_result;
    const Scope m_scope;
    bool m_hasMain = false;
    QHash<const Rule *, int> m_lines; // where each setting was last made
    QSet<QString> m_projectFolders;
};

void Reader::read(const Vela::RootCode &root)
{
    const QList<Vela::CodeNode *> childs = root.childs();
    for (const Vela::CodeNode *child : childs) {
        if (child->type() == Vela::CodeNode::Group)
            readSection(static_cast<const SectionCode &>(*child));
    }
    if (!m_hasMain) {
        const unsigned int kind = m_scope == Scope::Game ? GameSection : ProjectSection;
        add(Vela::Message::Error, 0, 0,
            Texts::tr("The section '%1' is missing.").arg(sectionOfKind(kind)->word));
    }
}

void Reader::readSection(const SectionCode &section)
{
    const SectionRule *const known = sectionOfKind(section.kind());
    if (known && known->isReserved()) {
        add(Vela::Message::Information, section.lineNo(), 0,
            Texts::tr("The section '%1' is reserved for a later version; it is not read.")
                .arg(known->word));
        return;
    }
    m_hasMain =
        m_hasMain || section.kind() == (m_scope == Scope::Game ? GameSection : ProjectSection);
    const QList<Vela::ValueCode *> values = section.values();
    for (const Vela::ValueCode *value : values) {
        const SettingCode &setting = static_cast<const SettingCode &>(*value);
        if (setting.rule())
            readSetting(setting, *setting.rule());
    }
}

void Reader::readSetting(const SettingCode &setting, const Rule &rule)
{
    if (!rule.isList) {
        const int line = setting.lineNo();
        if (m_lines.contains(&rule)) {
            add(Vela::Message::Warning, line, 0,
                Texts::tr("'%1' was set on line %2 already; this value counts.")
                    .arg(rule.key)
                    .arg(m_lines.value(&rule) + 1));
        }
        m_lines.insert(&rule, line);
    }
    readValue(setting, rule);
}

void Reader::readValue(const SettingCode &setting, const Rule &rule)
{
    switch (rule.form) {
    case Form::Version:
        m_result.version = setting.text();
        checkVersion(setting);
        break;
    case Form::Size:
        m_result.stageSize = setting.asSize();
        break;
    case Form::Scale:
        m_result.stageScale = setting.asPointF();
        break;
    case Form::Path:
        readFile(setting, rule);
        break;
    case Form::Word:
        if (rule.key == QLatin1String("kind"))
            m_result.projectType = CharacterProject + setting.asInt();
        break;
    default:
        if (rule.key == QLatin1String("name"))
            m_result.name = setting.text();
        else if (rule.key == QLatin1String("author"))
            m_result.author = setting.text();
        break;
    }
}

void Reader::checkVersion(const SettingCode &setting)
{
    const QStringList numbers = setting.text().split(QLatin1Char('.'));
    const QPair<int, int> needed(numbers.value(0).toInt(), numbers.value(1).toInt());
    if (needed <= qMakePair(engineMajor, engineMinor))
        return;
    add(Vela::Message::Warning, setting.lineNo(), setting.valueStart(),
        Texts::tr("Written for Lantern %1, and this is %2.%3: some of it may not be understood.")
            .arg(setting.text())
            .arg(engineMajor)
            .arg(engineMinor));
}

void Reader::readFile(const SettingCode &setting, const Rule &rule)
{
    // The parser has taken the quotes off.
    const QString path = insidePath(setting.rawValue().toString());
    if (path.isEmpty())
        return;
    if (rule.fileType == Vela::Project::Main) {
        const int slash = path.lastIndexOf(QLatin1Char('/'));
        const QString folder = path.left(slash).toCaseFolded();
        if (slash < 0 || m_projectFolders.contains(folder)) {
            add(Vela::Message::Error, setting.lineNo(), setting.valueStart(),
                Texts::tr("'%1' has no folder of its own, as each project needs.")
                    .arg(clipped(setting.text())));
            return;
        }
        m_projectFolders.insert(folder);
    }
    m_result.files.append({rule.fileType, rule.key == QLatin1String("closed"), path,
                           setting.lineNo(), setting.valueStart(), false});
}

void Reader::add(Vela::Message::Type type, int line, int column, const QString &text)
{
    m_result.messages.append({type, unsigned(line), unsigned(column), text});
    limitMessages(m_result.messages);
}

} // namespace

Settings::Settings(const Vela::RootCode &root, Scope scope)
{
    if (scope == Scope::Game)
        projectType = GameProject;
    Reader(*this, scope).read(root);
}

} // namespace Lantern
