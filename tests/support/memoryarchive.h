// SPDX-License-Identifier: MIT
#pragma once

#include "frame/archive.h"

#include <QBuffer>
#include <QMap>
#include <QSet>

/// An archive that keeps its files in memory, writes down what is asked of it and fails on demand.
///
/// A path is used with or without a "/" before it. A folder is there while a file is in it. Like
/// the disk, a file keeps its old content until its device is closed, and for ever if a write to
/// the device failed.
class MemoryArchive : public Vela::Archive
{
public:
    MemoryArchive() = default;
    explicit MemoryArchive(const QMap<QString, QByteArray> &content);

    /// Sets a file's content past all faults and records.
    void put(const QString &path, const QByteArray &content);
    /// Returns a file's content; null if there is no such file.
    QByteArray content(const QString &path) const;
    /// Returns the absolute names of all files.
    QStringList fileNames() const;

    QString name() const override;
    QString path() const override;
    QString absoluteFilePath(const QString &path) const override;
    QString absoluteFileName(const QString &path) const override;
    using Archive::entries;
    QStringList entries(const QString &path, const QStringList &nameFilters, QDir::Filters filters,
                        QDir::SortFlags sort) const override;
    QIODevice *openFile(const QString &path, QIODevice::OpenMode mode) override;
    void closeFile(QIODevice *device) override;
    void discardFile(QIODevice *device) override;
    bool removeFile(const QString &path) override;
    bool renameFile(const QString &from, const QString &to) override;
    void flush() override;
    bool isReadOnly() const override;
    bool isWritable(const QString &path) const override;
    bool fileExists(const QString &path) const override;
    bool directoryExists(const QString &path) const override;

    // Faults.
    int failOpen = 0;            ///< this open from now on fails, counted from 1; 0 is none
    qint64 writeLimit = -1;      ///< a device takes so many bytes; negative: all
    qint64 capacity = -1;        ///< bytes of all files together; negative: no end
    bool readOnly = false;       ///< nothing can be changed
    QSet<QString> readOnlyFiles; ///< absolute names of files that can't be written

    // Records.
    QStringList calls;   ///< an operation's name, a blank and its absolute names, in order
    int openDevices = 0; ///< devices that have not been handed back
    int timesFreed = 0;  ///< how often the count has reached 0

protected:
    void free() override;

private:
    friend class MemoryDevice;

    bool canOpen(const QString &file, QIODevice::OpenMode mode);
    qint64 room(const QString &file) const;
    QStringList namesIn(const QString &folder, bool folders) const;
    void record(const char *operation, const QString &path, const QString &other = QString());

    QMap<QString, QByteArray> m_files;
};

/// A device of MemoryArchive.
class MemoryDevice : public QBuffer
{
    Q_OBJECT

public:
    MemoryDevice(MemoryArchive &archive, const QString &file);
    ~MemoryDevice() override;

    const QString fileName; ///< absolute

    bool open(OpenMode mode) override;
    void commit();

protected:
    qint64 writeData(const char *data, qint64 size) override;

private:
    MemoryArchive &m_archive;
    bool m_isWritten = false;
    bool m_hasFailed = false;
};
