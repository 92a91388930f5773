// SPDX-License-Identifier: MIT
#include "editor/section.h"

#include "editor/foldbutton.h"

#include <QEvent>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

namespace Vela {

namespace {

const int layoutDelay = 10; // milliseconds

} // namespace

/// The parts of a Section.
class SectionPrivate
{
public:
    SectionPrivate(Section *section, bool isExpanded);

    void showState();
    int contentHeight() const;
    QPropertyAnimation *animate(QWidget *widget, const char *property);

    QToolButton *button;
    QScrollArea *area;
    QWidget *content = nullptr;
    QParallelAnimationGroup *animations;
    QVector<QPropertyAnimation *> ofSection;
    QPropertyAnimation *ofArea;
    bool expanded;
};

SectionPrivate::SectionPrivate(Section *section, bool isExpanded)
    : button(new FoldButton(section))
    , area(new QScrollArea(section))
    , animations(new QParallelAnimationGroup(section))
    , ofSection({animate(section, "minimumHeight"), animate(section, "maximumHeight")})
    , ofArea(animate(area, "maximumHeight"))
    , expanded(isExpanded)
{
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setArrowType(Qt::RightArrow);
    button->setCheckable(true);
    button->setAutoRaise(true);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);

    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setMaximumHeight(0);
    area->hide();
}

/// Brings the button to the state.
void SectionPrivate::showState()
{
    button->setChecked(expanded);
    button->setArrowType(expanded ? Qt::DownArrow : Qt::RightArrow);
}

int SectionPrivate::contentHeight() const
{
    return content ? content->sizeHint().height() : 0;
}

QPropertyAnimation *SectionPrivate::animate(QWidget *widget, const char *property)
{
    auto *animation = new QPropertyAnimation(widget, property);
    animations->addAnimation(animation);
    return animation;
}

Section::Section(const QString &title, int animationDuration, bool expanded, QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<SectionPrivate>(this, expanded))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(d->button);
    column->addWidget(d->area);
    setTitle(title);
    setAnimationDuration(animationDuration);
    connect(d->button, &QToolButton::clicked, this, &Section::toggle);
    // What a closed section holds must not take the keyboard.
    connect(d->animations, &QParallelAnimationGroup::finished, this,
            [this] { d->area->setVisible(d->expanded); });
}

Section::~Section() = default;

void Section::setTitle(const QString &title)
{
    QString shown = title;
    d->button->setText(shown.replace(QLatin1Char('&'), QLatin1String("&&")));
}

bool Section::isExpanded() const
{
    return d->expanded;
}

void Section::setContentLayout(QLayout *layout)
{
    if (QWidget *earlier = d->area->takeWidget())
        earlier->deleteLater();
    d->content = new QWidget(this);
    d->content->setLayout(layout);
    d->area->setWidget(d->content);
    d->content->installEventFilter(this);
    d->showState();
    updateHeights();
}

void Section::setAnimationDuration(int milliseconds)
{
    for (QPropertyAnimation *animation : qAsConst(d->ofSection))
        animation->setDuration(milliseconds);
    d->ofArea->setDuration(milliseconds);
}

void Section::toggle(bool expanded)
{
    d->expanded = expanded;
    d->showState();
    updateHeights();
    Q_EMIT toggled(expanded);
}

void Section::updateHeights()
{
    const int header = d->button->sizeHint().height();
    const int before = d->area->maximumHeight();
    const int after = d->expanded ? d->contentHeight() : 0;
    d->animations->stop();
    for (QPropertyAnimation *animation : qAsConst(d->ofSection)) {
        animation->setStartValue(header + before);
        animation->setEndValue(header + after);
    }
    d->ofArea->setStartValue(before);
    d->ofArea->setEndValue(after);
    d->area->setMinimumWidth(d->content ? d->content->minimumSizeHint().width() : 0);
    if (d->expanded)
        d->area->show();
    d->animations->start();
}

void Section::contentResized(int)
{
    QTimer::singleShot(layoutDelay, this, &Section::delayedUpdate);
}

void Section::delayedUpdate()
{
    updateHeights();
}

bool Section::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == d->content && event->type() == QEvent::LayoutRequest)
        contentResized(d->contentHeight());
    return QWidget::eventFilter(watched, event);
}

void Section::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        contentResized(d->contentHeight());
}

} // namespace Vela
