// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSettings>
#include <QVariant>
#include <QVector>

namespace Studio {

/// One setting that the programs know by name. The settings dialog is made from the table of them.
struct SettingInfo
{
    enum Kind {
        Value,          ///< a value of the type of its default
        SwitchQuestion, ///< a question: true asks, false answers Yes
        AnswerQuestion  ///< a question: 0 asks, 1 answers Yes, anything else No
    };
    /// A setting on no page is asked for by the library, and no editor makes use of it yet.
    enum Page { NoPage, GeneralPage, FilesPage, TextPage, QuestionsPage };

    Kind kind;
    Page page;
    const char *key;
    QVariant defaultValue;
    const char *text; ///< as for tr() in the context "Studio::Settings"
    /// What the value, a number from 0, stands for; empty where it is a number only.
    QVector<const char *> choices = {};
    /// Whether the value is from 0 to 100, as of a volume.
    bool isVolume = false;
};

/// A question that the user does not get to see any more.
struct SilencedQuestion
{
    QString key;
    QString text; ///< what it asks, or its key if that is not known
    bool answer;  ///< what it answers instead
};

/// The user's settings in one INI file. Every change is on the disk when the call returns, and
/// changes of another running program are taken along.
class Settings : public QObject
{
    Q_OBJECT

public:
    explicit Settings(const QString &fileName, QObject *parent = nullptr);

    /// Returns the settings known by name, in the order of the dialog.
    static const QVector<SettingInfo> &known();
    /// Returns null for a key outside that table.
    static const SettingInfo *info(const QString &key);
    static QString text(const SettingInfo &info);

    QString fileName() const;
    /// Returns what is stored, in the type of the default. For an unset key the program's own
    /// default comes before \a fallback, which is what a caller would take.
    QVariant value(const QString &key, const QVariant &fallback = QVariant()) const;
    /// Stores a value; an invalid one takes the key away. An empty key is ignored.
    void setValue(const QString &key, const QVariant &value);
    void remove(const QString &key);
    bool contains(const QString &key) const;

    QVector<SilencedQuestion> silencedQuestions() const;
    /// Makes a question ask again.
    void unsilence(const QString &key);

    /// Writes all settings to a file of their own, which must not be the settings file. On failure
    /// returns false and says why.
    bool exportTo(const QString &fileName, QString *error) const;
    /// Replaces all settings by those of an exported file. A file that is none is refused and
    /// nothing changes.
    bool importFrom(const QString &fileName, QString *error);

Q_SIGNALS:
    void changed(const QString &key);
    /// The settings could not be written; sent at the first failure only.
    void writeFailed(const QString &fileName);

private:
    void write();

    QSettings m_store;
    bool m_failing = false;
};

} // namespace Studio
