// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/contentfile.h"

#include <QByteArray>

namespace Lantern {

/// An image or a sound as a file of its own: bytes that only their editor understands.
class BinaryFile : public ContentFile<Vela::ProjectFile>
{
public:
    explicit BinaryFile(const char *extension);

    QByteArray data() const;
    void setData(const QByteArray &data);

    bool isModified() const override;
    bool isEmpty() const override;
    /// There is no text to be found in it.
    QList<SearchResult> search(const Vela::RegExp &expression, unsigned int flags) const override;
    void replace(const QList<SearchResult> &results, const QString &text) override;

    /// The property "Size", in bytes.
    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

protected:
    bool read(Vela::Archive &archive, const QString &name, QString &error) override;
    bool encode(QByteArray &data, QString &error) const override;
    void dropContent() override;
    void markSaved() override;
    Vela::Messages *fileMessages() const override;

private:
    /// Returns the bytes of the content, without reading it.
    qint64 size() const;

    QByteArray m_data;
    bool m_modified = false;
};

} // namespace Lantern
