// SPDX-License-Identifier: MIT
#include "studio/window/saveprogress.h"

namespace Studio {

/// A job of SaveProgress. How far it is cannot be told: a text is written in one piece.
class SaveJob : public Vela::ProgressJob
{
public:
    SaveJob(SaveProgress &provider, const QString &text)
        : m_provider(provider)
        , m_text(text)
    {
        m_provider.m_texts.append(m_text);
        Q_EMIT m_provider.changed();
    }

    ~SaveJob() override
    {
        m_provider.m_texts.removeOne(m_text);
        Q_EMIT m_provider.changed();
    }

    bool wasCancelled() const override
    {
        return false;
    }

    void setMaximum(unsigned int) override
    {
    }

    void setValue(unsigned int) override
    {
    }

    void incrementValue() override
    {
    }

    void error(const QString &text) override
    {
        m_provider.m_errors.append(text);
    }

    void setLengthy(int) override
    {
    }

private:
    SaveProgress &m_provider;
    QString m_text;
};

Vela::ProgressJob *SaveProgress::createJob(const QString &text, int)
{
    return new SaveJob(*this, text);
}

QString SaveProgress::text() const
{
    return m_texts.isEmpty() ? QString() : m_texts.last();
}

QStringList SaveProgress::takeErrors()
{
    QStringList errors;
    errors.swap(m_errors);
    return errors;
}

} // namespace Studio
