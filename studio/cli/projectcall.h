// SPDX-License-Identifier: MIT
#pragma once

#include "studio/session/projectsession.h"

class QJsonObject;

namespace Vela {
class ProgressJob;
}

namespace Studio {

/// Opens the project of a call with all its projects. Reports the reason and returns null on
/// failure. Of a project that alone cannot be opened only the reason is reported: the others are
/// worked on, and the call fails in the end.
std::unique_ptr<ProjectSession> openProject(const QString &path);

/// Opens the project of a call and leaves closed ones closed.
std::unique_ptr<ProjectSession> openProjectAsItIs(const QString &path);

/// Makes a job of the host, which reports its errors behind \a text.
std::unique_ptr<Vela::ProgressJob> createJob(const char *text);

void printJson(const QJsonObject &object);

} // namespace Studio
