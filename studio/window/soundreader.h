// SPDX-License-Identifier: MIT
#pragma once

#include "sound/sound.h"

#include <QIODevice>
#include <QObject>
#include <QTimer>
#include <atomic>
#include <memory>

namespace Studio {

/// Decodes sounds on another thread, one at a time. It belongs to the main thread, and so do the
/// devices and what else the sounds come from: they end there.
class SoundReader : public QObject
{
    Q_OBJECT

public:
    explicit SoundReader(QObject *parent = nullptr);
    /// Waits until no device is read any more.
    ~SoundReader() override;

    /// Decodes what \a device, which is open, has. What was being decoded is given up.
    void read(const std::shared_ptr<QIODevice> &device, const QByteArray &format);
    /// The same for the sound of a collection, without telling how far it is.
    void read(const Vela::Sound::Reader &reader);
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

    protected:
        qint64 readData(char *data, qint64 most) override;
        qint64 writeData(const char *data, qint64 count) override;

    private:
        const std::shared_ptr<QIODevice> m_device;
        const qint64 m_size;
        std::atomic<qint64> m_read{0};
        std::atomic<bool> m_cancelled{false};
    };

    void start(const Vela::Sound::Reader &reader);

    int m_turn = 0;                   ///< of reading; the last one counts
    std::shared_ptr<Source> m_source; ///< of the file that is being decoded; null if none is
    QTimer m_progress;
};

} // namespace Studio
