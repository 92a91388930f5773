// SPDX-License-Identifier: MIT
#include "studio/window/soundfileview.h"

#include "studio/window/soundwaveform.h"

namespace Studio {

SoundFileView::SoundFileView(Settings &settings, const Colors &colors, QWidget *parent)
    : SoundView(settings, colors, parent)
{
    connect(&m_reader, &SoundReader::finished, this, &SoundFileView::onFinished);
    connect(&m_reader, &SoundReader::progressed, this, [this](int percent) {
        if (!hasSound())
            showWords(tr("Reading the sound: %1 %").arg(percent));
    });
}

void SoundFileView::setFile(const std::shared_ptr<QIODevice> &device, const QByteArray &format)
{
    if (!hasSound())
        showWords(QStringLiteral("\u2026"));
    m_reader.read(device, format);
}

void SoundFileView::clear()
{
    m_reader.cancel();
    showWords(QString());
}

const Vela::SampleInfo &SoundFileView::info() const
{
    return waveform()->audio().info();
}

void SoundFileView::onFinished(const Vela::SoundSample &sample)
{
    if (sample.data.isEmpty())
        showWords(tr("The sound cannot be decoded."));
    else
        setSample(sample);
    Q_EMIT infoChanged();
}

} // namespace Studio
