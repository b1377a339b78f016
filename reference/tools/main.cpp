#include "lumenta/foundation/Exceptions.h"
#include "reference/tools/Failure.h"
#include "reference/tools/Texts.h"
#include "reference/tools/Verbs.h"

#include <QFile>
#include <QLocale>
#include <QTextCodec>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <new>
#include <vector>

#include <fcntl.h>
#include <langinfo.h>
#include <unistd.h>

namespace {

using namespace Host;

std::vector<Verb> Verbs()
{
    return {InfoVerb(), RenderVerb(), PickVerb(), ClipVerb(), ConvertVerb(), MaterialVerb(), ScriptVerb()};
}

Manual CommandManual()
{
    Manual manual;
    manual.summary = QStringLiteral("look at skinned, animated 3D models without a display");
    manual.synopsis = QStringList{QStringLiteral("lumenta VERB MODEL [options]"), QStringLiteral("lumenta help [VERB]"),
                                  QStringLiteral("lumenta --version")};
    manual.description = QStringList(QStringLiteral("The verbs are:"));
    for (const Verb& verb : Verbs())
        manual.description += verb.manual.verb + QStringLiteral(" - ") + verb.manual.summary;
    manual.description += QStringLiteral("'lumenta help VERB' shows the page of one. Results go to standard output, "
                                         "everything else to standard error; a terminal there gets a progress bar.");
    manual.options = {
        {{QStringLiteral("v"), QStringLiteral("version")}, QString(), QStringLiteral("Show the version.")}};
    manual.examples = {{QStringLiteral("lumenta info :figure"), QStringLiteral("What the built-in model holds.")},
                       {QStringLiteral("lumenta render :figure --frames 12 -o sheet.png"),
                        QStringLiteral("Twelve moments of its animation.")}};
    manual.environment = {
        {QStringLiteral("LUMENTA_PLUGIN_PATH"),
         QStringLiteral("Folders with plug-ins, parted by colons, that are searched before the command's own.")},
        {QStringLiteral("LUMENTA_LOG"), QStringLiteral("The file that gets every line of the log. Warnings alone are "
                                                       "shown anyway.")}};
    return manual;
}

/// The verb of this name.
Verb FindVerb(const QString& name)
{
    QStringList names;
    for (const Verb& verb : Verbs()) {
        if (verb.manual.verb == name)
            return verb;
        names += verb.manual.verb;
    }
    throw UsageError{QString(), QStringLiteral("there is no verb %1, but %2").arg(Quoted(name), QuotedList(names))};
}

void ShowHelp(const QStringList& words)
{
    if (words.size() > 1)
        throw UsageError{QString(), QStringLiteral("one VERB is enough, but here is also ") + Quoted(words[1])};
    const bool ofVerb = !words.isEmpty() && !words.first().startsWith(QLatin1Char('-'));
    Print(ManualPage(ofVerb ? FindVerb(words.first()).manual : CommandManual()));
}

void RunWithoutVerb(const QStringList& words)
{
    const Arguments arguments(CommandManual(), words);
    if (arguments.Has(QStringLiteral("help")))
        Print(ManualPage(CommandManual()));
    else if (arguments.Has(QStringLiteral("version")))
        Print(QStringLiteral("lumenta " LUMENTA_VERSION "\n"));
    else
        arguments.Reject(QStringLiteral("no verb is given"));
}

void Run(const QStringList& words)
{
    if (words.isEmpty() || words.first().startsWith(QLatin1Char('-')))
        return RunWithoutVerb(words);
    if (words.first() == QLatin1String("help"))
        return ShowHelp(words.mid(1));

    const Verb verb = FindVerb(words.first());
    const Arguments arguments(verb.manual, words.mid(1));
    if (arguments.Has(QStringLiteral("help")))
        Print(ManualPage(verb.manual));
    else
        verb.run(arguments);
}

/// The words of the command line as text. A word that is none could not be
/// turned back into the name of its file.
QStringList Decoded(const std::vector<QByteArray>& words)
{
    QStringList decoded;
    for (const QByteArray& word : words) {
        decoded += QFile::decodeName(word);
        if (QFile::encodeName(decoded.last()) != word)
            throw Failure{decoded.last(), QStringLiteral("the name cannot be decoded")};
    }
    return decoded;
}

/// Runs the command; every failure becomes one line and an exit status.
int RunGuarded(const std::vector<QByteArray>& words)
{
    try {
        Run(Decoded(words));
        return 0;
    } catch (const UsageError& error) {
        const QString page = error.verb.isEmpty() ? QString() : QLatin1Char(' ') + error.verb;
        PrintError(QStringLiteral("%1; see 'lumenta help%2'").arg(error.text, page));
        return 2;
    } catch (const Failure& failure) {
        PrintError(failure.subject + QStringLiteral(": ") + failure.text);
    } catch (const Exception& exception) {
        PrintError(exception.GetErrorText());
    } catch (const std::bad_alloc&) {
        PrintError(QStringLiteral("there is not enough memory"));
    } catch (const std::exception& exception) {
        PrintError(QString::fromLocal8Bit(exception.what()));
    } catch (...) {
        PrintError(QStringLiteral("an unknown error has occurred"));
    }
    return 1;
}

/// Only what ends the process: everything else that the toolkit remarks would
/// break the promise of one line per error, and none without.
void HandleMessage(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type != QtFatalMsg)
        return;
    PrintError(message);
    std::abort();
}

/// Files would take the numbers of streams that are closed, and what is printed
/// would end up in them. The wrong direction keeps it an error to use one.
void OccupyClosedStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) < 0) open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

/// Outside of any locale names of files are UTF-8, not ASCII.
void ChooseEncoding()
{
    std::setlocale(LC_ALL, "");
    if (qstrcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0)
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

} // namespace

int main(int argc, char* argv[])
{
    OccupyClosedStreams();
    ChooseEncoding();
    qInstallMessageHandler(HandleMessage);
    // A file that grows beyond a limit is an error to report, not to die of.
    std::signal(SIGXFSZ, SIG_IGN);
    // Numbers have a point, in this program and in the libraries it uses.
    std::setlocale(LC_NUMERIC, "C");
    QLocale::setDefault(QLocale::c());
    return RunGuarded({argv + std::min(argc, 1), argv + argc});
}
