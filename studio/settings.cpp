// SPDX-License-Identifier: MIT
#include "studio/settings.h"

#include <QFileInfo>
#include <QSet>
#include <algorithm>

namespace Studio {

namespace {

// What tells an exported file from any other INI file, and the form that it has.
const QString markKey = QStringLiteral("VelaSettings/version");
constexpr int markVersion = 1;

bool isSilent(SettingInfo::Kind kind, const QVariant &stored)
{
    return (kind == SettingInfo::SwitchQuestion && !stored.toBool())
        || (kind == SettingInfo::AnswerQuestion && stored.toInt() != 0);
}

bool silentAnswer(SettingInfo::Kind kind, const QVariant &stored)
{
    return kind == SettingInfo::SwitchQuestion || stored.toInt() == 1;
}

// An extension's question is in no table: what it stored tells its kind.
SettingInfo::Kind questionKind(const QVariant &stored)
{
    const QString text = stored.toString();
    return text == QLatin1String("true") || text == QLatin1String("false")
        ? SettingInfo::SwitchQuestion
        : SettingInfo::AnswerQuestion;
}

bool isUnknownQuestion(const QString &key)
{
    return !Settings::info(key)
        && (key.startsWith(QLatin1String("showmsg_")) || key.startsWith(QLatin1String("confirm_")));
}

} // namespace

const QVector<SettingInfo> &Settings::known()
{
    static const QVector<SettingInfo> settings = {
        {SettingInfo::Value, SettingInfo::GeneralPage, "reopen_last_project", true,
         QT_TR_NOOP("Open the last project again at the start")},
        {SettingInfo::Value,
         SettingInfo::GeneralPage,
         "theme",
         0,
         QT_TR_NOOP("Theme:"),
         {QT_TR_NOOP("As the system's"), QT_TR_NOOP("Light"), QT_TR_NOOP("Dark")}},
        {SettingInfo::Value,
         SettingInfo::GeneralPage,
         "snd_volume",
         100,
         QT_TR_NOOP("Volume of sounds:"),
         {},
         true},
        {SettingInfo::Value, SettingInfo::FilesPage, "enable_file_watcher", true,
         QT_TR_NOOP("Notice when another program changes an open file")},
        {SettingInfo::Value, SettingInfo::FilesPage, "use_native_open", true,
         QT_TR_NOOP("Use the system's dialog to open files")},
        {SettingInfo::Value, SettingInfo::FilesPage, "sort_file_names", true,
         QT_TR_NOOP("Sort files opened together by the number in their names")},
        {SettingInfo::Value, SettingInfo::NoPage, "parseCode", true,
         QT_TR_NOOP("Check definition text while it is edited")},
        {SettingInfo::Value, SettingInfo::NoPage, "highlightCode", true,
         QT_TR_NOOP("Colour definition text")},
        {SettingInfo::Value, SettingInfo::NoPage, "modelCode", true,
         QT_TR_NOOP("Show the tree of definition text")},
        {SettingInfo::AnswerQuestion, SettingInfo::QuestionsPage, "showmsg_reload_file", 0,
         QT_TR_NOOP("Reload a file that another program changed?")},
        {SettingInfo::AnswerQuestion, SettingInfo::QuestionsPage, "showmsg_reload_modified", 0,
         QT_TR_NOOP("Reload such a file although it has unsaved changes?")},
        {SettingInfo::Value, SettingInfo::TextPage, "font_name", QStringLiteral("Monospace"),
         QT_TR_NOOP("Font:")},
        {SettingInfo::Value, SettingInfo::TextPage, "font_size", 10,
         QT_TR_NOOP("Size, in points:")},
        {SettingInfo::Value, SettingInfo::TextPage, "code_line_numbers", true,
         QT_TR_NOOP("Number the lines")},
        {SettingInfo::Value, SettingInfo::TextPage, "code_folding_markers", true,
         QT_TR_NOOP("Show boxes that fold")},
        {SettingInfo::Value, SettingInfo::TextPage, "code_highlight_line", true,
         QT_TR_NOOP("Highlight the current line")},
        {SettingInfo::Value, SettingInfo::TextPage, "code_highlight_blocks", true,
         QT_TR_NOOP("Highlight the blocks round the cursor")},
        {SettingInfo::Value, SettingInfo::TextPage, "code_paren_matching", true,
         QT_TR_NOOP("Highlight matching brackets")},
        {SettingInfo::Value, SettingInfo::TextPage, "auto_expand_tree", true,
         QT_TR_NOOP("Show where the cursor is in the tree of the text")},
        {SettingInfo::Value, SettingInfo::TextPage, "show_code_bar", true,
         QT_TR_NOOP("Show the bar of snippets and messages")},
        {SettingInfo::AnswerQuestion, SettingInfo::QuestionsPage, "showmsg_enc_reload", 0,
         QT_TR_NOOP("Read a file again when its encoding is changed?")},
        {SettingInfo::AnswerQuestion, SettingInfo::QuestionsPage, "showmsg_discard", 0,
         QT_TR_NOOP("Discard the unsaved changes of a file?")},
        {SettingInfo::SwitchQuestion, SettingInfo::QuestionsPage, "confirm_delete", true,
         QT_TR_NOOP("Really delete?")},
    };
    return settings;
}

const SettingInfo *Settings::info(const QString &key)
{
    const QVector<SettingInfo> &all = known();
    const auto found = std::find_if(all.begin(), all.end(), [&key](const SettingInfo &setting) {
        return key == QLatin1String(setting.key);
    });
    return found == all.end() ? nullptr : &*found;
}

QString Settings::text(const SettingInfo &info)
{
    return tr(info.text);
}

Settings::Settings(const QString &fileName, QObject *parent)
    : QObject(parent)
    , m_store(fileName, QSettings::IniFormat)
{
    m_store.setIniCodec("UTF-8");
}

QString Settings::fileName() const
{
    return m_store.fileName();
}

QVariant Settings::value(const QString &key, const QVariant &fallback) const
{
    if (key.isEmpty())
        return fallback;
    const SettingInfo *setting = info(key);
    const QVariant standard = setting ? setting->defaultValue : fallback;
    QVariant stored = m_store.value(key);
    if (!stored.isValid())
        return standard;
    // The file keeps texts only.
    if (standard.isValid() && stored.canConvert(int(standard.userType()))) {
        QVariant converted = stored;
        return converted.convert(int(standard.userType())) ? converted : standard;
    }
    return stored;
}

void Settings::setValue(const QString &key, const QVariant &value)
{
    if (!value.isValid())
        return remove(key);
    if (key.isEmpty() || (m_store.contains(key) && m_store.value(key) == value))
        return;
    m_store.setValue(key, value);
    write();
    Q_EMIT changed(key);
}

void Settings::remove(const QString &key)
{
    if (!contains(key))
        return;
    m_store.remove(key);
    write();
    Q_EMIT changed(key);
}

bool Settings::contains(const QString &key) const
{
    return !key.isEmpty() && m_store.contains(key);
}

QVector<SilencedQuestion> Settings::silencedQuestions() const
{
    QVector<SilencedQuestion> silenced;
    for (const SettingInfo &setting : known()) {
        const QString key = QLatin1String(setting.key);
        const QVariant stored = value(key);
        if (isSilent(setting.kind, stored))
            silenced.append({key, text(setting), silentAnswer(setting.kind, stored)});
    }
    const QStringList stored = m_store.allKeys();
    for (const QString &key : stored) {
        const QVariant answer = m_store.value(key);
        if (isUnknownQuestion(key) && isSilent(questionKind(answer), answer))
            silenced.append({key, key, silentAnswer(questionKind(answer), answer)});
    }
    return silenced;
}

void Settings::unsilence(const QString &key)
{
    // The answer is stored and not taken away: what asks may have a silent default.
    const SettingInfo *setting = info(key);
    const SettingInfo::Kind kind = setting ? setting->kind : questionKind(m_store.value(key));
    setValue(key, kind == SettingInfo::SwitchQuestion ? QVariant(true) : QVariant(0));
}

bool Settings::exportTo(const QString &fileName, QString *error) const
{
    if (QFileInfo(fileName) == QFileInfo(m_store.fileName())) {
        *error = tr("%1 is the file of the settings themselves.").arg(fileName);
        return false;
    }
    QSettings target(fileName, QSettings::IniFormat);
    target.setIniCodec("UTF-8");
    target.clear();
    const QStringList keys = m_store.allKeys();
    for (const QString &key : keys)
        target.setValue(key, m_store.value(key));
    target.setValue(markKey, markVersion);
    target.sync();
    if (target.status() == QSettings::NoError)
        return true;
    *error = tr("The settings could not be written to %1.").arg(fileName);
    return false;
}

bool Settings::importFrom(const QString &fileName, QString *error)
{
    QSettings source(fileName, QSettings::IniFormat);
    source.setIniCodec("UTF-8");
    if (source.status() != QSettings::NoError || source.value(markKey).toInt() != markVersion) {
        *error = tr("%1 does not hold exported settings.").arg(fileName);
        return false;
    }
    QSet<QString> different;
    QStringList incoming = source.allKeys();
    incoming.removeOne(markKey);
    for (const QString &key : qAsConst(incoming)) {
        if (m_store.value(key) != source.value(key))
            different.insert(key);
        m_store.setValue(key, source.value(key));
    }
    const QStringList present = m_store.allKeys();
    for (const QString &key : present) {
        if (incoming.contains(key))
            continue;
        m_store.remove(key);
        different.insert(key);
    }
    write();
    for (const QString &key : qAsConst(different))
        Q_EMIT changed(key);
    return true;
}

void Settings::write()
{
    m_store.sync();
    const bool failed = m_store.status() != QSettings::NoError;
    if (failed && !m_failing)
        Q_EMIT writeFailed(m_store.fileName());
    m_failing = failed;
}

} // namespace Studio
