// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QVector>
#include <QWidget>

namespace Vela {
class Translator;
struct BoundControl;
struct ControlDescriptor;
} // namespace Vela

namespace Studio {

class Label;

/// Makes the tool bar widgets that editors describe, binds them to their receivers, and finds them
/// again by key.
///
/// A descriptor's slot and setter go to the edited() signal and the push() slot of the widget (see
/// studio/controls.h) whose arguments fit. A string that names nothing, or whose arguments fit
/// nothing, is warned about, and that end of the control stays unbound. The label whose key is
/// another control's with "_lb" behind it gives that control its name for assistive tools.
class ControlFactory
{
public:
    ControlFactory() = default;
    /// Deletes the widgets that nobody has given a parent.
    ~ControlFactory();

    /// Returns the new widget, which has no parent yet; null, with a warning, for a kind that is
    /// not known or a structure that does not have the kind's size.
    QWidget *create(const QString &key, const Vela::ControlDescriptor *descriptor);
    /// Makes a ready-made widget known under a key.
    void add(const QString &key, QWidget *widget);
    /// Returns the last widget made under \a key, or null.
    QWidget *widget(const QString &key) const;
    /// Takes all fixed texts anew from their translators.
    void retranslate();

private:
    Q_DISABLE_COPY(ControlFactory)

    // The translator lives as long as the receiver does.
    struct Text
    {
        QPointer<QWidget> widget;
        QPointer<QObject> receiver;
        bool hasReceiver;
        const Vela::Translator *translator;
        QVector<int> ids;
    };

    QWidget *makeBound(const Vela::ControlDescriptor &descriptor);
    QWidget *makeText(const Vela::ControlDescriptor &descriptor);
    QWidget *makeComboBox(const Vela::ControlDescriptor &descriptor);
    void addText(QWidget *widget, const Vela::BoundControl &control,
                 const Vela::Translator *translator, const QVector<int> &ids);
    void nameByLabel(const QString &key, QWidget *widget);

    QHash<QString, QPointer<QWidget>> m_widgets;
    QVector<Text> m_texts;
};

} // namespace Studio
