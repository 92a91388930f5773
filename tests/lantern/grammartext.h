// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/formatter.h"
#include "lantern/lineparser.h"
#include "lantern/motionframe.h"
#include "lantern/motions.h"

#include "code/codeblockdata.h"
#include "code/codedocument.h"

#include <QTest>
#include <QTextBlock>

using Lantern::MotionFrame;
using Lantern::Scope;
using Vela::CodeNode;

/// A text in a project with the sprites "idle" and "walk 1", the sound "step" and a file
/// "more.motion".
class Text : public Vela::CodeDocument, public Lantern::ParserContext
{
public:
    Text(Scope scope, const QString &text)
        : CodeDocument(0)
        , m_scope(scope)
        , m_parser(*this)
        , m_motions(new Lantern::Motions(this))
    {
        setParser(&m_parser);
        registerNodeFile(m_motions, CodeNode::Animation, 0);
        setPlainText(text);
        setUndoRedoEnabled(false);
        setUndoRedoEnabled(true);
    }
    ~Text() override
    {
        setParser(nullptr);
    }

    using CodeDocument::option;
    QVariant option(const QString &key) const override
    {
        if (key.startsWith(QLatin1String("lantern_")))
            return options.value(key);
        return keepsBlanks || key != QLatin1String("preserve_code_formatting");
    }
    void formatLines(int first, int last, bool indentOnly) override
    {
        Lantern::formatLines(*this, first, last, indentOnly);
    }

    Scope scope() const override
    {
        return m_scope;
    }
    Lantern::Presence spritePresence(const QString &name) const override
    {
        return presence(spriteNames().contains(name));
    }
    Lantern::Presence soundPresence(const QString &name) const override
    {
        return presence(soundNames().contains(name));
    }
    Lantern::Presence filePresence(const QString &path) const override
    {
        return presence(path == QLatin1String("more.motion"));
    }
    QStringList spriteNames() const override
    {
        return {QStringLiteral("idle"), QStringLiteral("walk 1")};
    }
    QStringList soundNames() const override
    {
        return {QStringLiteral("step")};
    }
    Vela::Sprite *sprite(const QString &) const override
    {
        return nullptr;
    }
    QStringList animationNames() const override
    {
        return {QStringLiteral("walk")};
    }
    void openFile(const QString &path) override
    {
        opened = path;
    }
    void openSound(const QString &name) override
    {
        opened = QLatin1String("sound ") + name;
    }
    void openAnimation(const QString &identifier) override
    {
        opened = QLatin1String("animation ") + identifier;
    }

    QTextBlock line(int number) const
    {
        return findBlockByNumber(number);
    }
    template <typename T>
    T *node(int number) const
    {
        return dynamic_cast<T *>(nodeInBlock(line(number)));
    }
    MotionFrame *frame(int number) const
    {
        return node<MotionFrame>(number);
    }
    Lantern::Motions *motions() const
    {
        return m_motions;
    }
    void insertAt(int number, int column, const QString &text)
    {
        QTextCursor cursor(line(number));
        cursor.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor, column);
        cursor.insertText(text);
    }

    QString opened;
    QVariantMap options;
    bool keepsBlanks = true;

private:
    static Lantern::Presence presence(bool isThere)
    {
        return isThere ? Lantern::Presence::Present : Lantern::Presence::Missing;
    }

    const Scope m_scope;
    Lantern::LineParser m_parser;
    Lantern::Motions *const m_motions;
};

struct Found
{
    QString place; ///< "E 1:0-4": error, deprecation or warning; line and columns from 0
    QString message;
};

inline QVector<Found> messagesOf(const Text &text)
{
    QVector<Found> result;
    for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
        const auto *const data = Vela::CodeBlockData::testBlockData(block);
        const auto messages =
            data ? data->syntaxMessages() : QVector<Vela::CodeBlockData::SyntaxMessage>();
        for (const auto &message : messages)
            result.append({QStringLiteral("%1 %2:%3-%4")
                               .arg(QStringLiteral("EDW").at(message.type))
                               .arg(block.blockNumber())
                               .arg(message.start)
                               .arg(message.end),
                           message.message});
    }
    return result;
}

/// Compares the messages with "PLACE|piece of the message" for each.
inline void compareMessages(const Text &text, const QStringList &expected)
{
    const QVector<Found> found = messagesOf(text);
    QStringList places;
    for (const Found &message : found)
        places.append(message.place + QLatin1Char(' ') + message.message);
    QVERIFY2(found.size() == expected.size(), qPrintable(places.join(QLatin1Char('\n'))));
    for (int i = 0; i < found.size(); ++i) {
        QCOMPARE(found.at(i).place, expected.at(i).section(QLatin1Char('|'), 0, 0));
        const QString piece = expected.at(i).section(QLatin1Char('|'), 1);
        QVERIFY2(found.at(i).message.contains(piece), qPrintable(found.at(i).message));
    }
}

inline QString utf8(const char *text)
{
    return QString::fromUtf8(text);
}
