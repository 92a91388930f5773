// SPDX-License-Identifier: MIT
#include "studio/window/lastsession.h"

#include "frame/interface.h"

namespace Studio {

namespace {

const QString projectKey = QStringLiteral("session/project");
const QString fileKey = QStringLiteral("session/file");
const QString expandedKey = QStringLiteral("session/expanded");
const QString shownKey = QStringLiteral("session/shown");

} // namespace

void LastSession::store(Vela::Interface &host) const
{
    host.setOption(projectKey, project);
    host.setOption(fileKey, file);
    host.setOption(expandedKey, expanded);
    host.setOption(shownKey, shown);
}

LastSession LastSession::stored(const Vela::Interface &host)
{
    return {host.option(projectKey, QString()).toString(),
            host.option(fileKey, QString()).toString(),
            host.option(expandedKey, QStringList()).toStringList(),
            host.option(shownKey, QStringList()).toStringList()};
}

void LastSession::forget(Vela::Interface &host)
{
    LastSession().store(host);
}

} // namespace Studio
