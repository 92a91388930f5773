// SPDX-License-Identifier: MIT
#include "studio/session/projectsearch.h"

#include "code/codedocument.h"
#include "project/searchableprojectfile.h"
#include "studio/session/documents.h"

#include <QElapsedTimer>

namespace Studio {

namespace {

constexpr int SliceTime = 30; // ms until the window gets its turn

} // namespace

ProjectSearch::ProjectSearch(FileOfPath fileOfPath, QObject *parent)
    : QObject(parent)
    , m_fileOfPath(std::move(fileOfPath))
{
    connect(&m_timer, &QTimer::timeout, this, &ProjectSearch::goOn);
}

ProjectSearch::Results ProjectSearch::searchAll(Vela::ProjectFile &file,
                                                const Vela::RegExp &expression)
{
    // The two kinds of files have other bits for the same flag.
    return file.search(expression,
                       documentOf(&file) ? unsigned(Vela::CodeDocument::FindAll)
                                         : unsigned(Vela::SearchableProjectFile::FindAll));
}

void ProjectSearch::start(const QStringList &paths, const Vela::RegExp &expression)
{
    m_paths = paths;
    m_expression = expression;
    m_next = 0;
    m_timer.start(0);
}

void ProjectSearch::stop()
{
    m_timer.stop();
}

bool ProjectSearch::isRunning() const
{
    return m_timer.isActive();
}

void ProjectSearch::goOn()
{
    QElapsedTimer time;
    time.start();
    while (m_next < m_paths.size()) {
        if (time.elapsed() > SliceTime)
            return;
        const QString path = m_paths.at(m_next++);
        Vela::ProjectFile *file = m_fileOfPath(path);
        const Results results = file ? searchAll(*file, m_expression) : Results();
        if (!results.isEmpty())
            Q_EMIT found(path, results);
    }
    m_timer.stop();
    Q_EMIT finished();
}

} // namespace Studio
