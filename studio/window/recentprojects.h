// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>

namespace Vela {
class Interface;
}

namespace Studio {

/// The projects that were opened last, kept among the user's settings. A project that is not
/// there any more stays listed until the user removes it: its disk may only be away.
class RecentProjects : public QObject
{
    Q_OBJECT

public:
    static constexpr int Limit = 12;

    explicit RecentProjects(Vela::Interface &host, QObject *parent = nullptr);

    /// Returns absolute paths, the last opened one first.
    QStringList paths() const;
    static bool isThere(const QString &path);

    /// Puts a path in front.
    void add(const QString &path);
    void remove(const QString &path);
    void clear();

Q_SIGNALS:
    void changed();

private:
    void store(const QStringList &paths);

    Vela::Interface &m_host;
};

} // namespace Studio
