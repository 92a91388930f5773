// SPDX-License-Identifier: MIT
#include "studio/window/saveindicator.h"

#include "studio/window/saveprogress.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>

namespace Studio {

namespace {

constexpr int ShowDelay = 300; // ms

} // namespace

SaveIndicator::SaveIndicator(const SaveProgress &progress, QWidget *parent)
    : QWidget(parent)
    , m_progress(progress)
    , m_text(new QLabel)
    , m_bar(new QProgressBar)
{
    setObjectName(QStringLiteral("saveIndicator"));
    m_text->setTextFormat(Qt::PlainText);
    m_bar->setAccessibleName(tr("Saving"));
    m_bar->setRange(0, 0);
    m_bar->setMaximumWidth(100);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_text);
    layout->addWidget(m_bar);
    hide();
    m_showLater.setSingleShot(true);
    m_showLater.setInterval(ShowDelay);
    connect(&m_showLater, &QTimer::timeout, this, &QWidget::show);
    connect(&progress, &SaveProgress::changed, this, &SaveIndicator::follow);
}

void SaveIndicator::follow()
{
    const QString text = m_progress.text();
    if (text.isEmpty()) {
        m_showLater.stop();
        hide();
        return;
    }
    m_text->setText(text);
    if (isHidden() && !m_showLater.isActive())
        m_showLater.start();
}

} // namespace Studio
