// SPDX-License-Identifier: MIT
#include "studio/window/savefailures.h"

#include "studio/session/messagereport.h"

namespace Studio {

SaveFailures::SaveFailures(const Vela::ParentProject &parent)
    : m_parent(parent)
    , m_before(errors())
{
}

QStringList SaveFailures::lines(const QStringList &paths, const QStringList &jobErrors) const
{
    const QHash<QString, QStringList> now = errors();
    QStringList lines;
    for (const QString &path : paths) {
        QStringList reasons = now.value(path);
        const QStringList known = m_before.value(path);
        for (const QString &text : known)
            reasons.removeOne(text);
        reasons.removeDuplicates();
        reasons.prepend(path);
        lines.append(reasons.join(QStringLiteral(": ")));
    }
    for (const QString &error : jobErrors) {
        if (lines.filter(error).isEmpty())
            lines.append(error);
    }
    return lines;
}

QHash<QString, QStringList> SaveFailures::errors() const
{
    QHash<QString, QStringList> texts;
    const MessageReport report(m_parent);
    for (const MessageRecord &record : report.records()) {
        if (record.type == Vela::Message::Error)
            texts[record.file].append(record.text);
    }
    return texts;
}

} // namespace Studio
