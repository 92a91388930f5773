// SPDX-License-Identifier: MIT
#pragma once

#include "editor/propertyprovider.h"

#include <QCoreApplication>
#include <QTimer>

namespace Vela {
class CodeDocument;
class EnginePrivate;
} // namespace Vela

namespace Lantern {

/// The keys of what users set for the engine.
namespace OptionKey {
const QLatin1String boxIndent("lantern_box_indent"); ///< blanks in front of contact boxes
const QLatin1String words("lantern_format_words");   ///< of FormatWords
const QLatin1String aligns("lantern_align_actions"); ///< of scripts, in one column
const QLatin1String warns("lantern_warn_names");     ///< of sprites and sounds without a file
const QLatin1String author("lantern_author");        ///< of new games
} // namespace OptionKey

/// What the format makes of the words of the grammar.
enum FormatWords { LowerCaseWords = 0, WordsAsTyped = 1 };

/// Returns a document's option of these keys, or its default.
QVariant optionOf(const Vela::CodeDocument &document, QLatin1String key);
/// Returns whether a key is one of these.
bool isEngineOption(const QString &key);

/// The options of an engine for a form. What is changed holds at once, and is written to the
/// engine's configuration when the changes have come to rest.
class Options : public QObject, public Vela::PropertyProvider
{
    Q_OBJECT

public:
    /// \a engine must outlive the options.
    explicit Options(Vela::EnginePrivate &engine);

    unsigned int count() const override;
    QString kind(unsigned int index) const override;
    QString label(unsigned int index) const override;
    QString section(unsigned int index) const override;
    QVariant value(unsigned int index) const override;
    void setValue(unsigned int index, const QVariant &value) override;
    QVariantMap attributes(unsigned int index) const override;
    QString sectionKey(unsigned int index) const override;

    /// Returns an option, or its default.
    QVariant option(QLatin1String key) const;
    /// Writes what has not been written yet.
    void save();

Q_SIGNALS:
    void changed(const QString &key);

private:
    Vela::EnginePrivate &m_engine;
    QTimer m_saving;
};

} // namespace Lantern
