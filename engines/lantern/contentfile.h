// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/latecontent.h"

#include "frame/propertyitem.h"
#include "project/filewatchobject.h"
#include "project/projectfile.h"

namespace Lantern {

/// A file of a project: the reading and writing of bytes, which subclasses make content of.
class ContentFile : public Vela::ProjectFile,
                    public Vela::PropertyItem,
                    public Vela::FileWatchObject,
                    public LateContent
{
public:
    bool canSave() const override;
    bool toFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                Vela::JobStats *stats) override;
    bool fromFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                  Vela::JobStats *stats) override;
    void reset() override;
    QString fileName() const override;
    const char *fileExtension() const override;

    QString watchedFileName() const override;
    /// Reads the file again. Changes that are not saved go only if the user says so.
    void reload() override;

protected:
    /// \a extension is of this kind of file, without a dot.
    explicit ContentFile(const char *extension);
    void free() override;

    void bindTo(Vela::Archive &archive, const QString &name) override;
    void load() override;

    /// Takes what was read, as a change that is not saved.
    virtual void decode(const QByteArray &data) = 0;
    /// Returns the content as bytes.
    virtual QByteArray encode() const = 0;
    /// Drops the content.
    virtual void clear() = 0;
    /// Called when the content stands in the file as it is.
    virtual void markSaved() = 0;

private:
    bool contentBytes(QByteArray &data, QString &error);

    const char *const m_extension;
    QString m_name;
};

} // namespace Lantern
