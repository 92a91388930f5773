// SPDX-License-Identifier: MIT
#include "studio/window/backgroundreader.h"

#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"

#include <QElapsedTimer>

namespace Studio {

namespace {

constexpr int SliceLength = 20; // ms

} // namespace

BackgroundReader::BackgroundReader(QObject *parent)
    : QObject(parent)
{
    connect(&m_next, &QTimer::timeout, this, &BackgroundReader::readSome);
}

void BackgroundReader::start(const Vela::ParentProject &parent)
{
    m_files.clear();
    const QList<Vela::Project *> projects = parent.openedProjects();
    for (const Vela::Project *project : projects) {
        const QList<Vela::ProjectFile *> files = project->files();
        for (Vela::ProjectFile *file : files) {
            if (file->messages())
                m_files.append(file);
        }
    }
    m_total = m_files.size();
    m_next.start(0);
}

void BackgroundReader::stop()
{
    m_next.stop();
    m_files.clear();
}

void BackgroundReader::forget(Vela::ProjectFile *file)
{
    m_files.removeAll(file);
}

bool BackgroundReader::isRunning() const
{
    return m_next.isActive();
}

void BackgroundReader::readSome()
{
    QElapsedTimer time;
    time.start();
    while (!m_files.isEmpty() && time.elapsed() < SliceLength) {
        // Whether a file is empty can only be told from its content.
        m_files.takeLast()->isEmpty();
    }
    Q_EMIT progressed(m_total - m_files.size(), m_total);
    if (m_files.isEmpty()) {
        m_next.stop();
        Q_EMIT finished();
    }
}

} // namespace Studio
