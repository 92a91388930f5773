// SPDX-License-Identifier: MIT
#pragma once

#include "frame/regexp.h"
#include "project/projectfile.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <functional>

namespace Studio {

/// Searches the files of a project one by one in the event loop, so that the window stays alive and
/// the search can be stopped.
class ProjectSearch : public QObject
{
    Q_OBJECT

public:
    using Results = QList<Vela::ProjectFile::SearchResult>;
    /// Returns the file of a path, or null if it is gone.
    using FileOfPath = std::function<Vela::ProjectFile *(const QString &)>;

    explicit ProjectSearch(FileOfPath fileOfPath, QObject *parent = nullptr);

    /// Returns every match in a file.
    static Results searchAll(Vela::ProjectFile &file, const Vela::RegExp &expression);

    /// Searches these files, instead of what was being searched.
    void start(const QStringList &paths, const Vela::RegExp &expression);
    void stop();
    bool isRunning() const;

Q_SIGNALS:
    void found(const QString &path, const Studio::ProjectSearch::Results &results);
    void finished();

private:
    void goOn();

    FileOfPath m_fileOfPath;
    Vela::RegExp m_expression;
    QStringList m_paths;
    int m_next = 0;
    QTimer m_timer;
};

} // namespace Studio
