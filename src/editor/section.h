// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QWidget>
#include <memory>

class QLayout;

namespace Vela {

class SectionPrivate;

/// A titled part of a form that the user opens and closes. Its height is always that of what it
/// shows, so it is meant for a layout that scrolls.
class VELA_EXPORT Section : public QWidget
{
    Q_OBJECT

public:
    static const int DEFAULT_DURATION = 0; ///< milliseconds

    /// Starts closed; with \a expanded it opens when it gets its content. Opening and closing take
    /// \a animationDuration milliseconds.
    explicit Section(const QString &title, int animationDuration = DEFAULT_DURATION,
                     bool expanded = false, QWidget *parent = nullptr);
    ~Section() override;

    void setTitle(const QString &title);
    bool isExpanded() const;
    /// Takes over the layout with its widgets. An earlier content is deleted.
    void setContentLayout(QLayout *layout);
    void setAnimationDuration(int milliseconds);
    /// Gives section and content the heights that the content and the state ask for.
    void updateHeights();

    bool eventFilter(QObject *watched, QEvent *event) override;

public Q_SLOTS:
    /// Opens or closes, and emits toggled() in any case.
    void toggle(bool expanded);
    /// The content now wants to be \a height pixels high: follows once its layout is done. Called
    /// by the section itself when the content asks for another size.
    void contentResized(int height);

Q_SIGNALS:
    void toggled(bool expanded);

protected:
    void changeEvent(QEvent *event) override;

private Q_SLOTS:
    void delayedUpdate();

private:
    std::unique_ptr<SectionPrivate> d;
};

} // namespace Vela
