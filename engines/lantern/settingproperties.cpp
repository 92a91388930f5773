// SPDX-License-Identifier: MIT
#include "lantern/nodeproperties.h"

#include "lantern/document.h"
#include "lantern/line.h"
#include "lantern/project.h"
#include "lantern/report.h"
#include "lantern/sectioncode.h"
#include "lantern/settingcode.h"
#include "lantern/values.h"

#include "code/groupcode.h"
#include "editor/valueedits.h"
#include "frame/archive.h"

namespace Lantern {

namespace {

using Vela::CodeNode;

// The kind of field for a setting, by its type; text for what has no field of its own.
QString fieldKind(const Rule &rule)
{
    using Type = Vela::ValueCode::Type;
    switch (rule.type) {
    case Type::Bool:
        return QStringLiteral("bool");
    case Type::File:
        return QStringLiteral("file");
    case Type::Keyword:
        return QStringLiteral("option");
    case Type::Int:
        return QStringLiteral("int");
    case Type::IntVec2:
    case Type::IntVec3:
    case Type::IntVec4:
        return QStringLiteral("int%1").arg(rule.type - Type::IntVec2 + 2);
    case Type::Float:
        return QStringLiteral("float");
    case Type::FloatVec2:
    case Type::FloatVec3:
    case Type::FloatVec4:
        return QStringLiteral("float%1").arg(rule.type - Type::FloatVec2 + 2);
    default:
        return QStringLiteral("string");
    }
}

bool isVector(const QString &kind)
{
    return kind.size() > 1 && kind.at(kind.size() - 1).isDigit();
}

// Returns a setting's value as its field takes it.
QVariant fieldValue(const Rule &rule, const QVariant &value)
{
    const QString kind = fieldKind(rule);
    if (kind == QLatin1String("string") || kind == QLatin1String("file"))
        return value.isValid() ? valueText(rule, value) : QString();
    if (value.type() == QVariant::Point)
        return QVariantList{value.toPoint().x(), value.toPoint().y()};
    if (value.type() == QVariant::PointF)
        return QVariantList{value.toPointF().x(), value.toPointF().y()};
    return value;
}

// Returns what a field says as the text has it.
QString settingText(const Rule &rule, const QVariant &value)
{
    const QString kind = fieldKind(rule);
    if (kind == QLatin1String("string") || kind == QLatin1String("file"))
        return value.toString();
    if (!isVector(kind))
        return valueText(rule, value);
    const QVariantList list = value.toList();
    if (list.size() == 2 && kind.startsWith(QLatin1String("int")))
        return valueText(rule, QPoint(list.at(0).toInt(), list.at(1).toInt()));
    if (list.size() == 2)
        return valueText(rule, QPointF(list.at(0).toDouble(), list.at(1).toDouble()));
    return valueText(rule, list);
}

bool isValueOf(const Rule &rule, const QString &text)
{
    const Line line(text);
    Report silent(line, nullptr);
    QVariant value;
    return readValue(rule, text, {0, text.size(), Token::Plain}, value, silent);
}

QVariantMap fieldAttributes(const Rule &rule, const Document &document)
{
    const QString kind = fieldKind(rule);
    if (kind == QLatin1String("option"))
        return {{QStringLiteral("items"), rule.words}};
    if (kind == QLatin1String("file"))
        return {
            {QStringLiteral("baseArchive"), QVariant::fromValue(&document.archive())},
            {QStringLiteral("basePath"), document.archive().absoluteFilePath(document.fileName())}};
    if (kind.startsWith(QLatin1String("int")) || kind.startsWith(QLatin1String("float")))
        return {{QStringLiteral("minimum"), rule.least}, {QStringLiteral("maximum"), rule.most}};
    return {};
}

// Returns what holds where the text says nothing.
QVariant valueWithout(const Rule &rule, const Document &document)
{
    const auto *const project = qobject_cast<const Project *>(document.project());
    if (rule.form == Form::Size) {
        const QSize size = project ? project->stageSize() : QSize(320, 180);
        return QPoint(size.width(), size.height());
    }
    if (rule.form == Form::Scale)
        return project ? project->stageScale() : QPointF(1, 1);
    if (rule.form == Form::Version)
        return project ? project->version() : QString();
    if (rule.key == QLatin1String("name"))
        return project ? project->name() : QString();
    return rule.defaultValue;
}

SectionCode *sectionOf(CodeNode *node)
{
    if (node && node->type() == CodeNode::Value)
        node = node->parent();
    return dynamic_cast<SectionCode *>(node);
}

// Returns the settings of a rule in their order, or for null the unknown ones.
QVector<SettingCode *> settingsOf(const SectionCode &section, const Rule *rule)
{
    QVector<SettingCode *> settings;
    const QList<Vela::ValueCode *> values = section.values();
    for (Vela::ValueCode *const value : values) {
        auto *const setting = dynamic_cast<SettingCode *>(value);
        if (setting && setting->rule() == rule)
            settings.append(setting);
    }
    return settings;
}

/// Collects the properties of a section.
class SettingCollector
{
public:
    SettingCollector(const Document &document, const NodeFinder &find)
        : m_document(document)
        , m_find(find)
    {
    }

    NodeProperties collect()
    {
        const SectionCode *const section = sectionOf(m_find());
        if (!section)
            return {};
        m_title = section->displayName();
        for (const Rule &rule : rules()) {
            if (rule.section != section->subType() || !(rule.scopes & scopeBit(m_document.scope())))
                continue;
            const int count = settingsOf(*section, &rule).size();
            if (!rule.isList)
                addRule(rule);
            for (int i = 0; rule.isList && i < count; ++i)
                addEntry(rule, i, count);
        }
        const QVector<SettingCode *> unknown = settingsOf(*section, nullptr);
        for (int i = 0; i < unknown.size(); ++i)
            addUnknown(unknown.at(i)->name(), i);
        return m_properties;
    }

private:
    void add(const QString &kind, const QString &label, const std::function<QVariant()> &read,
             const std::function<void(const QVariant &)> &write, const QVariantMap &attributes = {})
    {
        m_properties.append({kind, label, m_title, QStringLiteral("lantern_panel_section"), read,
                             write, attributes});
    }

    // A setting that counts once: the last one is it, and a new one makes it where there is none.
    void addRule(const Rule &rule)
    {
        const NodeFinder find = m_find;
        const Document *const document = &m_document;
        const auto setting = [find, &rule]() -> SettingCode * {
            const SectionCode *const section = sectionOf(find());
            const QVector<SettingCode *> settings =
                section ? settingsOf(*section, &rule) : QVector<SettingCode *>();
            return settings.isEmpty() ? nullptr : settings.last();
        };
        add(
            fieldKind(rule), rule.key,
            [setting, find, document, &rule] {
                // The document is there as long as its nodes.
                if (!find())
                    return QVariant();
                const SettingCode *const found = setting();
                return fieldValue(rule, found ? found->rawValue() : valueWithout(rule, *document));
            },
            [setting, find, &rule](const QVariant &value) {
                const QString text = settingText(rule, value);
                SettingCode *const found = setting();
                if (!isValueOf(rule, text))
                    return;
                if (found)
                    found->setValue(text);
                else if (SectionCode *const section = sectionOf(find()))
                    section->addValue(rule.key, text, false);
            },
            fieldAttributes(rule, m_document));
    }

    void addEntry(const Rule &rule, int index, int count)
    {
        const auto setting = settingAt(&rule, index);
        add(
            fieldKind(rule),
            count == 1 ? rule.key : QStringLiteral("%1 %2").arg(rule.key).arg(index + 1),
            [setting, &rule] {
                const SettingCode *const found = setting();
                return found ? fieldValue(rule, found->rawValue()) : QVariant();
            },
            [setting, &rule](const QVariant &value) {
                SettingCode *const found = setting();
                if (found && isValueOf(rule, value.toString()))
                    found->setValue(value.toString());
            },
            fieldAttributes(rule, m_document));
    }

    void addUnknown(const QString &name, int index)
    {
        const auto setting = settingAt(nullptr, index);
        add(
            QStringLiteral("string"), name,
            [setting] {
                const SettingCode *const found = setting();
                return found ? QVariant(found->text()) : QVariant();
            },
            [setting](const QVariant &value) {
                if (SettingCode *const found = setting())
                    found->setValue(value.toString());
            });
    }

    std::function<SettingCode *()> settingAt(const Rule *rule, int index) const
    {
        const NodeFinder find = m_find;
        return [find, rule, index]() -> SettingCode * {
            const SectionCode *const section = sectionOf(find());
            return section ? settingsOf(*section, rule).value(index) : nullptr;
        };
    }

    const Document &m_document;
    const NodeFinder m_find;
    QString m_title;
    NodeProperties m_properties;
};

} // namespace

NodeProperties sectionProperties(const Document &document, const NodeFinder &find)
{
    return SettingCollector(document, find).collect();
}

} // namespace Lantern
