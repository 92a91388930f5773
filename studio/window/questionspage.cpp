// SPDX-License-Identifier: MIT
#include "studio/window/questionspage.h"

#include "studio/settings.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Studio {

QuestionsPage::QuestionsPage(Settings &settings, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
    , m_questions(new QTreeWidget)
    , m_nothing(new QLabel(tr("Every question is asked.")))
    , m_again(new QPushButton(tr("Ask &Again")))
    , m_allAgain(new QPushButton(tr("Ask A&ll Again")))
{
    m_questions->setObjectName(QStringLiteral("silencedQuestions"));
    m_questions->setAccessibleName(tr("Questions that are not asked any more"));
    m_questions->setHeaderLabels({tr("Question that is not asked"), tr("Answer")});
    m_questions->setRootIsDecorated(false);
    m_questions->setAlternatingRowColors(true);
    m_questions->header()->setStretchLastSection(false);
    m_questions->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_again->setObjectName(QStringLiteral("askAgain"));
    m_again->setAutoDefault(false);
    m_allAgain->setAutoDefault(false);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_nothing);
    buttons->addStretch();
    buttons->addWidget(m_again);
    buttons->addWidget(m_allAgain);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_questions);
    layout->addLayout(buttons);

    connect(m_again, &QPushButton::clicked, this, &QuestionsPage::askAgain);
    connect(m_allAgain, &QPushButton::clicked, this, &QuestionsPage::askAllAgain);
    connect(&settings, &Settings::changed, this, &QuestionsPage::fill);
    fill();
}

void QuestionsPage::fill()
{
    m_questions->clear();
    const QVector<SilencedQuestion> silenced = m_settings.silencedQuestions();
    for (const SilencedQuestion &question : silenced) {
        auto *item = new QTreeWidgetItem(
            m_questions, {question.text, question.answer ? tr("always Yes") : tr("always No")});
        item->setData(0, Qt::UserRole, question.key);
    }
    m_questions->setCurrentItem(m_questions->topLevelItem(0));
    m_nothing->setVisible(silenced.isEmpty());
    m_again->setEnabled(!silenced.isEmpty());
    m_allAgain->setEnabled(!silenced.isEmpty());
}

void QuestionsPage::askAgain()
{
    if (const QTreeWidgetItem *item = m_questions->currentItem())
        m_settings.unsilence(item->data(0, Qt::UserRole).toString());
}

void QuestionsPage::askAllAgain()
{
    const QVector<SilencedQuestion> silenced = m_settings.silencedQuestions();
    for (const SilencedQuestion &question : silenced)
        m_settings.unsilence(question.key);
}

} // namespace Studio
