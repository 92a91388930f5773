// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QTimer>

namespace Vela {
class ParentProject;
class ProjectFile;
} // namespace Vela

namespace Studio {

/// Lets every file of a project that can have messages read its content, in slices short enough
/// that the window stays awake.
class BackgroundReader : public QObject
{
    Q_OBJECT

public:
    explicit BackgroundReader(QObject *parent = nullptr);

    void start(const Vela::ParentProject &parent);
    void stop();
    /// Leaves out a file that is about to go.
    void forget(Vela::ProjectFile *file);
    bool isRunning() const;

Q_SIGNALS:
    void progressed(int done, int total);
    void finished();

private:
    void readSome();

    QList<Vela::ProjectFile *> m_files;
    int m_total = 0;
    QTimer m_next;
};

} // namespace Studio
