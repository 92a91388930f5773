// SPDX-License-Identifier: MIT
#pragma once

#include "project/messages.h"

namespace Vela {

/// Messages kept as a plain list.
class VELA_EXPORT SimpleMessages : public Messages
{
    Q_OBJECT

public:
    explicit SimpleMessages(ProjectFile *const file);

    ProjectFile *file() const override;
    int count(Message::Type type) const override;
    /// Past the end the result is an empty message of type Message::Any.
    Message at(unsigned int index, Message::Type type) const override;

    void add(Message::Type type, const QString &text, unsigned int line, unsigned int column);
    void clear();
    /// Between beginChange() and the endChange() that closes it the project's table stays as it
    /// is, and is then brought up to date once. Nests.
    void beginChange();
    void endChange();

private:
    void changed();

    ProjectFile *const m_file;
    QList<Message> m_messages;
    int m_counts[3] = {0, 0, 0};
    int m_changeDepth = 0;
};

} // namespace Vela
