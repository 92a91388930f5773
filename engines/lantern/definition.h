// SPDX-License-Identifier: MIT
#pragma once

#include "project/message.h"

#include <QString>
#include <QVector>

namespace Lantern {

/// One setting of a definition text, with its place. Lines and columns count from 0, columns and
/// offsets in UTF-16 units.
struct Setting
{
    QString section; ///< in lower case
    QString key;     ///< in lower case
    QString value;   ///< without quotes
    int line = 0;
    int column = 0;      ///< of the key
    int valueColumn = 0; ///< of the value, or of its opening quote
    int valueOffset = 0; ///< the same place, from the start of the text
    int valueLength = 0; ///< with the quotes
};

/// A section's header.
struct Section
{
    QString kind; ///< in lower case
    QString name; ///< empty where the header gives none
    int line = 0;
    int column = 0;
};

/// A definition text taken apart by its grammar, which docs/lantern.md tells. What does not fit
/// becomes a message, and the rest is read all the same. Takes any text, in linear time.
class Definition
{
public:
    explicit Definition(const QString &text);

    QVector<Section> sections;
    /// All settings in their order, also those of sections that nobody knows.
    QVector<Setting> settings;
    QVector<Vela::Message> messages;
    int lineCount = 0;

    /// Returns whether a section of that kind belongs to a later version of the grammar, which
    /// takes whatever lines it has.
    static bool isReservedSection(const QString &kind);

private:
    void readLine(const QString &text, int begin, int end);
    void readSection(const QString &text, int begin, int end);
    void readSetting(const QString &text, int begin, int end);
    bool readValue(const QString &text, int begin, int end, Setting &setting);
    bool readQuoted(const QString &text, int begin, int end, Setting &setting);
    void add(Vela::Message::Type type, int offset, const QString &message);

    int m_lineBegin = 0;
    bool m_full = false;
    bool m_nulSeen = false;
    bool m_inReserved = false;
};

/// Cuts a list that has grown too long for anybody to read, and says so in its last message.
void limitMessages(QVector<Vela::Message> &messages);

/// Returns a text for a message: long ones are cut.
QString clipped(const QString &text);

/// Returns \a value as it stands in a text: in quotes where it could be taken for something else.
QString quotedIfNeeded(const QString &value);

} // namespace Lantern
