// SPDX-License-Identifier: MIT
#pragma once

#include "frame/filemodel_p.h"

#include <QString>

class QLineEdit;

namespace Vela {

class Archive;
class FileBrowseEdit;

/// The data and the workings of a FileBrowseEdit.
class FileBrowseEditPrivate
{
public:
    explicit FileBrowseEditPrivate(FileBrowseEdit *widget);

    /// Follows the text to the folder that it names.
    void updateFolder();
    void refill();
    void browse();
    /// Returns a path that is relative to the base as the archive knows it.
    QString underBase(const QString &relative) const;
    QString relativeToBase(const QString &path) const;

    FileBrowseEdit *q;
    QLineEdit *edit;
    FileModel model;
    Archive *archive;
    QString basePath;
    QString filter = QStringLiteral("*.*");
    QString folder; ///< the folder whose entries the model holds
};

} // namespace Vela
