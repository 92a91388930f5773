// SPDX-License-Identifier: MIT
#include "editor/snippetmanager.h"

#include "editor/snippetdialog.h"
#include "editor/snippetxml.h"

#include <QDir>
#include <QFileInfo>

namespace Vela {

namespace {

// One message of a translation source; the snippet's name tells equal texts of two apart.
QString message(const QString &text, const QString &name)
{
    return QStringLiteral("\t<message>\n\t\t<source>%1</source>\n\t\t<comment>%2</comment>\n"
                          "\t\t<translation type=\"unfinished\"></translation>\n\t</message>\n")
        .arg(text.toHtmlEscaped(), name.toHtmlEscaped());
}

} // namespace

SnippetManager::SnippetManager(QObject *parent)
    : QAbstractListModel(parent)
{
}

SnippetManager *SnippetManager::instance()
{
    static SnippetManager manager;
    return &manager;
}

void SnippetManager::load(const QString &folder)
{
    m_folder = folder;
    if (!m_names.isEmpty()) {
        beginRemoveRows(QModelIndex(), 0, m_names.size() - 1);
        m_names.clear();
        endRemoveRows();
    }
    // Without a name QDir would list the current folder.
    const QStringList files = folder.isEmpty()
        ? QStringList()
        : QDir(folder).entryList(QDir::Files | QDir::NoSymLinks | QDir::Readable, QDir::Name);
    if (files.isEmpty())
        return;
    beginInsertRows(QModelIndex(), 0, files.size() - 1);
    for (const QString &file : files)
        m_names.append(QFileInfo(file).completeBaseName());
    endInsertRows();
}

QString SnippetManager::folder() const
{
    return m_folder;
}

int SnippetManager::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_names.size();
}

QVariant SnippetManager::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || index.row() < 0 || index.row() >= m_names.size())
        return QVariant();
    const QByteArray name = m_names.at(index.row()).toLocal8Bit();
    return tr(name.constData(), name.constData());
}

QString SnippetManager::name(unsigned int index) const
{
    return m_names.value(int(index));
}

QString SnippetManager::text(Interface &host, unsigned int index) const
{
    if (index >= unsigned(m_names.size()))
        return QString();
    // The list may be another one once the user has answered.
    const QString name = m_names.at(int(index));
    const auto snippet =
        readSnippetFile(m_folder + QLatin1Char('/') + name + QLatin1String(".xml"));
    return snippet ? askSnippetValues(host, *snippet, name) : QString();
}

QString SnippetManager::translationSource(Interface &host, const QString &xml, const QString &name)
{
    const Snippet snippet = readSnippet(xml);
    showSnippetError(host, snippet);
    QString source = QStringLiteral("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!DOCTYPE TS>\n"
                                    "<TS version=\"2.0\">\n<context>\n\t<name>%1</name>\n")
                         .arg(QLatin1String(staticMetaObject.className()))
        + message(name, name);
    for (const FieldElement &field : snippet.fields) {
        if (field.hasItems()) {
            const QStringList titles = FieldElement::parts(field.valueTitle);
            for (const QString &title : titles)
                source += message(title, name);
        }
        source += message(field.title, name);
    }
    return source + QStringLiteral("</context>\n</TS>");
}

} // namespace Vela
