// SPDX-License-Identifier: MIT
#include "studio/progress.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QMessageBox>
#include <QProgressDialog>
#include <QScopedValueRollback>
#include <climits>

namespace Studio {

namespace {

constexpr int showDelay = 400;     // milliseconds
constexpr int updateInterval = 30; // milliseconds
constexpr int dialogSteps = 1000;
constexpr int errorsInText = 5;

unsigned int saturatedSuccessor(unsigned int value)
{
    return value == UINT_MAX ? value : value + 1;
}

// Maps a value to 0 … steps, whatever the width of the maximum.
int share(unsigned int value, unsigned int maximum, int steps)
{
    return maximum == 0 ? 0 : int(quint64(qMin(value, maximum)) * quint64(steps) / maximum);
}

} // namespace

DialogJob::DialogJob(DialogProgress &provider, const QString &text)
    : m_provider(provider)
    , m_text(text)
    , m_delay(showDelay)
{
    m_started.start();
    m_updated.start();
}

DialogJob::~DialogJob()
{
    delete m_dialog;
    if (!m_errors.isEmpty())
        m_provider.showErrors(m_text, m_errors);
}

bool DialogJob::wasCancelled() const
{
    return m_cancelled;
}

void DialogJob::setMaximum(unsigned int maximum)
{
    m_maximum = maximum;
    update();
}

void DialogJob::setValue(unsigned int value)
{
    m_value = value;
    update();
}

void DialogJob::incrementValue()
{
    setValue(saturatedSuccessor(m_value));
}

void DialogJob::error(const QString &text)
{
    m_errors.append(text);
}

void DialogJob::setLengthy(int lengthy)
{
    m_delay = lengthy ? 0 : showDelay;
}

void DialogJob::update()
{
    if (m_provider.m_inEvents)
        return;
    const bool due = m_updated.elapsed() >= updateInterval;
    const bool starts = !m_dialog && !m_cancelled && m_started.elapsed() >= m_delay;
    if (!due && !starts)
        return;
    m_updated.restart();
    const QScopedValueRollback<bool> inEvents(m_provider.m_inEvents, true);
    if (starts)
        show();
    if (m_dialog) {
        m_dialog->setMaximum(m_maximum == 0 ? 0 : dialogSteps);
        m_dialog->setValue(share(m_value, m_maximum, dialogSteps));
    }
    const bool shown = m_dialog && m_dialog->isVisible();
    QCoreApplication::processEvents(shown ? QEventLoop::AllEvents
                                          : QEventLoop::ExcludeUserInputEvents);
    m_updated.restart();
}

void DialogJob::show()
{
    m_dialog =
        new QProgressDialog(m_text, QCoreApplication::translate("Studio::Progress", "Cancel"), 0, 0,
                            m_provider.m_window());
    m_dialog->setWindowModality(m_dialog->parentWidget() ? Qt::WindowModal : Qt::ApplicationModal);
    m_dialog->setMinimumDuration(INT_MAX);
    m_dialog->setAutoClose(false);
    m_dialog->setAutoReset(false);
    QObject::connect(m_dialog, &QProgressDialog::canceled, m_dialog, [this] {
        m_cancelled = true;
        m_dialog->deleteLater();
        m_dialog = nullptr;
    });
    m_dialog->show();
}

DialogProgress::DialogProgress(std::function<QWidget *()> window)
    : m_window(std::move(window))
{
}

Vela::ProgressJob *DialogProgress::createJob(const QString &text, int)
{
    return new DialogJob(*this, text);
}

void DialogProgress::showErrors(const QString &text, const QStringList &errors) const
{
    // The box is opened and not run: a job may end anywhere, and nothing waits for an answer.
    auto *box = new QMessageBox(QMessageBox::Warning, text,
                                QStringList(errors.mid(0, errorsInText)).join(QLatin1Char('\n')),
                                QMessageBox::Ok, m_window());
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    if (errors.size() > errorsInText) {
        box->setInformativeText(QCoreApplication::translate(
            "Studio::Progress", "%n error(s) in all.", nullptr, errors.size()));
        box->setDetailedText(errors.join(QLatin1Char('\n')));
    }
    box->open();
}

/// A job of ConsoleProgress.
class ConsoleJob : public Vela::ProgressJob
{
public:
    ConsoleJob(ConsoleProgress &provider, const QString &text)
        : m_provider(provider)
        , m_text(text)
    {
    }

    ~ConsoleJob() override
    {
        hide();
    }

    bool wasCancelled() const override
    {
        return false;
    }

    void setMaximum(unsigned int maximum) override
    {
        m_maximum = maximum;
    }

    void setValue(unsigned int value) override
    {
        m_value = value;
        const int tenth = share(m_value, m_maximum, 10);
        if (tenth > m_tenth && m_provider.m_output == ConsoleProgress::Progress) {
            m_provider.write(QStringLiteral("\r%1: %2 %").arg(m_text).arg(tenth * 10));
            m_isShown = true;
        }
        m_tenth = tenth;
    }

    void incrementValue() override
    {
        setValue(saturatedSuccessor(m_value));
    }

    void error(const QString &text) override
    {
        const QString line = QStringLiteral("%1: %2").arg(m_text, text);
        m_provider.m_errors.append(line);
        hide();
        m_provider.write(line + QLatin1Char('\n'));
    }

    void setLengthy(int) override
    {
    }

private:
    void hide()
    {
        if (m_isShown)
            m_provider.write(QStringLiteral("\r\x1b[K")); // to the line's start, and clear it
        m_isShown = false;
    }

    ConsoleProgress &m_provider;
    QString m_text;
    unsigned int m_maximum = 0;
    unsigned int m_value = 0;
    int m_tenth = 0;
    bool m_isShown = false;
};

ConsoleProgress::ConsoleProgress(QIODevice &device, Output output)
    : m_device(device)
    , m_output(output)
{
}

Vela::ProgressJob *ConsoleProgress::createJob(const QString &text, int)
{
    return new ConsoleJob(*this, text);
}

QStringList ConsoleProgress::errors() const
{
    return m_errors;
}

void ConsoleProgress::write(const QString &text)
{
    m_device.write(text.toUtf8());
}

} // namespace Studio
