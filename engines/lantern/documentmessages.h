// SPDX-License-Identifier: MIT
#pragma once

#include "project/messages.h"

#include <QVector>

namespace Lantern {

/// The messages about a definition text in one list: those about the file as a whole, then those of
/// its parser.
class DocumentMessages : public Vela::Messages
{
    Q_OBJECT

public:
    /// \a syntax are the parser's messages, which outlive this list.
    DocumentMessages(Vela::ProjectFile *file, Vela::Messages *syntax);

    Vela::ProjectFile *file() const override;
    int count(Vela::Message::Type type) const override;
    Vela::Message at(unsigned int index, Vela::Message::Type type) const override;

    /// Puts \a messages in the place of those about the file as a whole.
    void setOwn(const QVector<Vela::Message> &messages);
    using Messages::notifyUpdate;

private:
    int ownCount(Vela::Message::Type type) const;

    Vela::ProjectFile *const m_file;
    Vela::Messages *const m_syntax;
    QVector<Vela::Message> m_own;
};

/// Returns the text of a message for a place that shows no more than a line of text.
QString placedText(const QString &fileName, const Vela::Message &message);

/// Cuts a list that has grown too long for anybody to read, and says so in its last message.
void limitMessages(QVector<Vela::Message> &messages);

} // namespace Lantern
