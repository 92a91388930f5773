// SPDX-License-Identifier: MIT
#pragma once

#include "project/projectfile.h"
#include "project/simplemessages.h"

#include <QStringList>
#include <QVector>

/// A project file whose content is a text held in memory. It is made with a count of 1, deletes
/// itself at 0, and tells a test what was asked of it.
class TestFile : public Vela::ProjectFile
{
public:
    /// One call of toFile() or fromFile().
    struct Access
    {
        Vela::Archive *archive = nullptr;
        QString name;
        unsigned int flags = 0;
        bool withJob = false;
    };

    explicit TestFile(const QString &name = QString(), const QString &text = QString());
    ~TestFile() override;

    /// The number of test files that exist now.
    static int alive();

    Capabilities capabilities() const override;
    bool canSave() const override;
    bool isModified() const override;
    bool isEmpty() const override;
    void reset() override;
    /// Writes the text; a copy leaves name and modified flag as they are. False if the archive
    /// opens no device.
    bool toFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                Vela::JobStats *stats) override;
    /// Reads the text; a copy keeps the name and counts as modified.
    bool fromFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                  Vela::JobStats *stats) override;
    QString fileName() const override;
    QList<SearchResult> search(const Vela::RegExp &expression, unsigned int flags) const override;
    void replace(const QList<SearchResult> &results, const QString &text) override;

    /// Changes the text and sets the modified flag.
    void edit(const QString &newText);
    /// Ties the file to an archive as a load does, without reading anything.
    void place(Vela::Archive &archive, const QString &newName);

    QString name;
    QString text;
    bool modified = false;
    bool savable = true;
    Capabilities caps;
    mutable Vela::SimpleMessages notes; ///< what messages() returns
    QVector<Access> saves;
    QVector<Access> loads;

protected:
    void free() override;
    Vela::Messages *fileMessages() const override;
};
