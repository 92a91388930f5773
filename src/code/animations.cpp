// SPDX-License-Identifier: MIT
#include "code/animations.h"

#include "code/animationcode.h"
#include "code/childlist.h"
#include "code/codedocument.h"
#include "code/rootcode.h"
#include "frame/organizablelistmodel.h"

namespace Vela {

/// The list, as its own model.
class AnimationsPrivate : public OrganizableListModel
{
public:
    explicit AnimationsPrivate(Animations *owner)
        : animations(owner)
    {
    }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : list.size();
    }

    QVariant data(const QModelIndex &index, int role) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

    void insert(int row, AnimationCode *animation);
    void remove(int row);
    void rowChanged(int row);
    void beginMove(int from, int to);
    void endMove(int rows);

    Animations *const animations;
    ChildList<AnimationCode> list;
    bool moving = false; ///< the rows that come and go now are one that moves

protected:
    void moveItem(unsigned int from, unsigned int to) override
    {
        animations->move(from, to);
    }
};

QVariant AnimationsPrivate::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid() || animations->document()->isCodeBeingChanged())
        return QVariant();
    const AnimationCode *const animation = list.value(unsigned(index.row()));
    return animation ? animation->displayName() : QVariant();
}

// A drop of several rows is one step of undo. Where a change is not parsed before it ends, the
// list would lack each row from its move on, and the drop takes one change for each.
bool AnimationsPrivate::dropMimeData(const QMimeData *data, Qt::DropAction action, int row,
                                     int column, const QModelIndex &parent)
{
    const bool isOneChange = animations->document()->root()->canParseCode();
    if (isOneChange)
        animations->beginChange();
    const bool isTaken = OrganizableListModel::dropMimeData(data, action, row, column, parent);
    if (isOneChange)
        animations->endChange();
    return isTaken;
}

void AnimationsPrivate::insert(int row, AnimationCode *animation)
{
    if (moving) {
        list.insert(row, animation);
        return;
    }
    beginInsertRows(QModelIndex(), row, row);
    list.insert(row, animation);
    endInsertRows();
    Q_EMIT animations->changed(true);
}

void AnimationsPrivate::remove(int row)
{
    if (moving) {
        list.removeAt(row);
        return;
    }
    beginRemoveRows(QModelIndex(), row, row);
    list.removeAt(row);
    endRemoveRows();
    Q_EMIT animations->changed(true);
}

void AnimationsPrivate::rowChanged(int row)
{
    if (moving)
        return;
    Q_EMIT dataChanged(index(row), index(row));
    Q_EMIT animations->changed(false);
}

void AnimationsPrivate::beginMove(int from, int to)
{
    moving = true;
    // Qt counts the target as a gap between the rows as they are now.
    beginMoveRows(QModelIndex(), from, from, QModelIndex(), from < to ? to + 1 : to);
}

/// \a rows is the number of rows before the move.
void AnimationsPrivate::endMove(int rows)
{
    moving = false;
    endMoveRows();
    // In a change that is not parsed before it ends, the animation has not come back yet.
    const bool isComplete = list.size() == rows;
    if (!isComplete) {
        beginResetModel();
        endResetModel();
    }
    Q_EMIT animations->changed(!isComplete);
}

namespace {

QString identifierOf(const AnimationCode *animation)
{
    return animation ? animation->property(QStringLiteral("Identifier")).toString() : QString();
}

/// Returns the text of an animation with the ends of its lines.
QString textOf(const AnimationCode *animation)
{
    return animation->selectAll().selectedText().replace(QChar::ParagraphSeparator,
                                                         QLatin1Char('\n'));
}

/// Returns \a code for a place in the text, on a line of its own where the place is in one.
QString onOwnLine(const QString &code, const QTextCursor &place)
{
    return place.atBlockStart() ? code : QLatin1Char('\n') + code;
}

QTextCursor endOf(CodeDocument *document)
{
    QTextCursor cursor(document);
    cursor.movePosition(QTextCursor::End);
    return cursor;
}

} // namespace

Animations::Animations(CodeDocument *document)
    : CodeNodeFile(document)
    , d(std::make_unique<AnimationsPrivate>(this))
{
    connect(document, &QTextDocument::contentsChanged, this, &OrganizableObject::modified);
}

Animations::~Animations() = default;

void Animations::insertChild(CodeNode *node, unsigned int index)
{
    if (node->type() == CodeNode::Animation)
        d->insert(int(qMin(index, count())), static_cast<AnimationCode *>(node));
}

void Animations::removeChild(CodeNode *node)
{
    const int row = node->type() == CodeNode::Animation ? d->list.indexOf(node) : -1;
    if (row >= 0)
        d->remove(row);
}

void Animations::childChanged(CodeNode *node)
{
    const int row = node->type() == CodeNode::Animation ? d->list.indexOf(node) : -1;
    if (row >= 0)
        d->rowChanged(row);
}

QAbstractListModel *Animations::listModel() const
{
    return d.get();
}

unsigned int Animations::count() const
{
    return unsigned(d->list.size());
}

AnimationCode *Animations::at(unsigned int index) const
{
    return d->list.value(index);
}

QList<AnimationCode *> Animations::animations() const
{
    return d->list.toList();
}

unsigned int Animations::selected() const
{
    return m_selected;
}

void Animations::setSelected(unsigned int index)
{
    m_selected = index;
}

int Animations::indexOf(const AnimationCode *animation) const
{
    return d->list.indexOf(animation);
}

int Animations::find(unsigned int from, const QVariant &id) const
{
    const QString wanted = id.toString();
    for (unsigned int index = from; index < count(); ++index) {
        if (identifierOf(at(index)) == wanted)
            return int(index);
    }
    return -1;
}

AnimationCode *Animations::add(const QString &id)
{
    document()->insert(onOwnLine(animationTemplate().arg(id), endOf(document())));
    return count() > 0 ? at(count() - 1) : nullptr;
}

AnimationCode *Animations::insert(unsigned int index, const QString &id)
{
    if (index >= count())
        return add(id);
    document()->insertBefore(at(index), animationTemplate().arg(id), false);
    return at(index);
}

void Animations::remove(unsigned int index)
{
    if (AnimationCode *const animation = at(index))
        animation->remove(true);
}

void Animations::duplicate(unsigned int index, const QString &id)
{
    const AnimationCode *const animation = at(index);
    if (!animation)
        return;
    QString text = textOf(animation);
    if (!id.isEmpty()) {
        const QString header = animationTemplate().trimmed();
        text.replace(header.arg(identifierOf(animation)), header.arg(id), Qt::CaseInsensitive);
    }
    const CodeNode *const below = animation->next(CodeNode::Animation, 0);
    const QTextCursor place =
        below ? QTextCursor(document()->findBlockByNumber(below->firstLine())) : endOf(document());
    document()->insertOnCursor(onOwnLine(text, place), place);
}

void Animations::move(unsigned int from, unsigned int to)
{
    AnimationCode *const animation = at(from);
    const unsigned int rows = count();
    if (!animation || to >= rows || from == to)
        return;
    QString text = textOf(animation);
    // The end of the last line stays; the last line of a text may have none.
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);

    d->beginMove(int(from), int(to));
    beginChange();
    d->list.removeAt(int(from));
    animation->remove(true);
    if (to < count())
        document()->insertBefore(at(to), text, false);
    else
        document()->insertAfter(at(to - 1), text, false);
    endChange();
    d->endMove(int(rows));
}

int Animations::compare(unsigned int a, unsigned int b) const
{
    const QString textA = identifierOf(at(a));
    const QString textB = identifierOf(at(b));
    bool isNumberA = false;
    bool isNumberB = false;
    const int numberA = textA.toInt(&isNumberA, 10);
    const int numberB = textB.toInt(&isNumberB, 10);
    if (isNumberA != isNumberB)
        return 1;
    const bool isLess =
        isNumberA ? numberA < numberB : textA.compare(textB, Qt::CaseInsensitive) < 0;
    return isLess ? -1 : 1;
}

void Animations::beginChange()
{
    CodeNodeFile::beginChange();
}

void Animations::endChange()
{
    CodeNodeFile::endChange();
}

} // namespace Vela
