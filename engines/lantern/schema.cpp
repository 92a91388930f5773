// SPDX-License-Identifier: MIT
#include "lantern/schema.h"

#include "lantern/line.h"
#include "lantern/report.h"
#include "lantern/values.h"

#include "project/project.h"

#include <algorithm>

namespace Lantern {

namespace {

using Type = Vela::ValueCode::Type;

constexpr unsigned int inGame = scopeBit(Scope::Game);
constexpr unsigned int inProject = scopeBit(Scope::Project);
constexpr unsigned int inMotion = scopeBit(Scope::Motion);
constexpr unsigned int inMain = inGame | inProject;
constexpr unsigned int inAll = inMain | inMotion;

// Numbers of the grammar have at most 9 digits in front of the point.
constexpr double largest = 999999999;
constexpr double largestStage = 16384;
constexpr double smallestScale = 1.0 / 64;
constexpr double largestScale = 64;

// A rule as it is told to the table; the bounds hold for every number of the value.
struct Row
{
    unsigned int section;
    const char *key;
    unsigned int scopes;
    Type type;
    Form form;
    const char *defaultText = nullptr;
    double least = -largest;
    double most = largest;
    const char *words = "";
    int fileType = -1;
    bool isList = false;
};

Row file(unsigned int section, const char *key, unsigned int scopes, int fileType)
{
    return {section,  key,     scopes, Type::File, Form::Path, nullptr,
            -largest, largest, "",     fileType,   true};
}

Row number(const char *key, Type type, const char *defaultText)
{
    return {MotionSection, key, inMotion, type, Form::Numbers, defaultText};
}

Row integer(const char *key, Type type, const char *defaultText)
{
    return {MotionSection, key, inMotion, type, Form::Integers, defaultText};
}

// A colour, and with four numbers its opacity.
Row color(const char *key, Type type, const char *defaultText)
{
    return {MotionSection, key, inMotion, type, Form::Numbers, defaultText, 0, 1};
}

Row words(unsigned int section, const char *key, unsigned int scopes, Type type, Form form,
          const char *defaultText, const char *words)
{
    return {section, key, scopes, type, form, defaultText, -largest, largest, words};
}

QVector<Row> rows()
{
    using Vela::Project;
    return {
        {GameSection, "name", inGame, Type::String, Form::Text},
        {GameSection, "author", inGame, Type::String, Form::Text, ""},
        {GameSection, "requires", inGame, Type::String, Form::Version},
        {ProjectSection, "name", inProject, Type::String, Form::Text},
        {ProjectSection, "author", inProject, Type::String, Form::Text, ""},
        words(ProjectSection, "kind", inProject, Type::Keyword, Form::Word, "shared",
              "character stage screen shared"),
        {ProjectSection, "requires", inProject, Type::String, Form::Version},
        {StageSection, "size", inMain, Type::IntVec2, Form::Size, nullptr, 1, largestStage},
        {StageSection, "scale", inMain, Type::FloatVec2, Form::Scale, nullptr, smallestScale,
         largestScale},
        file(ProjectsSection, "open", inGame, Project::Main),
        file(ProjectsSection, "closed", inGame, Project::Main),
        file(FilesSection, "sprites", inMain, Project::Sprites),
        file(FilesSection, "sounds", inMain, Project::Sounds),
        file(FilesSection, "animations", inMain, Project::Animations),
        file(FilesSection, "scripts", inMain, Project::Scripts),
        {MotionSection, "author", inMotion, Type::String, Form::Text, ""},
        {MotionSection, "made", inMotion, Type::Date, Form::Date},
        {MotionSection, "model", inMotion, Type::File, Form::Path},
        words(MotionSection, "surface", inMotion, Type::Keyword, Form::Word, "ground",
              "ground water air"),
        words(MotionSection, "tags", inMotion, Type::KeywordVector, Form::Words, nullptr,
              "idle move jump fight scenery effect"),
        {MotionSection, "mirrored", inMotion, Type::Bool, Form::YesNo, "no"},
        integer("ground", Type::Int, "0"),
        integer("origin", Type::IntVec2, "0, 0"),
        integer("grid", Type::IntVec3, "1, 1, 1"),
        integer("bounds", Type::IntVec4, nullptr),
        integer("layers", Type::IntVector, nullptr),
        number("gravity", Type::Float, "0"),
        number("drift", Type::FloatVec2, "0, 0"),
        number("easing", Type::FloatVector, nullptr),
        color("tint", Type::FloatVec3, "1, 1, 1"),
        color("shadow", Type::FloatVec4, "0, 0, 0, 0"),
    };
}

QVector<Rule> makeRules()
{
    QVector<Rule> result;
    for (const Row &row : rows()) {
        Rule rule{
            row.section, QString::fromLatin1(row.key),
            row.scopes,  row.type,
            row.form,    row.least,
            row.most,    QString::fromLatin1(row.words).split(QLatin1Char(' '), Qt::SkipEmptyParts),
            QVariant(),  row.fileType,
            row.isList};
        if (row.defaultText) {
            const QString text = QString::fromLatin1(row.defaultText);
            const Line line(text);
            Report silent(line, nullptr);
            readValue(rule, text, {0, text.size(), Token::Plain}, rule.defaultValue, silent);
        }
        result.append(rule);
    }
    return result;
}

QVector<SectionRule> makeSections()
{
    const auto row = [](SectionKind kind, const char *word, unsigned int scopes) {
        return SectionRule{kind, QString::fromLatin1(word), scopes};
    };
    return {
        row(GameSection, "game", inGame),          row(ProjectSection, "project", inProject),
        row(StageSection, "stage", inMain),        row(ProjectsSection, "projects", inGame),
        row(FilesSection, "files", inMain),        row(MotionSection, "motion", inMotion),
        row(AnimationSection, "animation", inAll), row(FontSection, "font", inAll),
        row(PaletteSection, "palette", inAll),     row(ScriptSection, "script", inAll),
        row(SoundSection, "sound", inAll),         row(SpriteSection, "sprite", inAll),
    };
}

// The number of letters to change, add or take away, and of neighbours to exchange, to make one
// word of another: the optimal string alignment distance.
int distance(const QString &a, const QString &b)
{
    QVector<QVector<int>> rows(a.size() + 1, QVector<int>(b.size() + 1));
    for (int i = 0; i <= a.size(); ++i) {
        for (int j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                rows[i][j] = i + j;
                continue;
            }
            const int change = rows[i - 1][j - 1] + (a.at(i - 1) != b.at(j - 1));
            rows[i][j] = std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, change});
            if (i > 1 && j > 1 && a.at(i - 1) == b.at(j - 2) && a.at(i - 2) == b.at(j - 1))
                rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
        }
    }
    return rows[a.size()][b.size()];
}

} // namespace

const QVector<SectionRule> &sectionRules()
{
    static const QVector<SectionRule> sections = makeSections();
    return sections;
}

const QVector<Rule> &rules()
{
    static const QVector<Rule> all = makeRules();
    return all;
}

const SectionRule *findSection(QStringView word)
{
    for (const SectionRule &section : sectionRules()) {
        if (saysWord(word, section.word))
            return &section;
    }
    return nullptr;
}

const SectionRule *sectionOfKind(unsigned int kind)
{
    for (const SectionRule &section : sectionRules()) {
        if (section.kind == kind)
            return &section;
    }
    return nullptr;
}

const Rule *findRule(Scope scope, unsigned int section, QStringView key)
{
    for (const Rule &rule : rules()) {
        if (rule.section == section && (rule.scopes & scopeBit(scope)) && saysWord(key, rule.key))
            return &rule;
    }
    return nullptr;
}

QString renamedKey(unsigned int section, QStringView key)
{
    struct Renamed
    {
        unsigned int section;
        QLatin1String old;
        QLatin1String now;
    };
    static const Renamed renamed[] = {
        {GameSection, QLatin1String("title"), QLatin1String("name")},
        {ProjectSection, QLatin1String("title"), QLatin1String("name")},
        {MotionSection, QLatin1String("flipped"), QLatin1String("mirrored")},
    };
    for (const Renamed &entry : renamed) {
        if (entry.section == section && saysWord(key, entry.old))
            return entry.now;
    }
    return QString();
}

QString closestWord(QStringView word, const QStringList &words)
{
    // What is longer is no slip of the finger, and texts are not to make this slow.
    constexpr int longest = 24;
    if (word.size() > longest)
        return QString();
    const QString lower = word.toString().toLower();
    const int most = lower.size() <= 3 ? 1 : 2;
    QString closest;
    int least = most + 1;
    for (const QString &candidate : words) {
        const int d = distance(lower, candidate);
        if (d < least && d < candidate.size()) {
            least = d;
            closest = candidate;
        }
    }
    return closest;
}

} // namespace Lantern
