// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QWidget>
#include <memory>

namespace Vela {

class Archive;
class FileBrowseEditPrivate;

/// A line edit and a button "..." with which a user names a file relative to a base path. Typing
/// completes folders and files of the archive.
class VELA_EXPORT FileBrowseEdit : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString value READ value WRITE setValue NOTIFY valueChanged USER true)

public:
    explicit FileBrowseEdit(QWidget *parent = nullptr);
    ~FileBrowseEdit() override;

    /// Returns the text as it stands, a path relative to basePath().
    QString value() const;
    void setValue(const QString &value);

    QString basePath() const;
    /// Sets the store and the folder that values are relative to. A null archive means the disk;
    /// the archive must outlive this widget or be replaced before it goes.
    void setBasePath(Archive *archive, const QString &path);

    /// Returns the name filter of the files offered, "*.*" at first.
    QString filter() const;
    void setFilter(const QString &filter);

Q_SIGNALS:
    void valueChanged(const QString &value);

private:
    std::unique_ptr<FileBrowseEditPrivate> d;
};

} // namespace Vela
