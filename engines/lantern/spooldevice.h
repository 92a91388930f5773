// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QTemporaryFile>
#include <memory>

namespace Lantern {

/// A device of bytes in memory, or in a temporary file once there are many of them: what is between
/// a packed file in an archive and its user, who may read and write it in any order.
class SpoolDevice : public QIODevice
{
    Q_OBJECT

public:
    /// What fits into memory.
    static constexpr qint64 memoryLimit = 16 * 1024 * 1024;

    SpoolDevice() = default;

    bool isSequential() const override;
    qint64 size() const override;
    bool seek(qint64 position) override;
    /// Returns whether everything written has arrived.
    bool isWhole() const;
    bool isInMemory() const;
    /// Hands over what is in memory; the device is empty then.
    QByteArray takeMemory();

protected:
    qint64 readData(char *data, qint64 size) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    bool moveToFile();

    QByteArray m_memory;
    std::unique_ptr<QTemporaryFile> m_file;
    bool m_failed = false;
};

} // namespace Lantern
