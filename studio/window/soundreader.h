// SPDX-License-Identifier: MIT
#pragma once

#include "sound/soundsample.h"

#include <QIODevice>
#include <QObject>
#include <QTimer>
#include <atomic>
#include <memory>

namespace Studio {

/// Decodes a file of sound on another thread. It belongs to the main thread, and so do the devices:
/// they are closed there.
class SoundReader : public QObject
{
    Q_OBJECT

public:
    explicit SoundReader(QObject *parent = nullptr);
    /// Waits until no device is read any more.
    ~SoundReader() override;

    /// Decodes what \a device, which is open, has. What was being decoded is given up.
    void read(const std::shared_ptr<QIODevice> &device, const QByteArray &format);
    /// Gives up what is being decoded; nothing more is told of it.
    void cancel();

Q_SIGNALS:
    /// How much of the file has been read, from 0 to 100. The first comes after a moment.
    void progressed(int percent);
    /// \a sample is empty if it could not be decoded.
    void finished(const Vela::SoundSample &sample);

private:
    /// Hands through what is read of a device, counts it, and ends early if it is given up.
    class Source : public QIODevice
    {
    public:
        explicit Source(const std::shared_ptr<QIODevice> &device);

        qint64 size() const override;
        bool seek(qint64 position) override;
        int percent() const;
        void cancel();
        bool isCancelled() const;

    protected:
        qint64 readData(char *data, qint64 most) override;
        qint64 writeData(const char *data, qint64 count) override;

    private:
        const std::shared_ptr<QIODevice> m_device;
        const qint64 m_size;
        std::atomic<qint64> m_read{0};
        std::atomic<bool> m_cancelled{false};
    };

    std::shared_ptr<Source> m_source; ///< of what is being decoded; null if nothing is
    QTimer m_progress;
};

} // namespace Studio
