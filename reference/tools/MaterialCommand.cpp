#include "lumenta/files/Paths.h"
#include "reference/host/document/SceneMaterial.h"
#include "reference/host/images/ReplaceFile.h"
#include "reference/tools/Failure.h"
#include "reference/tools/Json.h"
#include "reference/tools/MaterialFile.h"
#include "reference/tools/OutputFile.h"
#include "reference/tools/Texts.h"
#include "reference/tools/Verbs.h"

#include <QFileInfo>

namespace Host {

namespace {

const QString kUnknown = QStringLiteral("unknown");
const QString kNotFound = QStringLiteral("not found");

QString FolderOf(const QString& fileName)
{
    return SimplifyFilename(QFileInfo(fileName).absolutePath());
}

/// What there is to remark about a parameter of a file; empty for nothing.
QString RemarkOn(const QString& name, const QString& value, const QString& folder)
{
    const QString wanted = SceneMaterial::DescribeParameter(name);
    if (wanted.isEmpty()) return kUnknown;
    if (!SceneMaterial(QString()).SetParameter(name, value)) return QStringLiteral("is not ") + wanted;
    const bool isMissing = SceneMaterial::IsFileParameter(name) && TryToFindFilePessimistic(value, folder).isEmpty();
    return isMissing && !value.isEmpty() ? kNotFound : QString();
}

// ----------------------------------------------------------------- set, new

struct Assignment {
    QString name;
    QString value; ///< Empty to take the parameter away.
};

std::vector<Assignment> ReadAssignments(const Arguments& arguments, const QStringList& words)
{
    std::vector<Assignment> assignments;
    for (const QString& word : words) {
        const int equals = word.indexOf(QLatin1Char('='));
        if (equals < 1) arguments.Reject(QStringLiteral("%1 is not NAME=VALUE").arg(Quoted(word)));
        assignments.push_back({word.left(equals), word.mid(equals + 1)});
    }
    return assignments;
}

/// How a material in `folder` refers to a file that was named on the command line.
QString Reference(const QString& value, const QString& folder)
{
    if (value.startsWith(QLatin1String(":/"))) return value;
    return GetRelativePath(folder, SimplifyFilename(QFileInfo(value).absoluteFilePath()));
}

/// The value as the material puts it.
QString Normalised(const Assignment& assignment, const QString& fileName)
{
    SceneMaterial material{QString()};
    const QString& name = assignment.name;
    if (!material.SetParameter(name, assignment.value))
        throw Failure{fileName, QStringLiteral("%1: %2 is not %3")
                                    .arg(name, Quoted(assignment.value), SceneMaterial::DescribeParameter(name))};
    return material.GetParameter(name).toString();
}

/// Both numbers, and different ones.
bool IsOtherNumber(const QString& a, const QString& b)
{
    bool areNumbers[2];
    const float first = a.toFloat(&areNumbers[0]);
    const float second = b.toFloat(&areNumbers[1]);
    return areNumbers[0] && areNumbers[1] && first != second;
}

/// What is to be remarked about a value that was stored; empty for nothing.
QString WarningOf(const Assignment& assignment, const QString& stored, const QString& folder)
{
    const auto& [name, value] = assignment;
    const QString remark = RemarkOn(name, stored, folder);
    if (remark == kUnknown) return QStringLiteral("%1 is unknown, and kept as it is").arg(Quoted(name));
    if (remark == kNotFound) return QStringLiteral("%1: %2 was not found").arg(name, Quoted(value));
    return IsOtherNumber(value, stored) ? QStringLiteral("%1: %2 became %3").arg(name, Quoted(value), stored)
                                        : QString();
}

QStringList TexturesOf(const MaterialFile& material, const QString& folder)
{
    QStringList files;
    for (auto each = material.parameters.begin(); each != material.parameters.end(); ++each)
        if (SceneMaterial::IsFileParameter(each.key()))
            files += TryToFindFilePessimistic(each.value().toString(), folder);
    return files;
}

/// Changes the material and writes it, then says what there is to say.
void AssignAndWrite(MaterialFile& material, const std::vector<Assignment>& assignments, const QString& fileName)
{
    const QString folder = FolderOf(fileName);
    QStringList warnings;
    for (const Assignment& assignment : assignments) {
        const auto& [name, value] = assignment;
        if (value.isEmpty()) {
            material.parameters.remove(name);
            continue;
        }
        const QString stored =
            SceneMaterial::IsFileParameter(name) ? Reference(value, folder) : Normalised(assignment, fileName);
        material.parameters[name] = stored;
        warnings += WarningOf(assignment, stored, folder);
    }
    KeepInputs(TexturesOf(material, folder), {fileName}, QStringLiteral("a texture of the material"));
    WriteMaterialFile(fileName, material);
    warnings.removeAll(QString());
    for (const QString& warning : qAsConst(warnings))
        PrintWarning(fileName, warning);
}

/// The files of the slots, which lie where they lay, seen from another folder.
void MoveReferences(MaterialFile& material, const QString& from, const QString& to)
{
    if (from == to) return;
    for (auto each = material.parameters.begin(); each != material.parameters.end(); ++each) {
        if (!SceneMaterial::IsFileParameter(each.key())) continue;
        const QString file = TryToFindFilePessimistic(each.value().toString(), from);
        if (!file.isEmpty()) *each = GetRelativePath(to, file);
    }
}

/// Only --force makes another file go.
void CheckTarget(const Arguments& arguments, const QString& fileName, const QString& source = {})
{
    CheckOutputFile(fileName);
    const bool isSource = !source.isEmpty() && TargetPath(fileName) == TargetPath(source);
    if (!isSource && QFileInfo::exists(fileName) && !arguments.Has(QStringLiteral("force")))
        throw Failure{fileName, QStringLiteral("exists; --force would replace it")};
}

void Set(const Arguments& arguments, const QStringList& words)
{
    const QString& source = words.first();
    const std::vector<Assignment> assignments = ReadAssignments(arguments, words.mid(1));
    const bool isNamed = arguments.Has(QStringLiteral("name"));
    if (assignments.empty() && !isNamed) arguments.Reject(QStringLiteral("neither NAME=VALUE nor --name is given"));
    const bool isElsewhere = arguments.Has(QStringLiteral("o"));
    const QString target = isElsewhere ? arguments.RequiredText(QStringLiteral("o")) : source;

    MaterialFile material = ReadMaterialFile(source);
    CheckTarget(arguments, target, source);
    MoveReferences(material, FolderOf(source), FolderOf(target));
    if (isNamed) material.name = arguments.Text(QStringLiteral("name"));
    AssignAndWrite(material, assignments, target);
}

void New(const Arguments& arguments, const QStringList& words)
{
    const QString& fileName = words.first();
    const std::vector<Assignment> assignments = ReadAssignments(arguments, words.mid(1));
    CheckTarget(arguments, fileName);
    MaterialFile material;
    material.name = arguments.Has(QStringLiteral("name")) ? arguments.Text(QStringLiteral("name"))
                                                          : QFileInfo(fileName).completeBaseName();
    AssignAndWrite(material, assignments, fileName);
}

// --------------------------------------------------------------------- show

// The facts are gathered once, as JSON; the table for people reads them there.

QJsonObject Facts(const MaterialFile& material, const QString& fileName)
{
    QJsonArray parameters;
    for (auto each = material.parameters.begin(); each != material.parameters.end(); ++each)
        parameters += QJsonObject{
            {QStringLiteral("name"), each.key()},
            {QStringLiteral("value"), each.value().toString()},
            {QStringLiteral("remark"), RemarkOn(each.key(), each.value().toString(), FolderOf(fileName))},
        };
    return {{QStringLiteral("file"), fileName},
            {QStringLiteral("name"), material.name},
            {QStringLiteral("parameters"), parameters}};
}

QString FactsText(const QJsonObject& facts)
{
    Table table({QStringLiteral("parameter"), QStringLiteral("value"), QStringLiteral("remark")});
    const QJsonArray parameters = facts[QStringLiteral("parameters")].toArray();
    for (const QJsonValue& each : parameters)
        table.AddRow({each[QStringLiteral("name")].toString(), each[QStringLiteral("value")].toString(),
                      each[QStringLiteral("remark")].toString()});
    return Quoted(facts[QStringLiteral("name")].toString()) + QLatin1Char('\n') + table.Text();
}

void Show(const Arguments& arguments, const QStringList& words)
{
    if (words.size() > 1)
        arguments.Reject(QStringLiteral("one FILE is enough, but here is also %1").arg(Quoted(words[1])));
    const QJsonObject facts = Facts(ReadMaterialFile(words.first()), words.first());
    Print(arguments.Has(QStringLiteral("json")) ? JsonText(facts) : FactsText(facts));
}

// --------------------------------------------------------------------- verb

struct Action {
    QString name;
    QStringList options;
    void (*run)(const Arguments& arguments, const QStringList& words);
};

void Run(const Arguments& arguments)
{
    const QString name = QStringLiteral("name");
    const QString force = QStringLiteral("force");
    const Action actions[] = {{QStringLiteral("show"), {QStringLiteral("json")}, Show},
                              {QStringLiteral("set"), {name, QStringLiteral("o"), force}, Set},
                              {QStringLiteral("new"), {name, force}, New}};
    const QStringList words = arguments.Words(QStringLiteral("show, set or new"));
    for (const Action& action : actions) {
        if (action.name != words.first()) continue;
        for (const QString& option : {name, force, QStringLiteral("json"), QStringLiteral("o")})
            if (arguments.Has(option) && !action.options.contains(option))
                arguments.Reject(
                    QStringLiteral("'%1' has no use for %2")
                        .arg(action.name, (option.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + option));
        if (words.size() < 2 || words[1].isEmpty()) arguments.Reject(QStringLiteral("FILE is missing"));
        return action.run(arguments, words.mid(1));
    }
    arguments.Reject(QStringLiteral("%1 is not one of show, set, new").arg(Quoted(words.first())));
}

} // namespace

Verb MaterialVerb()
{
    Manual manual;
    manual.verb = QStringLiteral("material");
    manual.summary = QStringLiteral("show, change or make a material file");
    manual.synopsis = QStringList{
        QStringLiteral("lumenta material show FILE [--json]"),
        QStringLiteral("lumenta material set FILE [NAME=VALUE ...] [--name NAME] [-o OUT [--force]]"),
        QStringLiteral("lumenta material new FILE [NAME=VALUE ...] [--name NAME] [--force]"),
    };
    manual.description = QStringList{
        QStringLiteral("A material file (.mtl) holds the name of a material and its parameters. 'show' lists them and "
                       "remarks which are unknown, which have a value that makes no sense, and which textures are not "
                       "there. 'set' changes parameters and leaves all others as they are, and 'new' makes a file."),
        QStringLiteral("Colours are #rrggbb, or four numbers 'r g b a' of linear light; switches are true or false; "
                       "numbers beyond their limits are held within them, with a warning. NAME= takes a parameter "
                       "away. Parameters that are unknown are kept as they are, for other programs."),
        QStringLiteral("The file of a texture is named as seen from where the command runs. It is stored as seen from "
                       "the folder of the material, where it lies in it, so that both can be moved together."),
    };
    manual.options = {
        {QStringList(QStringLiteral("name")), QStringLiteral("NAME"),
         QStringLiteral("The name of the material. A new one is called as its file, without the suffix.")},
        {{QStringLiteral("o"), QStringLiteral("output")},
         QStringLiteral("OUT"),
         QStringLiteral("Write the changed material there, and leave FILE alone.")},
        {QStringList(QStringLiteral("force")), QString(),
         QStringLiteral("Replace a file that is there already; never a texture of the material.")},
        {QStringList(QStringLiteral("json")), QString(),
         QStringLiteral("Print a JSON object, for programs. A parameter without a remark is in order.")},
    };
    manual.examples = {
        {QStringLiteral("lumenta material new oak.mtl diffuse=#c8a070 texture=maps/oak.png"),
         QStringLiteral("A material with a colour and a texture.")},
        {QStringLiteral("lumenta material set oak.mtl opacity=0.5 texture= --name 'Thin oak'"),
         QStringLiteral("The same, half clear, without the texture, under another name.")},
        {QStringLiteral("lumenta material show oak.mtl"), QStringLiteral("What it holds now.")},
    };
    return {manual, Run};
}

} // namespace Host
