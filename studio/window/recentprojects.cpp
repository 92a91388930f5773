// SPDX-License-Identifier: MIT
#include "studio/window/recentprojects.h"

#include "frame/interface.h"

#include <QFileInfo>

namespace Studio {

namespace {

const QString recentKey = QStringLiteral("recent_projects");

} // namespace

RecentProjects::RecentProjects(Vela::Interface &host, QObject *parent)
    : QObject(parent)
    , m_host(host)
{
}

QStringList RecentProjects::paths() const
{
    QStringList paths = m_host.option(recentKey, QStringList()).toStringList();
    paths.removeAll(QString());
    return paths.mid(0, Limit);
}

bool RecentProjects::isThere(const QString &path)
{
    return QFileInfo::exists(path);
}

void RecentProjects::add(const QString &path)
{
    QStringList all = paths();
    all.removeAll(path);
    all.prepend(path);
    store(all.mid(0, Limit));
}

void RecentProjects::remove(const QString &path)
{
    QStringList all = paths();
    if (all.removeAll(path) > 0)
        store(all);
}

void RecentProjects::clear()
{
    store({});
}

void RecentProjects::store(const QStringList &paths)
{
    m_host.setOption(recentKey, paths);
    Q_EMIT changed();
}

} // namespace Studio
