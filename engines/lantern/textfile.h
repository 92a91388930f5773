// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/contentfile.h"
#include "lantern/textcontent.h"

#include "project/simplemessages.h"

#include <QVector>

namespace Lantern {

/// A scripts file: text in any encoding, with undo in steps of the whole text.
///
/// Its properties are "Encoding", the name of the encoding; "Lines", their number; and "LineEnds",
/// "LF", "CRLF", "CR" or "Mixed", the latter two to be read only where they say so in
/// setProperty().
class TextFile : public ContentFile
{
public:
    explicit TextFile(const char *extension);

    QString text() const;
    /// Replaces the text as one step of undo.
    void setText(const QString &text);
    /// Returns the index of the encoding in Vela::TextCodecs.
    int codec() const;

    Capabilities capabilities() const override;
    bool isModified() const override;
    bool isEmpty() const override;
    void beginChange() override;
    void endChange() override;
    void undo() override;
    void redo() override;
    /// Returns every match with SearchableProjectFile::FindAll, else the first one, or the last one
    /// with SearchableProjectFile::Backward: the file has no cursor.
    QList<SearchResult> search(const Vela::RegExp &expression, unsigned int flags) const override;
    /// Replaces matches that stand as search() found them; any other is left out.
    void replace(const QList<SearchResult> &results, const QString &text) override;

    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    /// "Encoding" takes the name of an encoding, "LineEnds" one of "LF", "CRLF" and "CR".
    void setProperty(const QString &name, const QVariant &value) override;

protected:
    void decode(const QByteArray &data, bool again) override;
    bool encode(QByteArray &data, QString &error) override;
    void clear() override;
    void markSaved() override;
    void reportFailure(const QString &text) override;
    Vela::Messages *fileMessages() const override;

private:
    // A state of the text; its number tells it from all others this file has had.
    struct State
    {
        TextContent content;
        int number = 0;
    };

    const TextContent &content() const;
    /// Makes \a content the present state, as a step of undo.
    void change(const TextContent &content);
    void push(const TextContent &content);
    void step(int direction);
    void notify();

    QVector<State> m_states = QVector<State>(1);
    int m_current = 0;
    int m_savedNumber = 0;
    int m_lastNumber = 0;
    int m_changeDepth = 0;
    bool m_changePushed = false;
    mutable Vela::SimpleMessages m_messages;
};

} // namespace Lantern
