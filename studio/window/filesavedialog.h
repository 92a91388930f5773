// SPDX-License-Identifier: MIT
#pragma once

#include "project/filesaver.h"

#include <QCoreApplication>
#include <QStringList>

namespace Vela {
class Interface;
}

namespace Studio {

/// Saves a file of one type under a name that the user chooses in a dialog.
class FileSaveDialog : public Vela::FileSaver
{
    Q_DECLARE_TR_FUNCTIONS(FileSaveDialog)

public:
    /// \a type is a Vela::Project::FileType, or -1 for files of any other.
    FileSaveDialog(Vela::Interface &host, int type);

    void saveFileAs(Vela::ProjectFile *file) override;

    /// Returns \a path with the first extension of a pattern such as "*.txt" behind it, unless it
    /// ends with that. A pattern with several extensions leaves the path as it is.
    static QString withExtension(const QString &path, const QString &pattern);

private:
    QString pattern() const;
    /// Returns the name of what is saved, and the first part of the setting of its folder.
    QString kind() const;
    QString kindText() const;
    QString startFolder(const Vela::ProjectFile &file) const;
    bool isOutside(const Vela::ProjectFile &file, const QString &path) const;
    bool askForCopy() const;

    Vela::Interface &m_host;
    int m_type;
};

} // namespace Studio
