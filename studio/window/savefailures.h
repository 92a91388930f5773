// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QStringList>

namespace Vela {
class ParentProject;
}

namespace Studio {

/// Finds the reasons for which files could not be saved: a file tells them in its messages, or to
/// the job that it is saved in.
class SaveFailures
{
public:
    /// Takes note of the messages that there are before the save. \a parent must outlive this.
    explicit SaveFailures(const Vela::ParentProject &parent);

    /// Returns the paths, each with what its file has told since, and then those of \a jobErrors
    /// that no file has told.
    QStringList lines(const QStringList &paths, const QStringList &jobErrors) const;

private:
    QHash<QString, QStringList> errors() const;

    const Vela::ParentProject &m_parent;
    const QHash<QString, QStringList> m_before;
};

} // namespace Studio
