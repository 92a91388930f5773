// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/latecontent.h"

#include "frame/propertyitem.h"
#include "project/filewatchobject.h"
#include "project/projectfile.h"

namespace Lantern {

/// A file of a project that is read and written as a whole. \a Base is the library's class of such
/// files: Vela::ProjectFile, or one that derives from it. Subclasses make content of the bytes.
template <class Base>
class ContentFile : public Base,
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

    /// Takes the content of a file, as a change that is not saved. Returns false with a reason in
    /// \a error, and then the content is what it was.
    virtual bool read(Vela::Archive &archive, const QString &name, QString &error) = 0;
    /// Makes bytes of the content. Returns false with a reason in \a error.
    virtual bool encode(QByteArray &data, QString &error) const = 0;
    /// Drops the content.
    virtual void dropContent() = 0;
    /// Called when the content stands in the file as it is.
    virtual void markSaved() = 0;
    /// Called when a file that is read late cannot be. Saving it passes its bytes on as they are.
    virtual void loadFailed(const QString &error);

private:
    bool contentBytes(QByteArray &data, QString &error) const;

    const char *const m_extension;
    QString m_name;
    bool m_isUnreadable = false; // the file has content which is none of this object's
};

} // namespace Lantern
