#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace Host {

/// An option, described once: for the parser and for the manual page.
struct Option {
    QStringList names; ///< Without dashes; a single letter is a short one.
    QString value;     ///< What stands for its value in the manual; empty for a switch.
    QString text;
};

struct Example {
    QString command;
    QString text;
};

/// What there is to say about a verb, or about the command itself.
struct Manual {
    QString verb; ///< Empty for the command itself.
    QString summary;
    QStringList synopsis;
    QStringList description;     ///< Paragraphs.
    std::vector<Option> options; ///< Apart from --help, which comes by itself.
    std::vector<Example> examples;
    std::vector<Example> environment; ///< Variables, and what they do.
};

/// NAME, SYNOPSIS, DESCRIPTION, OPTIONS, EXAMPLES, ENVIRONMENT and EXIT STATUS, with line
/// ends; those that are empty are left out. cmake/man.awk relies on how far lines are
/// indented.
QString ManualPage(const Manual& manual);

/// The words after a verb, read by the verb's own manual. Every verb has the
/// option "help" too. Numbers are read with a decimal point whatever the locale.
///
/// Everything throws UsageError where the words do not fit; the text names the
/// option, the value and what would fit.
class Arguments {
public:
    Arguments(const Manual& manual, const QStringList& words);

    /// The single word that is no option. `what` stands for it in the error.
    QString OnlyWord(const QString& what) const;

    /// The words that are no options, at least one; pairs like "-5,3" are among
    /// them, at the end. `what` stands for the first in the error.
    QStringList Words(const QString& what) const;

    /// False too for an option that the manual has not.
    bool Has(const QString& option) const;

    /// As given last; empty where it is not there.
    QString Text(const QString& option) const;

    /// Throws where it is not there or empty.
    QString RequiredText(const QString& option) const;

    /// All values of an option that may be repeated.
    QStringList Texts(const QString& option) const;

    /// A finite number from `least` to `most`, or none where the option is missing.
    std::optional<double> Number(const QString& option, double least, double most) const;
    std::optional<int> Integer(const QString& option, int least, int most) const;

    /// One of `words`, or the first where the option is missing.
    QString OneOf(const QString& option, const QStringList& words) const;

    [[noreturn]] void Reject(const QString& text) const;
    [[noreturn]] void RejectValue(const QString& option, const QString& wanted) const;

private:
    QString m_verb;
    QStringList m_negativePairs; ///< Words that the parser must not see.
    QStringList m_known;         ///< Every name of an option.
    QCommandLineParser m_parser;
};

} // namespace Host
