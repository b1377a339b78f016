#include "matrix/Trials.h"

#include <QCoreApplication>
#include <QLocale>

#include <clocale>
#include <cstdio>
#include <cstring>
#include <map>

// Prints a line for each function, "column function sum", and one for each column,
// "column * sum", with tabs between. The sums are to be the same wherever and
// however this is compiled and run.
//
// Words tell what has to be so, or the row would not show what it is named for:
// "comma", that the environment's locale has a decimal comma; "avx2" or "baseline",
// which level the library chooses.

namespace {

/// For a table: 32 bits of the 64.
std::uint32_t Folded(std::uint64_t sum)
{
    return static_cast<std::uint32_t>(sum >> 32 ^ sum);
}

/// What the kernels' level is chosen by.
bool HasAvx2()
{
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

bool IsSo(const QByteArray& word)
{
    if (word == "comma") return std::strcmp(std::localeconv()->decimal_point, ",") == 0;
    if (word == "avx2") return HasAvx2();
    return word == "baseline" && !HasAvx2();
}

std::uint64_t SeedOf(const char* text)
{
    Trials::Sum seed;
    seed.Add(QString::fromUtf8(text));
    return seed.Get();
}

void Print(const char* column, const char* function, std::uint64_t sum)
{
    std::printf("%s\t%s\t%08x\n", column, function, static_cast<unsigned>(Folded(sum)));
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv); // lets the environment's locale reign
    QLocale::setDefault(QLocale::system());
    for (int i = 1; i < argc; ++i) {
        if (IsSo(argv[i])) continue;
        std::fprintf(stderr, "'%s' is expected here, and not so\n", argv[i]);
        return 1;
    }
    std::map<QByteArray, Trials::Sum> columns;
    for (const auto list : {Trials::Values, Trials::Texts, Trials::Sizes, Trials::Rays, Trials::Skins, Trials::Views}) {
        for (const Trials::Trial& trial : list()) {
            Trials::Random random(SeedOf(trial.function));
            Trials::Sum sum;
            trial.run(random, sum);
            Print(trial.column, trial.function, sum.Get());
            columns[trial.column].Add(sum.Get());
        }
    }
    for (const auto& [column, sum] : columns)
        Print(column.constData(), "*", sum.Get());
    return std::fflush(stdout) == 0 ? 0 : 1;
}
