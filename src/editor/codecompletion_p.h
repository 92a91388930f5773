// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QObject>
#include <QStringList>
#include <QStringListModel>

class QCompleter;
class QKeyEvent;

namespace Vela {

class CodeEditor;

/// What completes words in a CodeEditor: the list that pops up, and the words for each prefix.
class CodeCompletion : public QObject
{
    Q_OBJECT

public:
    /// \a editor owns the completer, and outlives this.
    explicit CodeCompletion(CodeEditor *editor);
    ~CodeCompletion() override;

    /// See CodeEditor::completerFromFile().
    bool load(const QString &fileName);

    bool isOpen() const;
    void close();
    /// Returns whether the open list takes this key, which then must not reach the text.
    bool takesKey(QKeyEvent *event);
    /// Opens, narrows or closes the list behind a key that the editor's document took, or what an
    /// input method typed.
    void keyTyped(const QKeyEvent &event);

private:
    bool askDocument(int key, QString &prefix);
    bool findWords(const QString &prefix);
    const QStringList *wordsAtCursor() const;
    void open(const QString &prefix);
    void insert(const QString &word);

    CodeEditor *const m_editor;
    QCompleter *const m_completer;
    QStringListModel m_model;           ///< of the words shown, if the document sets no other
    bool m_isFromFile = false;          ///< whether the words shown are from m_words
    QMap<QString, QStringList> m_words; ///< by the prefix that they complete; sorted
};

} // namespace Vela
