// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/documentmessages.h"
#include "lantern/latecontent.h"
#include "lantern/lineparser.h"

#include "code/codedocument.h"
#include "frame/propertyitem.h"

#include <QHash>
#include <QTimer>
#include <QVector>

#include <functional>
#include <memory>

namespace Lantern {

class FileNames;
class MotionCode;
class Motions;

/// A definition text as a file of a project: a motion file, a script, and the base of main files.
/// It holds its parser, and its animations as the node file of that type, which a script has not.
///
/// What only reaches a CodeDocument, and not the ProjectFile, finds the text empty before the
/// content was asked for: isEmpty() and model() read it.
///
/// Its properties are "Encoding", the name of the encoding, and "Lines", their number, to be read
/// only. Undo does not take an encoding back.
class Document : public Vela::CodeDocument,
                 public Vela::PropertyItem,
                 public LateContent,
                 public ParserContext
{
    Q_OBJECT

public:
    explicit Document(Scope scope);
    ~Document() override;

    /// Replaces the text as one step of undo. What is the same at both ends stays untouched.
    void setText(const QString &text);
    /// The project calls this when its list of sprites or sounds has changed.
    void forgetNames();

    void release() override;
    QAbstractItemModel *model() override;
    bool isEmpty() const override;
    void reset() override;
    bool toFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                Vela::JobStats *stats) override;
    bool fromFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                  Vela::JobStats *stats) override;
    void beginChange() override;
    QList<SearchResult> search(const Vela::RegExp &expression, unsigned int flags) const override;
    void replace(const QList<SearchResult> &results, const QString &text) override;
    /// Returns the name also while a save is being written: projects know their files by it.
    QString fileName() const override;
    using CodeDocument::option;
    /// The text is parsed and highlighted and the tree shows rows unless somebody says otherwise.
    QVariant option(const QString &key) const override;
    const char *fileExtension() const override;
    /// Reads the file again as one step of undo. Changes that are not saved go only if the user
    /// says so.
    void reload() override;

    bool autoComplete(QTextCursor &cursor, QCompleter *completer, int key,
                      QString &prefix) override;
    bool insertCompletion(Vela::CodeEditor *editor, QTextCursor cursor,
                          const QString &text) override;
    void formatLines(int firstLine, int lastLine, bool indentOnly) override;

    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

    Scope scope() const override;
    Presence spritePresence(const QString &name) const override;
    Presence soundPresence(const QString &name) const override;
    Presence filePresence(const QString &path) const override;
    QStringList spriteNames() const override;
    QStringList soundNames() const override;
    Vela::Sprite *sprite(const QString &name) const override;
    QStringList animationNames() const override;
    void openFile(const QString &path) override;
    void openSound(const QString &name) override;
    void openAnimation(const QString &identifier) override;

protected:
    void codeUpdated() override;
    void bindTo(Vela::Archive &archive, const QString &name) override;
    void load() override;
    Vela::Messages *fileMessages() const override;

    /// Called behind each change of the text, and with \a read behind each reading. A motion file,
    /// which may be long, is checked when its text has rested for a moment.
    virtual void updateChecks(bool read);
    /// Returns the warnings about boxes that stand above no frame.
    QVector<Vela::Message> boxMessages() const;
    /// Sets the messages that subclasses have about the whole text.
    void setChecks(const QVector<Vela::Message> &messages);
    /// Adds an error that stays until the text is changed, read or saved.
    void addFailure(const Vela::Message &message);
    /// Returns a path of the text as the archive spells it, absolute; empty if there is no such
    /// file.
    QString spelledFile(const QString &path) const;

private:
    class SaveJob;
    // Names of files by their case-folded form.
    using Names = QHash<QString, QString>;

    void take(const QByteArray &data, int codec, bool again);
    bool passOn(Vela::Archive &archive, const QString &name, unsigned int flags,
                Vela::JobStats *stats);
    void onSaved();
    Vela::Message unwritableMessage() const;
    bool fail(const Vela::Message &message, const QString &error, unsigned int flags,
              Vela::JobStats *stats);
    void showMessages();
    void forEachAnimation(
        const std::function<void(Document &, const MotionCode &)> &function) const;
    Presence presence(int fileType, const QString &name) const;
    const Names &names(int fileType) const;

    const Scope m_scope;
    LineParser m_parser;
    Motions *m_motions; // null in a script, and once its first reference is given up
    mutable DocumentMessages m_messages;
    QVector<Vela::Message> m_readMessages; // about the bytes of the file
    QVector<Vela::Message> m_checks;
    QTimer m_checkTimer;
    QVector<Vela::Message> m_failures;
    int m_failureRevision = 0;
    QString m_savingName; // of the last save that was begun
    bool m_isReading = false;
    bool m_isDamaged = false;
    mutable QHash<int, Names> m_names;  // by the type of file
    mutable bool m_warnsOfNames = true; // as long as the names hold
    // Folders listed for the lines of one pass, which may name many files.
    mutable std::unique_ptr<FileNames> m_fileNames;
};

} // namespace Lantern
