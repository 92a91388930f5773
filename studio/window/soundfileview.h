// SPDX-License-Identifier: MIT
#pragma once

#include "studio/window/soundreader.h"
#include "studio/window/soundview.h"

namespace Studio {

/// A file that is one sound. It is decoded in the background.
class SoundFileView : public SoundView
{
    Q_OBJECT

public:
    SoundFileView(Settings &settings, const Colors &colors, QWidget *parent = nullptr);

    /// Shows what \a device, open for reading, has of a sound. One that is shown stays until then.
    void setFile(const std::shared_ptr<QIODevice> &device, const QByteArray &format);
    /// Shows no file.
    void clear();
    /// Returns form and length of the sound; without frames as long as they are not known.
    const Vela::SampleInfo &info() const;

Q_SIGNALS:
    void infoChanged();

private:
    void onFinished(const Vela::SoundSample &sample);

    SoundReader m_reader;
};

} // namespace Studio
