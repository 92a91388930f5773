// SPDX-License-Identifier: MIT
#include "lantern/sectioncode.h"

#include "lantern/line.h"

#include "code/codedocument.h"

namespace Lantern {

namespace {

QString settingCode(SectionKind kind, const QString &name, const QString &value, bool isComment)
{
    const QString code = kind == ScriptLines
        ? onOneLine(name) + QLatin1String("   ") + onOneLine(value)
        : name + QLatin1String(" = ") + quotedIfNeeded(value);
    return isComment ? QLatin1String("# ") + code : code;
}

} // namespace

SectionCode::SectionCode(const QTextBlock &block, Vela::CodeNode *previous, SectionKind kind,
                         const QString &word, const QString &title)
    : Node(block, previous, kind)
    , m_word(word)
    , m_title(title)
{
    insertRootChild(this);
}

SectionKind SectionCode::kind() const
{
    return SectionKind(subType());
}

QString SectionCode::name() const
{
    return m_word;
}

QString SectionCode::displayName() const
{
    return m_title.isEmpty() ? m_word : m_word + QLatin1Char(' ') + m_title;
}

void SectionCode::setName(const QString &name)
{
    if (isWord(name))
        write(QLatin1Char('[') + name + (m_title.isEmpty() ? QString() : QLatin1Char(' ') + m_title)
              + QLatin1Char(']'));
}

Vela::ValueCode *SectionCode::insertValue(unsigned int index, const QString &name,
                                          const QString &value, bool isComment)
{
    const unsigned int count = valueCount();
    if (index >= count)
        return addValue(name, value, isComment);
    if (!document() || !canName(name))
        return nullptr;
    document()->insertBefore(valueAt(index), settingCode(kind(), name, value, isComment), true);
    return valueCount() > count ? valueAt(index) : nullptr;
}

Vela::ValueCode *SectionCode::addValue(const QString &name, const QString &value, bool isComment)
{
    if (!document() || !canName(name))
        return nullptr;
    const unsigned int count = valueCount();
    appendValue(settingCode(kind(), name, value, isComment));
    return valueCount() > count ? valueAt(count) : nullptr;
}

bool SectionCode::canName(const QString &name) const
{
    return kind() == ScriptLines || isWord(name);
}

void SectionCode::update(SectionKind kind, QStringView word, QStringView title)
{
    if (this->kind() == kind && word.compare(m_word, Qt::CaseInsensitive) == 0 && title == m_title)
        return;
    setSubType(kind);
    m_word = word.toString().toLower();
    m_title = title.toString();
    valueChanged(QVariant());
}

} // namespace Lantern
