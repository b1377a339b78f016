#include "reference/tools/CommandLine.h"

#include "reference/tools/Failure.h"
#include "reference/tools/Texts.h"

#include <QRegularExpression>

#include <cmath>

namespace Host {

namespace {

QString Dashed(const QString& name)
{
    return (name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name;
}

QString Heading(const Option& option)
{
    QStringList names;
    for (const QString& name : option.names)
        names += Dashed(name);
    const QString heading = names.join(QStringLiteral(", "));
    return option.value.isEmpty() ? heading : heading + QLatin1Char(' ') + option.value;
}

/// Those of the manual, and the one that all manuals have.
std::vector<Option> AllOptions(const Manual& manual)
{
    std::vector<Option> options = manual.options;
    options.push_back({{QStringLiteral("h"), QStringLiteral("help")}, QString(), QStringLiteral("Show this page.")});
    return options;
}

QString Section(const QString& heading, const QString& body)
{
    return body.isEmpty() ? QString() : QLatin1Char('\n') + heading + QLatin1Char('\n') + body;
}

QString Paragraphs(const QStringList& paragraphs)
{
    QStringList wrapped;
    for (const QString& paragraph : paragraphs)
        wrapped += Wrapped(paragraph, 4);
    return wrapped.join(QLatin1Char('\n'));
}

QString OptionTexts(const std::vector<Option>& options)
{
    QString text;
    for (const Option& option : options)
        text += Wrapped(Heading(option), 4) + Wrapped(option.text, 8);
    return text;
}

QString ExampleTexts(const std::vector<Example>& examples)
{
    QString text;
    for (const Example& example : examples)
        text += QStringLiteral("    %1\n").arg(example.command) + Wrapped(example.text, 8);
    return text;
}

/// "-5,3": a pair of numbers, though the parser would take it for an option.
bool IsNegativePair(const QString& word)
{
    static const QRegularExpression pair(QStringLiteral("\\A-[0-9]+,-?[0-9]+\\z"));
    return pair.match(word).hasMatch();
}

/// The parser's own complaint as the end of a line of ours.
QString Complaint(QString text)
{
    text[0] = text[0].toLower();
    if (text.endsWith(QLatin1Char('.'))) text.chop(1);
    return text;
}

} // namespace

QString ManualPage(const Manual& manual)
{
    const QString name = manual.verb.isEmpty() ? QStringLiteral("lumenta") : QStringLiteral("lumenta ") + manual.verb;
    QString synopsis;
    for (const QString& line : manual.synopsis)
        synopsis += QStringLiteral("    %1\n").arg(line);

    return QStringLiteral("NAME\n") + Wrapped(name + QStringLiteral(" - ") + manual.summary, 4)
           + Section(QStringLiteral("SYNOPSIS"), synopsis)
           + Section(QStringLiteral("DESCRIPTION"), Paragraphs(manual.description))
           + Section(QStringLiteral("OPTIONS"), OptionTexts(AllOptions(manual)))
           + Section(QStringLiteral("EXAMPLES"), ExampleTexts(manual.examples))
           + Section(QStringLiteral("ENVIRONMENT"), ExampleTexts(manual.environment))
           + Section(QStringLiteral("EXIT STATUS"),
                     QStringLiteral("    0   all is done\n"
                                    "    1   it could not be done; one line on standard error says why\n"
                                    "    2   the command line asks for what does not exist\n"));
}

Arguments::Arguments(const Manual& manual, const QStringList& words)
    : m_verb(manual.verb)
{
    const std::vector<Option> options = AllOptions(manual);
    for (const Option& option : options) {
        m_parser.addOption(QCommandLineOption(option.names, option.text, option.value));
        m_known += option.names;
    }

    QStringList parsedWords(QStringLiteral("lumenta"));
    for (const QString& word : words) {
        const bool isBehind = parsedWords.contains(QStringLiteral("--")); // where nothing is an option
        (!isBehind && IsNegativePair(word) ? m_negativePairs : parsedWords) += word;
    }
    const bool parsed = m_parser.parse(parsedWords);
    const QStringList unknown = m_parser.unknownOptionNames();
    if (!unknown.isEmpty()) Reject(QStringLiteral("unknown option ") + Quoted(Dashed(unknown.first())));
    if (!parsed) Reject(Complaint(m_parser.errorText()));
}

QString Arguments::OnlyWord(const QString& what) const
{
    const QStringList words = Words(what);
    if (words.size() > 1) Reject(QStringLiteral("one %1 is enough, but here is also %2").arg(what, Quoted(words[1])));
    return words.first();
}

QStringList Arguments::Words(const QString& what) const
{
    const QStringList words = m_parser.positionalArguments();
    if (words.isEmpty() || words.first().isEmpty()) Reject(QStringLiteral("%1 is missing").arg(what));
    return words + m_negativePairs;
}

bool Arguments::Has(const QString& option) const
{
    return m_known.contains(option) && m_parser.isSet(option);
}

QString Arguments::Text(const QString& option) const
{
    return m_parser.value(option);
}

QString Arguments::RequiredText(const QString& option) const
{
    if (Text(option).isEmpty()) Reject(QStringLiteral("%1 is missing").arg(Dashed(option)));
    return Text(option);
}

QStringList Arguments::Texts(const QString& option) const
{
    return m_parser.values(option);
}

std::optional<double> Arguments::Number(const QString& option, double least, double most) const
{
    if (!Has(option)) return {};
    bool isNumber = false;
    const double number = Text(option).toDouble(&isNumber);
    // A number that is not one is in no range either.
    if (!isNumber || !(number >= least && number <= most))
        RejectValue(option, QStringLiteral("a number from %1 to %2").arg(least, 0, 'g', 10).arg(most, 0, 'g', 10));
    return number;
}

std::optional<int> Arguments::Integer(const QString& option, int least, int most) const
{
    if (!Has(option)) return {};
    bool isNumber = false;
    const int number = Text(option).toInt(&isNumber);
    if (!isNumber || number < least || number > most)
        RejectValue(option, QStringLiteral("a whole number from %1 to %2").arg(least).arg(most));
    return number;
}

QString Arguments::OneOf(const QString& option, const QStringList& words) const
{
    if (!Has(option)) return words.first();
    if (!words.contains(Text(option)))
        RejectValue(option, QStringLiteral("one of ") + words.join(QStringLiteral(", ")));
    return Text(option);
}

void Arguments::Reject(const QString& text) const
{
    throw UsageError{m_verb, text};
}

void Arguments::RejectValue(const QString& option, const QString& wanted) const
{
    Reject(QStringLiteral("%1: %2 is not %3").arg(Dashed(option), Quoted(Text(option)), wanted));
}

} // namespace Host
